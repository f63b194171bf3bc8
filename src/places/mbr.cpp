#include "places/mbr.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>

#include "disk/error_text.h"
#include "places/shown_text.h"
#include "platform/bytes.h"

namespace {

constexpr std::size_t kTableAt = 446;
constexpr std::size_t kEntryBytes = 16;
constexpr std::size_t kSignatureAt = 510;
constexpr std::size_t kMostLinks = 256;

struct TypeName {
  std::uint8_t type;
  std::string_view name;
};

// Microsoft, "PARTITION_INFORMATION_MBR" and "Disk Partition Types"; util-linux, fdisk's list.
constexpr std::array kNames = {
    TypeName{0x01, "FAT12"},
    TypeName{0x04, "FAT16"},
    TypeName{0x05, "extended"},
    TypeName{0x06, "FAT16"},
    TypeName{0x07, "NTFS or exFAT"},
    TypeName{0x0B, "FAT32"},
    TypeName{0x0C, "FAT32"},
    TypeName{0x0E, "FAT16"},
    TypeName{0x0F, "extended"},
    TypeName{0x27, "Windows recovery"},
    TypeName{0x42, "Windows LDM"},
    TypeName{0x82, "Linux swap"},
    TypeName{0x83, "Linux filesystem"},
    TypeName{0x85, "extended (Linux)"},
    TypeName{0x8E, "Linux LVM"},
    TypeName{0xA5, "FreeBSD"},
    TypeName{0xAF, "Apple HFS"},
    TypeName{kProtectiveType, "GPT protective"},
    TypeName{0xEF, "EFI system"},
    TypeName{0xFD, "Linux RAID"},
};

bool is_used(const MbrEntry& entry) {
  return entry.type != 0 && entry.sectors > 0;
}

/// One chain: the extended partition's place, and what was found along it.
struct Chain {
  const DiskReader& disk;
  const MbrEntry& extended;
  std::set<std::int64_t> seen;
  LogicalTable* table;

  std::int64_t end() const { return extended.first + extended.sectors; }

  std::string place(std::int64_t lba) const { return "LBA " + std::to_string(lba * disk.per_logical()); }

  void damage(const std::string& text) const { table->damages.push_back(text); }
};

void take_partition(const Chain& chain, const MbrEntry& entry, std::int64_t base) {
  constexpr int kFirstNumber = 5;
  const int number = kFirstNumber + static_cast<int>(chain.table->partitions.size());
  const std::int64_t first = base + entry.first;
  if (!chain.disk.has(first + entry.sectors - 1)) {
    chain.damage("Logical partition " + std::to_string(number) + " lies beyond the end of the disk.");
  } else if (first < chain.extended.first || first + entry.sectors > chain.end()) {
    chain.damage("Logical partition " + std::to_string(number) + " lies outside its extended partition.");
  }
  chain.table->partitions.push_back(mbr_partition(number, entry, base, chain.disk.per_logical()));
}

/// Takes what the table at logical sector `lba` lists. Gives the place of the next one, or -1 at the chain's end.
std::int64_t follow(Chain* chain, std::int64_t lba) {
  constexpr std::int64_t kEnd = -1;
  const std::string name = "The extended partition table at " + chain->place(lba);
  if (lba >= chain->disk.held) {
    chain->table->missing.push_back(name + " is not in the buffer. Read " + chain->place(lba) +
                                    " to see that sector; \"sectorix /D:n /OP:SHOW /START:0\" lists all logical "
                                    "partitions.");
    return kEnd;
  }
  std::vector<std::uint8_t> sector(static_cast<std::size_t>(chain->disk.logical));
  const std::uint32_t code = chain->disk.read(lba, sector);
  if (code != 0) {
    chain->damage(name + " cannot be read: " + coded_error_text(code));
    return kEnd;
  }
  if (!has_boot_signature(sector)) {
    chain->damage(name + " has no signature: what follows it is not known.");
    return kEnd;
  }
  std::int64_t next = kEnd;
  for (const MbrEntry& entry : decode_mbr(sector)) {
    if (!is_used(entry)) continue;
    if (!is_extended(entry.type)) {
      take_partition(*chain, entry, lba);
    } else if (next == kEnd) {
      next = chain->extended.first + entry.first;
    }
  }
  if (next == kEnd) return kEnd;
  if (next >= chain->end() || !chain->disk.has(next)) {
    chain->damage(name + " names a next one at " + chain->place(next) + ", outside the extended partition.");
    return kEnd;
  }
  if (!chain->seen.insert(next).second) {
    chain->damage(name + " leads back to " + chain->place(next) + ".");
    return kEnd;
  }
  if (chain->seen.size() > kMostLinks) {
    chain->damage("More than " + std::to_string(kMostLinks) + " extended partition tables follow each other.");
    return kEnd;
  }
  return next;
}

}  // namespace

bool has_boot_signature(std::span<const std::uint8_t> sector) {
  return sector.size() >= kSignatureAt + 2 && sector[kSignatureAt] == 0x55 && sector[kSignatureAt + 1] == 0xAA;
}

std::array<MbrEntry, 4> decode_mbr(std::span<const std::uint8_t> sector) {
  std::array<MbrEntry, 4> entries{};
  std::size_t at = kTableAt;
  for (MbrEntry& entry : entries) {
    if (at + kEntryBytes > sector.size()) break;
    entry = {.status = sector[at],
             .type = sector[at + 4],
             .first = bytes::le32(sector, at + 8),
             .sectors = bytes::le32(sector, at + 12)};
    at += kEntryBytes;
  }
  return entries;
}

std::string mbr_type_name(std::uint8_t type) {
  const auto* const row =
      std::find_if(kNames.begin(), kNames.end(), [&](const TypeName& entry) { return entry.type == type; });
  return row == kNames.end() ? "type " + hex_digits(type, 2) : std::string(row->name);
}

DiskPartition mbr_partition(int number, const MbrEntry& entry, std::int64_t base, std::int64_t per_logical) {
  return {.number = number,
          .first_lba = (base + entry.first) * per_logical,
          .sectors = entry.sectors * per_logical,
          .type = mbr_type_name(entry.type),
          .holds_others = is_extended(entry.type)};
}

LogicalTable read_logical(const DiskReader& disk, const std::array<MbrEntry, 4>& primaries) {
  LogicalTable table;
  for (const MbrEntry& extended : primaries) {
    if (!is_used(extended) || !is_extended(extended.type)) continue;
    Chain chain{.disk = disk, .extended = extended, .seen = {extended.first}, .table = &table};
    if (!disk.has(extended.first)) {
      chain.damage("The extended partition at " + chain.place(extended.first) + " lies beyond the end of the disk.");
      continue;
    }
    for (std::int64_t lba = extended.first; lba >= 0;) lba = follow(&chain, lba);
  }
  return table;
}
