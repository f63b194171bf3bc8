#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "places/disk_partition.h"
#include "places/disk_reader.h"
#include "places/gpt_types.h"

/// The GUID partition table (UEFI specification, section 5.3): a header in logical sector 1 with the place of its
/// entries, and the same again at the disk's end.

/// The fields of a header. Places are logical sectors; one that no disk can have is kMostLogical.
struct GptHeader {
  std::uint32_t revision = 0;
  std::uint32_t bytes = 0;  // of the header, which its checksum covers
  std::uint32_t checksum = 0;
  std::int64_t my_lba = 0;
  std::int64_t other_lba = 0;  // of the backup, or the backup's of the first
  std::int64_t first_usable = 0;
  std::int64_t last_usable = 0;
  std::array<std::uint8_t, kGuidBytes> disk{};
  std::int64_t entries_lba = 0;
  std::uint32_t entries = 0;
  std::uint32_t entry_bytes = 0;
  std::uint32_t entries_checksum = 0;

  std::int64_t table_bytes() const { return std::int64_t{entries} * entry_bytes; }
};

/// Nothing where the sector does not begin with "EFI PART" or is too short.
std::optional<GptHeader> decode_gpt_header(std::span<const std::uint8_t> sector);

/// What is wrong with the header of `sector`, read from logical sector `lba`, for the end of a sentence; empty when all
/// is well.
std::string gpt_header_fault(const GptHeader& header, std::span<const std::uint8_t> sector, std::int64_t lba);

/// The partitions of a table's entries, of `entry_bytes` each; those without a type are left out. A length below 0 is
/// that of an entry whose last sector stands before its first.
std::vector<DiskPartition> decode_gpt_entries(std::span<const std::uint8_t> table, std::uint32_t entry_bytes,
                                              std::int64_t per_logical);

/// A disk's table as it was found. Places count sectors of 512 bytes from here on, and those of `header` as well.
struct GptTable {
  std::optional<GptHeader> header;  // the one whose entries are shown
  std::int64_t header_lba = 0;
  std::int64_t backup_lba = -1;  // of a backup without fault that says the same as the first; else -1
  std::vector<DiskPartition> partitions;
  std::vector<std::string> damages;  // sentences
  std::vector<std::string> missing;  // sentences: what a buffer does not hold, and what to read to have it there
};

/// Reads both headers and the entries of both. The entries shown are those of the first header without fault; where
/// both have one, of the first that leads to any. Of a buffer only the first header and its entries are read, as far as
/// the buffer holds them.
GptTable read_gpt(const DiskReader& disk);
