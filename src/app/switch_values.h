#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "form/asked.h"

/// How numbers may be written behind a switch.

/// A whole number that is not negative: "512", "0x200" or, with commas between groups of three digits, "1,000".
/// Nothing for anything else, and for more than 63 bits.
std::optional<std::int64_t> whole_number(std::string_view text);

/// A place on a disk, or a part of one.
struct Amount {
  std::int64_t sectors = 0;          // of 512 bytes
  std::optional<DiskShare> share{};  // in place of sectors
};

/// A whole number of sectors, or bytes in decimal (KB MB GB TB) or binary units (KiB MiB GiB TiB), "1.5GB" too, of
/// which whole sectors are taken, or a percentage of 0 to 100, "12.5%". Up to six places may stand behind the point;
/// the case of units does not matter. Nothing for anything else.
std::optional<Amount> amount(std::string_view text);
