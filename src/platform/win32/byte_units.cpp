#include "platform/win32/byte_units.h"

#include <algorithm>
#include <array>

#include "platform/win32/win_api.h"

namespace win32 {

namespace {

constexpr std::size_t kBytes = 256;
constexpr wchar_t kPrivateUse = 0xF700;

/// The unit of every byte; no two have the same.
std::array<wchar_t, kBytes> make_table() {
  std::array<wchar_t, kBytes> table{};
  for (std::size_t byte = 1; byte < kBytes; ++byte) {
    const char text = static_cast<char>(byte);
    wchar_t unit = 0;
    const bool single = ::MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, &text, 1, &unit, 1) == 1 && unit != 0;
    const auto* const taken = std::find(table.begin(), table.begin() + byte, unit);
    table[byte] = single && taken == table.begin() + byte ? unit : static_cast<wchar_t>(kPrivateUse + byte);
  }
  table[0] = L' ';
  return table;
}

const std::array<wchar_t, kBytes>& table() {
  static const std::array<wchar_t, kBytes> units = make_table();
  return units;
}

/// The byte of every unit of the table.
const std::array<char, kBytes * kBytes>& bytes_of_units() {
  static const auto bytes = [] {
    std::array<char, kBytes * kBytes> made{};
    made.fill('?');
    for (std::size_t byte = 1; byte < kBytes; ++byte) made[table()[byte]] = static_cast<char>(byte);
    return made;
  }();
  return bytes;
}

}  // namespace

std::wstring units_of(std::string_view bytes) {
  std::wstring units(bytes.size(), L' ');
  std::transform(bytes.begin(), bytes.end(), units.begin(),
                 [](char byte) { return table()[static_cast<unsigned char>(byte)]; });
  return units;
}

std::string bytes_of(std::wstring_view units) {
  std::string bytes(units.size(), ' ');
  std::transform(units.begin(), units.end(), bytes.begin(), [](wchar_t unit) { return bytes_of_units()[unit]; });
  return bytes;
}

}  // namespace win32
