#include "virtualdisk/disk_file.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <set>
#include <utility>

#include "virtualdisk/line_reader.h"

namespace virtualdisk {
namespace {

constexpr std::size_t kMostAttributes = 30;  // entries of a SMART page
constexpr std::size_t kLongestName = 4096;
constexpr std::int64_t kMaxRaw = (std::int64_t{1} << 48) - 1;

template <typename Value, std::size_t N>
Value choice(LineReader& line, const char* what, const std::array<std::pair<std::string_view, Value>, N>& choices) {
  const std::string_view word = line.word(what);
  for (const auto& [name, value] : choices) {
    if (word == name) return value;
  }
  line.fail("unknown " + std::string(what) + ": " + std::string(word));
  return choices.front().second;
}

Op op(LineReader& line) {
  constexpr std::array<std::pair<std::string_view, Op>, 3> kOps = {
      {{"read", Op::read}, {"write", Op::write}, {"any", Op::any}}};
  return choice(line, "kind of transfer", kOps);
}

Range range(LineReader& line) {
  const std::int64_t first = line.number("first sector", 0, kMaxSectors);
  return {first, line.number("count", 1, kMaxSectors)};
}

std::uint8_t byte(LineReader& line, const char* what, std::int64_t low) {
  constexpr std::int64_t kHigh = 255;
  return static_cast<std::uint8_t>(line.number(what, low, kHigh));
}

void read_sectors(LineReader& line, int number, DiskFile& disk) {
  disk.sectors = line.number("sectors", 1, kMaxSectors);
  disk.sectors_line = number;
}

std::int64_t sector_bytes(LineReader& line) {
  constexpr std::array<std::pair<std::string_view, std::int64_t>, 2> kSizes = {{{"512", 512}, {"4096", 4096}}};
  return choice(line, "bytes of a sector, 512 or 4096", kSizes);
}

void read_logical(LineReader& line, int number, DiskFile& disk) {
  disk.logical = sector_bytes(line);
  disk.logical_line = number;
}

void read_physical(LineReader& line, int /*number*/, DiskFile& disk) {
  disk.physical = sector_bytes(line);
}

void read_image(LineReader& line, int number, DiskFile& disk) {
  disk.image = {line.text("image file", kLongestName), number};
}

void read_readonly(LineReader& /*line*/, int /*number*/, DiskFile& disk) {
  disk.readonly = true;
}

void read_denied(LineReader& /*line*/, int /*number*/, DiskFile& disk) {
  disk.denied = true;
}

void read_model(LineReader& line, int /*number*/, DiskFile& disk) {
  disk.model = line.text("model", 40);
}

void read_serial(LineReader& line, int /*number*/, DiskFile& disk) {
  disk.serial = line.text("serial", 20);
}

void read_firmware(LineReader& line, int /*number*/, DiskFile& disk) {
  disk.firmware = line.text("firmware", 8);
}

void read_bus(LineReader& line, int /*number*/, DiskFile& disk) {
  constexpr std::array<std::pair<std::string_view, Bus>, 8> kBuses = {{{"ata", Bus::ata},
                                                                       {"scsi", Bus::scsi},
                                                                       {"miniport", Bus::miniport},
                                                                       {"none", Bus::none},
                                                                       {"nvme", Bus::nvme},
                                                                       {"usb", Bus::usb},
                                                                       {"sas", Bus::sas},
                                                                       {"raid", Bus::raid}}};
  disk.bus = choice(line, "bus", kBuses);
  const std::string_view more = line.peek();
  if (disk.bus == Bus::nvme && more == "hidden") disk.bus = Bus::nvme_hidden;
  if (disk.bus == Bus::usb && more == "sat") disk.bus = Bus::usb_sat;
  if (disk.bus == Bus::nvme_hidden || disk.bus == Bus::usb_sat) line.word("bus");
}

void read_geometry(LineReader& line, int /*number*/, DiskFile& disk) {
  constexpr std::int64_t kMost = UINT32_MAX;
  disk.no_geometry = line.peek() == "none";
  if (disk.no_geometry) {
    line.word("geometry");
    return;
  }
  Geometry geometry;
  geometry.cylinders = line.number("cylinders", 0, INT64_MAX);
  geometry.heads = line.number("heads", 0, kMost);
  geometry.sectors = line.number("sectors per track", 0, kMost);
  disk.geometry = geometry;
}

void read_length(LineReader& line, int /*number*/, DiskFile& disk) {
  disk.no_length = line.peek() == "none";
  if (disk.no_length) {
    line.word("length");
  } else {
    disk.length = line.number("length", 0, INT64_MAX);
  }
}

void read_smart(LineReader& line, int /*number*/, DiskFile& disk) {
  const std::array<std::pair<std::string_view, bool*>, 4> states = {{{"off", &disk.smart_off},
                                                                     {"nobit", &disk.smart_nobit},
                                                                     {"atapi", &disk.smart_atapi},
                                                                     {"disabled", &disk.smart_disabled}}};
  if (!line.at_end() && std::isdigit(static_cast<unsigned char>(line.peek().front())) == 0) {
    *choice(line, "word after smart", states) = true;
    return;
  }
  constexpr std::int64_t kMaxFlags = 0xFFFF;
  Attribute attribute;
  attribute.id = byte(line, "attribute id", 1);
  attribute.flags = static_cast<std::uint16_t>(line.number("flags", 0, kMaxFlags));
  attribute.current = byte(line, "current value", 0);
  attribute.worst = byte(line, "worst value", 0);
  attribute.threshold = byte(line, "threshold", 0);
  attribute.raw = static_cast<std::uint64_t>(line.number("raw value", 0, kMaxRaw));
  disk.attributes.push_back(attribute);
  if (disk.attributes.size() > kMostAttributes) line.fail("more than 30 attributes");
}

void read_identify(LineReader& line, int number, DiskFile& disk) {
  disk.identify = {line.text("identify file", kLongestName), number};
}

void read_attributes(LineReader& line, int number, DiskFile& disk) {
  disk.attribute_page = {line.text("attributes file", kLongestName), number};
}

void read_thresholds(LineReader& line, int number, DiskFile& disk) {
  disk.threshold_page = {line.text("thresholds file", kLongestName), number};
}

void read_serial_property(LineReader& line, int /*number*/, DiskFile& disk) {
  disk.serial_property = line.text("serial number", 40);
}

void read_controller(LineReader& line, int number, DiskFile& disk) {
  disk.controller_page = {line.text("controller file", kLongestName), number};
}

HealthValue health_value(LineReader& line) {
  const HealthField* const field = health_field(line.word("field"));
  return {field, static_cast<std::uint64_t>(line.number("value", 0, INT64_MAX))};
}

void read_health(LineReader& line, int number, DiskFile& disk) {
  if (health_field(line.peek()) != nullptr) {
    disk.health_values.push_back(health_value(line));
    return;
  }
  const bool later = line.peek() == "later";
  if (later) line.word("later");
  NamedFile& page = later ? disk.later_health_page : disk.health_page;
  if (!page.name.empty()) line.fail("a second health file");
  page = {line.text("health file or field", kLongestName), number};
}

void read_grow(LineReader& line, int number, DiskFile& disk) {
  constexpr std::array<std::pair<std::string_view, Event>, 6> kEvents = {{{"read", Event::read},
                                                                          {"write", Event::write},
                                                                          {"read-error", Event::read_error},
                                                                          {"write-error", Event::write_error},
                                                                          {"slow", Event::slow},
                                                                          {"snapshot", Event::snapshot}}};
  if (health_field(line.peek()) != nullptr) {
    const HealthValue step = health_value(line);
    if (line.word("\"on\"") != "on") line.fail("grow FIELD STEP on EVENT is expected");
    disk.health_growth.push_back({step, choice(line, "event", kEvents)});
    return;
  }
  Growth growth;
  growth.line = number;
  growth.id = byte(line, "attribute id", 1);
  growth.step = static_cast<std::uint64_t>(line.number("step", 0, kMaxRaw));
  if (line.word("\"on\"") != "on") line.fail("grow ID STEP on EVENT is expected");
  growth.event = choice(line, "event", kEvents);
  disk.growth.push_back(growth);
}

void read_fail(LineReader& line, int /*number*/, DiskFile& disk) {
  FailLine fail;
  fail.op = op(line);
  fail.range = range(line);
  if (!line.at_end()) fail.code = static_cast<std::uint32_t>(line.number("error code", 1, UINT32_MAX));
  disk.fails.push_back(fail);
}

void read_heal(LineReader& /*line*/, int /*number*/, DiskFile& disk) {
  disk.heal = true;
}

void read_short(LineReader& line, int /*number*/, DiskFile& disk) {
  const Op kind = op(line);
  disk.shorts.push_back({kind, range(line)});
}

double seconds(LineReader& line) {
  constexpr std::int64_t kDayMilliseconds = 86'400'000;
  return static_cast<double>(line.number("milliseconds", 0, kDayMilliseconds)) / 1000.0;
}

void read_slow(LineReader& line, int /*number*/, DiskFile& disk) {
  const Range where = range(line);
  disk.slows.push_back({where, seconds(line)});
}

void read_requests(LineReader& line, int /*number*/, DiskFile& disk) {
  disk.request_seconds = seconds(line);
}

void read_rate(LineReader& line, int /*number*/, DiskFile& disk) {
  disk.outer_rate = line.positive("outer rate");
  disk.inner_rate = line.at_end() ? disk.outer_rate : line.positive("inner rate");
}

void read_stray(LineReader& line, int /*number*/, DiskFile& disk) {
  const Range where = range(line);
  disk.strays.push_back({where, line.number("offset", -kMaxSectors, kMaxSectors)});
}

void read_drop(LineReader& line, int /*number*/, DiskFile& disk) {
  disk.drops.push_back(range(line));
}

void read_vanish(LineReader& line, int /*number*/, DiskFile& disk) {
  disk.vanish_after = line.number("transfers", 0, INT64_MAX);
}

/// "X:", upper case; empty, and the line at fault, for anything else.
std::string volume_name(LineReader& line) {
  const std::string_view name = line.word("volume");
  if (name.size() == 2 && std::isalpha(static_cast<unsigned char>(name[0])) != 0 && name[1] == ':') {
    return {static_cast<char>(std::toupper(static_cast<unsigned char>(name[0]))), ':'};
  }
  line.fail("bad volume, a letter and a colon are expected: " + std::string(name));
  return {};
}

void read_volume(LineReader& line, int number, DiskFile& disk) {
  Volume volume;
  volume.name = volume_name(line);
  volume.line = number;
  if (!line.at_end()) {
    const std::string_view state = line.word("busy");
    volume.busy = state == "busy";
    if (!volume.busy) line.fail("unknown word after volume: " + std::string(state));
  }
  for (const Volume& other : disk.volumes) {
    if (other.name == volume.name) line.fail("volume " + volume.name + " is listed twice");
  }
  disk.volumes.push_back(std::move(volume));
}

OwnedSectors owned_sectors(LineReader& line, int number, bool metadata) {
  OwnedSectors owned{
      .volume = volume_name(line), .range = range(line), .path = {}, .metadata = metadata, .line = number};
  owned.path = line.text("path", kLongestName);
  if (!owned.path.starts_with('\\')) owned.path.insert(0, 1, '\\');
  return owned;
}

void read_file_line(LineReader& line, int number, DiskFile& disk) {
  disk.owned.push_back(owned_sectors(line, number, false));
}

void read_metadata(LineReader& line, int number, DiskFile& disk) {
  disk.owned.push_back(owned_sectors(line, number, true));
}

struct Directive {
  std::string_view name;
  void (*read)(LineReader&, int, DiskFile&);
  bool once;
};

constexpr std::array<Directive, 32> kDirectives = {{
    {"sectors", read_sectors, true},
    {"logical", read_logical, true},
    {"physical", read_physical, true},
    {"image", read_image, true},
    {"readonly", read_readonly, true},
    {"denied", read_denied, true},
    {"model", read_model, true},
    {"serial", read_serial, true},
    {"firmware", read_firmware, true},
    {"bus", read_bus, true},
    {"geometry", read_geometry, true},
    {"length", read_length, true},
    {"smart", read_smart, false},
    {"identify", read_identify, true},
    {"attributes", read_attributes, true},
    {"thresholds", read_thresholds, true},
    {"serial-property", read_serial_property, true},
    {"controller", read_controller, true},
    {"health", read_health, false},
    {"grow", read_grow, false},
    {"fail", read_fail, false},
    {"heal", read_heal, true},
    {"short", read_short, false},
    {"slow", read_slow, false},
    {"rate", read_rate, true},
    {"requests", read_requests, true},
    {"stray", read_stray, false},
    {"drop", read_drop, false},
    {"vanish", read_vanish, true},
    {"volume", read_volume, false},
    {"file", read_file_line, false},
    {"metadata", read_metadata, false},
}};

/// What is wrong with one line, or an empty text.
std::string read_line(std::string_view text, int number, std::set<std::string_view>& seen, DiskFile& disk) {
  LineReader line(text.substr(0, text.find('#')));
  if (line.at_end()) return {};
  const std::string_view name = line.word("directive");
  const auto* const found =
      std::find_if(kDirectives.begin(), kDirectives.end(), [&](const Directive& row) { return row.name == name; });
  if (found == kDirectives.end()) return "unknown directive: " + std::string(name);
  if (!seen.insert(found->name).second && found->once) return std::string(name) + " is given twice";
  found->read(line, number, disk);
  if (line.error().empty() && !line.at_end()) line.fail("too much on the line: " + std::string(line.peek()));
  return line.error();
}

/// What lines do to each other: line and reason, or an empty reason.
std::pair<int, std::string> check_whole(const DiskFile& disk) {
  if (disk.sectors == 0 && disk.image.name.empty()) return {1, "neither sectors nor image is given"};
  if (disk.physical && *disk.physical < disk.logical) {
    return {disk.logical_line, "a physical sector cannot be smaller than a logical one"};
  }
  for (const Growth& growth : disk.growth) {
    const bool listed = std::any_of(disk.attributes.begin(), disk.attributes.end(),
                                    [&](const Attribute& attribute) { return attribute.id == growth.id; });
    if (!listed && disk.attribute_page.name.empty()) {
      return {growth.line, "no attribute " + std::to_string(growth.id) + " to grow"};
    }
  }
  for (const OwnedSectors& owned : disk.owned) {
    const bool listed = std::any_of(disk.volumes.begin(), disk.volumes.end(),
                                    [&](const Volume& volume) { return volume.name == owned.volume; });
    if (!listed) return {owned.line, "volume " + owned.volume + " is not listed"};
  }
  return {};
}

}  // namespace

std::string complaint(const std::string& file, int line, const std::string& reason) {
  return file + ":" + std::to_string(line) + ": " + reason;
}

ParsedDisk parse_disk_file(std::string_view text, const std::string& name) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  ParsedDisk parsed;
  std::set<std::string_view> seen;
  for (int number = 1; !text.empty(); ++number) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string reason = read_line(text.substr(0, end), number, seen, parsed.disk);
    if (!reason.empty()) {
      parsed.error = complaint(name, number, reason);
      return parsed;
    }
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  const auto [line, reason] = check_whole(parsed.disk);
  if (!reason.empty()) parsed.error = complaint(name, line, reason);
  return parsed;
}

}  // namespace virtualdisk
