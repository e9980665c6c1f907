; The installer: the command line with its help and an entry in the path, and the wizard where it was built (WIZARD names
; its folder), for all users. It brings all that it installs. "/S" asks nothing, "/D=FOLDER" at the end names another
; folder.
Unicode true
Target amd64-unicode
SetCompressor /SOLID lzma
!include LogicLib.nsh

!define NAME "Velmora Convert OST to PST"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\VelmoraConvert"
!define ENVIRONMENT_KEY "SYSTEM\CurrentControlSet\Control\Session Manager\Environment"

Name "${NAME}"
OutFile "${INSTALLER}"
Icon "${ICON}"
UninstallIcon "${ICON}"
InstallDir "$PROGRAMFILES64\Velmora"
InstallDirRegKey HKLM "${UNINSTALL_KEY}" "InstallLocation"
RequestExecutionLevel admin
VIProductVersion "${VERSION}.0"
VIAddVersionKey ProductName "${NAME}"
VIAddVersionKey ProductVersion "${VERSION}"
VIAddVersionKey FileVersion "${VERSION}"
VIAddVersionKey FileDescription "Installer of ${NAME}"
VIAddVersionKey LegalCopyright "2026 the Velmora maintainers"

Page directory
Page instfiles
UninstPage uninstConfirm
UninstPage instfiles

; Opens the search path of the machine: $1 its key, $2 its text in memory with room for one more folder, $3 its type, $4
; the folder behind a semicolon. A path is longer than a text of this language may be, so it is left to the system.
!macro OpenPath
  StrCpy $4 ";$INSTDIR"
  System::Call 'advapi32::RegOpenKeyExW(p 0x80000002, w "${ENVIRONMENT_KEY}", i 0, i 0x2001F, *p .r1) i .r0'
  System::Call 'advapi32::RegQueryValueExW(p r1, w "Path", p 0, *i .r3, p 0, *i .r5) i .r0'
  ${If} $0 <> 0
    StrCpy $3 2
    StrCpy $5 0
  ${EndIf}
  IntOp $6 $5 + 4096
  System::Call 'kernel32::GlobalAlloc(i 0x40, i r6) p .r2'
  System::Call 'advapi32::RegQueryValueExW(p r1, w "Path", p 0, p 0, p r2, *i r5) i .r0'
!macroend

; Keeps the text, and tells the programs that run.
!macro KeepPath
  System::Call 'kernel32::lstrlenW(p r2) i .r5'
  IntOp $5 $5 * 2
  IntOp $5 $5 + 2
  System::Call 'advapi32::RegSetValueExW(p r1, w "Path", i 0, i r3, p r2, i r5) i .r0'
  System::Call 'user32::SendMessageTimeoutW(p 0xFFFF, i 0x1A, p 0, w "Environment", i 2, i 1000, p 0)'
!macroend

!macro ClosePath
  System::Call 'kernel32::GlobalFree(p r2)'
  System::Call 'advapi32::RegCloseKey(p r1)'
!macroend

; $7: where the folder stands in the path, 0: nowhere.
!macro FindFolder
  System::Call 'shlwapi::StrStrIW(p r2, w r4) p .r7'
!macroend

Section
  SetRegView 64
  SetShellVarContext all
  SetOutPath "$INSTDIR"
  File "/oname=velmora-convert.exe" "${PROGRAM}"
  File "/oname=command-line.txt" "${SOURCES}/docs/command-line.md"
  File "/oname=exit-codes.txt" "${SOURCES}/docs/exit-codes.md"
  File "/oname=copyright.txt" "${SOURCES}/packaging/copyright"
  WriteUninstaller "$INSTDIR\uninstall.exe"

  CreateDirectory "$SMPROGRAMS\Velmora"
!ifdef WIZARD
  File /r "${WIZARD}"
  CreateShortcut "$SMPROGRAMS\Velmora\${NAME}.lnk" "$INSTDIR\wizard\bin\velmora.exe"
  !define INSTALLED "${NAME}"
!else
  !define INSTALLED "${NAME} (command line)"
!endif
  CreateShortcut "$SMPROGRAMS\Velmora\Help of velmora-convert.lnk" "$INSTDIR\command-line.txt"

  WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayName" "${INSTALLED}"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\velmora-convert.exe"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "Publisher" "Velmora"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
  WriteRegStr HKLM "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
  WriteRegDWORD HKLM "${UNINSTALL_KEY}" "NoModify" 1
  WriteRegDWORD HKLM "${UNINSTALL_KEY}" "NoRepair" 1

  !insertmacro OpenPath
  !insertmacro FindFolder
  ${If} $7 = 0
    System::Call 'kernel32::lstrcatW(p r2, w r4) p .r0'
    !insertmacro KeepPath
  ${EndIf}
  !insertmacro ClosePath
SectionEnd

Section Uninstall
  SetRegView 64
  SetShellVarContext all
  !insertmacro OpenPath
  !insertmacro FindFolder
  ${If} $7 <> 0
    ; What stands behind the folder moves to its place.
    StrLen $8 $4
    IntOp $8 $8 * 2
    IntPtrOp $8 $7 + $8
    System::Call 'kernel32::lstrlenW(p r8) i .r9'
    IntOp $9 $9 * 2
    IntOp $9 $9 + 2
    System::Call 'ntdll::RtlMoveMemory(p r7, p r8, i r9)'
    !insertmacro KeepPath
  ${EndIf}
  !insertmacro ClosePath

  Delete "$SMPROGRAMS\Velmora\${NAME}.lnk"
  Delete "$SMPROGRAMS\Velmora\Help of velmora-convert.lnk"
  RMDir "$SMPROGRAMS\Velmora"
  Delete "$INSTDIR\wizard\bin\velmora.exe"
  Delete "$INSTDIR\wizard\Lang\*.INI"
  Delete "$INSTDIR\wizard\vm-oxp.html"
  RMDir "$INSTDIR\wizard\bin"
  RMDir "$INSTDIR\wizard\Lang"
  RMDir "$INSTDIR\wizard"
  Delete "$INSTDIR\velmora-convert.exe"
  Delete "$INSTDIR\command-line.txt"
  Delete "$INSTDIR\exit-codes.txt"
  Delete "$INSTDIR\copyright.txt"
  Delete "$INSTDIR\uninstall.exe"
  RMDir "$INSTDIR" ; stays where somebody has put something into it
  DeleteRegKey HKLM "${UNINSTALL_KEY}"
SectionEnd
