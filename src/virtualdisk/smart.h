#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "virtualdisk/disk_file.h"
#include "virtualdisk/page.h"

namespace virtualdisk {

/// A drive's SMART memory: the two pages it answers and what makes its counters grow.
struct Smart {
  Page attributes{};
  Page thresholds{};
  std::vector<Growth> growth;
  unsigned growing = 0;     // bit per Event that makes something grow
  bool enabled = false;     // ENABLE OPERATIONS has succeeded
  bool page_asked = false;  // READ ATTRIBUTE VALUES has been answered
};

/// The 512 bytes of READ ATTRIBUTE VALUES and READ THRESHOLDS: SFF-8035i, as ATA drives still answer them: 2 bytes of
/// revision, 30 entries of 12 bytes, a checksum in the last byte. At most 30 attributes.
Page attribute_page(std::span<const Attribute> attributes);
Page threshold_page(std::span<const Attribute> attributes);

bool has_attribute(const Page& attributes, std::uint8_t id);

/// The lowest raw byte of attribute `id`; 0 where there is none.
std::uint8_t low_raw_byte(const Page& attributes, std::uint8_t id);

Smart make_smart(const DiskFile& disk, const Page& attributes, const Page& thresholds);

/// True when an attribute that tells of failure to come (bit 0 of its flags) has come down to its threshold.
bool reached_threshold(const Smart& smart);

/// `event` has happened: raw values grow.
void grow(Smart& smart, Event event);

}  // namespace virtualdisk
