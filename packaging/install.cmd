@echo off
rem install.cmd [FOLDER] [--stand-ins none, missing or all] [--replace] installs what lies beside it (default FOLDER:
rem Program Files\Veltrano) and registers the plug-in with the dashboard. Needs an administrator.
setlocal DisableDelayedExpansion
"%~dp0vlsetup.exe" install --from "%~dp0." %*
exit /b %errorlevel%
