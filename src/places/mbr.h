#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "places/disk_partition.h"
#include "places/disk_reader.h"

/// The classic partition table (UEFI specification, section 5.2; the chain of extended ones as fdisk and Windows write
/// it): four entries of 16 bytes from byte 446 of a disk's first sector, the signature 55 AA behind them.

struct MbrEntry {
  std::uint8_t status = 0;
  std::uint8_t type = 0;
  std::int64_t first = 0;  // logical sectors
  std::int64_t sectors = 0;
};

inline constexpr std::uint8_t kProtectiveType = 0xEE;

/// True for the types of a partition that holds a chain of logical ones.
constexpr bool is_extended(std::uint8_t type) {
  return type == 0x05 || type == 0x0F || type == 0x85;
}

bool has_boot_signature(std::span<const std::uint8_t> sector);

/// The four entries of a sector; empty ones where the span does not hold them.
std::array<MbrEntry, 4> decode_mbr(std::span<const std::uint8_t> sector);

/// "NTFS or exFAT"; "type A7" where it has no name here.
std::string mbr_type_name(std::uint8_t type);

/// Entry `number` of a table that begins its count at logical sector `base`.
DiskPartition mbr_partition(int number, const MbrEntry& entry, std::int64_t base, std::int64_t per_logical);

/// The logical partitions of a disk, numbered from 5, and what is wrong with the chains that list them.
struct LogicalTable {
  std::vector<DiskPartition> partitions;
  std::vector<std::string> damages;
  std::vector<std::string> missing;  // sentences: what a buffer does not hold, and what to read
};

/// Follows the chains of the extended partitions among `primaries`. Reads a logical sector for each link, at most 256
/// of a chain, and none of them twice.
LogicalTable read_logical(const DiskReader& disk, const std::array<MbrEntry, 4>& primaries);
