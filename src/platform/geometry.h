#pragma once

namespace platform {

/// All in pixels, from the left and from the top.
struct Size {
  int width = 0;
  int height = 0;
};

struct Point {
  int x = 0;
  int y = 0;
};

struct Rect {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

/// True for a point in `rect`, its right and lower edges not included.
constexpr bool contains(const Rect& rect, Point point) {
  return point.x >= rect.x && point.y >= rect.y && point.x < rect.x + rect.width && point.y < rect.y + rect.height;
}

}  // namespace platform
