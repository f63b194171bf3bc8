#include "platform/win32/dpi.h"

#include <algorithm>
#include <cstring>

#include "platform/geometry.h"
#include "platform/win32/win_api.h"

namespace win32 {

namespace {

int monitor_dpi(HWND window) {
  static const auto get_dpi = user_function<UINT(WINAPI*)(HWND)>("GetDpiForWindow");
  if (get_dpi != nullptr && get_dpi(window) != 0) return static_cast<int>(get_dpi(window));
  HDC const screen = ::GetDC(nullptr);
  const int dpi = ::GetDeviceCaps(screen, LOGPIXELSX);
  ::ReleaseDC(nullptr, screen);
  return dpi;
}

LOGFONTW message_font(int dpi) {
  using ForDpi = BOOL(WINAPI*)(UINT, UINT, PVOID, UINT, UINT);
  static const auto for_dpi = user_function<ForDpi>("SystemParametersInfoForDpi");
  NONCLIENTMETRICSW metrics{};
  metrics.cbSize = sizeof(metrics);
  if (for_dpi == nullptr ||
      for_dpi(SPI_GETNONCLIENTMETRICS, metrics.cbSize, &metrics, 0, static_cast<UINT>(dpi)) == FALSE) {
    ::SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, metrics.cbSize, &metrics, 0);
  }
  return metrics.lfMessageFont;
}

constexpr int kGuiHeight = 12;    // 9 points at 96 dpi
constexpr int kFixedHeight = 13;  // 10 points at 96 dpi

}  // namespace

int text_dpi(HWND window) {
  const int dpi = monitor_dpi(window);
  const int height = std::abs(static_cast<int>(message_font(dpi).lfHeight));
  constexpr int kDesignDpi = 96;
  return std::max(dpi, height * kDesignDpi / kGuiHeight);
}

HFONT make_gui_font(HWND window, int dpi) {
  LOGFONTW font = message_font(monitor_dpi(window));
  font.lfHeight = -platform::scaled(kGuiHeight, dpi);
  return ::CreateFontIndirectW(&font);
}

HFONT make_fixed_font(int dpi) {
  LOGFONTA font{};
  font.lfHeight = -platform::scaled(kFixedHeight, dpi);
  font.lfWeight = FW_NORMAL;
  font.lfCharSet = DEFAULT_CHARSET;
  font.lfPitchAndFamily = FIXED_PITCH | FF_MODERN;
  font.lfQuality = CLEARTYPE_QUALITY;
  // Courier itself is a bitmap of a few sizes.
  std::strcpy(font.lfFaceName, "Courier New");
  return ::CreateFontIndirectA(&font);
}

SIZE window_size(HWND window, platform::Size client) {
  using ForDpi = BOOL(WINAPI*)(LPRECT, DWORD, BOOL, DWORD, UINT);
  static const auto for_dpi = user_function<ForDpi>("AdjustWindowRectExForDpi");
  const auto style = static_cast<DWORD>(::GetWindowLongA(window, GWL_STYLE));
  const auto extended = static_cast<DWORD>(::GetWindowLongA(window, GWL_EXSTYLE));
  RECT frame{0, 0, client.width, client.height};
  if (for_dpi == nullptr || for_dpi(&frame, style, FALSE, extended, static_cast<UINT>(monitor_dpi(window))) == FALSE) {
    ::AdjustWindowRectEx(&frame, style, FALSE, extended);
  }
  return {frame.right - frame.left, frame.bottom - frame.top};
}

RECT work_area(HWND window) {
  MONITORINFO monitor{};
  monitor.cbSize = sizeof(monitor);
  ::GetMonitorInfoA(::MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &monitor);
  return monitor.rcWork;
}

}  // namespace win32
