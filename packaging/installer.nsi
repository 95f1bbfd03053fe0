; The installer for Windows: the same files and registry values as install.cmd, with an entry among the installed
; programs. VERSION, SOURCE and OUTPUT come from scripts/package.sh.
Unicode true
!include "x64.nsh"
!include "LogicLib.nsh"

Name "Veltrano Password Manager plug-in ${VERSION}"
OutFile "${OUTPUT}"
InstallDir "$PROGRAMFILES64\Veltrano"
RequestExecutionLevel admin
SetCompressor /SOLID lzma
ShowInstDetails show

!define UNINSTALL "Software\Microsoft\Windows\CurrentVersion\Uninstall\VLOnlineIDs"

Page directory
Page instfiles
UninstPage uninstConfirm
UninstPage instfiles

Function .onInit
  ${IfNot} ${RunningX64}
    MessageBox MB_ICONSTOP "The plug-in needs a 64-bit Windows."
    Abort
  ${EndIf}
  SetRegView 64
FunctionEnd

Section
  SetOutPath "$INSTDIR\bin"
  File /r "${SOURCE}\*"
  File "${SOURCE}\standins\VloSet.dll"
  File "${SOURCE}\standins\VLFPApi.dll"
  File "${SOURCE}\standins\Branding.dll"
  File "${SOURCE}\standins\vlagent.exe"
  File "${SOURCE}\standins\VLUserConsole.exe"
  ${DisableX64FSRedirection}
  SetOutPath "$SYSDIR"
  File "${SOURCE}\standins\VLFPApi.dll"
  ${EnableX64FSRedirection}
  WriteRegStr HKLM "SOFTWARE\Veltrano" "VeltranoPath" "$INSTDIR"
  WriteRegStr HKLM "SOFTWARE\Veltrano\Applications" "BinDir" "$INSTDIR\bin"
  WriteRegStr HKLM "SOFTWARE\Veltrano\Applications\KRS" "BinDir" "$INSTDIR\bin"
  WriteRegStr HKLM "SOFTWARE\Veltrano\Branding\Common" "DLLPath" "$INSTDIR\bin\Branding.dll"
  WriteRegStr HKLM "SOFTWARE\Veltrano\Products\VLOnlineIDs" "Version" "${VERSION}"
  ExecWait '"$INSTDIR\bin\vlhost.exe" register' $0
  ${If} $0 != 0
    MessageBox MB_ICONSTOP "The plug-in could not be registered with the dashboard."
    Abort
  ${EndIf}
  WriteUninstaller "$INSTDIR\uninstall.exe"
  WriteRegStr HKLM "${UNINSTALL}" "DisplayName" "Veltrano Password Manager plug-in"
  WriteRegStr HKLM "${UNINSTALL}" "DisplayVersion" "${VERSION}"
  WriteRegStr HKLM "${UNINSTALL}" "UninstallString" '"$INSTDIR\uninstall.exe"'
SectionEnd

Section "Uninstall"
  SetRegView 64
  ; Leaves Cleanup.txt with the list of user data in the installation folder.
  ExecWait '"$INSTDIR\bin\vlhost.exe" --plugin "$INSTDIR\bin\VLOnlineIDs.dll" unregister'
  DeleteRegValue HKLM "SOFTWARE\Veltrano" "VeltranoPath"
  DeleteRegValue HKLM "SOFTWARE\Veltrano\Applications" "BinDir"
  DeleteRegKey HKLM "SOFTWARE\Veltrano\Applications\KRS"
  DeleteRegKey HKLM "SOFTWARE\Veltrano\Branding"
  DeleteRegKey HKLM "SOFTWARE\Veltrano\Products\VLOnlineIDs"
  DeleteRegKey HKLM "${UNINSTALL}"
  ${DisableX64FSRedirection}
  Delete "$SYSDIR\VLFPApi.dll"
  ${EnableX64FSRedirection}
  RMDir /r "$INSTDIR\bin"
  Delete "$INSTDIR\uninstall.exe"
SectionEnd
