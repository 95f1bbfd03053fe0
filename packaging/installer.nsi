; The installer for Windows: unpacks the package and lets vlsetup install it, with an entry among the installed programs.
; Silent with /S, into another folder with /D=FOLDER; the exit status is vlsetup's. VERSION, SOURCE and OUTPUT come from
; scripts/package.sh.
Unicode true
Target amd64-unicode
!include "LogicLib.nsh"

Name "Veltrano Password Manager plug-in ${VERSION}"
OutFile "${OUTPUT}"
InstallDir "$PROGRAMFILES64\Veltrano"
RequestExecutionLevel admin
SetCompressor /SOLID lzma
ShowInstDetails show
ShowUninstDetails show

!define UNINSTALLER "VLOnlineIDs-uninstall.exe"

Page directory
Page instfiles
UninstPage uninstConfirm
UninstPage instfiles

; Its lines go to the details; a failure stops, and its last line says why.
!macro RunSetup ARGUMENTS
  SetOutPath "$TEMP" ; a current folder can't be removed
  nsExec::ExecToLog '"$PLUGINSDIR\vlsetup.exe" ${ARGUMENTS}'
  Pop $0
  ${If} $0 != 0
    SetErrorLevel 1
    MessageBox MB_ICONSTOP "This failed. The details say why." /SD IDOK
    Abort
  ${EndIf}
!macroend

; A folder in /D= that can't be one, as on a missing drive, would silently become the default. The system's own command
; line still has it.
Function .onInit
  System::Call 'kernel32::GetCommandLineW() w .r0'
  StrCpy $2 0
  ${Do}
    StrCpy $1 $0 4 $2 ; nothing at the end
    IntOp $2 $2 + 1
    ${If} $1 == ""
      Return ; no folder is named
    ${EndIf}
  ${LoopUntil} $1 == " /D="
  IntOp $2 $2 + 3
  StrCpy $1 $0 "" $2
  StrCpy $2 $1 1 -1
  ${If} $2 == "\"
    StrCpy $1 $1 -1
  ${EndIf}
  ${If} $1 != $INSTDIR
    SetErrorLevel 1
    MessageBox MB_ICONSTOP "Nothing can be installed in $1. Is there such a drive?" /SD IDOK
    Abort
  ${EndIf}
FunctionEnd

Section
  InitPluginsDir
  SetOutPath "$PLUGINSDIR\package"
  File /r "${SOURCE}\*"
  WriteUninstaller "$PLUGINSDIR\package\${UNINSTALLER}"
  SetOutPath "$PLUGINSDIR"
  CopyFiles /SILENT "$PLUGINSDIR\package\vlsetup.exe" "$PLUGINSDIR\vlsetup.exe"
  !insertmacro RunSetup 'install --from "$PLUGINSDIR\package" --uninstaller ${UNINSTALLER} "$INSTDIR"'
SectionEnd

Section "Uninstall"
  InitPluginsDir
  SetOutPath "$PLUGINSDIR"
  CopyFiles /SILENT "$INSTDIR\vlsetup.exe" "$PLUGINSDIR\vlsetup.exe"
  !insertmacro RunSetup 'uninstall "$INSTDIR\.."'
SectionEnd
