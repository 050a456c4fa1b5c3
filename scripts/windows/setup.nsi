; The set-up for Windows: per user, without administrator rights. scripts/package-windows calls makensis with
;   VERSION, SOURCE (what is installed), LISTS (folder with the generated install.nsh and uninstall.nsh), ICON,
;   PICTURE, OUTPUT
;
; Silent: handregler-tool-...-setup.exe /S [/PROGRAMM=veska|arvelo|beide] [/D=folder, last and without quotes]
; It ends with 2 when the folder holds a copied program with data, with 3 when the program is running.
;
; The user's data live elsewhere (program/data_folder.h): installiert.txt tells the program so. Uninstalling removes
; the files that were installed and nothing else; an update uninstalls the older version first.

Unicode true
Target amd64-unicode
SetCompressor /SOLID lzma
SetCompressorDictSize 64 ; the two programs are nearly the same
RequestExecutionLevel user
ManifestDPIAware true
ManifestSupportedOS Win10

!include MUI2.nsh
!include LogicLib.nsh
!include FileFunc.nsh
!include Sections.nsh

!define NAME "Handregler-Tool"
!define KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\handregler-tool"
!define UNINSTALLER "$INSTDIR\Deinstallieren.exe"
!define OLDEST_BUILD 17763 ; Windows 10, version 1809

Name "${NAME}"
BrandingText "${NAME} ${VERSION}"
OutFile "${OUTPUT}"
InstallDir "$LOCALAPPDATA\Programs\handregler-tool"
InstallDirRegKey HKCU "${KEY}" "InstallLocation"

VIProductVersion "${VERSION}.0"
VIAddVersionKey /LANG=1031 "ProductName" "${NAME}"
VIAddVersionKey /LANG=1031 "FileDescription" "${NAME} einrichten"
VIAddVersionKey /LANG=1031 "FileVersion" "${VERSION}"
VIAddVersionKey /LANG=1031 "ProductVersion" "${VERSION}"
VIAddVersionKey /LANG=1031 "LegalCopyright" "MIT License"

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_WELCOMEFINISHPAGE_BITMAP "${PICTURE}"
!define MUI_UNWELCOMEFINISHPAGE_BITMAP "${PICTURE}"
!define MUI_ABORTWARNING
!define MUI_COMPONENTSPAGE_SMALLDESC
!define MUI_WELCOMEPAGE_TEXT "Das Programm liest, ändert und sichert, was ein Funk-Handregler am LocoNet gespeichert hat.$\r$\n$\r$\n\
Es wird nur für Sie eingerichtet; Administratorrechte sind nicht nötig. Ihre Daten bleiben bei einem Update und beim Deinstallieren erhalten."
!insertmacro MUI_PAGE_WELCOME
!define MUI_PAGE_CUSTOMFUNCTION_LEAVE CheckChoice
!insertmacro MUI_PAGE_COMPONENTS
!define MUI_PAGE_CUSTOMFUNCTION_LEAVE CheckFolder
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!define MUI_FINISHPAGE_RUN
!define MUI_FINISHPAGE_RUN_TEXT "Programm starten"
!define MUI_FINISHPAGE_RUN_FUNCTION StartProgram
!insertmacro MUI_PAGE_FINISH

!define MUI_UNCONFIRMPAGE_TEXT_TOP "Entfernt wird nur das Programm. Ihre Daten (Sicherungen, eigene Symbole, Einstellungen) bleiben im Ordner$\r$\n$LOCALAPPDATA\handregler-tool."
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES

!insertmacro MUI_LANGUAGE German

; A program that is running cannot be replaced or removed.
!macro RequireClosed name
  ${Do}
    ${IfNot} ${FileExists} "$INSTDIR\${name}"
      ${ExitDo}
    ${EndIf}
    ClearErrors
    FileOpen $0 "$INSTDIR\${name}" a
    ${IfNot} ${Errors}
      FileClose $0
      ${ExitDo}
    ${EndIf}
    ${If} ${Cmd} `MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "${name} läuft noch. Bitte beenden Sie das Programm." /SD IDCANCEL IDCANCEL`
      SetErrorLevel 3
      Quit
    ${EndIf}
  ${Loop}
