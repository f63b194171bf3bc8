#include <algorithm>

#include "platform/clock.h"
#include "platform/win32/call.h"
#include "platform/win32/main_window.h"

namespace win32 {

MainWindow main_window;

namespace {

using platform::Press;
using platform::Stops;

/// A call that took this long so far has stopped the operations: seconds.
constexpr double kBlocked = 1.0;

/// When the fields are shown again while a command runs: about 30 times a second, or as seldom as keeps showing and
/// painting them below a hundredth of the time, but every second.
double next_show = 0.0;

/// When the command began, and when the taskbar is told next. That belongs to another process, and COM makes two
/// threads to reach it, with which system calls cost more: it is told twice a second, and nothing of a command that is
/// over before anybody looks there.
double command_began = 0.0;
double next_share = 0.0;

/// The call under way, and when it was first seen.
CallUnderWay seen{};
double seen_at = 0.0;

/// The pause of the operations in which all was shown last: nothing changes before it ends.
std::uint32_t shown_in_pause = 0;

int stillnesses = 0;
bool leaving_shown = false;

/// Notes when another call is under way than at the last look.
void note_call() {
  const CallUnderWay now = call_under_way();
  if (now.number == seen.number && now.doing == seen.doing) return;
  seen = now;
  seen_at = platform::steady_seconds();
}

/// How long the operations' thread has been in one system call, as seen from here; 0 outside of one.
double seconds_in_call() {
  note_call();
  return seen.doing == Doing::call || seen.doing == Doing::read ? platform::steady_seconds() - seen_at : 0.0;
}

bool may_take_baton() {
  constexpr double kUnmeasured = 0.04;
  const Doing doing = call_under_way().doing;
  return doing == Doing::idle || doing == Doing::showing || seconds_in_call() >= kUnmeasured;
}

Stops stop_of(const Press& press) {
  switch (press.what) {
    case Press::What::click:
      return main_window.table.controls[press.row].stops;
    case Press::What::interrupt:
      return Stops::command;
    case Press::What::closing:
    case Press::What::leave:
      return Stops::program;
    default:
      return Stops::nothing;
  }
}

/// What the presses that wait want, and whether Cancel is among them twice.
struct Wanted {
  Stops stops = Stops::nothing;
  int cancels = 0;
};

Wanted wanted_by_presses() {
  Wanted wanted;
  presses.waits([&wanted](const Press& press) {
    const Stops stops = stop_of(press);
    wanted.stops = std::max(wanted.stops, stops);
    const bool cancel = press.what == Press::What::interrupt ||
                        (press.what == Press::What::click && press.row == main_window.table.cancel);
    wanted.cancels += cancel ? 1 : 0;
    return false;
  });
  return wanted;
}

platform::Waiting waiting_now(const Wanted& wanted) {
  return {.seconds = seconds_in_call(),
          .pressed = wanted.stops,
          .can_be_given_up = call_under_way().doing == Doing::read && !disk_holds_other_data(),
          .holds_other_data = disk_holds_other_data()};
}

/// Ends a read that does not come back where the user insists; else a box says what the program waits for.
void stop_blocked_call(const Wanted& wanted) {
  const platform::Waiting waiting = waiting_now(wanted);
  if (waiting.seconds < kBlocked) return;
  if (waiting.can_be_given_up && (wanted.cancels > 1 || wanted.stops == Stops::program)) {
    const std::uint32_t number = seen.number;
    const Stillness still;
    // Once more, now that it cannot have come back and given way to another call.
    const CallUnderWay now = call_under_way();
    if (still && now.doing == Doing::read && now.number == number && !disk_holds_other_data()) give_up_read();
  } else if (wanted.stops == Stops::program && !leaving_shown && main_window.window != nullptr) {
    leaving_shown = true;
    ::PostMessageA(main_window.window, kLeaving, 0, 0);
  }
}

/// What the status line says in place of its field. In the first moments of a transfer that is what the one before
/// told: its rate would be gone before anybody saw it.
void note_waiting(const Wanted& wanted) {
  constexpr double kMoments = 0.5;
  const platform::Waiting waiting = waiting_now(wanted);
  const platform::WindowTable& table = main_window.table;
  main_window.status_instead = main_window.menu_hint.empty() ? table.waiting(waiting) : main_window.menu_hint;
  if (main_window.status_instead.empty() && waiting.seconds > 0.0 && waiting.seconds < kMoments) {
    main_window.status_instead = table.controls[table.status].field->beneath();
  }
}

void show_share_when_due(double now) {
  constexpr double kPause = 0.5;
  constexpr double kWorthTelling = 2.0;  // seconds
  if (!main_window.busy || now < next_share) return;
  platform::Share share;
  {
    const Stillness still;
    if (!still) return;
    share = main_window.table.share();
  }
  if (now - command_began + std::max(share.seconds_left, 0.0) < kWorthTelling) return;
  next_share = now + kPause;
  show_on_taskbar(share);
}

/// True for F1, which asks for help wherever the focus is.
bool took_help_key(const MSG& message) {
  constexpr LPARAM kHeldDown = 1 << 30;
  if (message.message != WM_KEYDOWN || message.wParam != VK_F1) return false;
  if ((message.lParam & kHeldDown) == 0) presses.add({.what = Press::What::help});
  return true;
}

/// Enter and Esc in the main window: Enter presses the button that has the focus, Esc cancels the command that runs.
/// True when the message is used up.
bool took_enter_or_escape(const MSG& message) {
  if (message.message != WM_KEYDOWN || (message.wParam != VK_RETURN && message.wParam != VK_ESCAPE)) return false;
  for (std::size_t row = 0; row < main_window.controls.size(); ++row) {
    if (main_window.controls[row].window != message.hwnd) continue;
    const platform::ControlKind kind = main_window.table.controls[row].kind;
    if (message.wParam == VK_RETURN && kind == platform::ControlKind::memo) return false;
    constexpr LPARAM kHeldDown = 1 << 30;
    const bool pressed = (message.lParam & kHeldDown) == 0;
    if (message.wParam == VK_ESCAPE && main_window.busy && pressed) control_clicked(main_window.table.cancel);
    if (message.wParam == VK_RETURN && kind == platform::ControlKind::button && pressed) {
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

}  // namespace

Stillness::Stillness() : taken_(stillnesses > 0 || (may_take_baton() && baton.try_take())) {
  if (taken_) ++stillnesses;
}

Stillness::~Stillness() {
  if (taken_ && --stillnesses == 0) baton.give_back();
}

void show_soon() {
  const Stillness still;
  if (!still) {
    if (main_window.window != nullptr) baton.want();
    return;
  }
  const double start = platform::steady_seconds();
  if (const CallUnderWay now = call_under_way(); now.doing == Doing::idle) shown_in_pause = now.number;
  note_waiting(wanted_by_presses());
  if (main_window.window != nullptr) {
    tell_pointer();
    show_fields();
    show_pictures();
    ::RedrawWindow(main_window.window, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
  }
  constexpr double kFrame = 0.030;
  constexpr double kRest = 100.0;
  const double end = platform::steady_seconds();
  // A window that is shown for the first time takes many times longer.
  constexpr double kLongestRest = 1.0;
  // While nothing runs, showing takes nothing from it.
  const double rest = seconds_in_call() >= kBlocked ? 0.0 : std::min(kRest * (end - start), kLongestRest);
  next_show = std::max(start + kFrame, end + rest);
}

void tick() {
  note_call();
  clear_end_session();
  const CallUnderWay call = call_under_way();
  if (call.doing == Doing::idle && call.number == shown_in_pause) return;
  if (presses.any()) stop_blocked_call(wanted_by_presses());
  const double now = platform::steady_seconds();
  show_share_when_due(now);
  if (now >= next_show) show_soon();
}

void menu_entry_highlighted(std::size_t number) {
  const bool known = number > 0 && number <= main_window.menu_hints.size();
  main_window.menu_hint = known ? main_window.menu_hints[number - 1] : std::string();
  show_soon();
}

void show_leaving_box() {
  const std::string text = main_window.table.leaving(waiting_now(wanted_by_presses()));
  ::MessageBoxA(main_window.window, text.c_str(), "Sectorix", MB_OK | MB_ICONINFORMATION);
}

void drain_messages() {
  MSG message{};
  while (::PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
    if (message.message == WM_QUIT) {
      ::PostQuitMessage(static_cast<int>(message.wParam));
      return;
    }
    dispatch(&message);
  }
  hand_over_typing();
}

void hand_over_typing() {
  for (std::size_t row = 0; row < main_window.controls.size(); ++row) {
    ShownControl& shown = main_window.controls[row];
    if (!shown.typed) continue;
    shown.typed = false;
    presses.add({.what = Press::What::typing, .row = row, .text = text_of(row)});
  }
}

void dispatch(MSG* message) {
  HWND const main = main_window.window;
  const bool ours = message->hwnd == main || ::IsChild(main, message->hwnd) != FALSE;
  if (ours && (took_help_key(*message) || took_enter_or_escape(*message) || took_bare_letter(*message) ||
               ::IsDialogMessageA(main, message) != FALSE))
    return;
  ::TranslateMessage(message);
  ::DispatchMessageA(message);
}

void control_clicked(std::size_t row) {
  MainWindow& main = main_window;
  const platform::Control& control = main.table.controls[row];
  if (control.on_click == nullptr) return;
  if (main.busy && control.while_busy == platform::WhileBusy::disabled) return;
  hand_over_typing();
  presses.add({.what = Press::What::click, .row = row});
  show_soon();
}

void lock_buttons() {
  MainWindow& main = main_window;
  main.busy = true;
  constexpr double kForesight = 0.25;  // seconds, from which on it can be told how long the command takes
  command_began = platform::steady_seconds();
  next_share = command_began + kForesight;
  note_focus();
  main.focus_before = main.focus;
  // First the focus, then the buttons: a disabled control that has it swallows every key.
  move_focus(main.controls[main.table.cancel].window);
  for (std::size_t i = 0; i < main.controls.size(); ++i) {
    const platform::WhileBusy what = main.table.controls[i].while_busy;
    if (what == platform::WhileBusy::disabled) ::EnableWindow(main.controls[i].window, FALSE);
    if (what == platform::WhileBusy::read_only) ::SendMessageA(main.controls[i].window, EM_SETREADONLY, TRUE, 0);
  }
}

void unlock_buttons() {
  const Stillness still;
  MainWindow& main = main_window;
  main.status_instead.clear();
  show_fields();
  main.busy = false;
  show_pictures();
  clear_taskbar();
  for (std::size_t i = 0; i < main.controls.size(); ++i) {
    const platform::Control& row = main.table.controls[i];
    if (row.while_busy == platform::WhileBusy::disabled && row.on_click != nullptr) {
      ::EnableWindow(main.controls[i].window, TRUE);
    }
    if (row.while_busy == platform::WhileBusy::read_only) {
      ::SendMessageA(main.controls[i].window, EM_SETREADONLY, FALSE, 0);
    }
  }
  note_focus();
  const bool untouched = main.focus == main.controls[main.table.cancel].window;
  if (untouched && main.focus_before != nullptr) move_focus(main.focus_before);
}

void note_focus() {
  HWND const focus = ::GetFocus();
  if (focus != nullptr && ::IsChild(main_window.window, focus) != FALSE) main_window.focus = focus;
}

void move_focus(HWND control) {
  if (!is_shown(control)) control = ::GetNextDlgTabItem(main_window.window, control, FALSE);
  main_window.focus = control;
  if (::GetActiveWindow() == main_window.window && ::GetFocus() != control) ::SetFocus(control);
}

}  // namespace win32
