#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/wmi.h"

/// The management service for everyone above. Questions about an attached virtual disk's partitions and volumes are
/// answered by the disk, all others by the system; failures are those of platform/wmi.h.
namespace wmi {

using platform::kNoWmi;
using platform::WmiHandle;
using platform::WmiNext;
using platform::WmiRow;

/// Device ids that a virtual disk gave, and how many were fetched.
struct OwnRows {
  std::vector<std::string> device_ids;
  std::size_t fetched = 0;
};

/// Numbers of our own, far from those that the platform gives out.
inline constexpr WmiHandle kServiceWithoutSystem = WmiHandle{1} << 40;

struct State {
  std::map<WmiHandle, OwnRows> own_rows;
  WmiHandle next_own = kServiceWithoutSystem + 1;
};

inline State state;

/// Opens the service; where the system has none, an attached virtual disk is still answered for.
WmiHandle open(const std::string& moniker);

WmiHandle query(WmiHandle service, const std::string& text, std::uint32_t flags);

WmiNext next(WmiHandle rows, const std::vector<std::string>& properties, WmiRow* row);

void close(WmiHandle handle);

}  // namespace wmi
