#pragma once

#include <span>
#include <string>

#include "app/palette.h"
#include "platform/canvas.h"

/// One entry of a legend: its sign and what it stands for.
struct LegendEntry {
  enum class Sign : std::uint8_t { none, line, dashes, box, crossed_box, triangle, cross, dot };
  Sign sign = Sign::none;
  platform::Color color;
  std::string text;
};

/// Draws the entries from left to right in rows from the top of `place`. Gives the height of the rows.
int draw_legend(platform::Canvas* canvas, const platform::Rect& place, std::span<const LegendEntry> entries,
                const Palette& palette);

/// A cross in a cell: an error of the block map, told by shape as well.
void draw_cell_cross(platform::Canvas* canvas, const platform::Rect& cell, const Palette& palette);
