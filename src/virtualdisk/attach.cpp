#include <algorithm>
#include <array>
#include <cctype>
#include <span>
#include <string_view>
#include <utility>

#include "platform/system.h"
#include "platform/units.h"
#include "virtualdisk/content.h"
#include "virtualdisk/disk.h"
#include "virtualdisk/files.h"

namespace virtualdisk {
namespace {

constexpr std::uint32_t kLongestDiskFile = 16U << 20;

std::string lower_case(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

bool is_bare_image(const std::string& file) {
  constexpr std::array<std::string_view, 4> kEndings = {".img", ".raw", ".bin", ".dd"};
  const std::string name = lower_case(file);
  return std::any_of(kEndings.begin(), kEndings.end(), [&](std::string_view ending) { return name.ends_with(ending); });
}

bool is_demo(const std::string& file) {
  return lower_case(file) == "demo";
}

/// Letters and digits of the file's name.
std::string serial_of(const std::string& file) {
  constexpr std::size_t kLongest = 20;
  std::string serial;
  for (const char c : base_name(file)) {
    if (std::isalnum(static_cast<unsigned char>(c)) != 0 && serial.size() < kLongest) serial += c;
  }
  return serial;
}

/// Fills `page` from the file that a directive names; gives an empty text or the reason.
std::string read_page(const NamedFile& file, const std::string& beside, std::span<std::uint8_t> page, OwnedFile* held) {
  std::string bytes;
  const auto most = static_cast<std::uint32_t>(page.size());
  const std::string reason = read_file(resolved(file.name, beside), most, &bytes, held);
  if (!reason.empty()) return file.name + " " + reason;
  if (bytes.size() != page.size()) return file.name + " has fewer than " + std::to_string(most) + " bytes";
  std::copy(bytes.begin(), bytes.end(), page.begin());
  return {};
}

/// Line and reason of what is wrong; the reason is empty when all is well.
using Wrong = std::pair<int, std::string>;

Wrong open_content(VirtualDisk& disk, const std::string& beside) {
  const DiskFile& file = disk.file;
  disk.readonly = file.readonly;
  disk.sectors = file.sectors;
  if (file.image.name.empty()) return {};
  const std::string name = resolved(file.image.name, beside);
  const std::string reason = disk.content.open_image(name);
  disk.image = platform::full_path(name);
  if (!reason.empty()) return {file.image.line, file.image.name + " " + reason};
  const std::int64_t held = disk.content.image_bytes() / SectorSize;
  if (file.sectors > held) {
    return {file.sectors_line,
            "sectors must be at most the image's " + std::to_string(held) + ": " + std::to_string(file.sectors)};
  }
  disk.readonly = disk.readonly || disk.content.read_only();
  if (disk.sectors == 0) disk.sectors = held;
  return {};
}

Wrong check_sectors(const VirtualDisk& disk) {
  if (disk.sectors % sectors_per_logical(disk) == 0) return {};
  return {disk.file.logical_line, "the disk's " + std::to_string(disk.sectors) +
                                      " sectors of 512 bytes are no whole sectors of " +
                                      std::to_string(disk.file.logical)};
}

Wrong read_pages(VirtualDisk& disk, const std::string& beside) {
  const DiskFile& file = disk.file;
  Page attributes = attribute_page(file.attributes);
  Page thresholds = threshold_page(file.attributes);
  Page identify{};
  Page later{};
  disk.health = make_health(file);
  using Bytes = std::span<std::uint8_t>;
  const std::array<std::pair<const NamedFile*, Bytes>, 6> pages = {{{&file.identify, identify},
                                                                    {&file.attribute_page, attributes},
                                                                    {&file.threshold_page, thresholds},
                                                                    {&file.controller_page, disk.health.controller},
                                                                    {&file.health_page, disk.health.log},
                                                                    {&file.later_health_page, later}}};
  for (const auto& [named, page] : pages) {
    if (named->name.empty()) continue;
    const std::string reason = read_page(*named, beside, page, &disk.held.emplace_back());
    if (!reason.empty()) return {named->line, reason};
  }
  if (!file.identify.name.empty()) disk.identify = identify;
  if (!file.later_health_page.name.empty()) disk.health.later = later;
  for (const HealthValue& value : file.health_values) set_health(disk.health, value);
  for (const Growth& growth : file.growth) {
    if (!has_attribute(attributes, growth.id)) {
      return {growth.line, "no attribute " + std::to_string(growth.id) + " to grow"};
    }
  }
  disk.smart = make_smart(file, attributes, thresholds);
  return {};
}

void fill_defaults(DiskFile& disk, const std::string& file) {
  if (disk.model.empty()) disk.model = "Virtual disk";
  if (disk.serial.empty()) disk.serial = serial_of(file);
  if (disk.firmware.empty()) disk.firmware = "1.0";
}

/// The text of `file` as a plain description; a bare image and the practice disk need no file for it.
ParsedDisk describe(const std::string& file, OwnedFile* held) {
  ParsedDisk parsed;
  if (is_demo(file)) return parse_disk_file(demo_text(), file);
  if (is_bare_image(file)) {
    parsed.disk.image = {file, 1};
    return parsed;
  }
  std::string text;
  const std::string reason =
      platform::names_device(file) ? "is a device, not a file" : read_file(file, kLongestDiskFile, &text, held);
  if (reason.empty()) return parse_disk_file(text, file);
  parsed.error = file + " " + reason;
  return parsed;
}

}  // namespace

std::unique_ptr<VirtualDisk> make_disk(int drive, const std::string& file, std::string* error) {
  auto disk = std::make_unique<VirtualDisk>();
  ParsedDisk parsed = describe(file, &disk->held.emplace_back());
  *error = parsed.error;
  if (!error->empty()) return nullptr;
  fill_defaults(parsed.disk, file);
  disk->drive = drive;
  disk->file = std::move(parsed.disk);
  // A bare image is named from where the program stands, not from beside itself.
  const std::string beside = is_bare_image(file) ? std::string() : file;
  Wrong wrong = open_content(*disk, beside);
  if (wrong.second.empty()) wrong = check_sectors(*disk);
  if (wrong.second.empty()) wrong = read_pages(*disk, beside);
  if (!wrong.second.empty()) {
    *error = is_bare_image(file) ? wrong.second : complaint(file, wrong.first, wrong.second);
    return nullptr;
  }
  disk->faults = Faults(disk->file, disk->sectors);
  disk->locks.assign(disk->file.volumes.size(), platform::kInvalidHandle);
  if (is_demo(file)) fill_demo(disk->content);
  return disk;
}

}  // namespace virtualdisk
