#pragma once

#include <cstdint>
#include <span>
#include <string>

/// Saves sectors that could not be written back to `lba` into a new file "sectorix-<serial>-<lba>.bin" beside the
/// report, or in the current folder; never over a file, never on a volume of the disk under test. Gives a sentence that
/// names the file, or says with the system's code why there is none.
std::string save_to_rescue_file(std::int64_t lba, std::span<const std::uint8_t> sectors);
