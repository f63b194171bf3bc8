#include "virtualdisk/files.h"

#include <cctype>

namespace virtualdisk {

OwnedFile::~OwnedFile() {
  if (is_open()) platform::CloseHandle(handle_);
}

std::string resolved(const std::string& name, const std::string& beside) {
  const bool drive = name.size() > 1 && std::isalpha(static_cast<unsigned char>(name[0])) != 0 && name[1] == ':';
  const std::size_t folder = beside.find_last_of("/\\");
  if (drive || name.starts_with('/') || name.starts_with('\\') || folder == std::string::npos) return name;
  return beside.substr(0, folder + 1) + name;
}

std::string base_name(const std::string& path) {
  return path.substr(path.find_last_of("/\\") + 1);
}

std::string read_file(const std::string& name, std::uint32_t most, std::string* contents, OwnedFile* held) {
  const auto refused = [](const char* what) {
    return std::string(what) + " (error " + std::to_string(platform::GetLastError()) + ")";
  };
  OwnedFile file(
      platform::CreateFileA(name.c_str(), platform::kGenericRead, platform::kShareRead, platform::kOpenExisting, 0));
  if (!file.is_open()) return refused("cannot be opened");
  contents->resize(most + 1);
  std::uint32_t filled = 0;
  std::uint32_t moved = 1;
  while (filled < contents->size() && moved != 0) {
    const auto wanted = static_cast<std::uint32_t>(contents->size()) - filled;
    if (!platform::ReadFile(file.get(), contents->data() + filled, wanted, &moved)) return refused("cannot be read");
    filled += moved;
  }
  if (filled > most) return "has more than " + std::to_string(most) + " bytes";
  contents->resize(filled);
  *held = std::move(file);
  return {};
}

}  // namespace virtualdisk
