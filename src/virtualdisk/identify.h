#pragma once

#include <cstdint>
#include <string>

#include "virtualdisk/page.h"

namespace virtualdisk {

/// What an ATA drive says of itself.
struct Identity {
  std::string model;         // at most 40 characters
  std::string serial;        // at most 20
  std::string firmware;      // at most 8
  std::int64_t sectors = 0;  // logical ones
  bool smart_enabled = false;
  std::int64_t logical = 512;  // bytes
  std::int64_t physical = 512;
};

/// Bytes of a physical sector by words 106, 117 and 118 of IDENTIFY data.
std::int64_t physical_bytes(const Page& page);

/// The text of `words` words from `word` on of IDENTIFY data, without blanks and zeros at its end.
std::string identify_text(const Page& page, std::size_t word, std::size_t words);

/// The IDENTIFY DEVICE data of such a drive: ATA8-ACS (T13/1699-D), table of IDENTIFY DEVICE data.
Page identify_page(const Identity& identity);

}  // namespace virtualdisk
