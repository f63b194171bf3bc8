#include "buffer/hex_text.h"

#include <algorithm>

#include "form/number_text.h"

std::string hex_padded(std::uint64_t value, std::size_t width) {
  std::string digits;
  for (; value != 0; value /= 16) digits += kHexPairs[value % 16][1];
  if (digits.size() < width) digits.append(width - digits.size(), '0');
  std::reverse(digits.begin(), digits.end());
  return digits;
}

std::string NumbertoHex(std::uint64_t value) {
  const std::string digits = hex_padded(value, 1);
  return digits.size() % 2 == 0 ? digits : "0" + digits;
}

bool Is_Hex(std::string& text) {
  text = upper_case(text);
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return hex_value(c) >= 0; });
}
