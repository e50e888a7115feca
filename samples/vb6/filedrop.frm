VERSION 5.00
Object = "{f570bc1d-a37d-4f71-9b29-baf9feb286ae}#1.0#0"; "Lantry.ocx"
Begin VB.Form FileDrop
   Caption         =   "File drop"
   ClientHeight    =   4000
   ClientWidth     =   6000
   LinkTopic       =   "FileDrop"
   ScaleHeight     =   4000
   ScaleWidth      =   6000
   StartUpPosition =   2  'CenterScreen
   Begin TarnLink.TarnComm Comm1
      Height          =   500
      Left            =   0
      TabIndex        =   1
      Top             =   0
      Width           =   500
   End
   Begin VB.ListBox Files
      Height          =   4000
      Left            =   0
      TabIndex        =   0
      Top             =   0
      Width           =   6000
   End
End
Attribute VB_Name = "FileDrop"
Attribute VB_GlobalNameSpace = False
Attribute VB_Creatable = False
Attribute VB_PredeclaredId = True
Attribute VB_Exposed = False
' A file drop: answers calls, and keeps the files that callers send by ZModem. The command line is the name of the modem,
' as Windows calls it; the files go into the folder "incoming" beside the program.
Option Explicit

Private folder As String
Private current As String ' name of the file under way

Private Sub Form_Load()
    folder = App.Path & "\incoming"
    If Dir$(folder, vbDirectory) = "" Then MkDir folder
    Comm1.CommPort = Command$
    If Comm1.GetPortType(Command$) <> PortType_Modem Then
        MsgBox "Which modem?"
        Exit Sub
    End If
    Comm1.XferPath = folder
    Comm1.XferProtocol = Protocol_ZModem
    Comm1.XferStatusDialog = Dialog_Hidden
    Comm1.AutoReceive = True
    Comm1.AutoZModem = True ' a transfer that the caller starts is received by itself
    Comm1.AnswerCalls = True ' raises no error: what is read back tells
    If Not Comm1.AnswerCalls Then MsgBox Command$ & " does not answer calls."
End Sub

Private Sub Comm1_NewConnection()
    Files.AddItem Now & " A caller is there."
End Sub

' The last moment in which the name can be changed; the file isn't made yet.
Private Sub Comm1_PrepareFile()
    current = PlainName(Comm1.XferSourceFilename)
    Comm1.XferDestFilename = current
End Sub

Private Sub Comm1_FinishFile()
    Files.AddItem Now & " " & current & ": " & Comm1.XferTransferred & " bytes"
End Sub

Private Sub Comm1_AbortFile()
    Files.AddItem Now & " " & current & " is not whole."
End Sub

' The caller chooses the name that it offers, and a hostile one may point anywhere: "..\start.bat", "C:\autoexec.bat",
' "nul". Of the offered name only the last part is used, of that only plain characters, and behind a number: no device
' has such a name, and no file that is there already is written over.
Private Function PlainName(offered As String) As String
    Dim last As String, letter As String, place As Long, number As Long
    For place = 1 To Len(offered)
        letter = Mid$(offered, place, 1)
        If InStr("/\:", letter) > 0 Then
            last = ""
        ElseIf letter Like "[A-Za-z0-9._-]" Then
            last = last & letter
        Else
            last = last & "_"
        End If
    Next
    Do
        number = number + 1
        PlainName = Format$(number, "0000") & "-" & Left$(last, 60)
    Loop Until Dir$(folder & "\" & PlainName) = ""
End Function
