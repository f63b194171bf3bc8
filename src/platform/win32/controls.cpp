#include <string>

#include "platform/geometry.h"
#include "platform/win32/dpi.h"
#include "platform/win32/main_window.h"

namespace win32 {

namespace {

using platform::Control;
using platform::ControlKind;

struct Look {
  const char* window_class;
  DWORD style;
  DWORD extended_style;
};

Look look_of(ControlKind kind) {
  switch (kind) {
    case ControlKind::button:
      return {"BUTTON", BS_PUSHBUTTON | WS_TABSTOP, 0};
    case ControlKind::option:
      return {"BUTTON", BS_AUTORADIOBUTTON, 0};
    case ControlKind::tab:
      return {"BUTTON", BS_AUTORADIOBUTTON | BS_PUSHLIKE, 0};
    case ControlKind::edit:
      return {"EDIT", ES_AUTOHSCROLL | WS_TABSTOP, WS_EX_CLIENTEDGE};
    case ControlKind::display:
      return {"EDIT", ES_MULTILINE | ES_READONLY | WS_TABSTOP, WS_EX_CLIENTEDGE};
    case ControlKind::memo:
      return {"EDIT",
              ES_MULTILINE | ES_WANTRETURN | ES_AUTOHSCROLL | ES_AUTOVSCROLL | ES_NOHIDESEL | WS_HSCROLL | WS_VSCROLL |
                  WS_TABSTOP,
              WS_EX_CLIENTEDGE};
    case ControlKind::frame:
      // Transparent, so that the window's own background shows through and the frame never covers what it surrounds.
      return {"BUTTON", BS_GROUPBOX, WS_EX_TRANSPARENT};
    case ControlKind::label:
      return {"STATIC", SS_LEFT | SS_CENTERIMAGE | SS_NOPREFIX, 0};
    case ControlKind::picture:
      return {picture_class(), 0, 0};
  }
  return {};
}

bool is_text(ControlKind kind) {
  return kind == ControlKind::edit || kind == ControlKind::display || kind == ControlKind::memo;
}

/// A memo takes its text in code units, so it is a window of the wide kind.
HWND make_memo(DWORD more_style, int id) {
  const Look look = look_of(ControlKind::memo);
  return ::CreateWindowExW(look.extended_style, L"EDIT", L"", WS_CHILD | look.style | more_style, 0, 0, 0, 0,
                           main_window.window, reinterpret_cast<HMENU>(static_cast<std::intptr_t>(id)),
                           ::GetModuleHandleA(nullptr), nullptr);
}

HWND make_child(const Look& look, const char* caption, DWORD more_style, int id) {
  return ::CreateWindowExA(look.extended_style, look.window_class, caption, WS_CHILD | look.style | more_style, 0, 0, 0,
                           0, main_window.window, reinterpret_cast<HMENU>(static_cast<std::intptr_t>(id)),
                           ::GetModuleHandleA(nullptr), nullptr);
}

/// What a text control does beyond the system's: tells a click into it, gives the Tab key away, marks all on Control-A,
/// and notices texts that other programs set, of which a control of several lines says nothing.
LRESULT CALLBACK text_procedure(HWND control, UINT message, WPARAM word, LPARAM long_word, UINT_PTR /*id*/,
                                DWORD_PTR row_number) {
  const auto row_index = static_cast<std::size_t>(row_number);
  const Control& row = main_window.table.controls[row_index];
  const bool memo = row.kind == ControlKind::memo;
  if (message == WM_LBUTTONDOWN && row.on_click != nullptr) control_clicked(row_index);
  if (message == WM_GETDLGCODE && row.kind != ControlKind::edit) {
    const LRESULT own_keys = memo && word == VK_RETURN ? DLGC_WANTALLKEYS : 0;
    return DLGC_WANTCHARS | DLGC_WANTARROWS | own_keys;
  }
  if (message == WM_KEYDOWN && word == 'A' && ::GetKeyState(VK_CONTROL) < 0 && ::GetKeyState(VK_MENU) >= 0) {
    ::SendMessageA(control, EM_SETSEL, 0, -1);
    return 0;
  }
  constexpr WPARAM kControlA = 1;
  if (message == WM_CHAR && word == kControlA) return 0;
  const LRESULT result = ::DefSubclassProc(control, message, word, long_word);
  if (message == WM_SETTEXT && memo) text_changed(row_index);
  return result;
}

void send_tool_tip(UINT message, HWND control, const std::string& text) {
  TTTOOLINFOA tool{};
  tool.cbSize = TTTOOLINFOA_V2_SIZE;
  tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
  tool.hwnd = main_window.window;
  tool.uId = reinterpret_cast<UINT_PTR>(control);
  std::string copy = text;
  tool.lpszText = copy.data();
  ::SendMessageA(main_window.tips, message, 0, reinterpret_cast<LPARAM>(&tool));
}

void make_fonts(int dpi) {
  MainWindow& main = main_window;
  HFONT const old_gui = main.gui_font;
  HFONT const old_fixed = main.fixed_font;
  main.dpi = dpi;
  main.gui_font = make_gui_font(main.window, dpi);
  main.fixed_font = make_fixed_font(dpi);
  for (std::size_t i = 0; i < main.controls.size(); ++i) {
    const bool fixed = main.table.controls[i].kind == ControlKind::memo;
    ::SendMessageA(main.controls[i].window, WM_SETFONT,
                   reinterpret_cast<WPARAM>(fixed ? main.fixed_font : main.gui_font), TRUE);
  }
  ::SendMessageA(main.tips, TTM_SETMAXTIPWIDTH, 0, platform::scaled(360, dpi));
  if (old_gui != nullptr) ::DeleteObject(old_gui);
  if (old_fixed != nullptr) ::DeleteObject(old_fixed);
}

platform::Size client_size() {
  RECT client{};
  ::GetClientRect(main_window.window, &client);
  return {client.right, client.bottom};
}

}  // namespace

bool create_controls() {
  MainWindow& main = main_window;
  main.tips = ::CreateWindowExA(WS_EX_TOPMOST, TOOLTIPS_CLASSA, nullptr, WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, 0, 0,
                                0, 0, main.window, nullptr, ::GetModuleHandleA(nullptr), nullptr);
  ControlKind previous = ControlKind::frame;
  for (const Control& row : main.table.controls) {
    // A text without a label takes its name for screen readers from a hidden one.
    if (is_text(row.kind) && previous != ControlKind::label) make_child({"STATIC", 0, 0}, row.name, 0, 0);
    const bool starts_group = is_option(row.kind) != is_option(previous);
    const std::size_t index = main.controls.size();
    const DWORD more_style = WS_VISIBLE | (starts_group ? WS_GROUP : 0);
    const int id = kFirstControlId + static_cast<int>(index);
    HWND const control = row.kind == ControlKind::memo ? make_memo(more_style, id)
                                                       : make_child(look_of(row.kind), row.caption, more_style, id);
    if (control == nullptr) return false;
    main.controls.push_back({control});
    if (is_option(row.kind)) ::SendMessageA(control, BM_SETDONTCLICK, TRUE, 0);
    if (row.kind == ControlKind::button && row.on_click == nullptr) ::EnableWindow(control, FALSE);
    if (row.kind == ControlKind::memo) ::SendMessageA(control, EM_SETLIMITTEXT, 0x7FFFFFFE, 0);
    if (is_text(row.kind)) ::SetWindowSubclass(control, text_procedure, 1, index);
    if (row.tool_tip[0] != '\0' || row.tip != nullptr) send_tool_tip(TTM_ADDTOOLA, control, row.tool_tip);
    previous = row.kind;
  }
  return true;
}

void set_tool_tip(std::size_t row, const std::string& text) {
  send_tool_tip(TTM_UPDATETIPTEXTA, main_window.controls[row].window, text);
}

void place_all() {
  MainWindow& main = main_window;
  const platform::Size size = client_size();
  if (main.controls.empty() || size.width == 0 || size.height == 0) return;
  const int dpi = platform::fitting_dpi(size, main.table.least, main.table.whole, text_dpi(main.window));
  if (dpi != main.dpi) make_fonts(dpi);
  note_focus();

  std::vector<platform::Rect> places(main.controls.size());
  main.table.layout(size, dpi, main.arrangement, places);
  HDWP move = ::BeginDeferWindowPos(static_cast<int>(places.size()));
  for (std::size_t i = 0; i < places.size(); ++i) {
    if (main.controls[i].place == places[i]) continue;
    main.controls[i].place = places[i];
    const bool shown = places[i].width > 0 && places[i].height > 0;
    // A memo of no size would lose which lines are in view.
    const UINT how = shown ? SWP_SHOWWINDOW : SWP_HIDEWINDOW | SWP_NOMOVE | SWP_NOSIZE;
    move = ::DeferWindowPos(move, main.controls[i].window, nullptr, places[i].x, places[i].y, places[i].width,
                            places[i].height, SWP_NOZORDER | SWP_NOACTIVATE | how);
  }
  ::EndDeferWindowPos(move);
  if (main.focus != nullptr) move_focus(main.focus);
}

void rearrange() {
  MainWindow& main = main_window;
  const platform::Size size = client_size();
  if (size.width == 0 || size.height == 0) return;
  const int arrangement = main.table.arrangement(size, main.dpi);
  if (arrangement == main.arrangement) return;
  main.arrangement = arrangement;
  place_all();
}

}  // namespace win32
