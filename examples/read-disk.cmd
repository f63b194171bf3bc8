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
rem No blocks from here on: a drive's own text may hold parentheses, which would end them.
if not "%QV_D_TOTERR%"=="0" goto failed
if "%CODE%"=="3" goto stopped
if not "%CODE%"=="0" goto changed
echo %QV_D_MODEL%: all sectors read. Exit code 0.
exit /b 0

:failed
echo %QV_D_MODEL%: %QV_D_TOTERR% transfers failed. Exit code %CODE%.
exit /b %CODE%

:stopped
echo %QV_D_MODEL%: stopped before the end, or three findings in SMART and the event log. Exit code 3.
exit /b 3

:changed
echo %QV_D_MODEL%: all sectors read, but SMART or the event log changed. Exit code %CODE%.
exit /b %CODE%
