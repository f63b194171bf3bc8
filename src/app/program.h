#pragma once

#include <string>

/// Runs the program from its command line to its end and gives the process's exit code. Ways to leave inside end the
/// process themselves.
int run_program();

/// Brings the main window's fields and flags to their start: caption, pattern, the drive that the command line names,
/// and the instructions. Goes on past failures of single steps.
void Form_Load();

/// The program's version, as "1.0.0".
std::string program_version();

/// True on the NT family; false also when the system does not tell.
bool GetOsVersion();
