#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

/// The hex dump of sectors: offset column, sixteen bytes a line, printable characters.

inline constexpr std::string_view kViewTitle = "============= SECTOR DATA (up to first 20 sectors) ================";
inline constexpr std::string_view kEditTitle =
    "============= EDIT SECTOR DATA (up to first 20 sectors) ================";

/// What tells the edit view from the other when it stands in the text box.
inline constexpr std::string_view kEditMark = "EDIT SECTOR DATA";

/// The dump as it is appended to the text box, from the line end before its title to the one after its last line.
/// Shows `sectors` sectors, the first of which is LBA `first_lba`, but at most 20 and no more than `bytes` holds whole;
/// none or a negative number leaves the body empty. parse_edit_view() depends on the columns of the lines.
std::string hex_view(std::span<const std::uint8_t> bytes, std::int64_t first_lba, std::int64_t sectors,
                     std::string_view title);
