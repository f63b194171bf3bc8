#include "platform/text.h"

#include "platform/win32/win_api.h"

namespace platform {

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
