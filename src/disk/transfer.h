#pragma once

#include <cstdint>

/// Whether pending events run, and it is asked whether to stop, before each transfer. They wait while a disk holds data
/// that are not its own.
enum class Events : std::uint8_t { run, wait };

/// What is done every so often between two transfers, while the disk holds nothing that is not its own.
struct BetweenTransfers {
  struct Due {
    void (*work)() = nullptr;  // null for nothing
    std::uint64_t due = 0;     // by the coarse clock
  };
  Due temperature;
  Due map;
};

inline BetweenTransfers between_transfers;

/// Does the work where it is due. False when there was nothing to do; that costs a look at two pointers, or at the
/// coarse clock.
bool work_between_transfers();

/// Reads `total` sectors from `*lba` in whole transfers of `per_transfer` sectors; a remainder smaller than one
/// transfer is not read. Before each transfer pending events run and it is asked whether to stop (disk/early_end.h).
/// Each transfer adds to Sectors_Done and advances `*lba`, failed ones too; a failed one is counted and reported, never
/// retried. A read that the user gives up while it does not come back ends it: that is no failure. True when all
/// succeeded.
bool Read_sectors(std::int64_t* lba, std::int64_t total, std::int64_t per_transfer, Events events = Events::run);

/// The same for writing from the start of Sec_Buf.
bool Write_sectors(std::int64_t* lba, std::int64_t total, std::int64_t per_transfer, Events events = Events::run);

/// The LBA `sectors` sectors behind `lba`; never wraps.
std::int64_t lba_after(std::int64_t lba, std::int64_t sectors);

/// One timed read of `sectors` sectors from `lba`, shown in the status line, its failure counted and reported, added to
/// Sectors_Done. False when it failed. However slow it is, nobody is told.
bool read_once(std::int64_t lba, std::int64_t sectors);
