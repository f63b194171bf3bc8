#pragma once

#include <optional>
#include <string_view>

#include "virtualdisk/state.h"

namespace virtualdisk {

/// What the device name means among the attached disks; nothing when it is not one of theirs.
std::optional<Target> target_named(std::string_view name);

}  // namespace virtualdisk
