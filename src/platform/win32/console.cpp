#include "platform/console.h"

#include <array>
#include <atomic>
#include <cstdint>

#include "platform/win32/main_window.h"
#include "platform/win32/win_api.h"

namespace win32 {

namespace {

// Set on the console's own thread, read on the program's.
std::atomic<bool> cancel_pressed = false;
std::atomic<bool> exit_pressed = false;
std::atomic<bool> held = false;

void (*cancel_watcher)() = nullptr;
void (*exit_watcher)() = nullptr;

void wake() {
  if (main_window.window != nullptr) ::PostMessageA(main_window.window, kInterrupted, 0, 0);
}

BOOL WINAPI on_console_event(DWORD event) {
  if (event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT) {
    cancel_pressed = true;
    wake();
    return TRUE;
  }
  exit_pressed = true;
  wake();
  // The process ends when this returns. The program ends it itself, once the disk has its contents back; a system that
  // loses patience ends both.
  ::Sleep(INFINITE);
  return TRUE;
}

}  // namespace

void turn_interruptions() {
  if (cancel_pressed.exchange(false) && cancel_watcher != nullptr) cancel_watcher();
  if (!held && exit_watcher != nullptr && exit_pressed.exchange(false)) exit_watcher();
}

void request_exit() {
  exit_pressed = true;
}

}  // namespace win32

namespace platform {

namespace {

std::uint32_t write_all(DWORD stream, std::string_view text) {
  HANDLE const file = ::GetStdHandle(stream);
  if (file == nullptr || file == INVALID_HANDLE_VALUE) return ERROR_INVALID_HANDLE;
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
  // Events wait while the disk holds other data, the session's end among them. A program that then does not answer is
  // not ended if it gave a reason, which the user sees.
  using Create = BOOL(WINAPI*)(HWND, LPCWSTR);
  static const auto create = win32::user_function<Create>("ShutdownBlockReasonCreate");
  HWND const window = win32::main_window.window;
  if (create != nullptr && window != nullptr) create(window, L"The disk is being given its contents back.");
}

void allow_shutdown() {
  win32::held = false;
  using Destroy = BOOL(WINAPI*)(HWND);
  static const auto destroy = win32::user_function<Destroy>("ShutdownBlockReasonDestroy");
  HWND const window = win32::main_window.window;
  if (destroy != nullptr && window != nullptr) destroy(window);
}

void debug_text(const std::string& text) {
  ::OutputDebugStringA((text + "\n").c_str());
}

}  // namespace platform
