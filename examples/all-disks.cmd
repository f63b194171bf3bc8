@echo off
rem Reads every drive that answers, all at the same time, and says what came of each.
rem
rem   all-disks.cmd
rem
rem In the current folder each drive n gets sectorix-driven.txt (report), .json (result), .log (what went to standard
rem error) and -vars.cmd (variables). Exit code 0: every drive is ok; 1: one is not, or none answers.
rem To practise without real disks: set SECTORIX_OPTIONS=/VDISK:0=DEMO /VDISK:1=other.vd

if "%~1"==":read" goto read
setlocal
set "SELF=%~f0"
set "SECTORIX=%~dp0..\sectorix.exe"
if exist "%~dp0sectorix.exe" set "SECTORIX=%~dp0sectorix.exe"
set "LIST=sectorix-list.txt"
set "DRIVES="
set BAD=0

rem Through a file: FOR would need the quoted program inside quotes.
"%SECTORIX%" %SECTORIX_OPTIONS% /LIST >"%LIST%"
for /f "usebackq" %%D in ("%LIST%") do call :start %%D
if not defined DRIVES (
  echo Nothing was read.
  exit /b 1
)
echo Reading drives%DRIVES% ...

:wait
set "BUSY="
for %%D in (%DRIVES%) do if not exist sectorix-drive%%D.done set BUSY=1
if not defined BUSY goto ended
rem A second; TIMEOUT would want a keyboard.
ping -n 2 127.0.0.1 >nul
goto wait

:ended
for %%D in (%DRIVES%) do call :tell %%D
exit /b %BAD%

rem Starts the reading of drive %1 in a process of its own.
:start
set "DRIVES=%DRIVES% %1"
set "NAME=sectorix-drive%1"
for %%F in ("%NAME%.txt" "%NAME%.json" "%NAME%.log" "%NAME%-vars.cmd" "%NAME%.done") do if exist %%F del %%F
start "Drive %1" /B cmd /c call "%SELF%" :read %1
goto :eof

rem That process: reads drive %2, and marks the end once the exit code stands behind the variables.
:read
set "NAME=sectorix-drive%2"
"%SECTORIX%" %SECTORIX_OPTIONS% /D:%2 /OP:READ /PINPOINT /QUIET /EXIT:BITS /REPORT:"%NAME%.txt" /JSON:"%NAME%.json" /VARS:"%NAME%-vars.cmd" 2>"%NAME%.log"
set CODE=%ERRORLEVEL%
>>"%NAME%-vars.cmd" echo set CODE=%CODE%
>"%NAME%.done" echo %CODE%
goto :eof

rem One line about drive %1. No blocks: a drive's own text may hold parentheses, which would end them.
:tell
set "QV_RESULT="
set "QV_D_MODEL="
set "QV_D_SNO="
set "QV_D_TOTERR="
set "QV_H_VERDICT="
set CODE=256
if exist sectorix-drive%1-vars.cmd call sectorix-drive%1-vars.cmd
if not defined QV_RESULT set "QV_RESULT=no result"
del sectorix-drive%1.done
set "FINE="
if "%QV_RESULT%"=="ok" set FINE=%CODE%
rem 128: the System event log has entries of that time, which may be any program's.
if not "%FINE%"=="0" if not "%FINE%"=="128" set BAD=1
if not defined QV_D_TOTERR goto tell_short
echo Drive %1: %QV_RESULT%, %QV_D_TOTERR% failed transfers, verdict %QV_H_VERDICT%, exit code %CODE%: %QV_D_MODEL%, serial number %QV_D_SNO%
goto :eof
:tell_short
echo Drive %1: %QV_RESULT%, exit code %CODE%. See sectorix-drive%1.log.
goto :eof
