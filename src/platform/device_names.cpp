#include <algorithm>
#include <array>
#include <cctype>
#include <string>

#include "platform/system.h"

namespace platform {

namespace {

/// In capitals, with the system's own slash.
std::string plain(std::string_view name) {
  std::string text(name);
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return c == '/' ? '\\' : static_cast<char>(std::toupper(c)); });
  return text;
}

/// `name` is the last part of a path, and may be "C:NUL".
bool is_reserved(std::string_view name) {
  constexpr std::array<std::string_view, 6> kNames = {"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$"};
  const bool drive = name.size() > 1 && name[1] == ':' && name[0] >= 'A' && name[0] <= 'Z';
  if (drive) name.remove_prefix(2);
  std::string_view stem = name.substr(0, name.find_first_of(".:"));
  stem.remove_prefix(std::min(stem.find_first_not_of(' '), stem.size()));
  stem = stem.substr(0, stem.find_last_not_of(' ') + 1);
  if (std::find(kNames.begin(), kNames.end(), stem) != kNames.end()) return true;
  const bool port = stem.size() == 4 && (stem.starts_with("COM") || stem.starts_with("LPT"));
  return port && stem[3] >= '1' && stem[3] <= '9';
}

}  // namespace

bool names_device(std::string_view name) {
  const std::string path = plain(name);
  constexpr std::array<std::string_view, 3> kSpaces = {R"(\\.\)", R"(\\?\)", R"(\??\)"};
  return std::any_of(kSpaces.begin(), kSpaces.end(), [&](std::string_view space) { return path.starts_with(space); }) ||
         is_reserved(std::string_view(path).substr(path.find_last_of('\\') + 1));
}

}  // namespace platform
