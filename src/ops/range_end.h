#pragma once

#include <string>

/// Whether the range of a command ends on the disk.

/// For the range of the command line on the drive that was identified: empty, or one line that says that it reaches
/// beyond the disk's end.
std::string asked_range_beyond_end();

/// Where the range of a write reaches beyond the end of the selected drive, asks whether to go on, before anything is
/// transferred. True without a question in command-line mode, and while the size is not known.
bool confirm_range();
