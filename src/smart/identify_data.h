#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "device/storage_query.h"

/// What the program takes from a drive's IDENTIFY DEVICE data (ATA8-ACS, IDENTIFY DEVICE data; words are
/// little-endian).
struct IdentifyData {
  std::string model;                           // words 27 to 46, byte pairs put in order, blanks and all
  std::string serial;                          // words 10 to 19
  std::string firmware;                        // words 23 to 26
  std::int32_t cylinders = 0;                  // word 1
  std::int32_t heads = 0;                      // word 3
  std::int32_t sectors_per_track = 0;          // word 6
  std::int32_t current_sectors_per_track = 0;  // word 56
  std::int64_t sectors = 0;  // logical ones: words 60 and 61; the 48-bit count of words 100 to 103 is not read
  SectorSizes sizes;         // words 106, 117, 118 and 209
};

/// Decodes at least 128 bytes, the first 64 words. Sector sizes stand behind these, in 420 bytes.
IdentifyData decode_identify(std::span<const std::uint8_t> data);

/// Exchanges each pair of characters: ATA strings carry the first character of a word in its high byte. An odd last one
/// stays.
std::string SwapBytes(std::string text);
