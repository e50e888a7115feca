' Writes the lines that an instrument sends to a file, each behind its date and time.
'
'     cscript //nologo logger.vbs PORT FILE COUNT
'
' Ends when COUNT lines have come.
Option Explicit

Const ForAppending = 8

Dim args, comm, file, reading, left
Set args = WScript.Arguments
If args.Count <> 3 Then Fail "Usage: logger.vbs PORT FILE COUNT"

Set comm = CreateObject("TarnLink.TarnComm")
comm.AutoReceive = False ' what comes is for LineInput, and not for the terminal
comm.CommPort = args(0)
comm.Settings = "9600,n,8,1"
comm.InTimeOut = 60000 ' ms; LineInput is empty when none came in time
comm.PortOpen = True
If Not comm.PortOpen Then Fail args(0) & " does not open: " & comm.PortStatus

left = CLng(args(2))
Do While left > 0
    reading = comm.LineInput
    If reading <> "" Then
        Write reading
        left = left - 1
    End If
Loop
comm.PortOpen = False

' The file is closed after each line: a reading that was taken is not lost with the script.
Sub Write(text)
    Set file = CreateObject("Scripting.FileSystemObject").OpenTextFile(args(1), ForAppending, True)
    file.WriteLine Stamp(Now) & "," & text
    file.Close
End Sub

' The same in every country: 2031-05-04 09:08:07
Function Stamp(time)
    Stamp = Year(time) & "-" & Two(Month(time)) & "-" & Two(Day(time)) & " " & _
        Two(Hour(time)) & ":" & Two(Minute(time)) & ":" & Two(Second(time))
End Function

Function Two(number)
    Two = Right("0" & number, 2)
End Function

Sub Fail(reason)
    WScript.Echo reason
    If IsObject(comm) Then comm.PortOpen = False
    WScript.Quit 1
End Sub
