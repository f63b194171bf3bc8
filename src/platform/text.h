#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace platform {

/// `text` of the system's ANSI code page in UTF-8. Bytes that the code page does not have become U+FFFD.
std::string utf8_of_ansi(std::string_view text);

/// Returns the upper case of each byte in the system's ANSI code page. A byte that has none in that code page maps to
/// itself, and so does the lead byte of a double-byte character.
std::array<std::uint8_t, 256> ansi_upper_case();

/// UTF-16 in the system's ANSI code page. Units that the code page does not have become "?".
std::string ansi_of_utf16(std::u16string_view units);

}  // namespace platform
