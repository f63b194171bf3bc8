#pragma once

#include <cstdint>

enum class SystemDisk : std::uint8_t { no, yes, unknown };

/// Whether Windows runs from physical drive `drive`; never from an attached virtual disk.
SystemDisk holds_windows(int drive);
