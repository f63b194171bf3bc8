#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

/// Where a volume's file system keeps its clusters, from the volume's first sector.

enum class FileSystem : std::uint8_t { ntfs, fat12, fat16, fat32, exfat };

/// "NTFS", "FAT16", "exFAT".
const char* file_system_name(FileSystem kind);

/// Places and lengths are bytes from the volume's start.
struct BootSector {
  FileSystem kind = FileSystem::ntfs;
  std::int64_t bytes_per_sector = 0;
  std::int64_t bytes_per_cluster = 0;
  std::int64_t fat_start = 0;  // the file allocation tables; nothing between the two on NTFS
  std::int64_t fat_end = 0;
  std::int64_t heap_start = 0;  // where the cluster lies that Windows calls number 0
  std::int64_t clusters = 0;
  std::int64_t first_number = 0;  // of that cluster in the file system's own count: 2 on FAT and exFAT

  std::int64_t heap_end() const { return heap_start + clusters * bytes_per_cluster; }
};

/// Nothing for a sector that is none of these file systems', or whose numbers cannot be: NTFS, FAT12, FAT16 and FAT32
/// (Microsoft, "FAT: General Overview of On-Disk Format" 1.03, for both the parameter block), exFAT (Microsoft, "exFAT
/// file system specification", section 3.1).
std::optional<BootSector> decode_boot_sector(std::span<const std::uint8_t> sector);

/// What the file system keeps at a byte before its clusters or behind them: "boot sector", "file allocation table".
std::string own_area_name(const BootSector& boot, std::int64_t byte);
