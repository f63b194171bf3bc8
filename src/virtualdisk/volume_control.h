#pragma once

#include <cstdint>
#include <span>

#include "virtualdisk/disk.h"

/// What a mounted volume answers of the disk it lies on and of its clusters (Windows SDK, winioctl.h). Each gives a
/// system error code; with 234, more data, the beginning of the answer stands in `out`. A volume without a partition,
/// or with a file system that is not known here, fails with 1.
namespace virtualdisk {

inline constexpr std::uint32_t kMoreData = 234;  // winerror.h: ERROR_MORE_DATA

/// IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS.
std::uint32_t volume_extents(const VirtualDisk& disk, std::size_t volume, std::span<std::uint8_t> out,
                             std::uint32_t* returned);

/// FSCTL_GET_VOLUME_BITMAP: what a `file` or `metadata` line lists is in use.
std::uint32_t volume_bitmap(const VirtualDisk& disk, std::size_t volume, std::span<const std::uint8_t> in,
                            std::span<std::uint8_t> out, std::uint32_t* returned);

/// FSCTL_LOOKUP_STREAM_FROM_CLUSTER, which NTFS alone answers. Entries for which `out` has no room are counted.
std::uint32_t lookup_streams(const VirtualDisk& disk, std::size_t volume, std::span<const std::uint8_t> in,
                             std::span<std::uint8_t> out, std::uint32_t* returned);

/// A read of the volume's sectors from byte `offset` of it.
std::uint32_t read_volume(VirtualDisk& disk, std::size_t volume, std::uint64_t offset, void* buffer,
                          std::uint32_t bytes, std::uint32_t* moved);

}  // namespace virtualdisk
