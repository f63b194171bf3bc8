@echo off
rem Reads one drive and says what came of it.
rem
rem   read-disk.cmd 1                         drive 1
rem   read-disk.cmd 0 "/VDISK:0=DEMO"         the practice disk (quoted, since = parts arguments here)
rem
rem The report goes to sectorix-report.txt in the current folder, the variables to sectorix-vars.cmd, which is called
rem here so that its SET lines take effect. The exit code is handed on.

setlocal
if "%~1"=="" (
  echo Which drive? A number from 0 to 7.
  exit /b 1
)
if exist sectorix-vars.cmd del sectorix-vars.cmd

"%~dp0sectorix.exe" %2 %3 %4 %5 /D:%1 /OP:READ /REPORT:sectorix-report.txt /VARS:sectorix-vars.cmd
set CODE=%ERRORLEVEL%

if not exist sectorix-vars.cmd (
  echo Drive %1 could not be tested. Exit code %CODE%.
  exit /b %CODE%
)
call sectorix-vars.cmd
if not "%QV_D_TOTERR%"=="0" (
  echo %QV_D_MODEL%: %QV_D_TOTERR% transfers failed. Exit code %CODE%.
  exit /b %CODE%
)
if not "%CODE%"=="0" (
  echo %QV_D_MODEL%: all sectors read, but SMART or the event log changed. Exit code %CODE%.
  exit /b %CODE%
)
echo %QV_D_MODEL%: all sectors read. Exit code 0.
exit /b 0
