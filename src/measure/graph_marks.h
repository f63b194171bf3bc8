#pragma once

#include <cstdint>
#include <vector>

#include "measure/rate_map.h"

/// A place on the graph that had slow or stalled transfers, or errors: neighbouring pixel columns as one, a longer row
/// of them evenly cut into pieces, so that marks can be told from one another.
struct GraphMark {
  bool error = false;
  bool stalled = false;    // else slow
  std::int64_t pixel = 0;  // where it stands: the middle of its columns
  std::int64_t first_lba = 0;
  std::int64_t end_lba = 0;  // the first LBA behind it
  double lowest_rate = 0.0;  // MB/s; 0 where nothing was timed
  double longest = 0.0;      // seconds
};

/// The marks of a graph `pixels` wide: slow, stalled where none was slow too, errors, each kind from left to right. A
/// mark stands for at most `widest` pixels.
std::vector<GraphMark> graph_marks(const RateMap& map, std::int64_t pixels, std::int64_t widest);
