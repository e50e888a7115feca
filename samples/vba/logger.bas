Attribute VB_Name = "Logger"
' Writes the lines that an instrument sends into the active sheet: time in column A, reading in column B.
'
' Put the port into E1, the settings into E2 ("COM3", "9600,n,8,1"); run StartLogging, and StopLogging from a button.
' Works by the flat functions, in Excel of 32 and of 64 bits; Lantry.ocx of the same width lies where Windows finds it.
Option Explicit

' Handles are as wide as Excel; all other numbers are Long in both.
#If VBA7 Then
Private Declare PtrSafe Function CreateCommObject Lib "Lantry.ocx" (ByVal hParent As LongPtr) As LongPtr
Private Declare PtrSafe Function DestroyCommObject Lib "Lantry.ocx" (ByVal hWnd As LongPtr) As Long
Private Declare PtrSafe Sub SetCommPort Lib "Lantry.ocx" (ByVal hWnd As LongPtr, ByVal szPort As String)
Private Declare PtrSafe Function SetSettings Lib "Lantry.ocx" (ByVal hWnd As LongPtr, ByVal szSettings As String) As Long
Private Declare PtrSafe Function SetPortOpen Lib "Lantry.ocx" (ByVal hWnd As LongPtr, ByVal bOpen As Long, ByVal szError As String) As Long
Private Declare PtrSafe Sub SetInputTimeOut Lib "Lantry.ocx" (ByVal hWnd As LongPtr, ByVal lTimeOut As Long)
Private Declare PtrSafe Function GetLineInput Lib "Lantry.ocx" (ByVal hWnd As LongPtr, ByVal lpBuffer As String, ByVal cbBuffer As Long) As Long
Private Declare PtrSafe Function GetInBufferCount Lib "Lantry.ocx" (ByVal hWnd As LongPtr) As Long
Private comm As LongPtr
#Else
Private Declare Function CreateCommObject Lib "Lantry.ocx" (ByVal hParent As Long) As Long
Private Declare Function DestroyCommObject Lib "Lantry.ocx" (ByVal hWnd As Long) As Long
Private Declare Sub SetCommPort Lib "Lantry.ocx" (ByVal hWnd As Long, ByVal szPort As String)
Private Declare Function SetSettings Lib "Lantry.ocx" (ByVal hWnd As Long, ByVal szSettings As String) As Long
Private Declare Function SetPortOpen Lib "Lantry.ocx" (ByVal hWnd As Long, ByVal bOpen As Long, ByVal szError As String) As Long
Private Declare Sub SetInputTimeOut Lib "Lantry.ocx" (ByVal hWnd As Long, ByVal lTimeOut As Long)
Private Declare Function GetLineInput Lib "Lantry.ocx" (ByVal hWnd As Long, ByVal lpBuffer As String, ByVal cbBuffer As Long) As Long
Private Declare Function GetInBufferCount Lib "Lantry.ocx" (ByVal hWnd As Long) As Long
Private comm As Long
#End If

Private sheet As Worksheet
Private nextLook As Date
Private stopping As Boolean

Public Sub StartLogging()
    Dim reason As String
    If comm <> 0 Then Exit Sub
    stopping = False
    Set sheet = ActiveSheet
    reason = String$(128, vbNullChar) ' which SetPortOpen fills
    comm = CreateCommObject(0)
    SetCommPort comm, sheet.Range("E1").Value
    SetSettings comm, sheet.Range("E2").Value
    SetInputTimeOut comm, 2000 ' ms, for the rest of a line that has begun
    If SetPortOpen(comm, 1, reason) = 0 Then
        MsgBox Left$(reason, InStr(reason, vbNullChar) - 1)
        StopLogging
        Exit Sub
    End If
    LookForLines
End Sub

' While LookForLines waits for a line, the object is not to be destroyed; then it stops by itself behind the line.
Public Sub StopLogging()
    stopping = True
    On Error Resume Next ' there may be no look to take back
    Application.OnTime nextLook, "LookForLines", , False
    If DestroyCommObject(comm) <> 0 Then comm = 0
End Sub

' Excel calls it each second, and is free for its user between.
Public Sub LookForLines()
    Dim reading As String, length As Long
    If comm = 0 Then Exit Sub
    Do While GetInBufferCount(comm) > 0 And Not stopping
        reading = String$(128, vbNullChar)
        length = GetLineInput(comm, reading, 128)
        If length > 0 Then AddRow Left$(reading, length)
    Loop
    If stopping Then
        StopLogging
        Exit Sub
    End If
    nextLook = Now + TimeSerial(0, 0, 1)
    Application.OnTime nextLook, "LookForLines"
End Sub

Private Sub AddRow(reading As String)
    With sheet.Cells(sheet.Rows.Count, 1).End(xlUp).Offset(1)
        .Value = Now
        .NumberFormat = "yyyy-mm-dd hh:mm:ss"
        ' A number, or a text as it is: one that begins with "=" shall be no formula.
        .Offset(, 1).Value = IIf(IsNumeric(reading), "", "'") & reading
    End With
End Sub
