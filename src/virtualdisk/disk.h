#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/system.h"
#include "virtualdisk/content.h"
#include "virtualdisk/disk_file.h"
#include "virtualdisk/faults.h"
#include "virtualdisk/files.h"
#include "virtualdisk/health.h"
#include "virtualdisk/smart.h"

namespace virtualdisk {

// System error codes (winerror.h) that a disk gives by itself.
using platform::kAccessDenied;
using platform::kWriteProtect;
inline constexpr std::uint32_t kInvalidFunction = 1;
inline constexpr std::uint32_t kFileNotFound = 2;
inline constexpr std::uint32_t kInvalidHandleCode = 6;
inline constexpr std::uint32_t kSectorNotFound = 27;
inline constexpr std::uint32_t kSharingViolation = 32;
inline constexpr std::uint32_t kInvalidParameter = 87;
inline constexpr std::uint32_t kInsufficientBuffer = 122;
inline constexpr std::uint32_t kNegativeSeek = 131;
inline constexpr std::uint32_t kNotLocked = 158;
inline constexpr std::uint32_t kIoDevice = 1117;
inline constexpr std::uint32_t kNotConnected = 1167;

/// One attached disk.
struct VirtualDisk {
  int drive = 0;
  DiskFile file;  // what its file says, defaults filled in
  std::int64_t sectors = 0;
  bool readonly = false;
  Content content;
  std::string image;            // whole path of the image; empty for memory
  std::vector<OwnedFile> held;  // the other files it was read from: an output of one of their names would destroy it
  Faults faults;
  Smart smart;
  Health health;
  std::optional<Page> identify;         // a real drive's page, answered as it stands
  std::int64_t transfers = 0;           // made so far; counted only on a disk that vanishes
  bool hangs = false;                   // an unknown command has brought the bridge down
  std::vector<platform::Handle> locks;  // per volume the handle that has it locked, or kInvalidHandle
};

/// Sectors of 512 bytes in a logical sector.
std::int64_t sectors_per_logical(const VirtualDisk& disk);

/// `event` has happened: what the disk says of its health grows.
void grow(VirtualDisk& disk, Event event);

/// True once the disk has made all its transfers, or hangs.
bool vanished(const VirtualDisk& disk);

/// One transfer at byte `offset`. What a call gives: a system error code, 0 for success; `moved` is the bytes moved, 0
/// on failure. A transfer that a directive fails leaves the buffer and the disk as they were.
std::uint32_t read_disk(VirtualDisk& disk, std::uint64_t offset, void* buffer, std::uint32_t bytes,
                        std::uint32_t* moved);
std::uint32_t write_disk(VirtualDisk& disk, std::uint64_t offset, const void* buffer, std::uint32_t bytes,
                         std::uint32_t* moved);

/// Makes the disk that `file` (a disk file, a bare image, DEMO) describes, for drive number `drive`. Null on failure,
/// with the reason in `error`.
std::unique_ptr<VirtualDisk> make_disk(int drive, const std::string& file, std::string* error);

}  // namespace virtualdisk
