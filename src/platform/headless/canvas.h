#pragma once

#include <string>
#include <vector>

#include "platform/canvas.h"

namespace headless {

/// One call on the canvas. `points` are a line's or polyline's corners, the centres of a mark
/// or of dots.
struct Drawn {
  enum class What { fill, line, polyline, mark, dots, text } what = What::fill;
  platform::Rect place;
  std::vector<platform::Point> points;
  platform::Pen pen;
  platform::Mark mark = platform::Mark::triangle;
  std::string text;
};

}  // namespace headless

namespace platform {

/// Keeps what was drawn.
struct Canvas {
  Size size;
  int dpi = 96;
  SystemColors colors;
  std::vector<headless::Drawn> drawn;
};

}  // namespace platform
