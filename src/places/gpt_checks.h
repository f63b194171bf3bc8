#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "places/gpt.h"

/// Adds to `damages` what is wrong with the places of a table's partitions: none, beyond the disk of `disk_sectors`
/// (0 where that is not known) or outside what the header, counted in sectors of 512 bytes, calls usable, over each
/// other. At most 100 sentences.
void check_gpt_partitions(const GptHeader& header, std::int64_t disk_sectors,
                          const std::vector<DiskPartition>& partitions, std::vector<std::string>* damages);
