#pragma once

#include <string>

/// The drive that the suite works on: drive 1, 4096 sectors, backed by an image file. On the host a virtual disk, under
/// Windows whatever answers to \\.\PhysicalDrive1.
inline constexpr int kSuiteDrive = 1;
inline constexpr int kSuiteSectors = 4096;

/// Attaches the drive to the image, with logical sectors of so many bytes, where that is the suite's business.
void attach_suite_drive(const std::string& image, int logical_sector);

/// Undoes it.
void detach_suite_drive();

/// Where the drive's image is.
std::string suite_image();
