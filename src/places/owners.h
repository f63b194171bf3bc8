#pragma once

#include <vector>

#include "measure/bad_places.h"

/// What lies where a disk is bad.

/// How many ranges are looked into.
inline constexpr std::size_t kMostNamedRanges = 1000;

/// Writes into the first kMostNamedRanges of `ranges` in which partition each lies and what owns it: volume and file,
/// the file system's own area, free space, or why that cannot be learned. Of a range that is not exact, the volume
/// alone. `drive` is the selected drive, whose sector sizes disk.sizes has. Opens the drive and its volumes for reading
/// and closes them. Nothing that fails stops it: the texts say so.
void name_owners(int drive, std::vector<BadRange>* ranges);
