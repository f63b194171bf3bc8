#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "platform/geometry.h"

/// What a picture is painted with. All places and widths are pixels; whoever paints scales them by dpi_of().
namespace platform {

struct Color {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;
  friend bool operator==(const Color&, const Color&) = default;
};

struct Pen {
  Color color;
  int width = 1;
  bool dashed = false;
};

/// Marks that differ in shape: a hollow triangle, a diagonal cross.
enum class Mark : std::uint8_t { triangle, cross };

enum class Align : std::uint8_t { left, center, right };

/// The colours that the user has set for windows.
struct SystemColors {
  Color window{255, 255, 255};
  Color text{0, 0, 0};
  Color face{240, 240, 240};
  Color highlight{0, 120, 215};
  bool high_contrast = false;
};

/// The surface of one paint; each platform has its own.
struct Canvas;

Size size_of(const Canvas& canvas);

/// Dots per inch, 96 for a scaling of 100 %.
int dpi_of(const Canvas& canvas);

SystemColors colors_of(const Canvas& canvas);

void fill(Canvas* canvas, const Rect& place, Color color);

/// The last point is not part of a line one pixel wide.
void draw_line(Canvas* canvas, Point from, Point to, const Pen& pen);

void draw_polyline(Canvas* canvas, std::span<const Point> points, const Pen& pen);

/// A mark `size` pixels wide and high around `center`.
void draw_mark(Canvas* canvas, Mark mark, Point center, int size, const Pen& pen);

/// Filled dots `size` pixels wide and high around `centers`; thousands cost little.
void draw_dots(Canvas* canvas, std::span<const Point> centers, int size, Color color);

/// One line of text in the window's face, in the middle of the place's height. ASCII.
void draw_text(Canvas* canvas, const Rect& place, std::string_view text, Align align, Color color);

Size text_size(const Canvas& canvas, std::string_view text);

}  // namespace platform
