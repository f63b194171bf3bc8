#pragma once

#include <cstdint>
#include <span>
#include <string>

/// The house counts in sectors of 512 bytes. A drive takes whole logical sectors only, which may be longer: here is
/// what follows from that. All of it asks disk.sizes; on a drive whose logical sectors have 512 bytes nothing is
/// widened.

/// `sectors` sectors from `lba` on.
struct Stretch {
  std::int64_t lba = 0;
  std::int64_t sectors = 0;
  bool operator==(const Stretch&) const = default;
};

/// Sectors in a logical sector of the selected drive: 1, or 8 where that has 4096 bytes.
std::int64_t sectors_per_logical();

/// Sectors from the start of the logical sector that holds `lba` to `lba`.
std::int64_t behind_boundary(std::int64_t lba);

/// `sectors`, cut to whole logical sectors.
std::int64_t whole_below(std::int64_t sectors);

/// The whole logical sectors that hold the given ones.
Stretch widened(const Stretch& asked);

/// The whole logical sectors that hold what the last successful read gave.
std::span<const std::uint8_t> whole_sectors_read();

/// Makes the whole logical sectors that a write of `asked` goes to, `whole`, from the start of Sec_Buf and, around it,
/// what disk.known has of them or else the drive itself, which is read for it. False when that failed, with disk.Errno
/// as ReadAt leaves it; else their bytes are `disk.around`.
bool compose(const Stretch& asked, const Stretch& whole);

/// The size of the selected drive's logical sectors for a line of text, " (sectors of ...)"; empty if it is 512 bytes.
std::string sector_sizes_text();
