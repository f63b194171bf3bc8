#include <algorithm>
#include <array>

#include "platform/system.h"
#include "platform/win32/win_api.h"

// Behind the system's other headers, which it needs.
#include <shlobj.h>

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

std::string local_data_folder() {
  std::array<char, MAX_PATH> folder{};
  const DWORD length = ::GetEnvironmentVariableA("LOCALAPPDATA", folder.data(), static_cast<DWORD>(folder.size()));
  return length < folder.size() ? std::string(folder.data(), length) : std::string();
}

std::string documents_folder() {
  std::array<char, MAX_PATH> folder{};
  const HRESULT found = ::SHGetFolderPathA(nullptr, CSIDL_PERSONAL, nullptr, SHGFP_TYPE_CURRENT, folder.data());
  return found == S_OK ? std::string(folder.data()) : std::string();
}

void make_folder(const std::string& name) {
  ::CreateDirectoryA(name.c_str(), nullptr);
}

std::vector<std::string> files_in(const std::string& folder, const std::string& prefix, const std::string& ending) {
  std::vector<std::string> names;
  WIN32_FIND_DATAA found{};
  HANDLE const search = ::FindFirstFileA((folder + prefix + "*" + ending).c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return names;
  do {
    if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) names.emplace_back(found.cFileName);
  } while (::FindNextFileA(search, &found) != FALSE);
  ::FindClose(search);
  std::sort(names.begin(), names.end());
  return names;
}

std::string full_path(const std::string& name) {
  std::array<char, 4096> path{};
  const DWORD length = ::GetFullPathNameA(name.c_str(), static_cast<DWORD>(path.size()), path.data(), nullptr);
  return length > 0 && length < path.size() ? std::string(path.data(), length) : name;
}

}  // namespace platform
