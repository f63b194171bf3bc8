#include "platform/scale.h"

#include <algorithm>

namespace platform {

namespace {
constexpr int kDesignDpi = 96;
}  // namespace

int fitting_dpi(Size client, Size least, int dpi) {
  const int by_width = client.width * kDesignDpi / std::max(least.width, 1);
  const int by_height = client.height * kDesignDpi / std::max(least.height, 1);
  return std::max(std::min({dpi, by_width, by_height}), 1);
}

int scaled(int pixels, int dpi) {
  return (pixels * dpi + kDesignDpi / 2) / kDesignDpi;
}

}  // namespace platform
