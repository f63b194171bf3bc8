#pragma once

#include <string>
#include <string_view>

namespace win32 {

/// Bytes as UTF-16 code units and back, one for one: a text of any bytes keeps its length and its columns under every
/// code page. In an ANSI text of an East Asian one, a byte that begins a pair would swallow its neighbour, a line's end
/// too.
///
/// A byte becomes the character that it is by itself; where it is none, a unit of the private use area. A zero byte
/// becomes a blank.
std::wstring units_of(std::string_view bytes);

/// A unit that stands for no byte becomes "?".
std::string bytes_of(std::wstring_view units);

}  // namespace win32
