@echo off
rem install.cmd [FOLDER] puts the files beside it into FOLDER (default: Program Files\Veltrano\bin), tells the
rem registry where they lie, and registers the plug-in with the dashboard. Needs an administrator.
setlocal
set "source=%~dp0"
set "root=%ProgramFiles%\Veltrano"
if not "%~1"=="" set "root=%~1"
set "bin=%root%\bin"

if not exist "%source%VLOnlineIDs.dll" (
    echo install: VLOnlineIDs.dll is not beside this script 1>&2
    exit /b 1
)
if not exist "%bin%" mkdir "%bin%"
xcopy /s /e /y /q "%source%*" "%bin%\" >nul
if errorlevel 1 goto denied
rem The neighbours lie where the plug-in looks for them: the policy library in the system folder, the others in bin.
copy /y "%source%standins\VLFPApi.dll" "%SystemRoot%\System32\VLFPApi.dll" >nul
if errorlevel 1 goto denied
copy /y "%source%standins\VLFPApi.dll" "%bin%\" >nul
copy /y "%source%standins\VloSet.dll" "%bin%\" >nul
copy /y "%source%standins\Branding.dll" "%bin%\" >nul
copy /y "%source%standins\vlagent.exe" "%bin%\" >nul
copy /y "%source%standins\VLUserConsole.exe" "%bin%\" >nul

reg add "HKLM\SOFTWARE\Veltrano" /v VeltranoPath /t REG_SZ /d "%root%" /f >nul
if errorlevel 1 goto denied
reg add "HKLM\SOFTWARE\Veltrano\Applications" /v BinDir /t REG_SZ /d "%bin%" /f >nul
reg add "HKLM\SOFTWARE\Veltrano\Applications\KRS" /v BinDir /t REG_SZ /d "%bin%" /f >nul
reg add "HKLM\SOFTWARE\Veltrano\Branding\Common" /v DLLPath /t REG_SZ /d "%bin%\Branding.dll" /f >nul
reg add "HKLM\SOFTWARE\Veltrano\Products\VLOnlineIDs" /v Version /t REG_SZ /d "@PROJECT_VERSION@" /f >nul
"%bin%\vlhost.exe" register
if errorlevel 1 exit /b 1
echo installed in %bin%
exit /b 0

:denied
echo install: access denied: run this as an administrator 1>&2
exit /b 1
