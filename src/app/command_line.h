#pragma once

#include <string>
#include <string_view>

#include "form/asked.h"

/// Reads a command line, the program's path first, into `result`. Gives an empty text, or one line that says what is
/// wrong first; what stands behind it is taken all the same. Values with blanks are quoted, as "/FIND:two words" or
/// /FIND:"two words"; the case of switches does not matter.
std::string parse_command_line(std::string_view line, Asked* result);

/// All switches, exit codes and examples, as /? prints them; lines end in CR LF.
std::string switch_help();

/// The parts of it that the help box shows too.
std::string switch_names();
std::string exit_code_help();
std::string example_help();
