; The installer. script/package gives VERSION, STAGE (the folder to install), LISTS (the copying and removing of its
; files, made from package/contents) and OUTPUT.
;
; Silent: /S, with /AllUsers or /CurrentUser, and last, without quotes, /D=FOLDER. Results: 0 done, 1 cancelled,
; 2 no rights, 3 a program uses the module, 4 not registered, 5 a wrong choice of users.

Unicode true
SetCompressor /SOLID lzma
ManifestDPIAware true
ManifestSupportedOS all
RequestExecutionLevel highest

!include LogicLib.nsh
!include FileFunc.nsh
!include MUI2.nsh
!include nsDialogs.nsh
!include x64.nsh
!include "${LISTS}"

!define NAME "Tarn Link Objects"
!define PROGRAMS_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall"
!define UNINSTALL_KEY "${PROGRAMS_KEY}\TarnLinkObjects"
!define NO_RIGHTS 2
!define IN_USE 3
!define NOT_REGISTERED 4
!define WRONG_USE 5

Name "${NAME} ${VERSION}"
OutFile "${OUTPUT}"
VIProductVersion "${VERSION}"
VIAddVersionKey ProductName "${NAME}"
VIAddVersionKey ProductVersion "${VERSION}"
VIAddVersionKey FileVersion "${VERSION}"
VIAddVersionKey FileDescription "${NAME} Setup"
VIAddVersionKey LegalCopyright "The Tarn Link Objects developers, MIT License"

Var Users      ; "machine" or "user", the words of tarnregister
Var Folder     ; from /D=, or empty
Var ForMachine ; the choice's buttons
Var ForUser

!define MUI_ABORTWARNING
!insertmacro MUI_PAGE_LICENSE "${STAGE}/LICENSE"
Page custom ShowUsers TakeUsers
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"

; The installer and the uninstaller have the same functions, the latter's under names of their own.
!macro CommonFunctions UN

; A silent run has no box: its words go to where its caller hears them. The words are on the stack, below the result.
Function ${UN}Fail
  Exch $1
  Exch
  Exch $0
  SetErrorLevel $1
  ${If} ${Silent}
    System::Call 'kernel32::AttachConsole(i -1)'
    System::Call 'kernel32::GetStdHandle(i -12) p .r2'
    ${If} $2 <> 0
      FileWrite $2 "$0$\r$\n"
    ${EndIf}
  ${Else}
    MessageBox MB_ICONSTOP|MB_OK "$0"
  ${EndIf}
  Quit
FunctionEnd

; A module that a program has loaded can't be opened for writing.
Function ${UN}RefuseModuleInUse
  Pop $1
  again:
  ${IfNot} ${FileExists} $1
    Return
  ${EndIf}
  ClearErrors
  FileOpen $0 $1 a
  ${IfNot} ${Errors}
    FileClose $0
    Return
  ${EndIf}
  StrCpy $2 "$1 is in use. Close the programs that use it, then try again."
  ${IfNot} ${Silent}
    MessageBox MB_ICONEXCLAMATION|MB_RETRYCANCEL "$2" IDRETRY again
    SetErrorLevel ${IN_USE}
    Quit
  ${EndIf}
  Push $2
  Push ${IN_USE}
  Call ${UN}Fail
FunctionEnd

Function ${UN}RefuseModulesInUse
  Push "$INSTDIR\bin\x86\Lantry.ocx"
  Call ${UN}RefuseModuleInUse
  Push "$INSTDIR\bin\x64\Lantry.ocx"
  Call ${UN}RefuseModuleInUse
FunctionEnd

Function ${UN}SetUsers
  ${If} $Users == "machine"
    SetShellVarContext all
  ${Else}
    SetShellVarContext current
  ${EndIf}
  ${If} ${RunningX64}
    SetRegView 64
  ${EndIf}
FunctionEnd

; Empty, or what tarnregister says: Push its words, Call, Pop.
Function ${UN}Register
  Exch $1
  nsExec::ExecToStack '"$INSTDIR\bin\x86\tarnregister.exe" $1'
  Pop $0
  Pop $2
  ${If} $0 == 0
  ${AndIf} ${RunningX64}
    nsExec::ExecToStack '"$INSTDIR\bin\x64\tarnregister.exe" $1'
    Pop $0
    Pop $2
  ${EndIf}
  ${If} $0 == 0
    StrCpy $1 ""
  ${Else}
    StrCpy $1 "$2 ($0)"
  ${EndIf}
  Exch $1
