@echo off
rem uninstall.cmd takes the plug-in out of the dashboard and removes the program. What belongs to users stays; the
rem list of it that the plug-in wrote, Cleanup.txt, stays in the installation folder.
setlocal
for %%i in ("%~dp0.") do set "bin=%%~fi"
if not exist "%bin%\VLOnlineIDs.dll" (
    echo uninstall: VLOnlineIDs.dll is not beside this script 1>&2
    exit /b 1
)
"%bin%\vlhost.exe" --plugin "%bin%\VLOnlineIDs.dll" unregister
if errorlevel 1 exit /b 1
reg delete "HKLM\SOFTWARE\Veltrano\Applications" /v BinDir /f >nul
reg delete "HKLM\SOFTWARE\Veltrano\Applications\KRS" /f >nul
reg delete "HKLM\SOFTWARE\Veltrano\Branding" /f >nul
reg delete "HKLM\SOFTWARE\Veltrano\Products\VLOnlineIDs" /f >nul
reg delete "HKLM\SOFTWARE\Veltrano" /v VeltranoPath /f >nul
del /q "%SystemRoot%\System32\VLFPApi.dll" >nul
echo uninstalled; %bin% can be deleted now
exit /b 0
