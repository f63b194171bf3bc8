#pragma once

#include <string_view>

#include "virtualdisk/content.h"

/// The practice disk: a disk file that is built in, and what stands on the disk.
namespace virtualdisk {

/// The disk file's text; examples/practice.vd is the same.
std::string_view demo_text();

/// Writes a partition table and some text to find.
void fill_demo(Content& content);

}  // namespace virtualdisk
