#include "virtualdisk/files.h"

#include <algorithm>
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
  contents->clear();
  std::uint32_t moved = 0;
  do {
    constexpr std::uint32_t kPart = 1U << 16U;
    const auto filled = static_cast<std::uint32_t>(contents->size());
    const std::uint32_t wanted = std::min(kPart, most + 1 - filled);
    contents->resize(filled + wanted);
    if (!platform::ReadFile(file.get(), contents->data() + filled, wanted, &moved)) return refused("cannot be read");
    contents->resize(filled + moved);
  } while (moved != 0 && contents->size() <= most);
  if (contents->size() > most) return "has more than " + std::to_string(most) + " bytes";
  *held = std::move(file);
  return {};
}

}  // namespace virtualdisk
