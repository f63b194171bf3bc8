#pragma once

#include <memory>
#include <string>

#include "virtualdisk/disk.h"

namespace virtualdisk {

/// Makes the disk that `file` (a disk file, a bare image, DEMO) describes, for drive number `drive`. Null on failure,
/// with the reason in `error`.
std::unique_ptr<VirtualDisk> make_disk(int drive, const std::string& file, std::string* error);

}  // namespace virtualdisk
