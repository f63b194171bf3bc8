#include <algorithm>
#include <cctype>
#include <string>

#include "virtualdisk/state.h"

namespace virtualdisk {
namespace {

bool same(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

bool attached_digit(char digit) {
  return digit >= '0' && digit <= '7' && state.disks[static_cast<std::size_t>(digit - '0')] != nullptr;
}

}  // namespace

std::optional<Target> target_named(std::string_view name) {
  constexpr std::string_view kDrive = "PhysicalDrive";
  constexpr std::string_view kPort = "Scsi";
  if (!name.starts_with(R"(\\.\)") && !name.starts_with(R"(\\?\)")) return {};
  name.remove_prefix(4);
  if (name.size() == kDrive.size() + 1 && same(name.substr(0, kDrive.size()), kDrive) && attached_digit(name.back())) {
    return Target{name.back() - '0', Kind::drive, 0};
  }
  if (name.size() == kPort.size() + 2 && same(name.substr(0, kPort.size()), kPort) && name.back() == ':' &&
      attached_digit(name[kPort.size()])) {
    return Target{name[kPort.size()] - '0', Kind::port, 0};
  }
  for (const auto& disk : state.disks) {
    if (disk == nullptr) continue;
    const std::vector<Volume>& volumes = disk->file.volumes;
    for (std::size_t i = 0; i < volumes.size(); ++i) {
      if (same(name, volumes[i].name)) return Target{disk->drive, Kind::volume, i};
    }
  }
  return {};
}

}  // namespace virtualdisk
