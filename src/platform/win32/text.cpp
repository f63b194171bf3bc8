#include "platform/text.h"

#include "platform/win32/win_api.h"

namespace platform {
namespace {

/// The UTF-16 unit of a byte that is a character by itself, else 0.
wchar_t unit_of(std::uint8_t byte) {
  const char character = static_cast<char>(byte);
  wchar_t unit = 0;
  return ::MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, &character, 1, &unit, 1) == 1 ? unit : L'\0';
}

std::uint8_t upper_case_of(std::uint8_t byte) {
  wchar_t upper = ::IsDBCSLeadByte(byte) != FALSE ? L'\0' : unit_of(byte);
  if (upper == 0) return byte;
  ::CharUpperBuffW(&upper, 1);
  char character = 0;
  if (::WideCharToMultiByte(CP_ACP, 0, &upper, 1, &character, 1, nullptr, nullptr) != 1) return byte;
  // Where the code page lacks the letter, the system chooses one that looks like it.
  const auto found = static_cast<std::uint8_t>(character);
  return unit_of(found) == upper ? found : byte;
}

}  // namespace

std::array<std::uint8_t, 256> ansi_upper_case() {
  std::array<std::uint8_t, 256> upper{};
  for (std::size_t code = 0; code < upper.size(); ++code) {
    upper[code] = upper_case_of(static_cast<std::uint8_t>(code));
  }
  return upper;
}

std::string utf8_of_ansi(std::string_view text) {
  if (text.empty()) return {};
  const int bytes = static_cast<int>(text.size());
  const int units = ::MultiByteToWideChar(CP_ACP, 0, text.data(), bytes, nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(units), L'\0');
  ::MultiByteToWideChar(CP_ACP, 0, text.data(), bytes, wide.data(), units);
  const int length = ::WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, nullptr, 0, nullptr, nullptr);
  std::string utf8(static_cast<std::size_t>(length), '\0');
  ::WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, utf8.data(), length, nullptr, nullptr);
  return utf8;
}

std::string ansi_of_utf16(std::u16string_view units) {
  if (units.empty()) return {};
  const std::wstring wide(units.begin(), units.end());
  const int count = static_cast<int>(wide.size());
  // Without the best fit: a letter that only looks like a backslash would make another path of a name.
  const int bytes = ::WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, wide.data(), count, nullptr, 0, "?", nullptr);
  std::string text(static_cast<std::size_t>(bytes), '\0');
  ::WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, wide.data(), count, text.data(), bytes, "?", nullptr);
  return text;
}

}  // namespace platform
