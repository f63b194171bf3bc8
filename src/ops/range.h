#pragma once

#include <cstdint>

/// Takes the range from the fields into counters.No_Secs (at least 1), writes it back as plain numbers, and gives the
/// first LBA.
std::int64_t take_range();

/// Puts the range that the command line gave, in sectors, into the fields. A start alone means: from there to the end
/// of the disk, one sector where that lies before it.
void show_range_of_command_line();

/// Sectors per transfer of a read of `sectors` sectors.
std::int64_t read_chunk(std::int64_t sectors);
