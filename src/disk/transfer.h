#pragma once

#include <cstdint>

/// Reads `total` sectors from `*lba` in whole transfers of `per_transfer` sectors; a remainder smaller than one
/// transfer is not read. Before each transfer pending events run and MyCancel is tested. Each transfer adds to
/// Sectors_Done and advances `*lba`, failed ones too; a failed one is counted and reported, never retried. True when
/// all succeeded.
bool Read_sectors(std::int64_t* lba, std::int64_t total, std::int64_t per_transfer);

/// The same for writing from the start of Sec_Buf.
bool Write_sectors(std::int64_t* lba, std::int64_t total, std::int64_t per_transfer);

/// Counts and reports a failed read; the system's code is disk.Errno.
void report_read_failure(std::int64_t lba, std::int64_t sectors);
