#pragma once

#include <cstdint>

/// Sectors that the fill makes the buffer hold, whatever it held before.
inline constexpr std::int64_t kFillSectors = 16'065;

/// Fills Sec_Buf, made anew, with the pattern in TxtPattern, and writes the pattern back in its normal form. A bad one
/// is told and the default takes its place.
void fill_buffer();
