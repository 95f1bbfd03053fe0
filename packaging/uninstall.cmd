@echo off
rem uninstall.cmd, in the folder of the installed programs, takes the plug-in out of the dashboard and removes what
rem was installed and is as it was. What belongs to users stays; the list of it that the plug-in wrote, Cleanup.txt,
rem stays in the product's folder. Needs an administrator.
setlocal DisableDelayedExpansion
set "program=%TEMP%\vlsetup-%RANDOM%-%RANDOM%.exe"
copy /y "%~dp0vlsetup.exe" "%program%" >nul
if errorlevel 1 (
    echo uninstall: vlsetup.exe can't be copied to the folder for temporary files 1>&2
    exit /b 1
)
rem This file goes too: what is left to do is one block, which has been read when it begins.
(
    "%program%" uninstall "%~dp0.."
    if errorlevel 1 (
        del "%program%"
        exit /b 1
    )
    del "%program%"
    exit /b 0
)
