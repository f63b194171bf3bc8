#pragma once

#include <cstdint>

/// Reads the range in the fields from the selected drive, chunk by chunk, and reports it.
void Seq_Read();

/// Sectors per transfer of a read of `sectors` sectors.
std::int64_t read_chunk(std::int64_t sectors);

/// The sequential read in its frame.
void read_command();
