#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// A file of this computer, read at once.
struct WholeFile {
  std::uint32_t open_code = 0;  // system error codes, 0 for success
  std::uint32_t read_code = 0;
  std::vector<std::uint8_t> bytes;
};

WholeFile read_whole_file(const std::string& name);
