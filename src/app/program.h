#pragma once

#include <string>

#include "ops/restore.h"

/// Runs the program from its command line to its end and gives the process's exit code. Ways to leave inside end the
/// process themselves.
int run_program();

/// Brings the main window's fields and flags to their start: caption, pattern, the drive that the command line names,
/// and the instructions. Goes on past failures of single steps.
void Form_Load();

/// Appends what earlier tests left to Text1. Then asks for each location whether its former contents are to be restored
/// now; in command-line mode, which opens no boxes, shows the first line in the status instead.
void offer_left_over(const LeftOver& left);

/// What the window's caption says while questions are asked.
std::string version_line();

/// Turns command-line mode on or off, which the caption tells as long as it lasts.
void set_command_line_mode(bool on);

/// The program's version, as "1.0.0".
std::string program_version();

/// True on the NT family; false also when the system does not tell.
bool GetOsVersion();

/// Writes a line for each drive that answers to standard output: number, model, serial, firmware, sectors and size,
/// separated by tabs. Gives the process's exit code: 0, or 1 when none answers or the list cannot be
/// written.
int list_drives();

/// Lists the selected drive's SMART attributes in the report and Text1, in place of what Text1 held. A missing drive is
/// told as for an operation.
void list_smart();
