#pragma once

#include <cstdint>
#include <string>

#include "platform/units.h"

/// One partition of a disk, whichever table it stands in.
struct DiskPartition {
  int number = 0;              // as in its table, logical ones from 5 on
  std::int64_t first_lba = 0;  // sectors of 512 bytes, as everywhere
  std::int64_t sectors = 0;
  std::string type;
  std::string name{};         // GPT's
  bool holds_others = false;  // an extended one

  std::int64_t end_lba() const { return first_lba + sectors; }
};
