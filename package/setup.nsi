; The installer. script/package gives VERSION, STAGE (the folder to install), LISTS (the copying and removing of its
; files, made from package/contents) and OUTPUT.
;
; Silent: /S, with /AllUsers or /CurrentUser, and last, without quotes, /D=FOLDER. Results: 0 done; 1 and 2 are
; NSIS' own, cancelled and broken off; ours are below, and INSTALL.md explains them.

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
!define IN_USE 3
!define NOT_REGISTERED 4
!define WRONG_USE 5
!define NO_RIGHTS 6
!define OTHERS_FILES 7
!define NOT_WRITTEN 8
!define NOT_REMOVED 9

; Browse appends its name. NSIS also has it stand for what it can't take: a root, a folder without its drive.
!define UNCHOSEN ".\${NAME}"

Name "${NAME} ${VERSION}"
OutFile "${OUTPUT}"
InstallDir "${UNCHOSEN}"
VIProductVersion "${VERSION}"
VIAddVersionKey ProductName "${NAME}"
VIAddVersionKey ProductVersion "${VERSION}"
VIAddVersionKey FileVersion "${VERSION}"
VIAddVersionKey FileDescription "${NAME} Setup"
VIAddVersionKey LegalCopyright "The Tarn Link Objects developers, MIT License"

Var Users      ; "machine" or "user", the words of tarnregister
Var Folder     ; from /D=, or empty
Var Unfinished ; 1 while files of ours are there and not all
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

; Each width by itself. Empty, or what the first complains of: Push tarnregister's words, Call, Pop.
Function ${UN}Register
  Exch $1
  StrCpy $2 ""
  !insertmacro RegisterWidth x86
  ${If} ${RunningX64}
    !insertmacro RegisterWidth x64
  ${EndIf}
  StrCpy $1 $2
  Exch $1
FunctionEnd

; A path in full, in long names, with no backslash at its end but a root's: Push, Call, Pop. What does not exist
; keeps its short names.
Function ${UN}NormalPath
  Exch $0
  Push $1
  Push $2
  System::Call 'kernel32::GetFullPathNameW(w r0, i ${NSIS_MAX_STRLEN}, w .r1, p 0) i .r2'
  ${If} $2 <> 0
    StrCpy $0 $1
  ${EndIf}
  System::Call 'kernel32::GetLongPathNameW(w r0, w .r1, i ${NSIS_MAX_STRLEN}) i .r2'
  ${If} $2 <> 0
    StrCpy $0 $1
  ${EndIf}
  StrCpy $1 $0 1 -1
  StrLen $2 $0
  ${If} $1 == "\"
  ${AndIf} $2 > 3
    StrCpy $0 $0 -1
  ${EndIf}
  Pop $2
  Pop $1
  Exch $0
FunctionEnd

; Whether the system's list of programs has this folder for those users: Call, Pop.
Function ${UN}IsListed
  ReadRegStr $0 SHCTX "${UNINSTALL_KEY}" InstallLocation
  Push $0
  Call ${UN}NormalPath
  Pop $0
  Push $INSTDIR
  Call ${UN}NormalPath
  Pop $1
  ${If} $0 == $1
    Push 1
  ${Else}
    Push 0
  ${EndIf}
FunctionEnd

; Removes what is ours; what of it is not there is no failure.
Function ${UN}TakeAway
  Push "/$Users /remove"
  Call ${UN}Register
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
  Call ${UN}IsListed
  Pop $0
  ${If} $0 = 1
    DeleteRegKey SHCTX "${UNINSTALL_KEY}"
    ; The machine has this one before its first program, a user has not.
    ${If} $Users == "user"
      DeleteRegKey /ifempty SHCTX "${PROGRAMS_KEY}"
    ${EndIf}
  ${EndIf}
  Delete "$INSTDIR\uninstall.exe"
  RMDir $INSTDIR
FunctionEnd

!macroend

!macro RegisterWidth ARCH
  nsExec::ExecToStack '"$INSTDIR\bin\${ARCH}\tarnregister.exe" $1'
  Pop $0
  Pop $3
  ${If} $0 != 0
  ${AndIf} $2 == ""
    StrCpy $2 "$3 ($0)"
  ${EndIf}
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
  Call ReadFolder
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
  ${If} $2 = 0
    Call KeepToUser
  ${EndIf}
  Call ChooseFolder
FunctionEnd

