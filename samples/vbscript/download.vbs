' Opens a port, logs in at the far end by look-up, has it send a file by ZModem, and says how it went.
'
'     cscript //nologo download.vbs PORT SETTINGS USER PASSWORD PROMPT COMMAND FILE [NUMBER]
'
' PORT may be the name of a modem as Windows calls it; then NUMBER is dialled. COMMAND makes the far end send the
' file, as "sz notes.txt" does. FILE is its whole path here; a second file would bring a name of its own: fetch from
' a far end that you trust. Lantry.ocx has to be registered: regsvr32 Lantry.ocx. A 64-bit cscript wants the 64-bit
' module.
Option Explicit

Const ZModem = 5
Const NoDialog = 0

Dim args, comm, isOpen
isOpen = False
Set args = WScript.Arguments
If args.Count < 7 Or args.Count > 8 Then _
    Fail "Usage: download.vbs PORT SETTINGS USER PASSWORD PROMPT COMMAND FILE [NUMBER]"

Set comm = CreateObject("TarnLink.TarnComm")
comm.AutoReceive = False ' what comes is for LookUp, and not for the terminal
comm.CommPort = args(0)
comm.Settings = args(1)
comm.DialStatusDialog = NoDialog
If args.Count = 8 Then comm.PhoneNumber = args(7)
comm.PortOpen = True ' dials, where the port is a modem of Windows
If Not comm.PortOpen Then Fail args(0) & " does not open: " & comm.PortStatus
isOpen = True
WScript.Echo args(0) & " is open, " & comm.Settings & "."

Say ""
Await "login:"
Say args(2)
Await "Password:"
Say args(3)
Await args(4)
WScript.Echo "Logged in as " & args(2) & "."

comm.XferProtocol = ZModem
comm.XferStatusDialog = NoDialog
Say args(5)
comm.Download = args(6)
If Not comm.WaitUntilEndOfTransfer Then Fail "The transfer failed."
If Not CreateObject("Scripting.FileSystemObject").FileExists(args(6)) Then Fail "No file went over."
WScript.Echo args(6) & ": " & comm.XferTransferred & " bytes."
Await args(4)
comm.PortOpen = False

Sub Say(text)
    comm.Output = text & vbCr
End Sub

' LookUp gives the number of the text that came, or -1 when the time is over.
Sub Await(text)
    comm.LookUpText = text
    comm.LookUpTimeOut = 10000 ' ms
    If comm.LookUp < 0 Then Fail "The far end does not say " & text
End Sub

Sub Fail(reason)
    WScript.Echo reason
    If isOpen Then comm.PortOpen = False
    WScript.Quit 1
End Sub
