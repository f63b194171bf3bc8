#pragma once

#include <cstdint>
#include <vector>

/// What of a disk was read, sector by sector: the blocks that ddrescue's mapfile knows, as plain data.

enum class Tried : std::uint8_t {
  not_tried,
  finished,
  failed_transfer,  // some sector of it failed; nobody has looked which
  bad_sector,       // every sector was asked alone, and failed
};

struct ReadBlock {
  std::int64_t first = 0;
  std::int64_t sectors = 0;
  Tried state = Tried::not_tried;

  std::int64_t end() const { return first + sectors; }
  bool operator==(const ReadBlock&) const = default;
};

/// Blocks from sector 0 to the last one, each begins where the one before ends, no two neighbours have the same state.
struct ReadMap {
  std::vector<ReadBlock> blocks;

  std::int64_t sectors() const { return blocks.empty() ? 0 : blocks.back().end(); }
};

/// The map of a disk of that many sectors of which nothing was read.
ReadMap untried_map(std::int64_t sectors);

/// `count` sectors from `first` are `state` from now on; what lies outside the map is left out. A sequential run
/// changes the last blocks alone, whatever the number before them.
void mark(std::int64_t first, std::int64_t count, Tried state, ReadMap* map);

/// Sectors in that state.
std::int64_t count(const ReadMap& map, Tried state);

/// Sectors in a row.
struct SectorRun {
  std::int64_t first = 0;
  std::int64_t sectors = 0;

  bool operator==(const SectorRun&) const = default;
};

/// What was not tried, or failed as a whole transfer, of the `count` sectors from `first`: by LBA, neighbours as one.
std::vector<SectorRun> not_done(const ReadMap& map, std::int64_t first, std::int64_t count);
