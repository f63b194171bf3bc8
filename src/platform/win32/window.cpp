#include "platform/window.h"

#include <algorithm>

#include "platform/geometry.h"
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

LRESULT CALLBACK main_procedure(HWND window, UINT message, WPARAM word, LPARAM long_word) {
  switch (message) {
    case WM_COMMAND:
      on_command(word, long_word);
      return 0;
    case WM_SIZE:
      place_all();
      return 0;
    case WM_DPICHANGED: {
      const RECT& place = *reinterpret_cast<const RECT*>(long_word);
      ::SetWindowPos(window, nullptr, place.left, place.top, place.right - place.left, place.bottom - place.top,
                     SWP_NOZORDER | SWP_NOACTIVATE);
      place_all();
      return 0;
    }
    case WM_SETTINGCHANGE:
      place_all();
      return 0;
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
    case kInterrupted:
      turn_interruptions();
      return 0;
    case WM_CLOSE:
      // A box that is open goes first, also for other programs that ask.
      if (::IsWindowEnabled(window) != FALSE) main_window.table.on_close();
      return 0;
    case WM_ENDSESSION:
      if (word != FALSE) {
        request_exit();
        turn_interruptions();
      }
      return 0;
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

}  // namespace
}  // namespace win32

namespace platform {

bool open_window(const WindowTable& table) {
  win32::MainWindow& main = win32::main_window;
  if (!win32::desktop_is_visible() || !win32::register_class()) return false;
  INITCOMMONCONTROLSEX controls{sizeof(controls), ICC_STANDARD_CLASSES | ICC_WIN95_CLASSES};
  ::InitCommonControlsEx(&controls);
  main.table = table;
  main.window =
      ::CreateWindowExA(0, win32::kClassName, table.caption->text().c_str(), WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN,
                        CW_USEDEFAULT, CW_USEDEFAULT, 0, 0, nullptr, nullptr, ::GetModuleHandleA(nullptr), nullptr);
  if (main.window == nullptr) return false;
  if (!win32::create_controls()) {
    ::DestroyWindow(main.window);
    main = {};
    return false;
  }
  win32::place_first();
  win32::place_all();
  win32::show_fields();
  main.focus = ::GetNextDlgTabItem(main.window, nullptr, FALSE);
  ::ShowWindow(main.window, SW_SHOWDEFAULT);
  ::UpdateWindow(main.window);
  return true;
}

}  // namespace platform