FunctionEnd

!macroend

!insertmacro CommonFunctions ""
!insertmacro CommonFunctions "un."

; --- installing ---

Function HasRights
  UserInfo::GetAccountType
  Pop $0
  ${If} $0 == "Admin"
    Push 1
  ${Else}
    Push 0
  ${EndIf}
FunctionEnd

!macro ReadOption OPTION RESULT
  ClearErrors
  ${GetParameters} $0
  ${GetOptions} $0 "${OPTION}" $1
  StrCpy ${RESULT} 0
  ${IfNot} ${Errors}
    StrCpy ${RESULT} 1
  ${EndIf}
!macroend

Function .onInit
  StrCpy $Folder $INSTDIR
  !insertmacro ReadOption "/AllUsers" $2
  !insertmacro ReadOption "/CurrentUser" $3
  Call HasRights
  Pop $4
  ${If} $2 = 1
  ${AndIf} $3 = 1
    Push "/AllUsers and /CurrentUser exclude each other."
    Push ${WRONG_USE}
    Call Fail
  ${EndIf}
  ${If} $2 = 1
  ${AndIf} $4 = 0
    Push "/AllUsers needs an administrator's rights."
    Push ${NO_RIGHTS}
    Call Fail
  ${EndIf}
  StrCpy $Users "user"
  ${If} $3 = 0
  ${AndIf} $4 = 1
    StrCpy $Users "machine"
  ${EndIf}
  Call ChooseFolder
FunctionEnd

; The one that was asked for; the one where it is already; the usual one.
Function ChooseFolder
  Call SetUsers
  ${If} $Folder != ""
    StrCpy $INSTDIR $Folder
    Return
  ${EndIf}
  ReadRegStr $INSTDIR SHCTX "${UNINSTALL_KEY}" InstallLocation
  ${If} $INSTDIR != ""
    Return
  ${EndIf}
  ${If} $Users == "user"
    StrCpy $INSTDIR "$LOCALAPPDATA\Programs\${NAME}"
  ${ElseIf} ${RunningX64}
    StrCpy $INSTDIR "$PROGRAMFILES64\${NAME}"
  ${Else}
    StrCpy $INSTDIR "$PROGRAMFILES32\${NAME}"
  ${EndIf}
FunctionEnd

Function ShowUsers
  !insertmacro MUI_HEADER_TEXT "Who is to use it" "Choose for whom the control is registered."
  nsDialogs::Create 1018
  Pop $0
  ${NSD_CreateRadioButton} 0 10u 100% 12u "&All users of this computer (an administrator's rights are needed)"
  Pop $ForMachine
  ${NSD_CreateRadioButton} 0 28u 100% 12u "&You alone"
  Pop $ForUser
  Call HasRights
  Pop $0
  EnableWindow $ForMachine $0
  ${If} $Users == "machine"
    ${NSD_Check} $ForMachine
  ${Else}
    ${NSD_Check} $ForUser
  ${EndIf}
  nsDialogs::Show
FunctionEnd

Function TakeUsers
  ${NSD_GetState} $ForMachine $0
  StrCpy $Users "user"
  ${If} $0 = ${BST_CHECKED}
    StrCpy $Users "machine"
  ${EndIf}
  Call ChooseFolder
FunctionEnd

; An older version may have files that this one lacks, so that it goes by its own uninstaller. Push its folder.
Function RemoveOlder
  Pop $3
  ${IfNot} ${FileExists} "$3\uninstall.exe"
    Return
  ${EndIf}
  ExecWait '"$3\uninstall.exe" /S _?=$3' $0
  ${If} $0 <> 0
    Push "$3 holds an installation that could not be removed ($0). Close the programs that use it, then try again."
    Push $0
    Call Fail
  ${EndIf}
  ; Running, it could not take itself away.
  Delete "$3\uninstall.exe"
  RMDir $3
FunctionEnd

