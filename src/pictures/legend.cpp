#include <algorithm>

#include "pictures/parts.h"
#include "platform/geometry.h"

namespace {

using platform::Canvas;
using platform::Mark;
using platform::Pen;
using platform::Point;
using platform::Rect;
using Sign = LegendEntry::Sign;

constexpr int kRow = 18;
constexpr int kSign = 14;
constexpr int kMark = 9;
constexpr int kBox = 11;
constexpr int kBesideSign = 5;
constexpr int kApart = 14;

void draw_sign(Canvas* canvas, const LegendEntry& entry, const Rect& place, const Palette& palette) {
  const int dpi = platform::dpi_of(*canvas);
  const Point center{place.x + place.width / 2, place.y + place.height / 2};
  const int line = std::max(platform::scaled(2, dpi), 2);
  const int box = platform::scaled(kBox, dpi);
  const Rect square{center.x - box / 2, center.y - box / 2, box, box};
  switch (entry.sign) {
    case Sign::none:
      return;
    case Sign::line:
      draw_line(canvas, {place.x, center.y}, {place.x + place.width, center.y}, {entry.color, line});
      return;
    case Sign::dashes:
      draw_line(canvas, {place.x, center.y}, {place.x + place.width, center.y}, {entry.color, line / 2, true});
      return;
    case Sign::box:
      fill(canvas, square, entry.color);
      return;
    case Sign::crossed_box:
      fill(canvas, square, entry.color);
      draw_cell_cross(canvas, square, palette);
      return;
    case Sign::triangle:
    case Sign::cross:
      draw_mark(canvas, entry.sign == Sign::triangle ? Mark::triangle : Mark::cross, center,
                platform::scaled(kMark, dpi), {entry.color, platform::scaled(2, dpi)});
      return;
    case Sign::dot:
      draw_dots(canvas, {&center, 1}, platform::scaled(3, dpi), entry.color);
      return;
  }
}

}  // namespace

int draw_legend(Canvas* canvas, const Rect& place, std::span<const LegendEntry> entries, const Palette& palette) {
  const int dpi = platform::dpi_of(*canvas);
  const int row = platform::scaled(kRow, dpi);
  int x = place.x;
  int y = place.y;
  for (const LegendEntry& entry : entries) {
    const int sign = entry.sign == Sign::none ? 0 : platform::scaled(kSign + kBesideSign, dpi);
    const int width = sign + platform::text_size(*canvas, entry.text).width;
    if (x > place.x && x + width > place.x + place.width) {
      x = place.x;
      y += row;
    }
    draw_sign(canvas, entry, {x, y, platform::scaled(kSign, dpi), row}, palette);
    draw_text(canvas, {x + sign, y, width - sign, row}, entry.text, platform::Align::left,
              entry.sign == Sign::none ? palette.faint : palette.text);
    x += width + platform::scaled(kApart, dpi);
  }
  return y + row - place.y;
}

void draw_cell_cross(Canvas* canvas, const Rect& cell, const Palette& palette) {
  const int inset = std::max(cell.width / 4, 1);
  const int size = cell.width - 2 * inset;
  const Pen pen{palette.paper, std::max(cell.width / 8, 1)};
  draw_mark(canvas, Mark::cross, {cell.x + cell.width / 2, cell.y + cell.height / 2}, size, pen);
}
