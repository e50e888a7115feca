' Dials by a modem at a serial port, logs in by look-up, and shows what the far end says to a command.
'
'     cscript //nologo login.vbs PORT NUMBER USER PASSWORD PROMPT COMMAND
'
' A modem of Windows is dialled by PhoneNumber and PortOpen: see download.vbs.
Option Explicit

Dim args, comm
Set args = WScript.Arguments
If args.Count <> 6 Then Fail "Usage: login.vbs PORT NUMBER USER PASSWORD PROMPT COMMAND"

Set comm = CreateObject("TarnLink.TarnComm")
comm.AutoReceive = False ' what comes is for LookUp, and not for the terminal
comm.CommPort = args(0)
comm.Settings = "115200,n,8,1"
comm.LookUpSeparator = "|"
comm.PortOpen = True
If Not comm.PortOpen Then Fail args(0) & " does not open: " & comm.PortStatus

comm.OutputLine = "AT&C1&D2" ' the carrier tells of the call, and DTR ends it
Await "OK", 5
comm.OutputLine = "ATDT" & args(1)
Await "CONNECT|BUSY|NO CARRIER|NO DIALTONE|ERROR", 60
Await "login:|NO CARRIER", 15
comm.OutputLine = args(2)
Await "Password:|NO CARRIER", 15
comm.OutputLine = args(3)
Await args(4) & "|incorrect|NO CARRIER", 15
WScript.Echo "Logged in as " & args(2) & "."

comm.LookUpInputLen = 4096 ' what comes ahead of the prompt is kept
comm.OutputLine = args(5)
Await args(4) & "|NO CARRIER", 15
WScript.Echo comm.LookUpInput
comm.DTREnable = False
comm.Pause = 500 ' ms
If comm.CDHolding Then Fail "The modem does not hang up."
comm.PortOpen = False

' LookUp gives the place in LookUpText of what came, from 0, or -1. The first is what all hope is for.
Sub Await(texts, seconds)
    Dim words, found
    words = Split(texts, "|")
    comm.LookUpText = texts
    comm.LookUpTimeOut = seconds * 1000
    found = comm.LookUp
    If found > 0 Then Fail "The answer is " & words(found) & "."
    If found < 0 Then Fail "Nobody says " & words(0) & "."
End Sub

Sub Fail(reason)
    WScript.Echo reason
    If IsObject(comm) Then comm.PortOpen = False
    WScript.Quit 1
End Sub