Section
  Call RefuseModulesInUse
  ReadRegStr $4 SHCTX "${UNINSTALL_KEY}" InstallLocation
  ${If} $4 != ""
    Push $4
    Call RemoveOlder
  ${EndIf}
  Push $INSTDIR
  Call RemoveOlder
  SetOverwrite on
  !insertmacro CopyFiles
  SetOutPath $INSTDIR
  WriteUninstaller "$INSTDIR\uninstall.exe"
  Call WriteKeys
  Call WriteShortcuts
  Push "/$Users"
  Call Register
  Pop $4
  ${If} $4 != ""
    ExecWait '"$INSTDIR\uninstall.exe" /S _?=$INSTDIR'
    SetOutPath $TEMP
    Delete "$INSTDIR\uninstall.exe"
    RMDir $INSTDIR
    Push "The control could not be registered: $4"
    Push ${NOT_REGISTERED}
    Call Fail
  ${EndIf}
SectionEnd

Function WriteKeys
  WriteRegStr SHCTX "${UNINSTALL_KEY}" DisplayName "${NAME}"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" DisplayVersion "${VERSION}"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" Publisher "The Tarn Link Objects developers"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" InstallLocation $INSTDIR
  WriteRegStr SHCTX "${UNINSTALL_KEY}" UninstallString '"$INSTDIR\uninstall.exe"'
  WriteRegStr SHCTX "${UNINSTALL_KEY}" QuietUninstallString '"$INSTDIR\uninstall.exe" /S'
  WriteRegDWORD SHCTX "${UNINSTALL_KEY}" EstimatedSize ${KILOBYTES}
  WriteRegDWORD SHCTX "${UNINSTALL_KEY}" NoModify 1
  WriteRegDWORD SHCTX "${UNINSTALL_KEY}" NoRepair 1
FunctionEnd

Function WriteShortcuts
  CreateDirectory "$SMPROGRAMS\${NAME}"
  ${If} ${FileExists} "$INSTDIR\html\index.html"
    CreateShortcut "$SMPROGRAMS\${NAME}\Documentation.lnk" "$INSTDIR\html\index.html"
  ${Else}
    CreateShortcut "$SMPROGRAMS\${NAME}\Documentation.lnk" "$INSTDIR\docs"
  ${EndIf}
  CreateShortcut "$SMPROGRAMS\${NAME}\Samples.lnk" "$INSTDIR\samples"
  CreateShortcut "$SMPROGRAMS\${NAME}\Remove ${NAME}.lnk" "$INSTDIR\uninstall.exe"
FunctionEnd

; --- removing ---

; For whom it was installed stands where the system lists its programs.
Function un.onInit
  StrCpy $Users "machine"
  Call un.SetUsers
  ReadRegStr $0 SHCTX "${UNINSTALL_KEY}" InstallLocation
  ${If} $0 != $INSTDIR
    StrCpy $Users "user"
    Call un.SetUsers
    Return
  ${EndIf}
  UserInfo::GetAccountType
  Pop $0
  ${If} $0 != "Admin"
    Push "${NAME} was installed for all users: removing it needs an administrator's rights."
    Push ${NO_RIGHTS}
    Call un.Fail
  ${EndIf}
FunctionEnd

Section "un.Remove"
  Call un.RefuseModulesInUse
  Push "/$Users /remove"
  Call un.Register
  Pop $0
  ${If} $0 != ""
    DetailPrint $0
  ${EndIf}
  SetOutPath $TEMP
  !insertmacro RemoveFiles
  Delete "$SMPROGRAMS\${NAME}\Documentation.lnk"
  Delete "$SMPROGRAMS\${NAME}\Samples.lnk"
  Delete "$SMPROGRAMS\${NAME}\Remove ${NAME}.lnk"
  RMDir "$SMPROGRAMS\${NAME}"
  ReadRegStr $0 SHCTX "${UNINSTALL_KEY}" InstallLocation
  ${If} $0 == $INSTDIR
    DeleteRegKey SHCTX "${UNINSTALL_KEY}"
    DeleteRegKey /ifempty SHCTX "${PROGRAMS_KEY}"
  ${EndIf}
  Delete "$INSTDIR\uninstall.exe"
  RMDir $INSTDIR
SectionEnd
