#pragma once

/// Brings the main window's fields and flags to their start: caption, pattern, the drive that the command line names,
/// and the instructions. Goes on past failures of single steps.
void Form_Load();

/// True on the NT family; false also when the system does not tell.
bool GetOsVersion();
