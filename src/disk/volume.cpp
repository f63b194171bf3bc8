#include "disk/volume.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "device/wmi.h"
#include "platform/console.h"

namespace {

// Windows SDK winioctl.h.
constexpr std::uint32_t kLockVolume = 0x00090018;      // FSCTL_LOCK_VOLUME
constexpr std::uint32_t kUnlockVolume = 0x0009001C;    // FSCTL_UNLOCK_VOLUME
constexpr std::uint32_t kDismountVolume = 0x00090020;  // FSCTL_DISMOUNT_VOLUME
constexpr std::uint32_t kNoBuffering = 0x20000000;     // FILE_FLAG_NO_BUFFERING

bool volume_request(kernel32::Handle handle, std::uint32_t code) {
  std::uint32_t returned = 0;
  return kernel32::DeviceIoControl(handle, code, nullptr, 0, nullptr, 0, &returned);
}

/// Writes a line of trace in a debug build. A release does not even hold the texts.
template <typename... Parts>
void trace(const Parts&... parts) {
  if constexpr (platform::kDebugBuild) platform::debug_text((std::string() + ... + parts));
}

/// The device ids that a query gives; empty where it fails.
std::vector<std::string> device_ids(wmi::WmiHandle service, const std::string& query) {
  constexpr std::uint32_t kReturnAtOnceForwardOnly = 48;
  std::vector<std::string> ids;
  const wmi::WmiHandle rows = wmi::query(service, query, kReturnAtOnceForwardOnly);
  if (rows == wmi::kNoWmi) return ids;
  wmi::WmiRow row;
  while (wmi::next(rows, {"DeviceID"}, &row) == wmi::WmiNext::row) ids.push_back(row["DeviceID"]);
  wmi::close(rows);
  return ids;
}

/// Opens, locks and dismounts one volume ("E:") of drive `drive`. False when it cannot be opened.
bool lock_volume(int drive, const std::string& volume) {
  const std::string path = "\\\\.\\" + volume;
  const kernel32::Handle handle =
      kernel32::open_volume_of(drive, path.c_str(), platform::kGenericRead | platform::kGenericWrite,
                               platform::kShareRead | platform::kShareWrite, kNoBuffering);
  // Every volume goes into the first slot, so that the unlock pass finds the last one alone: docs/oddities.md, 16.
  if (volumes.hVolumes[0] >= 1) volumes.replaced.push_back(volumes.hVolumes[0]);
  volumes.hVolumes[0] = handle;
  if (handle == kernel32::kInvalidHandle) {
    trace("Lock_Unlock_All_Volumes - Cannot open handle for ", volume, " to dismount.");
    return false;
  }
  trace("Lock_Unlock_All_Volumes - Volume handle ", volume, " opened");
  // Asked twice, also where the first request was granted: docs/oddities.md, 17.
  const bool at_once = volume_request(handle, kLockVolume);
  const bool again = volume_request(handle, kLockVolume);
  if (at_once || again) {
    trace("Lock_Unlock_All_Volumes - FSCTL_LOCK_VOLUME Volume ", volume, " locked");
  } else {
    trace("Lock_Unlock_All_Volumes - FSCTL_LOCK_VOLUME Cannot lock volume");
  }
  MY_DISMOUNT_VOLUME(handle);
  return true;
}

/// Locks the volumes of one partition; false when one cannot be opened.
bool lock_partition(wmi::WmiHandle service, int drive, const std::string& partition) {
  const std::vector<std::string> found =
      device_ids(service, "ASSOCIATORS OF {Win32_DiskPartition.DeviceID=\"" + partition +
                              "\"} WHERE AssocClass = Win32_LogicalDiskToPartition");
  return std::all_of(found.begin(), found.end(),
                     [drive](const std::string& volume) { return lock_volume(drive, volume); });
}

/// Volumes that lost their place in an earlier pass are locked still, and could not be opened by this one.
void release_replaced() {
  for (const kernel32::Handle handle : volumes.replaced) kernel32::CloseHandle(handle);
  volumes.replaced.clear();
}

void lock_pass(int drive) {
  release_replaced();
  volumes.hVolumes.fill(0);
  const wmi::WmiHandle service = wmi::open("winmgmts:{impersonationLevel=Impersonate}!//.");
  if (service == wmi::kNoWmi) return;
  const std::string device_id = R"(\\\\.\\PhysicalDrive)" + std::to_string(drive);
  for (const std::string& partition :
       device_ids(service, "ASSOCIATORS OF {Win32_DiskDrive.DeviceID=\"" + device_id +
                               "\"} WHERE AssocClass = Win32_DiskDriveToDiskPartition")) {
    if (!lock_partition(service, drive, partition)) break;
  }
  wmi::close(service);
}

void unlock_pass() {
  for (const kernel32::Handle handle : volumes.hVolumes) {
    if (handle < 1) continue;
    MY_UNLOCK_VOLUME(handle);
    kernel32::CloseHandle(handle);
  }
}

}  // namespace

void Lock_Unlock_All_Volumes(int drive, const std::string& mode) {
  if (mode == "LOCK") {
    lock_pass(drive);
  } else {
    unlock_pass();
  }
  trace("Lock_Unlock_All_Volumes End");
}

bool MY_DISMOUNT_VOLUME(kernel32::Handle handle) {
  const bool dismounted = volume_request(handle, kDismountVolume);
  trace(dismounted ? "FSCTL_DISMOUNT_VOLUME - Dismounted volume " : "FSCTL_DISMOUNT_VOLUME - Cannot dismount volume");
  return dismounted;
}

bool MY_UNLOCK_VOLUME(kernel32::Handle handle) {
  const bool unlocked = volume_request(handle, kUnlockVolume);
  trace(unlocked ? "MY_UNLOCK_VOLUME FSCTL_UNLOCK_VOLUME - Volume unlocked"
                 : "FSCTL_UNLOCK_VOLUME - Cannot unlock volume");
  return unlocked;
}
