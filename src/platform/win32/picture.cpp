#include <algorithm>

#include "platform/clock.h"
#include "platform/win32/call.h"
#include "platform/win32/canvas.h"
#include "platform/win32/main_window.h"

namespace win32 {

namespace {

constexpr const char* kPictureClass = "SectorixPicture";

ShownControl* shown_of(HWND window) {
  auto& controls = main_window.controls;
  const auto found = std::find_if(controls.begin(), controls.end(),
                                  [window](const ShownControl& shown) { return shown.window == window; });
  return found == controls.end() ? nullptr : &*found;
}

/// Null before the control is in the list.
const platform::Picture* picture_of(HWND window) {
  const ShownControl* const shown = shown_of(window);
  if (shown == nullptr) return nullptr;
  return main_window.table.controls[static_cast<std::size_t>(shown - main_window.controls.data())].picture;
}

/// Paints beside the screen, so that nothing flickers and something can be shown while the data do not stand still.
void repaint(HWND window, const platform::Picture& picture, ShownControl* shown) {
  RECT area{};
  ::GetClientRect(window, &area);
  if (area.right == 0 || area.bottom == 0) return;
  HDC const screen = ::GetDC(window);
  if (shown->bitmap == nullptr || shown->bitmap_size.cx != area.right || shown->bitmap_size.cy != area.bottom) {
    if (shown->bitmap != nullptr) ::DeleteObject(shown->bitmap);
    shown->bitmap = ::CreateCompatibleBitmap(screen, area.right, area.bottom);
    shown->bitmap_size = {area.right, area.bottom};
  }
  HDC const device = ::CreateCompatibleDC(screen);
  HGDIOBJ const bitmap_before = ::SelectObject(device, shown->bitmap);
  HGDIOBJ const font_before = ::SelectObject(device, main_window.gui_font);
  platform::Canvas canvas{device, {area.right, area.bottom}, main_window.dpi};
  picture.paint(&canvas);
  ::SelectObject(device, font_before);
  ::SelectObject(device, bitmap_before);
  ::DeleteDC(device);
  ::ReleaseDC(window, screen);
}

/// Shows the picture as it is, or as it last was, stretched, until it can be painted.
void show_picture(HWND window, HDC screen) {
  const platform::Picture* const picture = picture_of(window);
  if (picture == nullptr) return;
  ShownControl* const shown = shown_of(window);
  {
    const Stillness still;
    if (still) {
      repaint(window, *picture, shown);
    } else {
      shown->revision = UINT64_MAX;
      baton.want();
    }
  }
  RECT area{};
  ::GetClientRect(window, &area);
  if (shown->bitmap == nullptr) return;
  HDC const device = ::CreateCompatibleDC(screen);
  HGDIOBJ const before = ::SelectObject(device, shown->bitmap);
  ::StretchBlt(screen, 0, 0, area.right, area.bottom, device, 0, 0, static_cast<int>(shown->bitmap_size.cx),
               static_cast<int>(shown->bitmap_size.cy), SRCCOPY);
  ::SelectObject(device, before);
  ::DeleteDC(device);
}

void on_paint(HWND window) {
  PAINTSTRUCT paint{};
  HDC const screen = ::BeginPaint(window, &paint);
  show_picture(window, screen);
  ::EndPaint(window, &paint);
}

platform::Point point_of(LPARAM place) {
  return {static_cast<short>(LOWORD(place)), static_cast<short>(HIWORD(place))};
}

void on_pointer(HWND window, const platform::Point* pointer) {
  const platform::Picture* const picture = picture_of(window);
  if (picture == nullptr || picture->on_hover == nullptr) return;
  if (pointer != nullptr) {
    TRACKMOUSEEVENT leave{sizeof(leave), TME_LEAVE, window, 0};
    ::TrackMouseEvent(&leave);
  }
  main_window.pointer_moved = true;
  main_window.pointer_row = static_cast<std::size_t>(shown_of(window) - main_window.controls.data());
  main_window.pointer = pointer != nullptr ? std::optional(*pointer) : std::nullopt;
  show_soon();
}

void on_double_click(HWND window, platform::Point place) {
  const platform::Picture* const picture = picture_of(window);
  if (picture == nullptr || picture->on_double_click == nullptr) return;
  hand_over_typing();
  presses.add({.what = platform::Press::What::picked,
               .row = static_cast<std::size_t>(shown_of(window) - main_window.controls.data()),
               .place = place});
}

LRESULT CALLBACK picture_procedure(HWND window, UINT message, WPARAM word, LPARAM long_word) {
  switch (message) {
    case WM_ERASEBKGND:
      return 1;
    case WM_PAINT:
      on_paint(window);
      return 0;
    case WM_PRINTCLIENT:
      show_picture(window, reinterpret_cast<HDC>(word));
      return 0;
    case WM_MOUSEMOVE: {
      const platform::Point place = point_of(long_word);
      on_pointer(window, &place);
      return 0;
    }
    case WM_MOUSELEAVE:
      on_pointer(window, nullptr);
      return 0;
    case WM_LBUTTONDBLCLK:
      on_double_click(window, point_of(long_word));
      return 0;
    default:
      return ::DefWindowProcA(window, message, word, long_word);
  }
}

/// When pictures are painted again while a command runs: 10 times a second.
double next_picture = 0.0;

}  // namespace

const char* picture_class() {
  static const ATOM registered = [] {
    WNDCLASSEXA picture{};
    picture.cbSize = sizeof(picture);
    picture.style = CS_DBLCLKS | CS_HREDRAW | CS_VREDRAW;
    picture.lpfnWndProc = picture_procedure;
    picture.hInstance = ::GetModuleHandleA(nullptr);
    picture.hCursor = ::LoadCursorA(nullptr, MAKEINTRESOURCEA(32512));  // IDC_ARROW
    picture.lpszClassName = kPictureClass;
    return ::RegisterClassExA(&picture);
  }();
  return registered != 0 ? kPictureClass : "STATIC";
}

void tell_pointer() {
  MainWindow& main = main_window;
  if (!main.pointer_moved) return;
  main.pointer_moved = false;
  main.table.controls[main.pointer_row].picture->on_hover(main.pointer ? &*main.pointer : nullptr);
}

void show_pictures() {
  MainWindow& main = main_window;
  const double now = platform::steady_seconds();
  if (main.busy && now < next_picture) return;
  constexpr double kPause = 0.1;
  next_picture = now + kPause;
  for (std::size_t i = 0; i < main.controls.size(); ++i) {
    const platform::Picture* const picture = main.table.controls[i].picture;
    ShownControl& shown = main.controls[i];
    if (picture == nullptr || picture->revision() == shown.revision) continue;
    shown.revision = picture->revision();
    const std::string description = picture->description();
    if (description != shown.description) ::SetWindowTextA(shown.window, description.c_str());
    shown.description = description;
    ::InvalidateRect(shown.window, nullptr, FALSE);
    ::UpdateWindow(shown.window);
  }
}

}  // namespace win32
