#include "places/boot_sector.h"

#include <algorithm>
#include <string_view>

#include "platform/bytes.h"

namespace {

using Sector = std::span<const std::uint8_t>;

constexpr std::size_t kBytes = 512;
constexpr std::int64_t kFirstOfFat = 2;
constexpr std::int64_t kMostClusters = std::int64_t{1} << 40;

bool is_power_of_two(std::int64_t value) {
  return value > 0 && (value & (value - 1)) == 0;
}

bool is_named(Sector sector, std::string_view name) {
  constexpr std::size_t kNameAt = 3;
  return std::equal(name.begin(), name.end(), sector.begin() + kNameAt);
}

/// Sectors of a cluster by its byte 13. On NTFS one above 128 is a negative power of two.
std::int64_t sectors_per_cluster(std::uint8_t byte, bool ntfs) {
  constexpr int kLargestPower = 12;
  if (!ntfs || byte <= 0x80) return byte;
  const int power = 0x100 - byte;
  return power <= kLargestPower ? std::int64_t{1} << power : 0;
}

bool has_sectors(const BootSector& boot) {
  return is_power_of_two(boot.bytes_per_sector) && boot.bytes_per_sector >= 256 && boot.bytes_per_sector <= 4096;
}

std::optional<BootSector> decode_ntfs(Sector sector) {
  BootSector boot{.kind = FileSystem::ntfs, .bytes_per_sector = bytes::le16(sector, 11)};
  const std::int64_t per_cluster = sectors_per_cluster(sector[13], true);
  const std::uint64_t sectors = bytes::le64(sector, 40);
  if (!has_sectors(boot) || !is_power_of_two(per_cluster) || sectors > kMostClusters) return {};
  boot.bytes_per_cluster = boot.bytes_per_sector * per_cluster;
  boot.clusters = static_cast<std::int64_t>(sectors) / per_cluster;
  return boot;
}

std::optional<BootSector> decode_exfat(Sector sector) {
  constexpr unsigned kSmallest = 9;
  constexpr unsigned kLargest = 12;
  constexpr unsigned kLargestCluster = 25;  // 32 MiB
  const unsigned sector_shift = sector[108];
  const unsigned cluster_shift = sector[109];
  if (sector_shift < kSmallest || sector_shift > kLargest || sector_shift + cluster_shift > kLargestCluster) return {};
  BootSector boot{
      .kind = FileSystem::exfat, .bytes_per_sector = std::int64_t{1} << sector_shift, .first_number = kFirstOfFat};
  boot.bytes_per_cluster = boot.bytes_per_sector << cluster_shift;
  boot.fat_start = bytes::le32(sector, 80) * boot.bytes_per_sector;
  boot.fat_end = boot.fat_start + std::int64_t{bytes::le32(sector, 84)} * sector[110] * boot.bytes_per_sector;
  boot.heap_start = bytes::le32(sector, 88) * boot.bytes_per_sector;
  boot.clusters = bytes::le32(sector, 92);
  return boot;
}

std::optional<BootSector> decode_fat(Sector sector) {
  BootSector boot{.kind = FileSystem::fat12, .bytes_per_sector = bytes::le16(sector, 11), .first_number = kFirstOfFat};
  const std::int64_t per_cluster = sectors_per_cluster(sector[13], false);
  const std::int64_t reserved = bytes::le16(sector, 14);
  const std::int64_t fats = sector[16];
  const std::int64_t root_bytes = bytes::le16(sector, 17) * std::int64_t{32};
  const std::int64_t small_size = bytes::le16(sector, 19);
  const std::int64_t small_fat = bytes::le16(sector, 22);
  const std::int64_t size = small_size != 0 ? small_size : bytes::le32(sector, 32);
  const std::int64_t fat = small_fat != 0 ? small_fat : bytes::le32(sector, 36);
  const bool jump = sector[0] == 0xEB || sector[0] == 0xE9;
  if (!jump || !has_sectors(boot) || !is_power_of_two(per_cluster) || reserved == 0 || fats == 0 || fats > 2 ||
      fat == 0) {
    return {};
  }
  const std::int64_t root = (root_bytes + boot.bytes_per_sector - 1) / boot.bytes_per_sector;
  const std::int64_t heap = reserved + fats * fat + root;
  if (heap >= size) return {};
  boot.bytes_per_cluster = boot.bytes_per_sector * per_cluster;
  boot.fat_start = reserved * boot.bytes_per_sector;
  boot.fat_end = (reserved + fats * fat) * boot.bytes_per_sector;
  boot.heap_start = heap * boot.bytes_per_sector;
  boot.clusters = (size - heap) / per_cluster;
  // The number of clusters alone tells the three kinds apart.
  constexpr std::int64_t kFewest16 = 4085;
  constexpr std::int64_t kFewest32 = 65525;
  if (boot.clusters >= kFewest16) boot.kind = FileSystem::fat16;
  if (boot.clusters >= kFewest32) boot.kind = FileSystem::fat32;
  return boot;
}

}  // namespace

const char* file_system_name(FileSystem kind) {
  switch (kind) {
    case FileSystem::ntfs:
      return "NTFS";
    case FileSystem::fat12:
      return "FAT12";
    case FileSystem::fat16:
      return "FAT16";
    case FileSystem::fat32:
      return "FAT32";
    case FileSystem::exfat:
      break;
  }
  return "exFAT";
}

std::optional<BootSector> decode_boot_sector(Sector sector) {
  if (sector.size() < kBytes || sector[510] != 0x55 || sector[511] != 0xAA) return {};
  std::optional<BootSector> boot;
  if (is_named(sector, "NTFS    ")) {
    boot = decode_ntfs(sector);
  } else if (is_named(sector, "EXFAT   ")) {
    boot = decode_exfat(sector);
  } else {
    boot = decode_fat(sector);
  }
  return boot && boot->clusters > 0 ? boot : std::nullopt;
}

std::string own_area_name(const BootSector& boot, std::int64_t byte) {
  if (byte >= boot.heap_end()) return boot.kind == FileSystem::ntfs ? "backup boot sector" : "behind the last cluster";
  if (byte >= boot.fat_start && byte < boot.fat_end) return "file allocation table";
  if (byte < boot.fat_start) return "boot sector";
  return boot.kind == FileSystem::exfat ? "before the first cluster" : "root directory";
}
