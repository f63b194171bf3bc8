#include "platform/console.h"

#include <array>
#include <atomic>
#include <cstdint>

#include "platform/win32/call.h"
#include "platform/win32/com.h"
#include "platform/win32/main_window.h"
#include "platform/win32/win_api.h"

namespace win32 {

namespace {

std::atomic<bool> held = false;

void (*cancel_watcher)() = nullptr;
void (*exit_watcher)() = nullptr;

bool reason_given = false;

HWND session_window() {
  return main_window.window != nullptr ? main_window.window : main_window.hidden;
}

BOOL WINAPI on_console_event(DWORD event) {
  using What = platform::Press::What;
  const bool cancel = event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT;
  presses.add({.what = cancel ? What::interrupt : What::leave});
  if (cancel) return TRUE;
  // The process ends when this returns. The program ends it itself, once the disk has its contents back; a system that
  // loses patience ends both.
  ::Sleep(INFINITE);
  return TRUE;
}

}  // namespace

void call_cancel_watcher() {
  if (cancel_watcher != nullptr) cancel_watcher();
}

void call_exit_watcher() {
  if (exit_watcher != nullptr) exit_watcher();
}

bool disk_holds_other_data() {
  return held;
}

bool may_end_session() {
  if (!held) return true;
  using Create = BOOL(WINAPI*)(HWND, LPCWSTR);
  static const auto create = user_function<Create>("ShutdownBlockReasonCreate");
  if (create != nullptr) create(session_window(), L"The disk is being given its contents back.");
  reason_given = true;
  return false;
}

void clear_end_session() {
  if (!reason_given || held) return;
  using Destroy = BOOL(WINAPI*)(HWND);
  static const auto destroy = user_function<Destroy>("ShutdownBlockReasonDestroy");
  if (destroy != nullptr) destroy(session_window());
  reason_given = false;
}

}  // namespace win32

namespace platform {

namespace {

/// What a console shows, whatever its code page is.
std::uint32_t write_console(HANDLE console, std::string_view text) {
  const std::wstring wide = win32::wide(text);
  for (std::wstring_view left = wide; !left.empty();) {
    constexpr std::size_t kPiece = 8192;
    DWORD put = 0;
    const auto wanted = static_cast<DWORD>(left.size() < kPiece ? left.size() : kPiece);
    if (::WriteConsoleW(console, left.data(), wanted, &put, nullptr) == FALSE) return ::GetLastError();
    if (put == 0) return ERROR_HANDLE_DISK_FULL;
    left.remove_prefix(put);
  }
  return 0;
}

std::uint32_t write_all(DWORD stream, std::string_view text) {
  HANDLE const file = ::GetStdHandle(stream);
  if (file == nullptr || file == INVALID_HANDLE_VALUE) return ERROR_INVALID_HANDLE;
  const win32::Call call(win32::Doing::call);
  DWORD mode = 0;
  if (::GetConsoleMode(file, &mode) != FALSE) return write_console(file, text);
  while (!text.empty()) {
    constexpr std::size_t kPiece = 1U << 20U;
    DWORD put = 0;
    const DWORD wanted = static_cast<DWORD>(text.size() < kPiece ? text.size() : kPiece);
    if (::WriteFile(file, text.data(), wanted, &put, nullptr) == FALSE) return ::GetLastError();
    if (put == 0) return ERROR_HANDLE_DISK_FULL;
    text.remove_prefix(put);
  }
  return 0;
}

}  // namespace

std::string command_line() {
  return ::GetCommandLineA();
}

std::uint32_t write_out(std::string_view text) {
  return write_all(STD_OUTPUT_HANDLE, text);
}

std::uint32_t write_err(std::string_view text) {
  return write_all(STD_ERROR_HANDLE, text);
}

bool err_is_terminal() {
  DWORD mode = 0;
  return ::GetConsoleMode(::GetStdHandle(STD_ERROR_HANDLE), &mode) != FALSE;
}

void release_lone_console() {
  std::array<DWORD, 2> processes{};
  if (::GetConsoleProcessList(processes.data(), static_cast<DWORD>(processes.size())) != 1) return;
  // Streams of that console die with it, and their numbers go to the next file opened: nobody may write there.
  for (const DWORD stream : {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE}) {
    if (::GetFileType(::GetStdHandle(stream)) == FILE_TYPE_CHAR) ::SetStdHandle(stream, nullptr);
  }
  ::FreeConsole();
}

void watch_console(void (*on_cancel)(), void (*on_exit)()) {
  win32::cancel_watcher = on_cancel;
  win32::exit_watcher = on_exit;
  ::SetConsoleCtrlHandler(win32::on_console_event, TRUE);
}

void hold_shutdown() {
  win32::held = true;
}

void allow_shutdown() {
  win32::held = false;
}

void debug_text(const std::string& text) {
  ::OutputDebugStringA((text + "\n").c_str());
}

}  // namespace platform
