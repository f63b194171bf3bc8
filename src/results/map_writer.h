#pragma once

#include <string>

#include "measure/transfer_record.h"

/// The mapfile of /MAP and the one of /RESUME.

/// Reads the file of /RESUME into run_map. Empty, or one line that says what is wrong with it.
std::string load_resumed_map();

/// A command begins: its reads are noted, and the file is written anew every 30 seconds.
void begin_map();

/// A transfer was made.
void note_in_map(const Transfer& transfer);

/// Writes the file with what was found out so far, whole or not at all, and through to its disk. Empty, or one line
/// that says what failed. Nothing while there is no drive.
std::string write_map();
void end_map();
