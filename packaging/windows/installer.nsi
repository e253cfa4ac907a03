; The Windows installer, for this user alone and without administrator rights:
;   makensis -DVERSION=1.2.3 -DPAYLOAD=folder -DOUTPUT=setup.exe [-DICON=tme.ico] [-DPICTURE=side.bmp] installer.nsi
; All paths are absolute. PAYLOAD holds tme.exe and all that belongs to it. PICTURE (164 x 314) stands beside the last page.
;
; /S installs and uninstalls without a window; /D=folder, last and without quotes, says where to. Ends with 0 when done
; and with 2 when nothing was changed, because the editor runs and has questions that nobody answered.

Target amd64-unicode
Unicode true
ManifestDPIAware true
ManifestSupportedOS Win10
SetCompressor /SOLID lzma
RequestExecutionLevel user

!include MUI2.nsh
!include LogicLib.nsh
!include FileFunc.nsh
!include WinMessages.nsh

!define NAME "Tamarind Editor"
!define PUBLISHER "The Tamarind Editor developers"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\TamarindEditor"
!define DOCUMENT "TamarindEditor.Document"
!define CAPABILITIES "Software\Tamarind Editor\Capabilities"
; Where the options keep the context-menu command of all files.
!define CONTEXT_MENU "Software\Classes\*\shell\Tamarind Editor"

Name "${NAME}"
OutFile "${OUTPUT}"
InstallDir "$LOCALAPPDATA\Programs\${NAME}"
InstallDirRegKey HKCU "${UNINSTALL_KEY}" InstallLocation
BrandingText "${NAME} ${VERSION}"

VIProductVersion "${VERSION}.0"
VIAddVersionKey ProductName "${NAME}"
VIAddVersionKey ProductVersion "${VERSION}"
VIAddVersionKey FileVersion "${VERSION}"
VIAddVersionKey FileDescription "${NAME} Setup"
VIAddVersionKey CompanyName "${PUBLISHER}"
VIAddVersionKey LegalCopyright "GPL-3.0-or-later"

!ifdef ICON
  !define MUI_ICON "${ICON}"
  !define MUI_UNICON "${ICON}"
!endif
!ifdef PICTURE
  !define MUI_WELCOMEFINISHPAGE_BITMAP "${PICTURE}"
!endif
!define MUI_ABORTWARNING
!define MUI_COMPONENTSPAGE_SMALLDESC
!define MUI_FINISHPAGE_RUN "$INSTDIR\tme.exe"
!insertmacro MUI_PAGE_COMPONENTS
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE English

; The uninstaller takes away these files and folders, innermost first, and no others.
!tempfile LIST
!system `"./uninstall_list" "${PAYLOAD}" > "${LIST}"` = 0

; Sets $0 to 1 while a program runs, since nobody can write to its file then.
!macro LOOK_WHETHER_IT_RUNS program
  ${If} ${FileExists} "$INSTDIR\${program}"
    ClearErrors
    FileOpen $1 "$INSTDIR\${program}" a
    ${If} ${Errors}
      StrCpy $0 1
    ${Else}
      FileClose $1
    ${EndIf}
  ${EndIf}
!macroend

; Leaves the section when a program in $INSTDIR runs and does not end. Never ends it by force: it may hold what was
; not saved.
!macro CLOSE_PROGRAM un
; $0: whether one runs, 0 or 1.
Function ${un}LookWhetherItRuns
  StrCpy $0 0
  !insertmacro LOOK_WHETHER_IT_RUNS tme.exe
  !insertmacro LOOK_WHETHER_IT_RUNS tmec.exe
FunctionEnd

; Sends a close message to the main windows of the program in $INSTDIR.
Function ${un}AskItToClose
  StrCpy $1 0
  ${Do}
    FindWindow $1 "" "" 0 $1
    ${If} $1 = 0
      ${ExitDo}
    ${EndIf}
    System::Call 'user32::IsWindowVisible(p r1) i .r2'
    System::Call 'user32::GetWindow(p r1, i 4) p .r3' ; its owner
    ${If} $2 <> 0
    ${AndIf} $3 = 0
      StrCpy $5 ""
      System::Call 'user32::GetWindowThreadProcessId(p r1, *i .r2)'
      System::Call 'kernel32::OpenProcess(i 0x1000, i 0, i r2) p .r3' ; to ask for its name only
      System::Call 'kernel32::QueryFullProcessImageNameW(p r3, i 0, w .r5, *i ${NSIS_MAX_STRLEN} r4)'
      System::Call 'kernel32::CloseHandle(p r3)'
      ${If} $5 == "$INSTDIR\tme.exe"
        System::Call 'user32::PostMessageW(p r1, i ${WM_CLOSE}, p 0, p 0)'
      ${EndIf}
    ${EndIf}
  ${Loop}
