#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/units.h"

/// How the program was started.
enum class Mode : std::uint8_t {
  window,        // a window, whose boxes ask
  command_line,  // a window opened with "/D:": nothing asks before it writes
  batch,         // /OP: one command, no boxes, the process ends with its exit code
  list,          // /LIST
  usage,         // /?
  version        // /VERSION
};

inline constexpr std::int64_t kMillion = 1'000'000;

/// A part of a disk, of which the size is not known yet.
struct DiskShare {
  std::int64_t millionths_of_percent = 0;  // 0 to 100 percent

  /// That part of `sectors`, without what is left of a sector.
  std::int64_t of(std::int64_t sectors) const {
    constexpr std::int64_t kAll = 100 * kMillion;
    return sectors / kAll * millionths_of_percent + sectors % kAll * millionths_of_percent / kAll;
  }
};

/// What the command line asked for. Values not given stay empty or 0.
struct Asked {
  Mode mode = Mode::window;
  std::string op;          // of /OP: the command's name in the table of commands
  bool has_op = false;     // /OP was given, whatever it names
  bool writes = false;     // that command writes to the disk
  bool has_range = false;  // and works on a range of it
  /// "/D:n" stands in the text beside our switches, in rising order; with /OP exactly one.
  std::vector<int> named_drives;
  bool ends_without_drive = false;  // a missing drive ends the program: /D:, /OP or text that is no switch was given
  bool quiet = false;
  std::string command_line;                            // as it came
  std::array<std::string, kDriveCount> virtual_disks;  // file to attach as drive n
  std::int64_t start_lba = 0;                          // remembered start LBA; 0 for none
  std::int64_t count = 0;                // remembered sector count, per visit in a random test; 0 for none
  std::optional<DiskShare> start_share;  // of the disk, in place of them until it is identified
  std::optional<DiskShare> count_share;
  std::int32_t passes = 0;             // of a random test; 0 for the default
  std::optional<std::string> slow;     // "AUTO" or MB/s
  std::optional<std::string> pattern;  // hex
  std::optional<std::string> find;     // search string as typed in the box
  std::optional<std::string> serial;   // serial number that the drive must carry
  std::optional<std::string> journal;  // folder of the undo journal
  std::optional<std::string> history;  // folder of the drives' histories
  std::optional<int> max_celsius;      // at which a run pauses
  bool exit_by_verdict = false;
  bool exit_by_bits = false;
  bool pinpoint = false;                // search for the exact bad sectors after READ and SEARCH
  int pinpoint_seconds = 300;           // for how long at most,
  std::int64_t pinpoint_errors = 1000;  // and until how many reads have failed
  std::int64_t stop_after = 0;          // failed transfers that end the run; 0 for none
  std::optional<std::string> report;    // file, or "-" for standard output
  std::optional<std::string> vars;
  std::optional<std::string> csv;
  std::optional<std::string> json;
  std::optional<std::string> graph;
  std::optional<std::string> html;
  std::optional<std::string> badlist;
  std::optional<std::string> map;
  std::optional<std::string> resume;
};

inline Asked asked;

/// True while the process runs the one command of /OP: what would be a box is told on standard error. A cancelled run
/// that leaves its window open for further use is no batch any more.
inline bool in_batch() {
  return asked.mode == Mode::batch;
}
