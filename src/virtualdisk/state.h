#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string_view>

#include "platform/units.h"
#include "virtualdisk/disk.h"

namespace virtualdisk {

/// Above every handle that the system gives out.
inline constexpr platform::Handle kFirstHandle = platform::Handle{1} << 40;

enum class Kind : std::uint8_t { drive, port, volume };

/// What a device name means.
struct Target {
  int drive = -1;
  Kind kind = Kind::drive;
  std::size_t volume = 0;  // index into the disk's volumes
};

struct OpenHandle {
  Target target;
  std::uint32_t access = 0;
  std::uint64_t position = 0;  // bytes
};

struct State {
  std::array<std::unique_ptr<VirtualDisk>, kDriveCount> disks;
  std::map<platform::Handle, OpenHandle> handles;  // a handful: faster than hashing
  platform::Handle next_handle = kFirstHandle;
};

/// All attached disks. Assigning `{}` detaches them.
inline State state;

/// What the device name means among the attached disks; nothing when it is not one of theirs.
std::optional<Target> target_named(std::string_view name);

}  // namespace virtualdisk
