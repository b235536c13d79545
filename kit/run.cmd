@echo off
rem Runs the checks. See docs\contributing\windows-kit.md.
"%~dp0kit\run_checks.exe" %*
set result=%errorlevel%
if "%~1"=="" pause
exit /b %result%
