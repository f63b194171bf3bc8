#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <string>

#include "platform/geometry.h"
#include "platform/win32/dpi.h"
#include "platform/win32/main_window.h"
#include "platform/window.h"

namespace win32 {

namespace {

constexpr int kPromptId = 100;
constexpr int kAnswerId = 101;

/// What a box of our own asks, and what it was given: a line of text, or a check box where there is one.
struct Question {
  const std::string& prompt;
  const std::string& title;
  std::string answer;  // proposed, then given
  platform::CheckBox* check = nullptr;
  HFONT font = nullptr;
};

/// Measures, makes and places the controls of a box from its prompt, at the main window's scale.
class BoxLayout {
 public:
  BoxLayout(HWND box, const Question& question) : box_(box), question_(question), dpi_(main_window.dpi) {}

  void build() {
    const int margin = at(12);
    const int button_width = at(88);
    const int button_height = at(26);
    const SIZE prompt = prompt_size();
    const int width = std::max({static_cast<int>(prompt.cx), at(300), 2 * button_width + at(8)});
    int y = margin;
    add("STATIC", question_.prompt, SS_LEFT | SS_NOPREFIX, 0, kPromptId,
        {margin, y, width, static_cast<int>(prompt.cy)});
    y += static_cast<int>(prompt.cy) + at(10);
    const bool checked = question_.check != nullptr;
    if (checked) {
      add("BUTTON", question_.check->caption, WS_TABSTOP | BS_AUTOCHECKBOX, 0, kAnswerId, {margin, y, width, at(23)});
    } else {
      add("EDIT", question_.answer, WS_TABSTOP | ES_AUTOHSCROLL, WS_EX_CLIENTEDGE, kAnswerId,
          {margin, y, width, at(23)});
    }
    y += at(23) + at(14);
    const DWORD ok = checked ? BS_PUSHBUTTON : BS_DEFPUSHBUTTON;
    const DWORD cancel = checked ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON;
    const int cancel_x = margin + width - button_width;
    add("BUTTON", "OK", WS_TABSTOP | ok, 0, IDOK, {cancel_x - at(8) - button_width, y, button_width, button_height});
    add("BUTTON", "Cancel", WS_TABSTOP | cancel, 0, IDCANCEL, {cancel_x, y, button_width, button_height});
    place_box({width + 2 * margin, y + button_height + margin});
  }

 private:
  int at(int pixels) const { return platform::scaled(pixels, dpi_); }

  /// The prompt's size, its long lines broken at half the screen's width.
  SIZE prompt_size() const {
    const RECT work = work_area(main_window.window);
    RECT text{0, 0, std::min<LONG>(at(480), (work.right - work.left) * 3 / 4), 0};
    HDC const screen = ::GetDC(box_);
    HGDIOBJ const before = ::SelectObject(screen, question_.font);
    ::DrawTextA(screen, question_.prompt.c_str(), -1, &text, DT_CALCRECT | DT_WORDBREAK | DT_NOPREFIX | DT_EXPANDTABS);
    ::SelectObject(screen, before);
    ::ReleaseDC(box_, screen);
    return {text.right, text.bottom};
  }

  void add(const char* window_class, const std::string& text, DWORD style, DWORD extended, int id,
           platform::Rect place) const {
    HWND const control = ::CreateWindowExA(extended, window_class, text.c_str(), WS_CHILD | WS_VISIBLE | style, place.x,
                                           place.y, place.width, place.height, box_,
                                           reinterpret_cast<HMENU>(static_cast<std::intptr_t>(id)), nullptr, nullptr);
    ::SendMessageA(control, WM_SETFONT, reinterpret_cast<WPARAM>(question_.font), TRUE);
  }

  /// Over the main window's middle, but whole on its screen.
  void place_box(platform::Size client) const {
    const SIZE size = window_size(box_, client);
    RECT owner{};
    ::GetWindowRect(main_window.window, &owner);
    const RECT work = work_area(main_window.window);
    const LONG x = (owner.left + owner.right - size.cx) / 2;
    const LONG y = (owner.top + owner.bottom - size.cy) / 3;
    ::SetWindowPos(box_, nullptr, static_cast<int>(std::max(work.left, std::min(x, work.right - size.cx))),
                   static_cast<int>(std::max(work.top, std::min(y, work.bottom - size.cy))), static_cast<int>(size.cx),
                   static_cast<int>(size.cy), SWP_NOZORDER | SWP_NOACTIVATE);
  }

