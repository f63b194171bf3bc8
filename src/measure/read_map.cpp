#include "measure/read_map.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace {

/// The block that holds the sector, which lies in the map.
std::size_t block_of(const ReadMap& map, std::int64_t sector) {
  const auto behind = std::partition_point(map.blocks.begin(), map.blocks.end(),
                                           [&](const ReadBlock& block) { return block.end() <= sector; });
  return static_cast<std::size_t>(behind - map.blocks.begin());
}

/// What is left of the map's sectors from `first` on.
std::int64_t clipped(const ReadMap& map, std::int64_t first, std::int64_t count) {
  return std::clamp<std::int64_t>(count, 0, std::max<std::int64_t>(map.sectors() - first, 0));
}

}  // namespace

ReadMap untried_map(std::int64_t sectors) {
  ReadMap map;
  if (sectors > 0) map.blocks.push_back({0, sectors, Tried::not_tried});
  return map;
}

void mark(std::int64_t first, std::int64_t count, Tried state, ReadMap* map) {
  const std::int64_t sectors = first < 0 ? 0 : clipped(*map, first, count);
  if (sectors == 0) return;
  std::vector<ReadBlock>& blocks = map->blocks;
  ReadBlock marked{first, sectors, state};
  std::size_t low = block_of(*map, first);
  std::size_t high = block_of(*map, marked.end() - 1);
  // A neighbour of the same state becomes part of it.
  if (low > 0 && blocks[low].first == first && blocks[low - 1].state == state) --low;
  if (high + 1 < blocks.size() && blocks[high].end() == marked.end() && blocks[high + 1].state == state) ++high;
  const ReadBlock before = blocks[low];
  const ReadBlock behind = blocks[high];
  if (before.state == state) marked = {before.first, marked.end() - before.first, state};
  if (behind.state == state) marked.sectors = behind.end() - marked.first;

  std::array<ReadBlock, 3> pieces;
  std::size_t used = 0;
  if (before.first < marked.first) pieces.at(used++) = {before.first, marked.first - before.first, before.state};
  pieces.at(used++) = marked;
  if (behind.end() > marked.end()) pieces.at(used++) = {marked.end(), behind.end() - marked.end(), behind.state};

  const std::size_t replaced = high - low + 1;
  const auto place = [&](std::size_t index) { return blocks.begin() + static_cast<std::ptrdiff_t>(index); };
  if (used > replaced) blocks.insert(place(high + 1), used - replaced, ReadBlock{});
  if (used < replaced) blocks.erase(place(low + used), place(high + 1));
  std::copy_n(pieces.begin(), used, place(low));
}

std::int64_t count(const ReadMap& map, Tried state) {
  std::int64_t sectors = 0;
  for (const ReadBlock& block : map.blocks) sectors += block.state == state ? block.sectors : 0;
  return sectors;
}

std::vector<SectorRun> not_done(const ReadMap& map, std::int64_t first, std::int64_t count) {
  std::vector<SectorRun> runs;
  const std::int64_t from = std::max<std::int64_t>(first, 0);
  const std::int64_t end = from + clipped(map, from, count - (from - first));
  for (std::size_t i = block_of(map, from); i < map.blocks.size() && map.blocks[i].first < end; ++i) {
    const ReadBlock& block = map.blocks[i];
    if (block.state != Tried::not_tried && block.state != Tried::failed_transfer) continue;
    const std::int64_t low = std::max(block.first, from);
    const std::int64_t high = std::min(block.end(), end);
    if (!runs.empty() && runs.back().first + runs.back().sectors == low) {
      runs.back().sectors += high - low;
    } else {
      runs.push_back({low, high - low});
    }
  }
  return runs;
}
