@echo off
rem run.cmd runs every test program of this kit, one after the other, and ends with "N passed, N failed, N skipped". What a
rem program said is in results. The tests register and remove the plug-in, and write to Program Files, the system folder
rem and the registry: run it as an administrator, on a machine to throw away. Exit status: 0 only if nothing failed.
setlocal DisableDelayedExpansion
cd /d "%~dp0"
set passed=0
set failed=0
set skipped=0
if not exist results mkdir results
for /f %%p in (programs.txt) do call :run %%p
echo %passed% passed, %failed% failed, %skipped% skipped
if not %failed%==0 exit /b 1
if %passed%==0 exit /b 1
exit /b 0

:run
set summary=no
set failures=%failed%
set output=results\%~n1.txt
"bin\%1" --gtest_brief=1 >%output% 2>&1
for /f "tokens=2,4" %%a in (%output%) do call :count %%a %%b
if %summary%==no set /a failed+=1
if %summary%==no echo %1 did not end by itself: see %output%
if not %failed%==%failures% type %output%
goto :eof

:count
if "%1"=="FAILED" set /a failed+=1
if "%1"=="SKIPPED" set /a skipped+=%2
if not "%1"=="PASSED" goto :eof
set summary=yes
set /a passed+=%2
goto :eof