  HWND box_;
  const Question& question_;
  int dpi_;
};

void open_box(HWND box, Question* question) {
  ::SetWindowLongPtrA(box, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(question));
  ::SetWindowTextA(box, question->title.c_str());
  question->font = make_gui_font(main_window.window, main_window.dpi);
  BoxLayout(box, *question).build();
  if (question->check == nullptr) {
    ::SendDlgItemMessageA(box, kAnswerId, EM_SETSEL, 0, -1);
    ::SetFocus(::GetDlgItem(box, kAnswerId));
    return;
  }
  ::SendDlgItemMessageA(box, kAnswerId, BM_SETCHECK, question->check->ticked ? BST_CHECKED : BST_UNCHECKED, 0);
  // As in a message box whose default is Cancel, from wherever Enter is pressed.
  ::SendMessageA(box, DM_SETDEFID, IDCANCEL, 0);
  ::SetFocus(::GetDlgItem(box, IDCANCEL));
}

void take_answer(HWND box, Question* question) {
  if (question->check != nullptr) {
    question->check->ticked = ::SendDlgItemMessageA(box, kAnswerId, BM_GETCHECK, 0, 0) == BST_CHECKED;
    return;
  }
  HWND const edit = ::GetDlgItem(box, kAnswerId);
  const int length = ::GetWindowTextLengthA(edit);
  question->answer.resize(static_cast<std::size_t>(length) + 1);
  question->answer.resize(static_cast<std::size_t>(::GetWindowTextA(edit, question->answer.data(), length + 1)));
}

INT_PTR CALLBACK box_procedure(HWND box, UINT message, WPARAM word, LPARAM long_word) {
  if (message == WM_INITDIALOG) {
    open_box(box, reinterpret_cast<Question*>(long_word));
    return FALSE;  // the focus is set
  }
  if (message == WM_COMMAND && (LOWORD(word) == IDOK || LOWORD(word) == IDCANCEL)) {
    auto* const question = reinterpret_cast<Question*>(::GetWindowLongPtrA(box, GWLP_USERDATA));
    if (LOWORD(word) == IDOK) take_answer(box, question);
    ::EndDialog(box, LOWORD(word));
    return TRUE;
  }
  return FALSE;
}

/// Before a box opens everything is shown as it stands, since the command that asks waits for the answer.
void before_box() {
  hand_over_typing();
  show_soon();
}

/// On the window's thread: what ended the box, IDOK or IDCANCEL, or -1 where the system could not show it.
INT_PTR show_box(Question* question) {
  // An empty dialog; its controls are made when it opens. The template is followed by no menu, no class and no title.
  struct alignas(DWORD) Template {
    DLGTEMPLATE head;
    std::array<WORD, 3> none;
  };
  Template blank{{WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME | WS_VISIBLE, 0, 0, 0, 0, 10, 10}, {}};
  before_box();
  const INT_PTR ended = ::DialogBoxIndirectParamA(::GetModuleHandleA(nullptr), &blank.head, main_window.window,
                                                  box_procedure, reinterpret_cast<LPARAM>(question));
  if (question->font != nullptr) ::DeleteObject(question->font);
  return ended;
}

/// On the window's thread.
int show_message(const std::string& text, const std::string& title, UINT look) {
  before_box();
  return ::MessageBoxA(main_window.window, text.c_str(), title.c_str(), look);
}

/// On the window's thread: the number of the chosen entry, from 1, or 0.
std::size_t show_menu(std::span<const platform::MenuItem> items, std::size_t row) {
  before_box();
  HMENU const menu = ::CreatePopupMenu();
  main_window.menu_hints.clear();
  for (const platform::MenuItem& item : items) {
    main_window.menu_hints.push_back(item.hint);
    ::AppendMenuA(menu, item.enabled ? MF_STRING : MF_STRING | MF_GRAYED, main_window.menu_hints.size(),
                  item.caption.c_str());
  }
  RECT place{};
  ::GetWindowRect(main_window.controls[row].window, &place);
  const BOOL chosen = ::TrackPopupMenu(menu, TPM_RETURNCMD | TPM_LEFTALIGN | TPM_TOPALIGN, place.left, place.bottom, 0,
                                       main_window.window, nullptr);
  ::DestroyMenu(menu);
  menu_entry_highlighted(0);
  return static_cast<std::size_t>(chosen);
}

}  // namespace
}  // namespace win32

namespace platform {

bool message_box(const std::string& text, Buttons buttons, const std::string& title, BoxIcon icon) {
  if (win32::main_window.window == nullptr) return false;
  // Every question is about writing over something: an Enter held down or pressed twice answers Cancel.
  const UINT shape = buttons == Buttons::ok ? MB_OK : MB_OKCANCEL | MB_DEFBUTTON2;
  const UINT sign = icon == BoxIcon::information ? MB_ICONINFORMATION : 0;
  int pressed = IDCANCEL;
  win32::ask_window([&] { pressed = win32::show_message(text, title, shape | sign); }, true);
  return pressed == IDOK;
}

std::optional<std::size_t> pick_from_menu(std::span<const MenuItem> items, std::size_t row) {
  if (win32::main_window.window == nullptr) return std::nullopt;
  std::size_t chosen = 0;
  win32::ask_window([&] { chosen = win32::show_menu(items, row); }, true);
  return chosen == 0 ? std::nullopt : std::optional(chosen - 1);
}

std::string input_box(const std::string& prompt, const std::string& title, const std::string& default_answer) {
  if (win32::main_window.window == nullptr) return {};
  win32::Question question{.prompt = prompt, .title = title, .answer = default_answer};
  INT_PTR ended = IDCANCEL;
  const auto ask = [&] {
    ended = win32::show_box(&question);
    if (ended == -1) {
      win32::show_message(
          "The question \"" + title + "\" cannot be shown: error " + std::to_string(::GetLastError()) + ".", title,
          MB_OK);
    }
  };
  win32::ask_window(ask, true);
  return ended == IDOK ? question.answer : std::string();
}

bool checked_box(const std::string& text, const std::string& title, CheckBox* check) {
  if (win32::main_window.window == nullptr) return false;
  win32::Question question{.prompt = text, .title = title, .answer = {}, .check = check};
  INT_PTR ended = IDCANCEL;
  const auto ask = [&] {
    ended = win32::show_box(&question);
    if (ended != -1) return;
    // What cannot be asked with a check box is asked without.
    check->ticked = false;
    ended = win32::show_message(text, title, MB_OKCANCEL | MB_DEFBUTTON2);
  };
  win32::ask_window(ask, true);
  return ended == IDOK;
}

}  // namespace platform