!macroend

!macro RequireAllClosed
  !insertmacro RequireClosed veska.exe
  !insertmacro RequireClosed arvelo.exe
  !insertmacro RequireClosed handregler.exe
!macroend

!macro MenuEntries file title
  SetOutPath "$INSTDIR"
  File "${SOURCE}\${file}"
  SetOutPath "$DOCUMENTS" ; where the programs start, and so where they propose to save
  CreateDirectory "$SMPROGRAMS\${title}"
  CreateShortcut "$SMPROGRAMS\${title}\${title}.lnk" "$INSTDIR\${file}"
  CreateShortcut "$SMPROGRAMS\${title}\Benutzerhandbuch.lnk" "$INSTDIR\handbuch\Benutzerhandbuch.html"
!macroend

!macro RemoveMenuEntries title
  Delete "$SMPROGRAMS\${title}\${title}.lnk"
  Delete "$SMPROGRAMS\${title}\Benutzerhandbuch.lnk"
  RMDir "$SMPROGRAMS\${title}"
  Delete "$DESKTOP\${title}.lnk"
!macroend

Section "-files" SecFiles
  !insertmacro RequireAllClosed
  ${If} ${FileExists} "${UNINSTALLER}"
    ExecWait '"${UNINSTALLER}" /S _?=$INSTDIR'
  ${EndIf}
  !include "${LISTS}/install.nsh"
  SetOutPath "$INSTDIR"
  FileOpen $0 "$INSTDIR\installiert.txt" w
  FileWriteUTF16LE /BOM $0 "Das Set-up hat dieses Programm eingerichtet. Ihre Daten liegen deshalb in$\r$\n$LOCALAPPDATA\handregler-tool$\r$\n\
Ohne diese Datei hier liegen sie neben dem Programm.$\r$\n"
  FileClose $0
  WriteUninstaller "${UNINSTALLER}"
  WriteRegStr HKCU "${KEY}" "DisplayName" "${NAME}"
  WriteRegStr HKCU "${KEY}" "DisplayVersion" "${VERSION}"
  WriteRegStr HKCU "${KEY}" "DisplayIcon" "$INSTDIR\handregler.exe,0"
  WriteRegStr HKCU "${KEY}" "InstallLocation" "$INSTDIR"
  WriteRegStr HKCU "${KEY}" "UninstallString" '"${UNINSTALLER}"'
  WriteRegStr HKCU "${KEY}" "QuietUninstallString" '"${UNINSTALLER}" /S'
  WriteRegDWORD HKCU "${KEY}" "NoModify" 1
  WriteRegDWORD HKCU "${KEY}" "NoRepair" 1
SectionEnd

Section "VESKA II TOOL" SecVeska
  !insertmacro MenuEntries veska.exe "VESKA II TOOL"
SectionEnd

Section /o "Arvelo TOOL" SecArvelo
  !insertmacro MenuEntries arvelo.exe "Arvelo TOOL"
SectionEnd

Section "Verknüpfung auf dem Desktop" SecDesktop
  SetOutPath "$DOCUMENTS"
  ${If} ${FileExists} "$INSTDIR\veska.exe"
    CreateShortcut "$DESKTOP\VESKA II TOOL.lnk" "$INSTDIR\veska.exe"
  ${EndIf}
  ${If} ${FileExists} "$INSTDIR\arvelo.exe"
    CreateShortcut "$DESKTOP\Arvelo TOOL.lnk" "$INSTDIR\arvelo.exe"
  ${EndIf}
SectionEnd

