#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// Whether something lies on a physical drive; unknown where the system does not tell.
enum class OnDrive : std::uint8_t { no, yes, unknown };

/// Whether Windows runs from drive `drive`; never from an attached virtual disk.
OnDrive holds_windows(int drive);

/// Whether the file `path`, which need not exist, lies on a volume of drive `drive`, mounted folders included.
OnDrive lies_on_drive(const std::string& path, int drive);

/// A stretch of a disk, in bytes, that a volume lies on.
struct DiskExtent {
  std::uint32_t disk = 0;
  std::int64_t first = 0;
  std::int64_t bytes = 0;
};

/// VOLUME_DISK_EXTENTS. Nothing for a reply without an extent, with more than 32, with fewer bytes than it says that it
/// has, or with a stretch that no disk has.
std::optional<std::vector<DiskExtent>> decode_volume_extents(std::span<const std::uint8_t> reply);

struct VolumeOfDrive {
  std::string name;                 // "E:"
  std::vector<DiskExtent> extents;  // all of them, other disks' too
};

/// The volumes that have a letter, C to Z, and an extent on a drive.
struct VolumesOfDrive {
  std::vector<VolumeOfDrive> found;
  std::string refused{};      // the first letter that the system did not let be asked, where there is one
  std::uint32_t refusal = 0;  // with this system error code
};

/// Asks every letter without access to its contents; of an attached virtual disk, its own letters alone.
VolumesOfDrive volumes_of(int drive);
