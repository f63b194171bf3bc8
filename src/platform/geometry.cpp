#include "platform/geometry.h"

#include <algorithm>

namespace platform {

namespace {

constexpr int kDesignDpi = 96;

int dpi_that_holds(Size client, Size content) {
  const int by_width = client.width * kDesignDpi / std::max(content.width, 1);
  const int by_height = client.height * kDesignDpi / std::max(content.height, 1);
  return std::max(std::min(by_width, by_height), 1);
}

}  // namespace

int fitting_dpi(Size client, Size least, Size whole, int dpi) {
  const int fitting = std::min(dpi, dpi_that_holds(client, least));
  const int showing_all = dpi_that_holds(client, whole);
  return showing_all >= kDesignDpi ? std::min(fitting, showing_all) : fitting;
}

int scaled(int pixels, int dpi) {
  return (pixels * dpi + kDesignDpi / 2) / kDesignDpi;
}

}  // namespace platform
