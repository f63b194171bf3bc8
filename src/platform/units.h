#pragma once

#include <cstdint>

/// What the whole house counts in.

/// Bytes per sector; an LBA's byte offset is LBA x 512.
inline constexpr std::int64_t SectorSize = 512;

/// One megabyte of the rates and sizes: 2048 sectors, 1,048,576 bytes.
inline constexpr std::int64_t kSectorsPerMb = 2048;

/// Drives 0 to 7 have a button; kNoDrive is none of them.
inline constexpr int kDriveCount = 8;
inline constexpr int kNoDrive = 99;

/// Sectors of one transfer of a sequential operation, of the buffer that a fill makes, and the most of a random visit:
/// 255 heads of 63 sectors, a cylinder of the usual geometry.
inline constexpr std::int64_t kChunkSectors = 16'065;

/// Sectors of one transfer of a longer read: 10 MiB.
inline constexpr std::int64_t kLargeChunkSectors = 20'480;

/// The most sectors that a hex view shows.
inline constexpr std::int64_t kShownSectors = 20;
