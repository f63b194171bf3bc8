#include "device/volume_disk.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "device/kernel32.h"
#include "platform/bytes.h"
#include "platform/system.h"
#include "virtualdisk/virtualdisk.h"

namespace {

// VOLUME_DISK_EXTENTS (winioctl.h): a count, then extents of 24 bytes from offset 8, each beginning with a disk number.
constexpr std::uint32_t kGetVolumeDiskExtents = 0x560000;
constexpr std::size_t kFirstExtent = 8;
constexpr std::size_t kExtentBytes = 24;
constexpr std::size_t kMostExtents = 32;
constexpr std::size_t kReplyBytes = kFirstExtent + kMostExtents * kExtentBytes;

bool is_on(const std::vector<DiskExtent>& extents, int drive) {
  return std::any_of(extents.begin(), extents.end(),
                     [&](const DiskExtent& extent) { return extent.disk == static_cast<std::uint32_t>(drive); });
}

/// Whether one of the extents of the volume behind `device` is on `drive`. The system is asked, also where a virtual
/// disk has a volume of that name.
OnDrive has_extent_on(const std::string& device, int drive) {
  const platform::Handle handle = platform::CreateFileA(device.c_str(), 0, platform::kShareRead | platform::kShareWrite,
                                                        platform::kOpenExisting, 0);
  if (handle == platform::kInvalidHandle) return OnDrive::unknown;
  std::array<std::uint8_t, kReplyBytes> reply{};
  std::uint32_t returned = 0;
  const bool answered = platform::DeviceIoControl(handle, kGetVolumeDiskExtents, nullptr, 0, reply.data(),
                                                  static_cast<std::uint32_t>(reply.size()), &returned);
  platform::CloseHandle(handle);
  const auto extents = decode_volume_extents(std::span(reply).first(answered ? returned : 0));
  if (!extents) return OnDrive::unknown;
  return is_on(*extents, drive) ? OnDrive::yes : OnDrive::no;
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

std::vector<std::string> letters_of(int drive) {
  if (virtualdisk::attached(drive)) return virtualdisk::volumes(drive);
  std::vector<std::string> letters;
  for (char letter = 'C'; letter <= 'Z'; ++letter) letters.push_back({letter, ':'});
  return letters;
}

/// The extents of one volume; empty where it has none or does not tell.
std::vector<DiskExtent> extents_of(kernel32::Handle volume) {
  std::array<std::uint8_t, kReplyBytes> reply{};
  std::uint32_t returned = 0;
  const bool answered = kernel32::DeviceIoControl(volume, kGetVolumeDiskExtents, nullptr, 0, reply.data(),
                                                  static_cast<std::uint32_t>(reply.size()), &returned);
  return decode_volume_extents(std::span(reply).first(answered ? returned : 0)).value_or(std::vector<DiskExtent>());
}

}  // namespace

std::optional<std::vector<DiskExtent>> decode_volume_extents(std::span<const std::uint8_t> reply) {
  if (reply.size() < kFirstExtent) return {};
  const std::uint32_t count = bytes::le32(reply, 0);
  if (count == 0 || count > kMostExtents || reply.size() < kFirstExtent + count * kExtentBytes) return {};
  std::vector<DiskExtent> extents;
  for (std::size_t at = kFirstExtent; extents.size() < count; at += kExtentBytes) {
    const std::uint64_t first = bytes::le64(reply, at + 8);
    const std::uint64_t length = bytes::le64(reply, at + 16);
    if (first > INT64_MAX || length > INT64_MAX - first) return {};
    extents.push_back({.disk = bytes::le32(reply, at),
                       .first = static_cast<std::int64_t>(first),
                       .bytes = static_cast<std::int64_t>(length)});
  }
  return extents;
}

VolumesOfDrive volumes_of(int drive) {
  constexpr std::uint32_t kNoAccess = 0;
  // winerror.h: what a letter gives that nothing has, or that has no medium.
  constexpr std::uint32_t kFileNotFound = 2;
  constexpr std::uint32_t kPathNotFound = 3;
  constexpr std::uint32_t kNotReady = 21;
  VolumesOfDrive volumes;
  for (const std::string& letter : letters_of(drive)) {
    const std::string name = R"(\\.\)" + letter;
    const kernel32::Handle handle =
        kernel32::open_volume_of(drive, name.c_str(), kNoAccess, platform::kShareRead | platform::kShareWrite, 0);
    if (handle == kernel32::kInvalidHandle) {
      const std::uint32_t code = kernel32::GetLastError();
      const bool is_empty = code == kFileNotFound || code == kPathNotFound || code == kNotReady;
      if (!is_empty && volumes.refused.empty()) {
        volumes.refused = letter;
        volumes.refusal = code;
      }
      continue;
    }
    std::vector<DiskExtent> extents = extents_of(handle);
    kernel32::CloseHandle(handle);
    if (is_on(extents, drive)) volumes.found.push_back({letter, std::move(extents)});
  }
  return volumes;
}

OnDrive holds_windows(int drive) {
  return virtualdisk::attached(drive) ? OnDrive::no : on_real_drive(platform::system_folder(), drive);
}

OnDrive lies_on_drive(const std::string& path, int drive) {
  return virtualdisk::attached(drive) ? on_virtual_drive(path, drive) : on_real_drive(path, drive);
}
