#include <algorithm>

#include "pictures/palette.h"
#include "pictures/parts.h"
#include "platform/geometry.h"

using platform::Canvas;
using platform::Rect;

namespace {

/// A filled rectangle with an edge.
void draw_box(Canvas* canvas, const Rect& place, const Palette& palette) {
  const int edge = std::max(platform::scaled(1, dpi_of(*canvas)), 1);
  fill(canvas, place, palette.frame);
  fill(canvas, {place.x + edge, place.y + edge, place.width - 2 * edge, place.height - 2 * edge}, palette.paper);
}

/// The facts in at most `most` rows, side by side where they are more.
std::vector<std::string> in_rows(const std::vector<std::string>& facts, int most) {
  const std::size_t rows = static_cast<std::size_t>(most);
  const std::size_t in_row = std::max<std::size_t>((facts.size() + rows - 1) / rows, 1);
  std::vector<std::string> lines;
  for (std::size_t i = 0; i < facts.size(); ++i) {
    if (i % in_row == 0) {
      lines.push_back(facts[i]);
    } else {
      lines.back() += ", " + facts[i];
    }
  }
  return lines;
}

}  // namespace

void draw_paper(Canvas* canvas) {
  const platform::Size size = size_of(*canvas);
  draw_box(canvas, {0, 0, size.width, size.height}, palette_of(colors_of(*canvas)));
}

void draw_hint(Canvas* canvas, const std::string& hint) {
  const platform::Size size = size_of(*canvas);
  draw_text(canvas, {0, 0, size.width, size.height}, hint, platform::Align::center,
            palette_of(colors_of(*canvas)).faint);
}

void draw_note(Canvas* canvas, platform::Point at, const std::vector<std::string>& facts) {
  const Palette palette = palette_of(colors_of(*canvas));
  const int dpi = dpi_of(*canvas);
  const int inset = platform::scaled(6, dpi);
  const int row = platform::scaled(16, dpi);
  const int apart = platform::scaled(14, dpi);
  const platform::Size size = size_of(*canvas);
  const std::vector<std::string> lines = in_rows(facts, std::max((size.height - 3 * inset) / row, 1));
  int width = 0;
  for (const std::string& line : lines) width = std::max(width, platform::text_size(*canvas, line).width);
  Rect box{at.x + apart, at.y + apart, width + 2 * inset, static_cast<int>(lines.size()) * row + 2 * inset};
  if (box.x + box.width + inset > size.width) box.x = std::max(at.x - apart - box.width, 0);
  box.y = std::clamp(box.y, 0, std::max(size.height - box.height - inset, 0));
  draw_box(canvas, box, palette);
  int y = box.y + inset;
  for (const std::string& line : lines) {
    draw_text(canvas, {box.x + inset, y, width, row}, line, platform::Align::left, palette.text);
    y += row;
  }
}
