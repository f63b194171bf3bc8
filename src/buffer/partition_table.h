#pragma once

#include <cstdint>
#include <span>
#include <string>

/// The four primary entries of a master boot record's partition table, described for the user.

/// The text that is appended below the dump of LBA 0, whose bytes are `sector`. Whatever they hold is decoded,
/// signature or none. Entries that a span shorter than a sector does not hold whole are left out. A table counts in
/// the disk's logical sectors, of which each has `per_logical` of 512 bytes; the text counts in those.
std::string partition_table_text(std::span<const std::uint8_t> sector, std::int64_t per_logical = 1);
