#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "measure/bad_places.h"
#include "measure/rate_map.h"
#include "platform/geometry.h"

/// A place of the panel's picture, as the pointer finds it.
struct PanelPlace {
  struct Range {
    std::int64_t first_lba = 0;
    std::int64_t end_lba = 0;  // the first LBA behind it
  };

  PixelColumn stretch;         // of the disk: the pixel column or the cell; at a mark its middle column
  bool marked = false;         // a mark stands for the stretch, or the cell has errors or slow transfers
  std::vector<BadRange> bad;   // in the stretch, or in all that its mark stands for
  std::optional<Range> taken;  // by a double click at a mark or a marked cell; elsewhere it takes the start alone
};

/// The place at `point` of the picture as it was last painted; none beside it or without a run.
std::optional<PanelPlace> place_at(platform::Point point);

/// What is known of a place, in lines: its LBAs, its rates in MB/s, its longest transfer in milliseconds, its bad
/// ranges, and at a marked one what a double click takes.
std::vector<std::string> place_lines(const PanelPlace& place);
