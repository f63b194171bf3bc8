#include "app/layout.h"

void place_controls(platform::Size client, int dpi, std::span<platform::Rect> places) {
  constexpr int kDesignDpi = 96;
  int y = 0;
  for (platform::Rect& place : places) {
    place = {0, y, client.width, 24 * dpi / kDesignDpi};
    y += place.height;
  }
}
