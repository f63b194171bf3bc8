#include "platform/aside.h"

#include <utility>

#include "platform/win32/aside.h"
#include "platform/win32/call.h"
#include "platform/win32/win_api.h"

namespace win32 {

namespace {

struct Aside {
  int count = 0;
  std::string (*learn)(int number) = nullptr;
  void (*learned)(int number, const std::string& text) = nullptr;
};

Aside aside;

DWORD WINAPI run_aside(void* /*unused*/) {
  for (int number = 0; number < aside.count; ++number) {
    presses.add({.what = platform::Press::What::learned,
                 .row = static_cast<std::size_t>(number),
                 .text = aside.learn(number),
                 .place = {}});
  }
  return 0;
}

}  // namespace

void tell_learned(const platform::Press& press) {
  aside.learned(static_cast<int>(press.row), press.text);
}

}  // namespace win32

namespace platform {

bool control_aside(const char* device, std::uint32_t code, const void* in, std::uint32_t in_bytes, void* out,
                   std::uint32_t out_bytes, std::uint32_t* returned) {
  *returned = 0;
  HANDLE const handle =
      ::CreateFileA(device, 0, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return false;
  DWORD count = 0;
  const BOOL done = ::DeviceIoControl(handle, code, const_cast<void*>(in), in_bytes, out, out_bytes, &count, nullptr);
  ::CloseHandle(handle);
  *returned = count;
  return done != FALSE;
}

void learn_aside(int count, std::string (*learn)(int number), void (*learned)(int number, const std::string& text)) {
  win32::aside = {count, learn, learned};
  // Where no thread can be made, nothing is learned.
  HANDLE const thread = ::CreateThread(nullptr, 0, win32::run_aside, nullptr, 0, nullptr);
  if (thread != nullptr) ::CloseHandle(thread);
}

}  // namespace platform
