' Makes the control by its name and tells a property.
Option Explicit
WScript.Echo CreateObject("TarnLink.TarnComm").Settings
