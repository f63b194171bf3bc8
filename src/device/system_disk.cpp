#include "device/system_disk.h"

#include <array>
#include <string>

#include "platform/bytes.h"
#include "platform/system.h"
#include "virtualdisk/virtualdisk.h"

namespace {

// VOLUME_DISK_EXTENTS (winioctl.h): a count, then extents of 24 bytes from offset 8, each beginning with a disk number.
constexpr std::uint32_t kGetVolumeDiskExtents = 0x560000;
constexpr std::size_t kFirstExtent = 8;
constexpr std::size_t kExtentBytes = 24;
constexpr std::size_t kMostExtents = 32;

}  // namespace

SystemDisk holds_windows(int drive) {
  if (virtualdisk::attached(drive)) return SystemDisk::no;
  const std::string volume = platform::system_volume();
  if (volume.empty()) return SystemDisk::unknown;
  // The system's own volume, also where a virtual disk has a volume of that letter.
  const std::string path = "\\\\.\\" + volume;
  const platform::Handle handle =
      platform::CreateFileA(path.c_str(), 0, platform::kShareRead | platform::kShareWrite, platform::kOpenExisting, 0);
  if (handle == platform::kInvalidHandle) return SystemDisk::unknown;
  std::array<std::uint8_t, kFirstExtent + kMostExtents * kExtentBytes> extents{};
  std::uint32_t returned = 0;
  const bool answered = platform::DeviceIoControl(handle, kGetVolumeDiskExtents, nullptr, 0, extents.data(),
                                                  static_cast<std::uint32_t>(extents.size()), &returned);
  platform::CloseHandle(handle);
  const std::uint32_t count = bytes::le32(extents, 0);
  if (!answered || count == 0 || count > kMostExtents) return SystemDisk::unknown;
  for (std::size_t i = 0; i < count; ++i) {
    if (bytes::le32(extents, kFirstExtent + i * kExtentBytes) == static_cast<std::uint32_t>(drive))
      return SystemDisk::yes;
  }
  return SystemDisk::no;
}
