#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "measure/read_map.h"

/// What of the disk was read, by this run and, where it resumes one, by those before.
struct RunMap {
  ReadMap map;
  bool resumed = false;                 // the map came from a file: only what it says was not done is read
  std::string file{};                   // that file
  std::int64_t done_before = 0;         // sectors of the run's range that are not read again
  std::optional<std::string> serial{};  // of the drive that the file is about, where it says so
  std::optional<std::int64_t> sectors{};
};

inline RunMap run_map;
