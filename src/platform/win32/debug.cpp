#include "platform/console.h"
#include "platform/win32/win_api.h"

namespace platform {

void debug_text(const std::string& text) {
  ::OutputDebugStringA((text + "\n").c_str());
}

}  // namespace platform