FunctionEnd

Function ${un}CloseProgram
  Call ${un}LookWhetherItRuns
  ${If} $0 = 0
    Return
  ${EndIf}
  MessageBox MB_OKCANCEL|MB_ICONINFORMATION "The ${NAME} is running and will be closed. It asks about changed documents." \
    /SD IDOK IDOK close
  Abort
close:
  Call ${un}AskItToClose
  ${For} $6 1 60
    Sleep 500
    Call ${un}LookWhetherItRuns
    ${If} $0 = 0
      Return
    ${EndIf}
  ${Next}
  MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "The ${NAME} or its tmec still runs. Answer its questions, then try again." \
    /SD IDCANCEL IDRETRY close
  SetErrorLevel 2
  Abort
FunctionEnd
!macroend
!insertmacro CLOSE_PROGRAM ""
!insertmacro CLOSE_PROGRAM "un."

Section "${NAME}" section_program
  SectionIn RO
  Call CloseProgram
  ; The version before takes away its files itself: it knows them.
  ReadRegStr $7 HKCU "${UNINSTALL_KEY}" InstallLocation
  ${If} $7 != ""
  ${AndIf} ${FileExists} "$7\Uninstall.exe"
    ExecWait '"$7\Uninstall.exe" /S /UPDATE _?=$7' $8
    ${If} $8 <> 0
      DetailPrint "The version before could not be removed"
      SetErrorLevel 2
      Abort
    ${EndIf}
    Delete "$7\Uninstall.exe"
  ${EndIf}

  SetOutPath $INSTDIR
  File /r "${PAYLOAD}/*"
  WriteUninstaller "$INSTDIR\Uninstall.exe"
  CreateShortcut "$SMPROGRAMS\${NAME}.lnk" "$INSTDIR\tme.exe"

  WriteRegStr HKCU "${UNINSTALL_KEY}" DisplayName "${NAME}"
  WriteRegStr HKCU "${UNINSTALL_KEY}" DisplayVersion "${VERSION}"
  WriteRegStr HKCU "${UNINSTALL_KEY}" DisplayIcon "$INSTDIR\tme.exe,0"
  WriteRegStr HKCU "${UNINSTALL_KEY}" Publisher "${PUBLISHER}"
  WriteRegStr HKCU "${UNINSTALL_KEY}" InstallLocation $INSTDIR
  WriteRegStr HKCU "${UNINSTALL_KEY}" UninstallString '"$INSTDIR\Uninstall.exe"'
  WriteRegStr HKCU "${UNINSTALL_KEY}" QuietUninstallString '"$INSTDIR\Uninstall.exe" /S'
  WriteRegDWORD HKCU "${UNINSTALL_KEY}" NoModify 1
  WriteRegDWORD HKCU "${UNINSTALL_KEY}" NoRepair 1
  ${GetSize} $INSTDIR /S=0K $0 $1 $2
  WriteRegDWORD HKCU "${UNINSTALL_KEY}" EstimatedSize $0
SectionEnd

!macro OFFER extension
  WriteRegStr HKCU "Software\Classes\${extension}\OpenWithProgids" "${DOCUMENT}" ""
  WriteRegStr HKCU "Software\Classes\Applications\tme.exe\SupportedTypes" "${extension}" ""
!macroend

; Adds the program to Open With. What a double-click opens stays as it is until the user chooses otherwise.
Section "Offer it under Open With" section_open_with
  ; The program takes the rest of its command line as the path, blanks included, and knows no quotation marks.
  WriteRegStr HKCU "Software\Classes\${DOCUMENT}" "" "${NAME} Document"
  WriteRegStr HKCU "Software\Classes\${DOCUMENT}\DefaultIcon" "" "$INSTDIR\tme.exe,0"
  WriteRegStr HKCU "Software\Classes\${DOCUMENT}\shell\open\command" "" '"$INSTDIR\tme.exe" %1'
  WriteRegStr HKCU "Software\Classes\Applications\tme.exe" FriendlyAppName "${NAME}"
  WriteRegStr HKCU "Software\Classes\Applications\tme.exe\shell\open\command" "" '"$INSTDIR\tme.exe" %1'
  !insertmacro OFFER .ini
  !insertmacro OFFER .reg
  !insertmacro OFFER .txt
  !insertmacro OFFER .rtf

  WriteRegStr HKCU "${CAPABILITIES}" ApplicationName "${NAME}"
  WriteRegStr HKCU "${CAPABILITIES}" ApplicationDescription "Edits INI, registry, text and rich-text files"
  WriteRegStr HKCU "${CAPABILITIES}" ApplicationIcon "$INSTDIR\tme.exe,0"
  ; Without .reg: "set as default for all" would keep a double-click from importing.
  WriteRegStr HKCU "${CAPABILITIES}\FileAssociations" .ini "${DOCUMENT}"
  WriteRegStr HKCU "${CAPABILITIES}\FileAssociations" .txt "${DOCUMENT}"
  WriteRegStr HKCU "${CAPABILITIES}\FileAssociations" .rtf "${DOCUMENT}"
  WriteRegStr HKCU "Software\RegisteredApplications" "${NAME}" "${CAPABILITIES}"
  ${RefreshShellIcons}
