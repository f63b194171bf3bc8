#include <atomic>
#include <utility>

#include "platform/clock.h"
#include "platform/win32/call.h"
#include "platform/win32/main_window.h"

namespace win32 {

namespace {

/// A piece of work for the window, and the event of its end.
struct Work {
  const std::function<void()>* what;
  HANDLE done;
};

void clicked(std::size_t row) {
  MainWindow& main = main_window;
  const platform::Control& control = main.table.controls[row];
  if (main.busy && control.while_busy == platform::WhileBusy::disabled) return;
  // The button has marked itself; its field decides, and is shown again whatever the handler does with it.
  if (is_option(control.kind)) {
    for (std::size_t i = 0; i < main.controls.size(); ++i) {
      if (is_option(main.table.controls[i].kind)) main.controls[i].revision = UINT64_MAX;
    }
  }
  control.on_click();
}

void deal_with(platform::Press press) {
  using What = platform::Press::What;
  const auto& controls = main_window.table.controls;
  switch (press.what) {
    case What::click:
      return clicked(press.row);
    case What::typing:
      take_typed(press.row, std::move(press.text));
      if (controls[press.row].on_typed != nullptr) controls[press.row].on_typed();
      return;
    case What::picked:
      return controls[press.row].picture->on_double_click(press.place);
    case What::help:
      return main_window.table.on_help();
    case What::closing:
      return main_window.table.on_close();
    case What::interrupt:
      return call_cancel_watcher();
    case What::leave:
      return call_exit_watcher();
  }
}

void deal_with_all(const std::function<bool(const platform::Press&)>& which) {
  while (std::optional<platform::Press> press = presses.take(which)) deal_with(std::move(*press));
}

bool every(const platform::Press& /*press*/) {
  return true;
}

bool is_interruption(const platform::Press& press) {
  return press.what == platform::Press::What::interrupt || press.what == platform::Press::What::leave;
}

}  // namespace

void ask_window(const std::function<void()>& work, bool by_user) {
  constexpr DWORD kGlance = 50;  // milliseconds between two looks for interruptions
  HANDLE const done = ::CreateEventA(nullptr, TRUE, FALSE, nullptr);
  Work order{&work, done};
  ::PostMessageA(main_window.window, kWork, 0, reinterpret_cast<LPARAM>(&order));
  for (DWORD waited = WAIT_TIMEOUT; waited == WAIT_TIMEOUT;) {
    if (by_user) deal_with_all(is_interruption);
    const Call call(Doing::showing);
    waited = ::WaitForSingleObject(done, by_user ? kGlance : INFINITE);
  }
  ::CloseHandle(done);
}

void do_work(LPARAM order) {
  const auto& work = *reinterpret_cast<const Work*>(order);
  HANDLE const done = work.done;
  (*work.what)();
  ::SetEvent(done);
}

}  // namespace win32

namespace platform {

using win32::main_window;

void run_window(bool (*while_idle)()) {
  bool more = true;
  while (true) {
    while (more && !win32::presses.any()) more = while_idle();
    ::PostMessageA(main_window.window, win32::kOffered, 0, 0);
    {
      const win32::Call call(win32::Doing::idle);
      win32::presses.wait();
    }
    win32::deal_with_all(win32::every);
  }
}

bool pump_events() {
  if (!win32::presses.any() && !win32::baton.wanted()) return false;
  win32::deal_with_all(win32::every);
  if (win32::baton.wanted()) {
    constexpr std::chrono::milliseconds kPatience{10};
    if (main_window.window != nullptr) ::PostMessageA(main_window.window, win32::kOffered, 0, 0);
    win32::offer_baton(kPatience);
  }
  return true;
}

void show_now() {
  if (main_window.window != nullptr) win32::ask_window(win32::show_soon);
}

void begin_command() {
  ::SetThreadExecutionState(ES_CONTINUOUS | ES_SYSTEM_REQUIRED);
  if (main_window.window == nullptr || main_window.busy) return;
  win32::ask_window(win32::hand_over_typing);
  win32::deal_with_all([](const Press& press) { return press.what == Press::What::typing; });
  win32::ask_window(win32::lock_buttons);
}

void end_command() {
  ::SetThreadExecutionState(ES_CONTINUOUS);
  if (main_window.window == nullptr || !main_window.busy) return;
  // Presses that wait were made while the buttons were locked: they meet them locked.
  win32::ask_window(win32::drain_messages);
  win32::deal_with_all(win32::every);
  win32::ask_window(win32::unlock_buttons);
}

}  // namespace platform
