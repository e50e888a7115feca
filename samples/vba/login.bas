Attribute VB_Name = "LoginSample"
' Dials, logs in by look-up, and puts what the far end says to a command into the selected cell.
'
' Needs a reference to "Tarn Link Objects 1.0 Type Library" (Tools, References). The name of the modem, as Windows calls
' it, is in E1; the number, the user, the password, the prompt and the command are in the cells below. Format the cells
' as text, so that zeros in front stay.
Option Explicit

Public Sub LogIn()
    Dim comm As TarnLink.TarnComm, wanted As Range
    Set wanted = ActiveSheet.Range("E1:E6")
    Set comm = New TarnLink.TarnComm
    comm.AutoReceive = False ' what comes is for LookUp, and not for the terminal
    comm.DialStatusDialog = Dialog_Hidden
    comm.LookUpSeparator = "|"
    comm.CommPort = wanted(1).Value
    comm.PhoneNumber = wanted(2).Value
    comm.PortOpen = True ' dials, and comes back when the call is connected or has failed
    If Not comm.PortOpen Then
        MsgBox "No call: " & comm.PortStatus
        Exit Sub
    End If
    If AnswerAll(comm, wanted) Then
        ActiveCell.NumberFormat = "@" ' a text, even behind "=": the far end writes no formulas
        ActiveCell.Value = comm.LookUpInput
    Else
        MsgBox "The far end does not answer."
    End If
    comm.PortOpen = False ' hangs up
End Sub

Private Function AnswerAll(comm As TarnLink.TarnComm, wanted As Range) As Boolean
    If Not Await(comm, "login:") Then Exit Function
    comm.OutputLine = wanted(3).Value
    If Not Await(comm, "Password:") Then Exit Function
    comm.OutputLine = wanted(4).Value
    If Not Await(comm, wanted(5).Value & "|incorrect") Then Exit Function
    comm.LookUpInputLen = 4096 ' what comes ahead of the prompt is kept
    comm.OutputLine = wanted(6).Value
    AnswerAll = Await(comm, wanted(5).Value)
End Function

' LookUp gives the place of the text that came, from 0, or -1 when the time is over. The first is hoped for.
Private Function Await(comm As TarnLink.TarnComm, texts As String) As Boolean
    comm.LookUpText = texts
    comm.LookUpTimeOut = 15000 ' ms
    Await = comm.LookUp = 0
End Function
