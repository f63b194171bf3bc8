@echo off
rem Reads every drive that answers, one after the other, and mails the result of those that are not in order.
rem
rem   nightly.cmd               every drive
rem   nightly.cmd 3             drive 3 alone; it is an error when it does not answer
rem   nightly.cmd /ALWAYS       mails about drives in order too; a number may follow
rem
rem Set before it is called:
rem   MAIL_COMMAND      a command that is called with two arguments more, a file to send and a subject; without it
rem                     nothing is mailed. It fails by an exit code other than 0.
rem   SECTORIX_FOLDER   where results and histories lie; else the folder "results" beside this file
rem   SECTORIX_OPTIONS  more switches, as /VDISK:0=DEMO to practise without a real disk
rem
rem The exit code holds the bits of /EXIT:BITS of all drives together, and 4096 when a mail could not be sent.

setlocal
set "ALWAYS="
set "ONLY=%~1"
if /i "%ONLY%"=="/ALWAYS" set ALWAYS=1
if defined ALWAYS set "ONLY=%~2"
set "SECTORIX=%~dp0..\sectorix.exe"
if exist "%~dp0sectorix.exe" set "SECTORIX=%~dp0sectorix.exe"
if not defined SECTORIX_FOLDER set "SECTORIX_FOLDER=%~dp0results"
if "%SECTORIX_FOLDER:~-1%"=="\" set "SECTORIX_FOLDER=%SECTORIX_FOLDER:~0,-1%"
if not exist "%SECTORIX_FOLDER%\" mkdir "%SECTORIX_FOLDER%"
set CODES=0
set "CHECKED="

if not defined ONLY goto every
call :check %ONLY%
exit /b %CODES%

:every
rem Through a file: FOR would need the quoted program inside quotes.
"%SECTORIX%" %SECTORIX_OPTIONS% /LIST >"%SECTORIX_FOLDER%\list.txt" 2>&1
for %%D in (0 1 2 3 4 5 6 7) do set "LISTED_%%D="
for /f "usebackq" %%D in ("%SECTORIX_FOLDER%\list.txt") do set "LISTED_%%D=1"
for %%D in (0 1 2 3 4 5 6 7) do call :check_known %%D
if defined CHECKED exit /b %CODES%
type "%SECTORIX_FOLDER%\list.txt"
set /a "CODES|=4"
call :mail "%SECTORIX_FOLDER%\list.txt" "Sectorix on %COMPUTERNAME%: no drive was listed"
exit /b %CODES%

rem A drive that was read in an earlier night and is not listed now is missing, and must not be passed over.
:check_known
if defined LISTED_%1 goto check
if exist "%SECTORIX_FOLDER%\drive%1.log" goto check
goto :eof

:check
set CHECKED=1
set "NAME=%SECTORIX_FOLDER%\drive%1"
rem What the last night left would be taken for this one's.
for %%F in ("%NAME%.txt" "%NAME%.json" "%NAME%-vars.cmd") do if exist %%F del %%F
set "QV_RESULT="
set "QV_D_MODEL="
set "QV_D_SNO="
set "QV_H_VERDICT="
"%SECTORIX%" %SECTORIX_OPTIONS% /D:%1 /OP:READ /PINPOINT /QUIET /EXIT:BITS /REPORT:"%NAME%.txt" /JSON:"%NAME%.json" /VARS:"%NAME%-vars.cmd" /HISTORY:"%SECTORIX_FOLDER%" 2>"%NAME%.log"
set CODE=%ERRORLEVEL%
if exist "%NAME%-vars.cmd" call "%NAME%-vars.cmd"
rem No blocks from here on: a drive's own text may hold parentheses, which would end them.
if not defined QV_RESULT set "QV_RESULT=no result"
set "ABOUT=drive %1: %QV_RESULT%"
if defined QV_H_VERDICT set "ABOUT=%ABOUT%, verdict %QV_H_VERDICT%"
if defined QV_D_MODEL set "ABOUT=%ABOUT%, %QV_D_MODEL%, serial number %QV_D_SNO%"
rem A run without a result is none that was in order, whatever its exit code.
if "%QV_RESULT%%CODE%"=="no result0" set CODE=1
set "ABOUT=%ABOUT%, exit code %CODE%"
echo %ABOUT%
set "WORRY=1"
if "%QV_RESULT%"=="ok" set "WORRY=%ALWAYS%"
rem 128 alone: the System event log has entries of that time, which may be any program's.
if not "%CODE%"=="0" if not "%CODE%"=="128" set WORRY=1
set /a "CODES|=%CODE%"
if not defined WORRY goto :eof
set "FILE=%NAME%.json"
if not exist "%FILE%" set "FILE=%NAME%.log"
call :mail "%FILE%" "Sectorix on %COMPUTERNAME%: %ABOUT%"
goto :eof

:mail
if not defined MAIL_COMMAND goto :eof
rem An interpreter of its own: what the command sets, or an EXIT in it, does not reach this one.
cmd /c call %MAIL_COMMAND% %1 %2
if "%ERRORLEVEL%"=="0" goto :eof
echo The mail about it could not be sent.
set /a "CODES|=4096"
goto :eof
