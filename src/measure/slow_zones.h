#pragma once

#include <array>
#include <cstdint>

#include "measure/transfer_record.h"

/// Slow transfers that touch or follow one another on the disk.
struct SlowZone {
  std::int64_t first_lba = 0;
  std::int64_t end_lba = 0;  // the first LBA behind it
  std::int64_t transfers = 0;
  double longest = 0.0;      // seconds of the longest transfer
  double lowest_rate = 0.0;  // MB/s; 0 where a transfer failed
};

/// The first 256 zones; slow transfers beyond them are counted.
struct SlowZones {
  static constexpr std::size_t kMost = 256;

  std::array<SlowZone, kMost> zones{};
  std::size_t kept = 0;
  std::int64_t transfers_beyond = 0;
};

/// Adds a slow transfer to the zone it touches, the newest first, or opens one.
void add_slow(const Transfer& transfer, SlowZones* zones);
