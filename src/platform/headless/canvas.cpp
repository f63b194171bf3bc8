#include "platform/headless/canvas.h"

namespace platform {

using headless::Drawn;

Size size_of(const Canvas& canvas) {
  return canvas.size;
}

int dpi_of(const Canvas& canvas) {
  return canvas.dpi;
}

SystemColors colors_of(const Canvas& canvas) {
  return canvas.colors;
}

void fill(Canvas* canvas, const Rect& place, Color color) {
  canvas->drawn.push_back({Drawn::What::fill, place, {}, {color}, {}, {}});
}

void draw_line(Canvas* canvas, Point from, Point to, const Pen& pen) {
  canvas->drawn.push_back({Drawn::What::line, {}, {from, to}, pen, {}, {}});
}

void draw_polyline(Canvas* canvas, std::span<const Point> points, const Pen& pen) {
  canvas->drawn.push_back({Drawn::What::polyline, {}, {points.begin(), points.end()}, pen, {}, {}});
}

void draw_mark(Canvas* canvas, Mark mark, Point center, int size, const Pen& pen) {
  canvas->drawn.push_back({Drawn::What::mark, {0, 0, size, size}, {center}, pen, mark, {}});
}

void draw_dots(Canvas* canvas, std::span<const Point> centers, int size, Color color) {
  canvas->drawn.push_back({Drawn::What::dots, {0, 0, size, size}, {centers.begin(), centers.end()}, {color}, {}, {}});
}

void draw_text(Canvas* canvas, const Rect& place, std::string_view text, Align /*align*/, Color color) {
  canvas->drawn.push_back({Drawn::What::text, place, {}, {color}, {}, std::string(text)});
}

Size text_size(const Canvas& canvas, std::string_view text) {
  return {static_cast<int>(text.size()) * 6 * canvas.dpi / 96, 15 * canvas.dpi / 96};
}

}  // namespace platform
