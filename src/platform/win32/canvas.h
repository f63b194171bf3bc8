#pragma once

#include "platform/canvas.h"
#include "platform/win32/win_api.h"

namespace platform {

struct Canvas {
  HDC device = nullptr;
  Size size;
  int dpi = 96;
};

}  // namespace platform
