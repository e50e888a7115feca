VERSION 5.00
Object = "{f570bc1d-a37d-4f71-9b29-baf9feb286ae}#1.0#0"; "Lantry.ocx"
Begin VB.Form Terminal
   Caption         =   "Terminal"
   ClientHeight    =   6000
   ClientWidth     =   9000
   LinkTopic       =   "Terminal"
   ScaleHeight     =   6000
   ScaleWidth      =   9000
   StartUpPosition =   2  'CenterScreen
   Begin TarnLink.TarnComm Comm1
      Height          =   6000
      Left            =   0
      TabIndex        =   0
      Top             =   0
      Width           =   9000
   End
End
Attribute VB_Name = "Terminal"
Attribute VB_GlobalNameSpace = False
Attribute VB_Creatable = False
Attribute VB_PredeclaredId = True
Attribute VB_Exposed = False
' A terminal: the control does all of it, on a form that is as large as it wants to be. The program's command line is the
' port, as in: terminal.exe COM1
Option Explicit

Private Sub Form_Load()
    Comm1.CommPort = Command$
    Comm1.Settings = "9600,n,8,1"
    Comm1.Emulation = Emulation_VT100
    Comm1.AutoSend = True
    Comm1.AutoReceive = True
    Comm1.ToolbarVisible = True
    Comm1.StatusbarVisible = True ' shows why a port does not open
    Comm1.PortOpen = True
End Sub

Private Sub Form_Resize()
    If WindowState <> vbMinimized Then Comm1.Move 0, 0, ScaleWidth, ScaleHeight
End Sub

' A wait comes to its end first, and so does a transfer of the toolbar, which nobody waits for.
Private Sub Form_QueryUnload(Cancel As Integer, UnloadMode As Integer)
    If Not Comm1.Busy And Comm1.XferStatus <= TransferStatus_Success Then Exit Sub
    Comm1.AbortTransfer = True
    Comm1.ShutDown = True
    Cancel = True
End Sub
