#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "measure/read_map.h"

/// GNU ddrescue's mapfile, as its manual describes it in "Mapfile structure": comments, a status line with the current
/// position in bytes, the current status and pass, then a line with position and size in bytes and status for each
/// block. The statuses of blocks: "?" not tried, "*" not trimmed and "/" not scraped, both of them failed transfers
/// here, "-" bad sectors, "+" finished.

/// What the map is about, and where the run stands.
struct MapHeader {
  std::string version;  // the program's
  std::string model;
  std::string serial;
  int logical = 512;          // bytes of a logical sector
  std::int64_t next_lba = 0;  // where a read would go on
};

/// The map as a mapfile. Its comments carry the header, which other programs skip.
std::string map_text(const ReadMap& map, const MapHeader& header);

/// A mapfile of this program or of ddrescue. The texts and numbers are there where our comments are.
struct MapFile {
  ReadMap map;  // up to the end of the last block
  std::optional<std::string> model;
  std::optional<std::string> serial;
  std::optional<std::int64_t> sectors;  // of the disk
  std::optional<std::int64_t> logical;
};

/// Reads a mapfile; empty, or one line that says what is wrong: "line 7: ...". Sectors that are not wholly within
/// blocks of one status were not tried, nor were those before the first block.
std::string read_map_file(std::string_view text, MapFile* file);
