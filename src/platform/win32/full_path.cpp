#include <array>

#include "platform/system.h"
#include "platform/win32/win_api.h"

namespace platform {

std::string full_path(const std::string& name) {
  std::array<char, 4096> path{};
  const DWORD length = ::GetFullPathNameA(name.c_str(), static_cast<DWORD>(path.size()), path.data(), nullptr);
  return length > 0 && length < path.size() ? std::string(path.data(), length) : name;
}

}  // namespace platform
