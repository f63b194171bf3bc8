#include <algorithm>

#include "platform/clock.h"
#include "platform/win32/main_window.h"

namespace win32 {

MainWindow main_window;

namespace {

/// When the fields are shown again while a command runs: about 30 times a second, or as seldom as keeps showing and
/// painting them below a hundredth of the time, but every second.
double next_show = 0.0;

/// When the command began, and when the taskbar is told next. That belongs to another process, and COM makes two
/// threads to reach it, with which system calls cost more: it is told twice a second, and nothing of a command that is
/// over before anybody looks there.
double command_began = 0.0;
double next_share = 0.0;

void show_share_when_due(double now) {
  constexpr double kPause = 0.5;
  constexpr double kWorthTelling = 2.0;  // seconds
  if (!main_window.busy || now < next_share) return;
  const platform::Share share = main_window.table.share();
  if (now - command_began + std::max(share.seconds_left, 0.0) < kWorthTelling) return;
  next_share = now + kPause;
  show_on_taskbar(share);
}

void show_and_paint() {
  const double start = platform::steady_seconds();
  show_fields();
  show_pictures();
  ::RedrawWindow(main_window.window, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
  constexpr double kFrame = 0.030;  // just under two of the ticks at which events run
  constexpr double kRest = 100.0;
  const double end = platform::steady_seconds();
  // A window that is shown for the first time takes many times longer.
  constexpr double kLongestRest = 1.0;
  next_show = std::max(start + kFrame, end + std::min(kRest * (end - start), kLongestRest));
}

/// Enter and Esc in the main window: Enter presses the button that has the focus, and neither does more. True when the
/// message is used up.
bool took_enter_or_escape(const MSG& message) {
  if (message.message != WM_KEYDOWN || (message.wParam != VK_RETURN && message.wParam != VK_ESCAPE)) return false;
  for (std::size_t row = 0; row < main_window.controls.size(); ++row) {
    if (main_window.controls[row].window != message.hwnd) continue;
    const platform::ControlKind kind = main_window.table.controls[row].kind;
    if (message.wParam == VK_RETURN && kind == platform::ControlKind::memo) return false;
    constexpr LPARAM kHeldDown = 1 << 30;
    if (message.wParam == VK_RETURN && kind == platform::ControlKind::button && (message.lParam & kHeldDown) == 0) {
      control_clicked(row);
    }
    return true;
  }
  return false;
}

/// A letter typed without Alt while a button has the focus: the system's dialogs take it for an access key, here it
/// would start a command that nobody asked for. True when the message is used up.
bool took_bare_letter(const MSG& message) {
  if (message.message != WM_CHAR || message.wParam == ' ') return false;
  return (::SendMessageA(message.hwnd, WM_GETDLGCODE, 0, 0) & (DLGC_BUTTON | DLGC_STATIC)) != 0;
}

void drain_queue() {
  MSG message{};
  while (::PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
    if (message.message == WM_QUIT) {
      ::PostQuitMessage(static_cast<int>(message.wParam));
      return;
    }
    dispatch(&message);
  }
}

}  // namespace

void dispatch(MSG* message) {
  HWND const main = main_window.window;
  const bool ours = message->hwnd == main || ::IsChild(main, message->hwnd) != FALSE;
  if (ours &&
      (took_enter_or_escape(*message) || took_bare_letter(*message) || ::IsDialogMessageA(main, message) != FALSE))
    return;
  ::TranslateMessage(message);
  ::DispatchMessageA(message);
}

void control_clicked(std::size_t row) {
  MainWindow& main = main_window;
  const platform::Control& control = main.table.controls[row];
  if (control.on_click == nullptr) return;
  if (main.busy && control.while_busy == platform::WhileBusy::disabled) return;
  // The button has marked itself; its field decides, and is shown again whatever the handler does with it.
  if (is_option(control.kind)) {
    for (std::size_t i = 0; i < main.controls.size(); ++i) {
      if (is_option(main.table.controls[i].kind)) main.controls[i].revision = UINT64_MAX;
    }
  }
  call_handler(control.on_click);
}

void note_focus() {
  HWND const focus = ::GetFocus();
  if (focus != nullptr && ::IsChild(main_window.window, focus) != FALSE) main_window.focus = focus;
}

void move_focus(HWND control) {
  main_window.focus = control;
  if (::GetActiveWindow() == main_window.window) ::SetFocus(control);
}

}  // namespace win32

namespace platform {

using win32::main_window;

void run_window() {
  MSG message{};
  while (true) {
    win32::turn_interruptions();
    win32::show_fields();
    win32::show_pictures();
    if (::GetMessageA(&message, nullptr, 0, 0) <= 0) return;
    win32::dispatch(&message);
  }
}

bool pump_events() {
  // Asked after every transfer, a million times a second: a cheap tick alone decides whether there is more to do.
  constexpr std::uint64_t kPause = 10;
  static std::uint64_t next = 0;
  if (coarse_milliseconds() < next) return false;
  win32::turn_interruptions();
  if (main_window.window != nullptr) {
    win32::drain_queue();
    win32::take_typing();
    const double now = steady_seconds();
    win32::show_share_when_due(now);
    if (now >= win32::next_show) win32::show_and_paint();
  }
  next = coarse_milliseconds() + kPause;
  return true;
}

void show_now() {
  if (main_window.window != nullptr) win32::show_and_paint();
}

void begin_command() {
  win32::MainWindow& main = main_window;
  ::SetThreadExecutionState(ES_CONTINUOUS | ES_SYSTEM_REQUIRED);
  if (main.window == nullptr || main.busy) return;
  win32::take_typing();
  main.busy = true;
  constexpr double kForesight = 0.25;  // seconds, from which on it can be told how long the command takes
  win32::command_began = steady_seconds();
  win32::next_share = win32::command_began + kForesight;
  win32::note_focus();
  main.focus_before = main.focus;
  // First the focus, then the buttons: a disabled control that has it swallows every key.
  win32::move_focus(main.controls[main.table.cancel].window);
  for (std::size_t i = 0; i < main.controls.size(); ++i) {
    const WhileBusy what = main.table.controls[i].while_busy;
    if (what == WhileBusy::disabled) ::EnableWindow(main.controls[i].window, FALSE);
    if (what == WhileBusy::read_only) ::SendMessageA(main.controls[i].window, EM_SETREADONLY, TRUE, 0);
  }
}

void end_command() {
  win32::MainWindow& main = main_window;
  ::SetThreadExecutionState(ES_CONTINUOUS);
  if (main.window == nullptr || !main.busy) return;
  // Presses that wait were made while the buttons were locked: they meet them locked.
  win32::drain_queue();
  win32::show_fields();
  main.busy = false;
  win32::show_pictures();
  win32::clear_taskbar();
  for (std::size_t i = 0; i < main.controls.size(); ++i) {
    const Control& row = main.table.controls[i];
    if (row.while_busy == WhileBusy::disabled && row.on_click != nullptr) {
      ::EnableWindow(main.controls[i].window, TRUE);
    }
    if (row.while_busy == WhileBusy::read_only) ::SendMessageA(main.controls[i].window, EM_SETREADONLY, FALSE, 0);
  }
  win32::note_focus();
  const bool untouched = main.focus == main.controls[main.table.cancel].window;
  if (untouched && main.focus_before != nullptr) win32::move_focus(main.focus_before);
}

}  // namespace platform
