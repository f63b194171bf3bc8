@echo off
rem Reads one drive and says what came of it.
rem
rem   one-disk.cmd 1
rem
rem In the current folder it leaves sectorix-drive1.txt (the report), sectorix-drive1.json (the whole result) and
rem sectorix-drive1-vars.cmd (the variables), which is called here so that its SET lines take effect. The exit code is
rem handed on. To practise without a real disk: set SECTORIX_OPTIONS=/VDISK:1=DEMO

setlocal
set "DRIVE=%~1"
if not defined DRIVE (
  echo Which drive? A number from 0 to 7.
  exit /b 1
)
set "SECTORIX=%~dp0..\sectorix.exe"
if exist "%~dp0sectorix.exe" set "SECTORIX=%~dp0sectorix.exe"
set "NAME=sectorix-drive%DRIVE%"

rem What an earlier run left would be taken for this one's.
for %%F in ("%NAME%.txt" "%NAME%.json" "%NAME%-vars.cmd") do if exist %%F del %%F
set "QV_RESULT="

"%SECTORIX%" %SECTORIX_OPTIONS% /D:%DRIVE% /OP:READ /PINPOINT /REPORT:"%NAME%.txt" /JSON:"%NAME%.json" /VARS:"%NAME%-vars.cmd"
set CODE=%ERRORLEVEL%

if exist "%NAME%-vars.cmd" call "%NAME%-vars.cmd"
rem No blocks from here on: a drive's own text may hold parentheses, which would end them.
if "%CODE%"=="100010" goto unwritten
if "%QV_RESULT%"=="missing" goto missing
if "%QV_RESULT%"=="cancelled" goto cancelled
if "%QV_RESULT%"=="errors" goto errors
if "%QV_RESULT%"=="ok" goto ok
if not defined QV_RESULT set "QV_RESULT=no result"
echo Drive %DRIVE% was not read: %QV_RESULT%. Exit code %CODE%.
if "%CODE%"=="0" set CODE=1
exit /b %CODE%

:ok
if not "%CODE%"=="0" goto changed
echo %QV_D_MODEL%, serial number %QV_D_SNO%: all %QV_D_SECTORS% sectors read, verdict %QV_H_VERDICT%.
exit /b 0

:changed
echo %QV_D_MODEL%, serial number %QV_D_SNO%: all %QV_D_SECTORS% sectors read, but the System event log has entries of that time. Exit code %CODE%.
exit /b %CODE%

:errors
set "AT="
if defined QV_B_FIRST_LBA set "AT=, first bad LBA %QV_B_FIRST_LBA%"
echo %QV_D_MODEL%, serial number %QV_D_SNO%: %QV_D_TOTERR% transfers failed%AT%, verdict %QV_H_VERDICT%. Exit code %CODE%.
exit /b %CODE%

:cancelled
echo %QV_D_MODEL%, serial number %QV_D_SNO%: cancelled before the end. Exit code %CODE%.
exit /b %CODE%

:missing
echo Drive %DRIVE% does not answer. Exit code %CODE%.
exit /b %CODE%

:unwritten
echo Drive %DRIVE%: the report or the result could not be written. Do not trust the files of this run. Exit code %CODE%.
exit /b %CODE%
