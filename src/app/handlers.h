#pragma once

#include <cstdint>

/// The exit code after a command that the user stopped.
inline constexpr std::int16_t kCancelled = 3;

/// What the main window's controls do. Each is called by the window while the program is idle or pumps events.

/// Marks the range as the user's own: a drive selection no longer overwrites it.
void TxtStartLBA_Click();
void TxtNoSecs_Click();
void range_typed();

void Option1_Click();
void Option2_Click();
void Option3_Click();
void Option4_Click();
void Option5_Click();
void Option6_Click();
void Option7_Click();
void Option8_Click();

/// Selects drive `drive`, as a drive button does: a running command stops first.
void option_click(int drive);

void CmdRead_Click();
void CmdWrite_Click();
void cmdWriteBuffer_Click();

/// Shows the buffer for editing, or fills it with the pattern; neither touches a disk. Nothing while a command runs.
void CmdDisplay_Click();
void CmdFillBuffer_Click();

void CmdFind_Click();
void CmdRnd_Click();
void CmdRndRD_Click();

/// Tests that no control starts; tests of ours do.
void Cmd_Destructive_Random_Write();
void Cmd_OffTrack_Write();

/// Asks for the slow-transfer limit.
void CmdSlowRate_Click();

/// Shows the usage text, and nothing else.
void CmdHelp_Click();

/// F1: shows switches, exit codes and examples.
void show_command_line_help();

/// Offers the functions that have no button of their own in a menu.
void more_click();

/// Stops the running command at its next transfer and falls back to interactive behaviour; exit code 3.
void cmdCancel_Click();

/// Ends the process after a second with exit code 1.
void CmdExit_Click();

/// The user closes the window: as CmdExit_Click, the drive and the report closed first.
void window_closed();

/// Control-C: stops the running command as Cancel does, but stays in command-line mode.
void console_cancel();
