#pragma once

#include <cstdint>
#include <span>
#include <string>

/// The four primary entries of a master boot record's partition table, described for the user.

/// The text that is appended below the dump of LBA 0, whose bytes are `sector`. Whatever they hold is decoded,
/// signature or none. Entries that a span shorter than a sector does not hold whole are left out.
std::string partition_table_text(std::span<const std::uint8_t> sector);
