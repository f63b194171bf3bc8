#pragma once

#include <string>
#include <string_view>

#include "form/asked.h"

/// Reads a command line, the program's path first, into `result`. Gives an empty text, or one line that says what is
/// wrong. Values with blanks are quoted, as "/FIND:two words" or /FIND:"two words"; the case of switches does not
/// matter.
std::string parse_command_line(std::string_view line, Asked* result);

/// All switches, as /? prints them; lines end in CR LF.
std::string switch_help();
