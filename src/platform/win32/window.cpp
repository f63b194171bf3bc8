#include "platform/window.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>

#include "platform/geometry.h"
#include "platform/win32/call.h"
#include "platform/win32/dpi.h"
#include "platform/win32/main_window.h"
#include "platform/win32/resource.h"

namespace win32 {

namespace {

constexpr const char* kClassName = "SectorixMain";

/// The row of a control of ours; the table's size for another.
std::size_t row_of(HWND control) {
  const auto& controls = main_window.controls;
  const auto found = std::find_if(controls.begin(), controls.end(),
                                  [control](const ShownControl& shown) { return shown.window == control; });
  return static_cast<std::size_t>(found - controls.begin());
}

void on_command(WPARAM word, LPARAM long_word) {
  const std::size_t row = row_of(reinterpret_cast<HWND>(long_word));
  if (row >= main_window.controls.size()) return;
  const platform::ControlKind kind = main_window.table.controls[row].kind;
  const bool text = kind == platform::ControlKind::edit || kind == platform::ControlKind::memo;
  if (text && HIWORD(word) == EN_CHANGE) text_changed(row);
  if (!text && kind != platform::ControlKind::display && HIWORD(word) == BN_CLICKED) control_clicked(row);
}

/// The smallest size: what the layout needs, but never more than the screen has.
void on_least_size(HWND window, MINMAXINFO* limits) {
  const int dpi = text_dpi(window);
  const platform::Size least = main_window.table.least;
  const SIZE frame = window_size(window, {platform::scaled(least.width, dpi), platform::scaled(least.height, dpi)});
  const RECT work = work_area(window);
  limits->ptMinTrackSize.x = std::min(frame.cx, work.right - work.left);
  limits->ptMinTrackSize.y = std::min(frame.cy, work.bottom - work.top);
}

/// The arrangement may be another one at another size.
void on_size() {
  place_all();
  if (!main_window.controls.empty()) show_soon();
}

/// A memo keeps the look of a text while it is read-only, so that a command's beginning and end flash nothing.
LRESULT on_read_only_colors(HDC canvas, HWND control) {
  const std::size_t row = row_of(control);
  if (row >= main_window.controls.size() || main_window.table.controls[row].kind != platform::ControlKind::memo) {
    return 0;
  }
  ::SetTextColor(canvas, ::GetSysColor(COLOR_WINDOWTEXT));
  ::SetBkColor(canvas, ::GetSysColor(COLOR_WINDOW));
  return reinterpret_cast<LRESULT>(::GetSysColorBrush(COLOR_WINDOW));
}

void on_active(bool active) {
  if (!active) note_focus();
  if (active && main_window.focus != nullptr) ::SetFocus(main_window.focus);
}

/// The session asks whether it may end, and ends: the system ends the process when this returns, so it waits until the
/// program has ended it.
LRESULT on_session_end(UINT message, WPARAM word) {
  if (message == WM_QUERYENDSESSION) return may_end_session() ? TRUE : FALSE;
  if (word == FALSE) return 0;
  presses.add({.what = platform::Press::What::leave});
  MSG next{};
  while (::GetMessageA(&next, nullptr, 0, 0) > 0) dispatch(&next);
  ::PostQuitMessage(0);
  return 0;
}

LRESULT CALLBACK main_procedure(HWND window, UINT message, WPARAM word, LPARAM long_word) {
  switch (message) {
    case WM_COMMAND:
      on_command(word, long_word);
      return 0;
    case WM_SIZE:
    case WM_SETTINGCHANGE:
      on_size();
      return 0;
    case WM_DPICHANGED: {
      const RECT& place = *reinterpret_cast<const RECT*>(long_word);
      ::SetWindowPos(window, nullptr, place.left, place.top, place.right - place.left, place.bottom - place.top,
                     SWP_NOZORDER | SWP_NOACTIVATE);
      on_size();
      return 0;
    }
    case WM_GETMINMAXINFO:
      on_least_size(window, reinterpret_cast<MINMAXINFO*>(long_word));
      return 0;
    case WM_CTLCOLORSTATIC: {
      const LRESULT brush = on_read_only_colors(reinterpret_cast<HDC>(word), reinterpret_cast<HWND>(long_word));
      return brush != 0 ? brush : ::DefWindowProcA(window, message, word, long_word);
    }
    case WM_ACTIVATE:
      on_active(LOWORD(word) != WA_INACTIVE);
      return 0;
    case WM_SETFOCUS:
      if (main_window.focus != nullptr) ::SetFocus(main_window.focus);
      return 0;
    case WM_MENUSELECT:
      menu_entry_highlighted(HIWORD(word) == 0xFFFF ? 0 : LOWORD(word));
      return 0;
    case WM_TIMER:
      tick();
      return 0;
    case kOffered:
      show_soon();
      return 0;
    case kWork:
      do_work(long_word);
      return 0;
    case kLeaving:
      show_leaving_box();
      return 0;
    case WM_CLOSE:
      // A box that is open goes first, also for other programs that ask.
      if (::IsWindowEnabled(window) != FALSE) {
        hand_over_typing();
        presses.add({.what = platform::Press::What::closing});
        show_soon();
      }
      return 0;
    case WM_QUERYENDSESSION:
    case WM_ENDSESSION:
      return on_session_end(message, word);
    case WM_DESTROY:
      ::PostQuitMessage(0);
      return 0;
    default:
      return ::DefWindowProcA(window, message, word, long_word);
  }
}

/// False in a session of services, where a window would be made but nobody sees it.
bool desktop_is_visible() {
  USEROBJECTFLAGS flags{};
  return ::GetUserObjectInformationA(::GetProcessWindowStation(), UOI_FLAGS, &flags, sizeof(flags), nullptr) == FALSE ||
         (flags.dwFlags & WSF_VISIBLE) != 0;
}

HICON load_icon(int width, int height) {
  return reinterpret_cast<HICON>(
      ::LoadImageA(::GetModuleHandleA(nullptr), MAKEINTRESOURCEA(SECTORIX_ICON), IMAGE_ICON, width, height, LR_SHARED));
}

bool register_class() {
  WNDCLASSEXA main_class{};
  main_class.cbSize = sizeof(main_class);
  main_class.lpfnWndProc = main_procedure;
  main_class.hInstance = ::GetModuleHandleA(nullptr);
  main_class.hIcon = load_icon(::GetSystemMetrics(SM_CXICON), ::GetSystemMetrics(SM_CYICON));
  main_class.hIconSm = load_icon(::GetSystemMetrics(SM_CXSMICON), ::GetSystemMetrics(SM_CYSMICON));
  main_class.hCursor = ::LoadCursorA(nullptr, MAKEINTRESOURCEA(32512));  // IDC_ARROW
  main_class.hbrBackground = reinterpret_cast<HBRUSH>(static_cast<std::intptr_t>(COLOR_BTNFACE + 1));
  main_class.lpszClassName = kClassName;
  return ::RegisterClassExA(&main_class) != 0;
}

/// A window that nobody sees: the system tells the session's end to windows alone.
LRESULT CALLBACK hidden_procedure(HWND window, UINT message, WPARAM word, LPARAM long_word) {
  switch (message) {
    case WM_TIMER:
      tick();
      return 0;
    case WM_QUERYENDSESSION:
    case WM_ENDSESSION:
      return on_session_end(message, word);
    default:
      return ::DefWindowProcA(window, message, word, long_word);
  }
}

HWND make_hidden_window() {
  WNDCLASSEXA hidden{};
  hidden.cbSize = sizeof(hidden);
  hidden.lpfnWndProc = hidden_procedure;
  hidden.hInstance = ::GetModuleHandleA(nullptr);
  hidden.lpszClassName = "SectorixHidden";
  if (::RegisterClassExA(&hidden) == 0) return nullptr;
  return ::CreateWindowExA(0, hidden.lpszClassName, "Sectorix", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr,
                           hidden.hInstance, nullptr);
}

/// The window's first place: the table's size, or what the screen has, in its middle.
void place_first() {
  MainWindow& main = main_window;
  const int dpi = text_dpi(main.window);
  const platform::Size first = main.table.first;
  const SIZE wanted =
      window_size(main.window, {platform::scaled(first.width, dpi), platform::scaled(first.height, dpi)});
  const RECT work = work_area(main.window);
  const int width = static_cast<int>(std::min(wanted.cx, work.right - work.left));
  const int height = static_cast<int>(std::min(wanted.cy, work.bottom - work.top));
  ::SetWindowPos(main.window, nullptr, static_cast<int>(work.left + (work.right - work.left - width) / 2),
                 static_cast<int>(work.top + (work.bottom - work.top - height) / 2), width, height,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

/// Makes and shows the main window; false when there is no place for one.
bool make_main_window() {
  MainWindow& main = main_window;
  if (!desktop_is_visible() || !register_class()) return false;
  INITCOMMONCONTROLSEX controls{sizeof(controls), ICC_STANDARD_CLASSES | ICC_WIN95_CLASSES};
  ::InitCommonControlsEx(&controls);
  main.window =
      ::CreateWindowExA(0, kClassName, main.table.caption->text().c_str(), WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN,
                        CW_USEDEFAULT, CW_USEDEFAULT, 0, 0, nullptr, nullptr, ::GetModuleHandleA(nullptr), nullptr);
  if (main.window == nullptr) return false;
  if (!create_controls()) {
    ::DestroyWindow(main.window);
    main.window = nullptr;
    main.controls.clear();
    return false;
  }
  const Stillness still;
  place_first();
  place_all();
  show_fields();
  main.focus = ::GetNextDlgTabItem(main.window, nullptr, FALSE);
  ::ShowWindow(main.window, SW_SHOWDEFAULT);
  ::UpdateWindow(main.window);
  return true;
}

HANDLE thread = nullptr;
DWORD thread_id = 0;
std::atomic<bool> stopping = false;

constexpr UINT kTick = 25;  // milliseconds

/// The window's thread: makes the window, tells that there is one or not, and handles its messages until the program
/// ends.
DWORD WINAPI run_thread(void* made) {
  HWND window = make_main_window() ? main_window.window : nullptr;
  if (window == nullptr) window = main_window.hidden = make_hidden_window();
  ::SetEvent(made);
  if (window != nullptr) ::SetTimer(window, 1, kTick, nullptr);
  MSG message{};
  if (window != nullptr) {
    while (::GetMessageA(&message, nullptr, 0, 0) > 0) dispatch(&message);
  }
  // Without any window there is still a console to tell.
  while (window == nullptr && !stopping) {
    ::Sleep(kTick);
    tick();
  }
  return 0;
}

}  // namespace

void stop_window() {
  if (thread == nullptr || ::GetCurrentThreadId() == thread_id) return;
  constexpr DWORD kPatience = 300;  // milliseconds; one that waits for the process's end is ended with it
  stopping = true;
  ::PostThreadMessageA(thread_id, WM_QUIT, 0, 0);
  const Call call(Doing::showing);
  ::WaitForSingleObject(thread, kPatience);
}

}  // namespace win32

namespace platform {

bool open_window(const WindowTable& table) {
  win32::main_window.table = table;
  win32::become_operations();
  HANDLE const made = ::CreateEventA(nullptr, TRUE, FALSE, nullptr);
  {
    const win32::Call call(win32::Doing::showing);
    win32::thread = ::CreateThread(nullptr, 0, win32::run_thread, made, 0, &win32::thread_id);
    if (win32::thread != nullptr) ::WaitForSingleObject(made, INFINITE);
  }
  ::CloseHandle(made);
  std::atexit(win32::stop_window);
  return win32::main_window.window != nullptr;
}

}  // namespace platform
