' Sends a file by ZModem, or receives the one that the far end sends.
'
'     cscript //nologo transfer.vbs PORT send FILE
'     cscript //nologo transfer.vbs PORT receive FILE
'
' FILE is a whole path. The first file that is received gets that name; those behind it bring names of their own:
' receive from a far end that you trust.
Option Explicit

Const ZModem = 5
Const NoDialog = 0

Dim args, comm, disk
Set args = WScript.Arguments
If args.Count <> 3 Then Fail "Usage: transfer.vbs PORT send|receive FILE"

Set comm = CreateObject("TarnLink.TarnComm")
comm.CommPort = args(0)
comm.Settings = "115200,n,8,1"
comm.XferProtocol = ZModem
comm.XferStatusDialog = NoDialog
comm.PortOpen = True ' raises no error: PortOpen and PortStatus tell
If Not comm.PortOpen Then Fail args(0) & " does not open: " & comm.PortStatus

On Error Resume Next ' a file that can't be read raises an error
If args(1) = "send" Then comm.Upload = args(2) Else comm.Download = args(2)
If Err.Number <> 0 Then Fail args(2) & ": " & Err.Description
On Error Goto 0
If Not comm.WaitUntilEndOfTransfer Then Fail "The transfer failed."
Set disk = CreateObject("Scripting.FileSystemObject")
If Not disk.FileExists(args(2)) Then Fail "No file went over." ' a lost file alone makes no failure
WScript.Echo args(2) & ": " & disk.GetFile(args(2)).Size & " bytes."
comm.PortOpen = False

Sub Fail(reason)
    WScript.Echo reason
    If IsObject(comm) Then comm.PortOpen = False
    WScript.Quit 1
End Sub
