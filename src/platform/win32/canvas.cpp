#include "platform/win32/canvas.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace platform {

namespace {

COLORREF code_of(Color color) {
  return RGB(color.red, color.green, color.blue);
}

Color system_color(int index) {
  const COLORREF color = ::GetSysColor(index);
  return {GetRValue(color), GetGValue(color), GetBValue(color)};
}

/// Selects an object for as long as it lives, and deletes it then.
class Selected {
 public:
  Selected(HDC device, HGDIOBJ object) : device_(device), object_(object), before_(::SelectObject(device, object)) {}
  Selected(const Selected&) = delete;
  Selected& operator=(const Selected&) = delete;
  ~Selected() {
    ::SelectObject(device_, before_);
    ::DeleteObject(object_);
  }

 private:
  HDC device_;
  HGDIOBJ object_;
  HGDIOBJ before_;
};

HPEN make_pen(const Pen& pen) {
  if (pen.width <= 1) return ::CreatePen(PS_SOLID, 1, code_of(pen.color));
  const LOGBRUSH brush{BS_SOLID, code_of(pen.color), 0};
  return ::ExtCreatePen(PS_GEOMETRIC | PS_SOLID | PS_ENDCAP_FLAT | PS_JOIN_ROUND, static_cast<DWORD>(pen.width), &brush,
                        0, nullptr);
}

void stroke(HDC device, Point from, Point to) {
  ::MoveToEx(device, from.x, from.y, nullptr);
  ::LineTo(device, to.x, to.y);
}

/// Dashes three times as long as wide: the system's own are one pixel wide or none, depending on the device.
void stroke_dashes(HDC device, Point from, Point to, int width) {
  const double length = std::hypot(to.x - from.x, to.y - from.y);
  const double dash = 5.0 * width;
  const auto at = [&](double way) {
    const double share = std::min(way / length, 1.0);
    return Point{from.x + static_cast<int>(std::lround((to.x - from.x) * share)),
                 from.y + static_cast<int>(std::lround((to.y - from.y) * share))};
  };
  const auto dashes = static_cast<int>(std::ceil(length / (2.0 * dash)));
  for (int i = 0; i < dashes; ++i) stroke(device, at(2.0 * dash * i), at(2.0 * dash * i + dash));
}

}  // namespace

Size size_of(const Canvas& canvas) {
  return canvas.size;
}

int dpi_of(const Canvas& canvas) {
  return canvas.dpi;
}

SystemColors colors_of(const Canvas& /*canvas*/) {
  HIGHCONTRASTA contrast{};
  contrast.cbSize = sizeof(contrast);
  ::SystemParametersInfoA(SPI_GETHIGHCONTRAST, sizeof(contrast), &contrast, 0);
  return {system_color(COLOR_WINDOW), system_color(COLOR_WINDOWTEXT), system_color(COLOR_BTNFACE),
          system_color(COLOR_HIGHLIGHT), (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0};
}

void fill(Canvas* canvas, const Rect& place, Color color) {
  const RECT area{place.x, place.y, place.x + place.width, place.y + place.height};
  ::SetDCBrushColor(canvas->device, code_of(color));
  ::FillRect(canvas->device, &area, static_cast<HBRUSH>(::GetStockObject(DC_BRUSH)));
}

void draw_line(Canvas* canvas, Point from, Point to, const Pen& pen) {
  const Selected selected(canvas->device, make_pen(pen));
  if (pen.dashed) {
    stroke_dashes(canvas->device, from, to, pen.width);
  } else {
    stroke(canvas->device, from, to);
  }
}

void draw_polyline(Canvas* canvas, std::span<const Point> points, const Pen& pen) {
  const Selected selected(canvas->device, make_pen(pen));
  std::vector<POINT> corners;
  corners.reserve(points.size());
  for (const Point& point : points) corners.push_back({point.x, point.y});
  ::Polyline(canvas->device, corners.data(), static_cast<int>(corners.size()));
}

void draw_mark(Canvas* canvas, Mark mark, Point center, int size, const Pen& pen) {
  const int half = size / 2;
  const int left = center.x - half;
  const int top = center.y - half;
  const int right = left + size;
  const int bottom = top + size;
  const Selected selected(canvas->device, make_pen(pen));
  if (mark == Mark::cross) {
    stroke(canvas->device, {left, top}, {right, bottom});
    stroke(canvas->device, {left, bottom}, {right, top});
  } else {
    const POINT corners[] = {{center.x, top}, {right, bottom}, {left, bottom}};
    HGDIOBJ const brush = ::SelectObject(canvas->device, ::GetStockObject(NULL_BRUSH));
    ::Polygon(canvas->device, corners, 3);
    ::SelectObject(canvas->device, brush);
  }
}

void draw_dots(Canvas* canvas, std::span<const Point> centers, int size, Color color) {
  HGDIOBJ const before = ::SelectObject(canvas->device, ::GetStockObject(DC_BRUSH));
  ::SetDCBrushColor(canvas->device, code_of(color));
  const int half = size / 2;
  for (const Point& center : centers) {
    ::PatBlt(canvas->device, center.x - half, center.y - half, size, size, PATCOPY);
  }
  ::SelectObject(canvas->device, before);
}

void draw_text(Canvas* canvas, const Rect& place, std::string_view text, Align align, Color color) {
  RECT area{place.x, place.y, place.x + place.width, place.y + place.height};
  const UINT side = align == Align::left ? DT_LEFT : align == Align::right ? DT_RIGHT : DT_CENTER;
  ::SetBkMode(canvas->device, TRANSPARENT);
  ::SetTextColor(canvas->device, code_of(color));
  ::DrawTextA(canvas->device, text.data(), static_cast<int>(text.size()), &area,
              side | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_NOCLIP);
}

Size text_size(const Canvas& canvas, std::string_view text) {
  RECT area{};
  ::DrawTextA(canvas.device, text.data(), static_cast<int>(text.size()), &area,
              DT_CALCRECT | DT_SINGLELINE | DT_NOPREFIX);
  return {static_cast<int>(area.right), static_cast<int>(area.bottom)};
}

}  // namespace platform
