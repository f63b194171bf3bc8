#include <array>

#include "platform/system.h"
#include "platform/win32/win_api.h"

namespace platform {

std::string system_volume() {
  std::array<char, MAX_PATH> folder{};
  const UINT length = ::GetSystemWindowsDirectoryA(folder.data(), static_cast<UINT>(folder.size()));
  return length >= 2 && folder[1] == ':' ? std::string(folder.data(), 2) : std::string();
}

}  // namespace platform
