#pragma once

#include <string>
#include <string_view>

namespace platform {

/// `text` of the system's ANSI code page in UTF-8. Bytes that the code page does not have become U+FFFD.
std::string utf8_of_ansi(std::string_view text);

}  // namespace platform
