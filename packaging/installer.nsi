; The Windows installer: for one user, without administrator rights, below
; %LOCALAPPDATA%\Programs, since the program writes its log and working picture beside itself.
; scripts/package gives VERSION, OUTPUT, ICON, SIDE (the last page's picture) and FILES, the script
; it writes with the macros InstallFiles and RemoveFiles, file by file.
;
; Silent: orvane-setup.exe /S [/AUTOSTART] [/D=folder]; uninstall.exe /S. While the station runs
; nothing is changed; the installer's exit code is then 2.

Unicode true
Target amd64-unicode
SetCompressor /SOLID lzma
RequestExecutionLevel user
ManifestDPIAware true

!include MUI2.nsh
!include FileFunc.nsh
!include LogicLib.nsh
!include Sections.nsh

!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Orvane"

Name "Orvane ${VERSION}"
OutFile "${OUTPUT}"
InstallDir "$LOCALAPPDATA\Programs\Orvane"
InstallDirRegKey HKCU "${UNINSTALL_KEY}" "InstallLocation"
BrandingText " "

VIProductVersion "${VERSION}.0"
VIFileVersion "${VERSION}.0"
VIAddVersionKey ProductName "Orvane"
VIAddVersionKey FileDescription "Orvane installer"
VIAddVersionKey ProductVersion "${VERSION}"
VIAddVersionKey FileVersion "${VERSION}"
VIAddVersionKey LegalCopyright ""

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_WELCOMEFINISHPAGE_BITMAP "${SIDE}"
!define MUI_WELCOMEFINISHPAGE_BITMAP_STRETCH AspectFitHeight
!define MUI_ABORTWARNING
!define MUI_FINISHPAGE_RUN "$INSTDIR\orvane.exe"
!define MUI_FINISHPAGE_RUN_NOTCHECKED
!insertmacro MUI_PAGE_COMPONENTS
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"

!include "${FILES}"

; A program file that is in use cannot be opened for writing.
!macro StopWhenRunning
    ${If} ${FileExists} "$INSTDIR\orvane.exe"
        ClearErrors
        FileOpen $0 "$INSTDIR\orvane.exe" a
        ${If} ${Errors}
            MessageBox MB_OK|MB_ICONEXCLAMATION "Orvane is running. Please end it first." /SD IDOK
            SetErrorLevel 2
            Quit
        ${EndIf}
        FileClose $0
    ${EndIf}
!macroend

Section "Orvane" SectionProgram
    SectionIn RO
    !insertmacro StopWhenRunning
    !insertmacro InstallFiles
    WriteUninstaller "$INSTDIR\uninstall.exe"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayName" "Orvane"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\orvane.exe"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "Publisher" "Orvane"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
    WriteRegStr HKCU "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
    WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoModify" 1
    WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoRepair" 1
    ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
    WriteRegDWORD HKCU "${UNINSTALL_KEY}" "EstimatedSize" $0
SectionEnd

Section "Start menu entry" SectionMenu
    SetOutPath "$INSTDIR"
    CreateShortcut "$SMPROGRAMS\Orvane.lnk" "$INSTDIR\orvane.exe"
SectionEnd

Section /o "Start when I log on" SectionAutoStart
    SetOutPath "$INSTDIR"
    CreateShortcut "$SMSTARTUP\Orvane.lnk" "$INSTDIR\orvane.exe"
SectionEnd

!insertmacro MUI_FUNCTION_DESCRIPTION_BEGIN
    !insertmacro MUI_DESCRIPTION_TEXT ${SectionProgram} "The station itself."
    !insertmacro MUI_DESCRIPTION_TEXT ${SectionMenu} "An entry in the start menu."
    !insertmacro MUI_DESCRIPTION_TEXT ${SectionAutoStart} "Starts the station, and after its countdown recording, whenever you log on. An unattended PC needs automatic log-on as well."
!insertmacro MUI_FUNCTION_DESCRIPTION_END

Function .onInit
    ${GetParameters} $0
    ClearErrors
    ${GetOptions} $0 "/AUTOSTART" $1
    ${IfNot} ${Errors}
        !insertmacro SelectSection ${SectionAutoStart}
    ${EndIf}
FunctionEnd

; Settings (registry), pictures, ERROR.LOG and the working picture stay.
Section "Uninstall"
    !insertmacro StopWhenRunning
    !insertmacro RemoveFiles
    Delete "$INSTDIR\uninstall.exe"
    RMDir "$INSTDIR"
    Delete "$SMPROGRAMS\Orvane.lnk"
    Delete "$SMSTARTUP\Orvane.lnk"
    DeleteRegKey HKCU "${UNINSTALL_KEY}"
SectionEnd
