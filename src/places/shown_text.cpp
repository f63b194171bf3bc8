#include "places/shown_text.h"

#include <array>
#include <charconv>

#include "form/number_text.h"
#include "platform/bytes.h"
#include "platform/text.h"

std::string text_of_utf16(std::span<const std::uint8_t> data) {
  std::u16string units;
  for (std::size_t at = 0; at + 2 <= data.size(); at += 2) {
    const char16_t unit = bytes::le16(data, at);
    if (unit == 0) break;
    const bool control = unit < 0x20 || (unit >= 0x7F && unit < 0xA0);
    units += control ? u'?' : unit;
  }
  return platform::ansi_of_utf16(units);
}

std::string hex_digits(std::uint64_t value, std::size_t width) {
  constexpr int kHex = 16;
  std::array<char, 16> digits{};
  const auto* const end = std::to_chars(digits.data(), digits.data() + digits.size(), value, kHex).ptr;
  const std::string text = upper_case({digits.data(), static_cast<std::size_t>(end - digits.data())});
  return text.size() < width ? std::string(width - text.size(), '0') + text : text;
}

std::string joined(const std::vector<std::string>& parts, const std::string& between) {
  std::string text;
  for (const std::string& part : parts) text += (text.empty() ? "" : between) + part;
  return text;
}
