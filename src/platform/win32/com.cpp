#include "platform/win32/com.h"

namespace win32 {

std::string narrow(std::wstring_view text) {
  const int length = static_cast<int>(text.size());
  const int bytes = ::WideCharToMultiByte(CP_ACP, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
  std::string result(static_cast<std::size_t>(bytes), '\0');
  ::WideCharToMultiByte(CP_ACP, 0, text.data(), length, result.data(), bytes, nullptr, nullptr);
  return result;
}

std::wstring wide(std::string_view text) {
  const int bytes = static_cast<int>(text.size());
  const int length = ::MultiByteToWideChar(CP_ACP, 0, text.data(), bytes, nullptr, 0);
  std::wstring result(static_cast<std::size_t>(length), L'\0');
  ::MultiByteToWideChar(CP_ACP, 0, text.data(), bytes, result.data(), length);
  return result;
}

}  // namespace win32
