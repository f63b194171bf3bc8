#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "measure/read_map.h"

/// A read that goes on where another one ended, by its map.

/// For the drive that was identified: empty, or one line that says why the map of /RESUME is not of it. A map that ends
/// before the disk does, as other programs write it, is continued with sectors that were not tried.
std::string why_no_resume();

/// What is to be read of `sectors` sectors from `lba`: all of them, or what the map says was not done.
std::vector<SectorRun> left_to_read(std::int64_t lba, std::int64_t sectors);
