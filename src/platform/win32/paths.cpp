#include <array>

#include "platform/system.h"
#include "platform/win32/win_api.h"

namespace platform {

std::string system_folder() {
  std::array<char, MAX_PATH> folder{};
  const UINT length = ::GetSystemWindowsDirectoryA(folder.data(), static_cast<UINT>(folder.size()));
  return length < folder.size() ? std::string(folder.data(), length) : std::string();
}

std::string volume_device(const std::string& path) {
  constexpr std::size_t kLongest = 1024;
  std::array<char, kLongest> root{};
  if (::GetVolumePathNameA(path.c_str(), root.data(), static_cast<DWORD>(root.size())) == FALSE) return {};
  std::array<char, kLongest> name{};
  if (::GetVolumeNameForVolumeMountPointA(root.data(), name.data(), static_cast<DWORD>(name.size())) != FALSE) {
    std::string volume = name.data();
    if (!volume.empty() && volume.back() == '\\') volume.pop_back();  // with it, the root folder would be opened
    return volume;
  }
  return ::GetDriveTypeA(root.data()) == DRIVE_REMOTE ? std::string(root.data()) : std::string();
}

std::string full_path(const std::string& name) {
  std::array<char, 4096> path{};
  const DWORD length = ::GetFullPathNameA(name.c_str(), static_cast<DWORD>(path.size()), path.data(), nullptr);
  return length > 0 && length < path.size() ? std::string(path.data(), length) : name;
}

}  // namespace platform
