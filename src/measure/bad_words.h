#pragma once

#include <string>
#include <vector>

#include "measure/bad_places.h"

/// Bad ranges in words, the same in the window and in the graph's file.

/// "unreadable: LBA 624000 to 624007"; of a late one with the longest read's time: "slow: LBA 800 to 807, 1200 ms".
std::string bad_range_text(const BadRange& range);

/// The first three ranges, a line each, and "and 4 more" for the rest.
std::vector<std::string> bad_range_lines(const std::vector<BadRange>& ranges);
