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

  bool operator==(const Rect&) const = default;
};

/// True for a point in `rect`, its right and lower edges not included.
constexpr bool contains(const Rect& rect, Point point) {
  return point.x >= rect.x && point.y >= rect.y && point.x < rect.x + rect.width && point.y < rect.y + rect.height;
}

/// The dots per inch at which a window is drawn: `dpi`, or less where a client area of `client` pixels cannot hold
/// `least` (pixels at 96 dpi), so that on a small screen with a large scaling nothing is cut. More than 96 only as far
/// as the client area holds `whole`: there a smaller scaling shows what a larger one would leave out. At least 1.
int fitting_dpi(Size client, Size least, Size whole, int dpi);

/// `pixels` at 96 dpi, in pixels at `dpi`, rounded.
int scaled(int pixels, int dpi);

}  // namespace platform
