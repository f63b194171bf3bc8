#pragma once

#include <span>
#include <string>
#include <vector>

#include "pictures/palette.h"
#include "platform/canvas.h"

/// What the pictures are put together from.

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

inline constexpr int kPictureMargin = 10;  // pixels at 96 dpi

/// The paper and its edge.
void draw_paper(platform::Canvas* canvas);

/// A calm line in the middle of a picture that has nothing to show yet.
void draw_hint(platform::Canvas* canvas, const std::string& hint);

/// A small box of facts beside `at`, inside the canvas: one a line, or several where it is not high enough for that.
void draw_note(platform::Canvas* canvas, platform::Point at, const std::vector<std::string>& facts);
