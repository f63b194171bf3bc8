#pragma once

#include <cstdint>

/// Takes the range from the fields into counters.No_Secs (at least 1), writes it back as plain numbers, and gives the
/// first LBA.
std::int64_t take_range();

/// Sectors per transfer of a read of `sectors` sectors.
std::int64_t read_chunk(std::int64_t sectors);
