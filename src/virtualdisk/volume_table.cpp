#include "virtualdisk/volume_table.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "platform/bytes.h"
#include "platform/units.h"

namespace virtualdisk {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// `sectors` sectors of 512 bytes; empty where the disk does not have or give them.
Bytes contents(const VirtualDisk& disk, std::int64_t first, std::int64_t sectors) {
  if (first < 0 || sectors < 1 || first > disk.sectors - sectors) return {};
  Bytes bytes(static_cast<std::size_t>(sectors * SectorSize));
  std::uint32_t moved = 0;
  const std::uint32_t code = disk.content.read(static_cast<std::uint64_t>(first * SectorSize), bytes.data(),
                                               static_cast<std::uint32_t>(bytes.size()), &moved);
  return code == 0 && moved == bytes.size() ? bytes : Bytes();
}

struct Entry {
  std::uint8_t type;
  std::int64_t first;  // sectors of 512 bytes, as everywhere here
  std::int64_t count;
};

bool is_extended(std::uint8_t type) {
  return type == 0x05 || type == 0x0F || type == 0x85;
}

/// The four entries of the table in sector `at`; all empty where none stands there.
std::array<Entry, 4> entries_at(const VirtualDisk& disk, std::int64_t at) {
  std::array<Entry, 4> entries{};
  const Bytes sector = contents(disk, at, 1);
  if (sector.empty() || bytes::le16(sector, 510) != 0xAA55) return entries;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const std::size_t offset = 446 + 16 * i;
    entries.at(i) = {sector[offset + 4], bytes::le32(sector, offset + 8) * sectors_per_logical(disk),
                     bytes::le32(sector, offset + 12) * sectors_per_logical(disk)};
  }
  return entries;
}

void add_logical(const VirtualDisk& disk, std::int64_t extended, std::vector<Range>* found) {
  constexpr int kMostLinks = 64;
  std::int64_t at = extended;
  for (int link = 0; link < kMostLinks && at >= 0; ++link) {
    std::int64_t next = -1;
    for (const Entry& entry : entries_at(disk, at)) {
      if (entry.type == 0 || entry.count == 0) continue;
      if (is_extended(entry.type)) {
        next = extended + entry.first;
      } else {
        found->push_back({at + entry.first, entry.count});
      }
    }
    at = next;
  }
}

void add_gpt(const VirtualDisk& disk, std::vector<Range>* found) {
  constexpr std::size_t kEntryBytes = 128;
  constexpr std::int64_t kEntrySectors = 32;  // of 128 entries
  const std::int64_t logical = sectors_per_logical(disk);
  const Bytes header = contents(disk, logical, 1);
  if (header.empty() || bytes::le64(header, 72) > static_cast<std::uint64_t>(disk.sectors)) return;
  const Bytes table = contents(disk, static_cast<std::int64_t>(bytes::le64(header, 72)) * logical, kEntrySectors);
  for (std::size_t at = 0; at < table.size(); at += kEntryBytes) {
    const std::uint64_t first = bytes::le64(table, at + 32);
    const std::uint64_t last = bytes::le64(table, at + 40);
    if (bytes::le64(table, at) == 0 || last < first || last >= static_cast<std::uint64_t>(disk.sectors)) continue;
    found->push_back(
        {static_cast<std::int64_t>(first) * logical, static_cast<std::int64_t>(last - first + 1) * logical});
  }
}

bool begins_with(const Bytes& sector, std::string_view name) {
  return std::equal(name.begin(), name.end(), sector.begin() + 3);
}

/// Bytes of a boot sector's numbers as sectors of 512; the fields are those of every FAT and of NTFS.
struct Numbers {
  explicit Numbers(const Bytes& sector)
      : per_sector(bytes::le16(sector, 11) / SectorSize),
        per_cluster(sector[13] * per_sector),
        reserved(bytes::le16(sector, 14)),
        fats(sector[16]),
        root_entries(bytes::le16(sector, 17)) {}
  std::int64_t per_sector;  // sectors of 512 in one of the volume's
  std::int64_t per_cluster;
  std::int64_t reserved;
  std::int64_t fats;
  std::int64_t root_entries;
};

}  // namespace

std::vector<Range> partitions(const VirtualDisk& disk) {
  constexpr std::uint8_t kProtective = 0xEE;
  std::vector<Range> found;
  const std::array<Entry, 4> primaries = entries_at(disk, 0);
  if (std::any_of(primaries.begin(), primaries.end(), [](const Entry& e) { return e.type == kProtective; })) {
    add_gpt(disk, &found);
    return found;
  }
  for (const Entry& entry : primaries) {
    if (entry.type != 0 && entry.count != 0 && !is_extended(entry.type)) found.push_back({entry.first, entry.count});
  }
  for (const Entry& entry : primaries) {
    if (is_extended(entry.type)) add_logical(disk, entry.first, &found);
  }
  return found;
}

std::optional<Range> partition_of(const VirtualDisk& disk, std::size_t volume) {
  const std::vector<Range> found = partitions(disk);
  if (volume >= found.size() || found[volume].end() > disk.sectors) return {};
  return found[volume];
}

Range Clusters::touched(const Range& sectors_of_disk) const {
  const std::int64_t begin = std::max<std::int64_t>(sectors_of_disk.first - first, 0);
  const std::int64_t end = std::min(sectors_of_disk.end() - first, count * sectors);
  if (begin >= end) return {};
  return {begin / sectors, (end - 1) / sectors - begin / sectors + 1};
}

std::optional<Clusters> clusters_of(const VirtualDisk& disk, const Range& partition) {
  const Bytes sector = contents(disk, partition.first, 1);
  if (sector.empty() || bytes::le16(sector, 510) != 0xAA55) return {};
  const Numbers numbers(sector);
  if (numbers.per_cluster == 0) return {};
  Clusters clusters{.first = partition.first, .sectors = numbers.per_cluster, .ntfs = begins_with(sector, "NTFS    ")};
  if (!clusters.ntfs) {
    if (numbers.fats == 0 || begins_with(sector, "EXFAT   ")) return {};
    const std::int64_t small_fat = bytes::le16(sector, 22);
    const std::int64_t fat = small_fat != 0 ? small_fat : bytes::le32(sector, 36);
    const std::int64_t root = (numbers.root_entries * 32 / SectorSize + numbers.per_sector - 1) / numbers.per_sector;
    clusters.first += (numbers.reserved + numbers.fats * fat + root) * numbers.per_sector;
  }
  clusters.count = (partition.end() - clusters.first) / clusters.sectors;
  if (clusters.count <= 0) return {};
  return clusters;
}

}  // namespace virtualdisk
