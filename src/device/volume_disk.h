#pragma once

#include <cstdint>
#include <string>

/// Whether something lies on a physical drive; unknown where the system does not tell.
enum class OnDrive : std::uint8_t { no, yes, unknown };

/// Whether Windows runs from drive `drive`; never from an attached virtual disk.
OnDrive holds_windows(int drive);

/// Whether the file `path`, which need not exist, lies on a volume of drive `drive`, mounted folders included.
OnDrive lies_on_drive(const std::string& path, int drive);
