#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

/// The commands that `/OP:` can name.
enum class Operation : std::uint8_t { read, write, random_read, random_write, search, show, smart };

/// What a run was asked for on the command line. Values not given stay empty or 0.
struct Run {
  std::optional<Operation> op;
  int drive = 99;  // of /OP: the one that /D:n names
  bool list = false;
  bool usage = false;
  bool quiet = false;
  bool wants_drive = false;  // a missing drive ends the program: /D:, /OP or text that is no switch was given
  std::string command_line;  // as it came
  std::string searched;      // what is searched for "/D:": without the program's path and our own switches
  std::array<std::string, 8> virtual_disks;  // file to attach as drive n
  std::int64_t start_lba = 0;                // remembered start LBA; 0 for none
  std::int64_t count = 0;                    // remembered sector count, per visit in a random test; 0 for none
  std::int32_t passes = 0;                   // of a random test; 0 for the default
  std::optional<std::string> slow;           // "AUTO" or MB/s
  std::optional<std::string> pattern;        // hex
  std::optional<std::string> find;           // search string as typed in the box
  std::optional<std::string> serial;         // serial number that the drive must carry
  std::optional<std::string> report;         // file, or "-" for standard output
  std::optional<std::string> vars;
  std::optional<std::string> csv;
  std::optional<std::string> json;
  std::optional<std::string> graph;
};

extern Run run;