Section "-size"
  ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
  IntFmt $0 "0x%08X" $0
  WriteRegDWORD HKCU "${KEY}" "EstimatedSize" $0
SectionEnd

!insertmacro MUI_FUNCTION_DESCRIPTION_BEGIN
  !insertmacro MUI_DESCRIPTION_TEXT ${SecVeska} "für den Handregler VESKA II"
  !insertmacro MUI_DESCRIPTION_TEXT ${SecArvelo} "für den Handregler Arvelo"
  !insertmacro MUI_DESCRIPTION_TEXT ${SecDesktop} "startet das Programm vom Desktop aus"
!insertmacro MUI_FUNCTION_DESCRIPTION_END

!macro Choose veska arvelo
  !insertmacro ${veska}Section ${SecVeska}
  !insertmacro ${arvelo}Section ${SecArvelo}
!macroend

Function .onInit
  ReadRegStr $0 HKLM "Software\Microsoft\Windows NT\CurrentVersion" "CurrentBuildNumber"
  ${If} $0 < ${OLDEST_BUILD}
    MessageBox MB_OK|MB_ICONSTOP "Das Programm braucht Windows 10, Version 1809, oder neuer." /SD IDOK
    Abort
  ${EndIf}
  ; What is installed is proposed again.
  ${If} ${FileExists} "$INSTDIR\arvelo.exe"
    !insertmacro SelectSection ${SecArvelo}
    ${IfNot} ${FileExists} "$INSTDIR\veska.exe"
      !insertmacro UnselectSection ${SecVeska}
    ${EndIf}
  ${EndIf}
  ${GetParameters} $0
  ClearErrors
  ${GetOptions} $0 "/PROGRAMM=" $1
  ${IfNot} ${Errors}
    ${Select} $1
      ${Case} "veska"
        !insertmacro Choose Select Unselect
      ${Case} "arvelo"
        !insertmacro Choose Unselect Select
      ${Case} "beide"
        !insertmacro Choose Select Select
    ${EndSelect}
  ${EndIf}
  ${If} ${Silent}
    Call CheckFolder
  ${EndIf}
FunctionEnd

Function CheckChoice
  ${IfNot} ${SectionIsSelected} ${SecVeska}
  ${AndIfNot} ${SectionIsSelected} ${SecArvelo}
    MessageBox MB_OK|MB_ICONINFORMATION "Bitte wählen Sie mindestens eines der beiden Programme."
    Abort
  ${EndIf}
FunctionEnd

; A copied program folder holds its user's own symbols: nothing is installed over it.
Function CheckFolder
  ${If} ${FileExists} "$INSTDIR\konf\*.*"
  ${AndIfNot} ${FileExists} "$INSTDIR\installiert.txt"
    MessageBox MB_OK|MB_ICONEXCLAMATION "In diesem Ordner liegt schon ein Programm mit eigenen Daten. Bitte wählen Sie einen anderen." /SD IDOK
    SetErrorLevel 2
    Abort
  ${EndIf}
FunctionEnd

Function StartProgram
  SetOutPath "$DOCUMENTS"
  ${If} ${SectionIsSelected} ${SecVeska}
    Exec '"$INSTDIR\veska.exe"'
  ${Else}
    Exec '"$INSTDIR\arvelo.exe"'
  ${EndIf}
FunctionEnd

Section "Uninstall"
  !insertmacro RequireAllClosed
  !insertmacro RemoveMenuEntries "VESKA II TOOL"
  !insertmacro RemoveMenuEntries "Arvelo TOOL"
  Delete "$INSTDIR\veska.exe"
  Delete "$INSTDIR\arvelo.exe"
  Delete "$INSTDIR\installiert.txt"
  SetOutPath "$TEMP" ; a folder that is in use cannot be removed
  !include "${LISTS}/uninstall.nsh"
  Delete "${UNINSTALLER}"
  RMDir "$INSTDIR"
  DeleteRegKey HKCU "${KEY}"
SectionEnd
