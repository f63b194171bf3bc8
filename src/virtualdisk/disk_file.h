#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "virtualdisk/health.h"

/// A disk file's text as plain data. docs/disk-files.md tells a user what each directive does.
namespace virtualdisk {

/// Largest disk: its last sector's byte offset is the last that fits a signed 64-bit position.
inline constexpr std::int64_t kMaxSectors = std::int64_t{1} << 54;

enum class Op : std::uint8_t { read, write, any };
enum class Bus : std::uint8_t { ata, scsi, miniport, none, nvme, nvme_hidden, usb, usb_sat, sas, raid };
enum class Event : std::uint8_t { read, write, read_error, write_error, slow, snapshot };

/// Sectors first to first + count - 1. Both are at most kMaxSectors, so that their sum never overflows.
struct Range {
  std::int64_t first = 0;
  std::int64_t count = 0;
  std::int64_t end() const { return first + count; }
};

struct Attribute {
  std::uint8_t id = 0;
  std::uint16_t flags = 0;
  std::uint8_t current = 0;
  std::uint8_t worst = 0;
  std::uint8_t threshold = 0;
  std::uint64_t raw = 0;  // 48 bits
};

struct Growth {
  std::uint8_t id = 0;
  std::uint64_t step = 0;
  Event event = Event::read;
  int line = 0;
};

struct FailLine {
  Op op = Op::any;
  Range range;
  std::uint32_t code = 0;  // 0: the default of the kind of transfer
};

struct ShortLine {
  Op op = Op::any;
  Range range;
};

struct SlowLine {
  Range range;
  double seconds = 0.0;
};

struct StrayLine {
  Range range;
  std::int64_t offset = 0;  // sectors
};

struct Geometry {
  std::int64_t cylinders = 0;
  std::int64_t heads = 0;
  std::int64_t sectors = 0;
};

struct Volume {
  std::string name;  // "X:", upper case
  bool busy = false;
  int line = 0;
};

/// Sectors of the disk that a file of a volume owns.
struct OwnedSectors {
  std::string volume;  // "X:", upper case
  Range range;
  std::string path;       // from the volume's root, which "\\" begins
  bool metadata = false;  // a file of the file system itself
  int line = 0;
};

/// A file named by a directive, as it stands there; empty where the directive is absent.
struct NamedFile {
  std::string name;
  int line = 0;
};

struct DiskFile {
  std::int64_t sectors = 0;  // 0: the image's size
  NamedFile image;
  std::string model;
  std::string serial;
  std::string firmware;
  NamedFile identify;
  std::optional<Geometry> geometry;
  std::optional<std::int64_t> length;  // bytes
  std::vector<Attribute> attributes;
  NamedFile attribute_page;
  NamedFile threshold_page;
  std::vector<Growth> growth;
  std::optional<std::string> serial_property;
  NamedFile controller_page;
  NamedFile health_page;
  NamedFile later_health_page;
  std::vector<HealthValue> health_values;
  std::vector<HealthGrowth> health_growth;
  std::vector<FailLine> fails;
  std::vector<ShortLine> shorts;
  std::vector<SlowLine> slows;
  double outer_rate = 0.0;  // MB/s (1,048,576 bytes); 0: as fast as the machine
  double inner_rate = 0.0;
  double request_seconds = 0.0;  // that each control request takes
  std::vector<StrayLine> strays;
  std::vector<Range> drops;
  std::optional<std::int64_t> vanish_after;  // transfers
  std::vector<Volume> volumes;
  std::vector<OwnedSectors> owned;
  std::int64_t logical = 512;            // bytes of a sector that it is addressed by
  std::optional<std::int64_t> physical;  // of one that its medium has
  int sectors_line = 0;
  int logical_line = 1;
  Bus bus = Bus::ata;
  bool readonly = false;
  bool denied = false;  // opening it for reading or writing needs rights that the program has not
  bool heal = false;
  bool no_geometry = false;
  bool no_length = false;
  bool smart_off = false;
  bool smart_nobit = false;
  bool smart_atapi = false;
  bool smart_disabled = false;
};

struct ParsedDisk {
  DiskFile disk;
  std::string error;  // empty, or "file:line: reason"
};

/// "file:line: reason", the form of every complaint about a disk file.
std::string complaint(const std::string& file, int line, const std::string& reason);

/// Reads the text of the disk file `name` (for the error line alone); opens nothing.
ParsedDisk parse_disk_file(std::string_view text, const std::string& name);

}  // namespace virtualdisk