; The folder of /D=, which is cut off from what NSIS shows of the command line.
Function ReadFolder
  System::Call 'kernel32::GetCommandLineW() w .r0'
  ClearErrors
  ${GetOptions} $0 "/D=" $1
  ${If} ${Errors}
    Return
  ${EndIf}
  StrCpy $Folder $INSTDIR
  Push $Folder
  Call NormalPath
  Pop $0
  System::Call 'shlwapi::PathIsRootW(w r0) i .r1'
  ${If} $Folder == "${UNCHOSEN}"
  ${OrIf} $1 <> 0
    Push "/D= takes a folder with its drive, below the root."
    Push ${WRONG_USE}
    Call Fail
  ${EndIf}
FunctionEnd

; An installation for the user alone, with none for the machine, is not to get a second one beside it unasked.
Function KeepToUser
  Call SetUsers
  ReadRegStr $0 HKLM "${UNINSTALL_KEY}" InstallLocation
  ReadRegStr $1 HKCU "${UNINSTALL_KEY}" InstallLocation
  ${If} $0 == ""
  ${AndIf} $1 != ""
    StrCpy $Users "user"
  ${EndIf}
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

; Where tarnregister lies, the rest is ours too.
!define OURS "bin\x86\tarnregister.exe"

; An older version may have files that this one lacks, so that it goes by its own uninstaller. Push its folder.
Function RemoveOlder
  Pop $3
  ${IfNot} ${FileExists} "$3\uninstall.exe"
  ${OrIfNot} ${FileExists} "$3\${OURS}"
    Return
  ${EndIf}
  ClearErrors
  ExecWait '"$3\uninstall.exe" /S _?=$3' $0
  ${If} ${Errors}
    StrCpy $0 "uninstall.exe does not start"
  ${EndIf}
  ${If} $0 != 0
    Push "$3 holds an installation that could not be removed ($0). Close the programs that use it, then try again."
    Push ${NOT_REMOVED}
    Call Fail
  ${EndIf}
  ; Running, it could not take itself away.
  Delete "$3\uninstall.exe"
  RMDir $3
FunctionEnd

!macro NoteFile PLACE
  ${If} $4 == ""
  ${AndIf} ${FileExists} "$INSTDIR\${PLACE}"
    StrCpy $4 "$INSTDIR\${PLACE}"
  ${EndIf}
!macroend

; Files of others would be written over, and be deleted with ours later.
Function RefuseOthersFiles
  ${If} ${FileExists} "$INSTDIR\${OURS}"
    Return
  ${EndIf}
  StrCpy $4 ""
  !insertmacro NoteFile "uninstall.exe"
  !insertmacro NoteFiles
  ${If} $4 != ""
    Push "$4 is there and belongs to no installation of ${NAME}. Choose another folder."
    Push ${OTHERS_FILES}
    Call Fail
  ${EndIf}
FunctionEnd

!macro NoteErrors FOLDER
  ${If} ${Errors}
  ${AndIf} $4 == ""
    StrCpy $4 "${FOLDER}"
  ${EndIf}
!macroend

; What can't be finished leaves nothing behind. The stack is as Fail wants it.
Function TakeAwayAndFail
  StrCpy $Unfinished 0
  Call TakeAway
  Call Fail
FunctionEnd

; NSIS breaks off by itself when the disk is full, and comes here after each failure.
Function .onInstFailed
  ${If} $Unfinished = 1
    Call TakeAway
  ${EndIf}
FunctionEnd

Section
  Push $INSTDIR
  Call NormalPath
  Pop $INSTDIR
  Call RefuseModulesInUse
  Call RefuseOthersFiles
  ReadRegStr $4 SHCTX "${UNINSTALL_KEY}" InstallLocation
  ${If} $4 != ""
    Push $4
    Call RemoveOlder
  ${EndIf}
  Push $INSTDIR
  Call RemoveOlder
  ; First what takes away again, should the rest fail.
  StrCpy $4 ""
  StrCpy $Unfinished 1
  ClearErrors
  SetOutPath $INSTDIR
  WriteUninstaller "$INSTDIR\uninstall.exe"
  !insertmacro NoteErrors "$INSTDIR"
  Call WriteKeys
  ClearErrors
  SetOverwrite try
  !insertmacro CopyFiles
  ${If} $4 != ""
    Push "Not all files could be written to $4."
    Push ${NOT_WRITTEN}
    Call TakeAwayAndFail
  ${EndIf}
  SetOutPath $INSTDIR
  Call WriteShortcuts
  Push "/$Users"
  Call Register
  Pop $4
  ${If} $4 != ""
    Push "The control could not be registered: $4"
    Push ${NOT_REGISTERED}
    Call TakeAwayAndFail
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
  Call un.IsListed
  Pop $0
  ${If} $0 = 0
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
  Call un.TakeAway
SectionEnd