SectionEnd

!insertmacro MUI_FUNCTION_DESCRIPTION_BEGIN
  !insertmacro MUI_DESCRIPTION_TEXT ${section_program} "The editor, its entry in the Start menu, tmec for the console, and the \
    uninstaller."
  !insertmacro MUI_DESCRIPTION_TEXT ${section_open_with} "Offers the editor for .ini, .reg, .txt and .rtf files. \
    What a double-click opens stays as it is."
!insertmacro MUI_FUNCTION_DESCRIPTION_END

; An update keeps what was chosen before.
Function .onInit
  ReadRegStr $0 HKCU "${UNINSTALL_KEY}" DisplayVersion
  ReadRegStr $1 HKCU "${CAPABILITIES}" ApplicationName
  ${If} $0 != ""
  ${AndIf} $1 == ""
    SectionSetFlags ${section_open_with} 0
  ${EndIf}
FunctionEnd

!macro WITHDRAW extension
  DeleteRegValue HKCU "Software\Classes\${extension}\OpenWithProgids" "${DOCUMENT}"
  DeleteRegKey /ifempty HKCU "Software\Classes\${extension}\OpenWithProgids"
  DeleteRegKey /ifempty HKCU "Software\Classes\${extension}"
!macroend

!macro REMOVE_COMMAND root
  ReadRegStr $0 ${root} "${CONTEXT_MENU}\Command" ""
  ${If} $0 == "$INSTDIR\tme.exe %1"
    DeleteRegKey ${root} "${CONTEXT_MENU}"
  ${EndIf}
!macroend

; The hooks that the user switched on in the options, when it is this copy that they start.
Function un.RemoveHooks
  !insertmacro REMOVE_COMMAND HKCU
  !insertmacro REMOVE_COMMAND HKLM ; where an administrator's editor puts it
  ${If} ${FileExists} "$SENDTO\${NAME}.lnk"
    StrCpy $3 ""
    ; IShellLink, its IPersistFile::Load, and then IShellLink::GetPath
    System::Call "ole32::CoCreateInstance(g '{00021401-0000-0000-c000-000000000046}', p 0, i 1, \
      g '{000214f9-0000-0000-c000-000000000046}', *p .r1) i .r0"
    ${If} $0 = 0
      System::Call "$1->0(g '{0000010b-0000-0000-c000-000000000046}', *p .r2)"
      System::Call "$2->5(w '$SENDTO\${NAME}.lnk', i 0)"
      System::Call "$1->3(w .r3, i ${NSIS_MAX_STRLEN}, p 0, i 0)"
      System::Call "$2->2()"
      System::Call "$1->2()"
    ${EndIf}
    ${If} $3 == "$INSTDIR\tme.exe"
      Delete "$SENDTO\${NAME}.lnk"
    ${EndIf}
  ${EndIf}
FunctionEnd

; The user's settings, history and documents stay.
Section Uninstall
  Call un.CloseProgram
  !include "${LIST}"
  Delete "$SMPROGRAMS\${NAME}.lnk"

  !insertmacro WITHDRAW .ini
  !insertmacro WITHDRAW .reg
  !insertmacro WITHDRAW .txt
  !insertmacro WITHDRAW .rtf
  DeleteRegKey HKCU "Software\Classes\${DOCUMENT}"
  DeleteRegKey HKCU "Software\Classes\Applications\tme.exe"
  DeleteRegKey /ifempty HKCU "Software\Classes\Applications"
  DeleteRegValue HKCU "Software\RegisteredApplications" "${NAME}"
  DeleteRegKey HKCU "${CAPABILITIES}"
  DeleteRegKey /ifempty HKCU "Software\Tamarind Editor"
  DeleteRegKey HKCU "${UNINSTALL_KEY}"
  ${RefreshShellIcons}

  ; An update puts its own files here.
  ${GetParameters} $0
  ${GetOptions} $0 /UPDATE $1
  ${If} ${Errors}
    Call un.RemoveHooks
    Delete "$INSTDIR\Uninstall.exe"
    RMDir "$INSTDIR"
    RMDir "$LOCALAPPDATA\Programs" ; when nothing else is there
  ${EndIf}
SectionEnd
!delfile "${LIST}"
