#include "platform/text.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "platform/headless/headless.h"

namespace platform {
namespace {

// Windows-1252, 0x80 to 0x9F (Unicode Consortium, CP1252.TXT); the other bytes are the code points of their number.
constexpr std::uint16_t kNone = 0xFFFD;
constexpr std::array<std::uint16_t, 32> kUpper = {0x20AC, kNone,  0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                  0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, kNone,  0x017D, kNone,
                                                  kNone,  0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                  0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, kNone,  0x017E, 0x0178};

void append(std::uint32_t point, std::string* utf8) {
  if (point < 0x80) {
    *utf8 += static_cast<char>(point);
  } else if (point < 0x800) {
    *utf8 += static_cast<char>(0xC0 | point >> 6);
    *utf8 += static_cast<char>(0x80 | (point & 0x3F));
  } else {
    *utf8 += static_cast<char>(0xE0 | point >> 12);
    *utf8 += static_cast<char>(0x80 | (point >> 6 & 0x3F));
    *utf8 += static_cast<char>(0x80 | (point & 0x3F));
  }
}

}  // namespace

std::array<std::uint8_t, 256> ansi_upper_case() {
  std::array<std::uint8_t, 256> upper{};
  for (std::size_t code = 0; code < upper.size(); ++code) {
    const bool above = headless::desktop.code_page == 1252 && code >= 0xE0 && code <= 0xFE && code != 0xF7;
    const bool letter = (code >= 'a' && code <= 'z') || above;
    upper[code] = static_cast<std::uint8_t>(letter ? code - 0x20 : code);
  }
  if (headless::desktop.code_page != 1252) return upper;
  upper[0x9A] = 0x8A;
  upper[0x9C] = 0x8C;
  upper[0x9E] = 0x8E;
  upper[0xFF] = 0x9F;
  return upper;
}

std::string utf8_of_ansi(std::string_view text) {
  std::string utf8;
  for (const char c : text) {
    const auto byte = static_cast<std::uint8_t>(c);
    append(byte >= 0x80 && byte < 0xA0 ? kUpper.at(byte - 0x80U) : byte, &utf8);
  }
  return utf8;
}

std::string ansi_of_utf16(std::u16string_view units) {
  std::string text;
  for (const char16_t unit : units) {
    const auto* const upper = std::find(kUpper.begin(), kUpper.end(), unit);
    if (unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF)) {
      text += static_cast<char>(unit);
    } else {
      text += upper == kUpper.end() || unit == kNone ? '?' : static_cast<char>(0x80 + (upper - kUpper.begin()));
    }
  }
  return text;
}

}  // namespace platform
