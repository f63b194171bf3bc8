#pragma once

#include <cstdint>
#include <span>

#include "virtualdisk/disk.h"

/// What a disk answers to control requests. Each gives a system error code, 0 for success, and sets `returned` to the
/// bytes that stand in `out`. `in` and `out` may be the same memory.
///
/// A request that is known but not made of the bytes it must have fails with 87, an output buffer too small for the
/// answer with 122, anything else with 1.
namespace virtualdisk {

/// The IDENTIFY DEVICE data of the disk.
Page identity_of(const VirtualDisk& disk);

/// On the drive itself. Volume requests succeed and change nothing: no file system stands on the drive's own handle.
std::uint32_t control_drive(VirtualDisk& disk, std::uint32_t code, std::span<const std::uint8_t> in,
                            std::span<std::uint8_t> out, std::uint32_t* returned);

/// On "\\.\ScsiN:".
std::uint32_t control_port(VirtualDisk& disk, std::uint32_t code, std::span<const std::uint8_t> in,
                           std::span<std::uint8_t> out, std::uint32_t* returned);

/// A volume of the disk and the handle through which it is asked.
struct AskedVolume {
  std::size_t volume = 0;
  platform::Handle handle = platform::kInvalidHandle;
  bool may_read = false;  // without, no request reaches the file system
};

/// On a volume of the disk. It has one lock; the handle that holds it may not lock twice.
std::uint32_t control_volume(VirtualDisk& disk, const AskedVolume& asked, std::uint32_t code,
                             std::span<const std::uint8_t> in, std::span<std::uint8_t> out, std::uint32_t* returned);

}  // namespace virtualdisk
