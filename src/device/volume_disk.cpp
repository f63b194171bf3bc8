#include "device/volume_disk.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <vector>

#include "platform/bytes.h"
#include "platform/system.h"
#include "virtualdisk/virtualdisk.h"

namespace {

// VOLUME_DISK_EXTENTS (winioctl.h): a count, then extents of 24 bytes from offset 8, each beginning with a disk number.
constexpr std::uint32_t kGetVolumeDiskExtents = 0x560000;
constexpr std::size_t kFirstExtent = 8;
constexpr std::size_t kExtentBytes = 24;
constexpr std::size_t kMostExtents = 32;

/// Whether one of the extents of the volume behind `device` is on `drive`. The system is asked, also where a virtual
/// disk has a volume of that name.
OnDrive has_extent_on(const std::string& device, int drive) {
  const platform::Handle handle = platform::CreateFileA(device.c_str(), 0, platform::kShareRead | platform::kShareWrite,
                                                        platform::kOpenExisting, 0);
  if (handle == platform::kInvalidHandle) return OnDrive::unknown;
  std::array<std::uint8_t, kFirstExtent + kMostExtents * kExtentBytes> extents{};
  std::uint32_t returned = 0;
  const bool answered = platform::DeviceIoControl(handle, kGetVolumeDiskExtents, nullptr, 0, extents.data(),
                                                  static_cast<std::uint32_t>(extents.size()), &returned);
  platform::CloseHandle(handle);
  const std::uint32_t count = bytes::le32(extents, 0);
  if (!answered || count == 0 || count > kMostExtents) return OnDrive::unknown;
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint32_t disk = bytes::le32(extents, kFirstExtent + i * kExtentBytes);
    if (disk == static_cast<std::uint32_t>(drive)) return OnDrive::yes;
  }
  return OnDrive::no;
}

bool is_device_name(const std::string& name) {
  return name.starts_with(R"(\\.\)") || name.starts_with(R"(\\?\)");
}

OnDrive on_real_drive(const std::string& path, int drive) {
  const std::string device = path.empty() ? std::string() : platform::volume_device(path);
  if (device.empty()) return OnDrive::unknown;
  return is_device_name(device) ? has_extent_on(device, drive) : OnDrive::no;  // another computer's
}

/// A virtual disk's volumes are letters alone.
OnDrive on_virtual_drive(const std::string& path, int drive) {
  std::string whole = platform::full_path(path);
  if (is_device_name(whole)) whole.erase(0, 4);
  if (whole.empty()) return OnDrive::no;
  whole[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(whole[0])));
  const std::vector<std::string> volumes = virtualdisk::volumes(drive);
  return std::find(volumes.begin(), volumes.end(), whole.substr(0, 2)) == volumes.end() ? OnDrive::no : OnDrive::yes;
}

}  // namespace

OnDrive holds_windows(int drive) {
  return virtualdisk::attached(drive) ? OnDrive::no : on_real_drive(platform::system_folder(), drive);
}

OnDrive lies_on_drive(const std::string& path, int drive) {
  return virtualdisk::attached(drive) ? on_virtual_drive(path, drive) : on_real_drive(path, drive);
}
