#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/system.h"

/// Drives made from an image or a disk file (docs/disk-files.md), attached under a drive number 0 to 7. Once attached,
/// a disk answers "\\.\PhysicalDriveN", "\\.\ScsiN:" and its volumes' "\\.\X:" as a drive of that number would.
///
/// Calls give a system error code, 0 for success. Sizes are bytes unless a name says sectors (512 bytes).
namespace virtualdisk {

/// Attaches `file` (a disk file, a bare image by its ending, or DEMO) as drive `drive`. Gives an empty text, or one
/// line that says what is wrong: file, line and reason. A disk attached there before is gone.
std::string attach(int drive, const std::string& file);

/// Detaches every disk and closes their images.
void detach_all();

bool attached(int drive);

/// The whole path of the image behind drive `drive`; empty for a disk in memory and where none is attached.
std::string image_of(int drive);

/// The number of the attached disk that answers to the device name `name`, or -1. While a virtual disk has a drive
/// number, everything of that number's name is its own.
int disk_named(std::string_view name);

/// True when `handle` was given out by open() here.
bool owns(platform::Handle handle);

std::uint32_t open(std::string_view name, std::uint32_t access, std::uint32_t share_mode, platform::Handle* handle);
std::uint32_t seek(platform::Handle handle, std::int64_t distance, std::int64_t* new_position, std::uint32_t method);
std::uint32_t read(platform::Handle handle, void* buffer, std::uint32_t bytes, std::uint32_t* moved);
std::uint32_t write(platform::Handle handle, const void* buffer, std::uint32_t bytes, std::uint32_t* moved);
std::uint32_t lock(platform::Handle handle);
std::uint32_t unlock(platform::Handle handle);
std::uint32_t flush(platform::Handle handle);
std::uint32_t control(platform::Handle handle, std::uint32_t code, const void* in, std::uint32_t in_bytes, void* out,
                      std::uint32_t out_bytes, std::uint32_t* returned);
std::uint32_t close(platform::Handle handle);

/// Number of handles given out and not closed yet.
int open_handles();

/// The volumes of drive `drive` in the order of its disk file, each on a partition of its own ("X:").
std::vector<std::string> volumes(int drive);

}  // namespace virtualdisk
