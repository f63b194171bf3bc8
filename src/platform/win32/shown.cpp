#include <algorithm>
#include <string>
#include <utility>

#include "platform/win32/byte_units.h"
#include "platform/win32/main_window.h"

namespace win32 {

namespace {

using platform::Control;
using platform::ControlKind;
using platform::Field;

constexpr WPARAM kEnd = 0x7FFFFFFE;  // past every text: an edit takes it as its end

/// A control's text ends at its first zero byte; a report may hold one.
std::string without_zeros(std::string text) {
  std::replace(text.begin(), text.end(), '\0', ' ');
  return text;
}

/// Adds to a memo's end. What the user sees and has marked stays, unless he follows the end of a text longer than the
/// memo: then the end stays in view.
void append_text(HWND memo, const std::string& more) {
  const auto ask = [memo](UINT message, WPARAM word = 0, LPARAM long_word = 0) {
    return ::SendMessageW(memo, message, word, long_word);
  };
  DWORD from = 0;
  DWORD to = 0;
  ask(EM_GETSEL, reinterpret_cast<WPARAM>(&from), reinterpret_cast<LPARAM>(&to));
  SCROLLINFO scroll{};
  scroll.cbSize = sizeof(scroll);
  scroll.fMask = SIF_ALL;
  ::GetScrollInfo(memo, SB_VERT, &scroll);
  const LRESULT first = ask(EM_GETFIRSTVISIBLELINE);
  const bool follows = first > 0 && scroll.nPos + static_cast<int>(scroll.nPage) >= scroll.nMax;

  // It would show a hidden control.
  const bool shown = is_shown(memo);
  if (shown) ask(WM_SETREDRAW, FALSE);
  ask(EM_SETSEL, kEnd, kEnd);
  ask(EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(units_of(more).c_str()));
  ask(EM_SETSEL, from, static_cast<LPARAM>(to));
  if (!follows) ask(EM_LINESCROLL, 0, first - ask(EM_GETFIRSTVISIBLELINE));
  if (shown) ask(WM_SETREDRAW, TRUE);
  ::InvalidateRect(memo, nullptr, FALSE);
}

void show_caret(const Control& row, ShownControl* shown) {
  shown->caret = row.field->caret();
  const WPARAM place = shown->caret >= shown->length ? kEnd : shown->caret;
  ::SendMessageA(shown->window, EM_SETSEL, place, static_cast<LPARAM>(place));
  ::SendMessageA(shown->window, EM_SCROLLCARET, 0, 0);
}

void show_text(const Control& row, ShownControl* shown) {
  const std::string& text = row.field->text();
  const bool only_more = row.kind == ControlKind::memo && row.field->replaced() <= shown->revision;
  if (only_more) {
    if (text.size() > shown->length) append_text(shown->window, text.substr(shown->length));
  } else if (row.kind == ControlKind::memo) {
    ::SetWindowTextW(shown->window, units_of(text).c_str());
    shown->caret = 0;
  } else {
    ::SetWindowTextA(shown->window, without_zeros(text).c_str());
    shown->caret = 0;
  }
  shown->length = text.size();
  if (row.field->caret() != shown->caret) show_caret(row, shown);
}

/// A line that stands in place of the status while a call does not come back; the field is shown again behind it.
bool show_instead(const std::string& line, ShownControl* shown) {
  if (line.empty()) return false;
  if (text_of(shown->window) != line) ::SetWindowTextA(shown->window, line.c_str());
  shown->revision = UINT64_MAX;
  return true;
}

void show_field(const Control& row, ShownControl* shown) {
  if (row.field == nullptr || row.field->revision() == shown->revision) return;
  if (is_option(row.kind)) {
    ::SendMessageA(shown->window, BM_SETCHECK, row.field->on() ? BST_CHECKED : BST_UNCHECKED, 0);
  } else {
    show_text(row, shown);
  }
  shown->revision = row.field->revision();
}

void show_tip(std::size_t row) {
  const Control& control = main_window.table.controls[row];
  ShownControl& shown = main_window.controls[row];
  if (control.tip == nullptr || control.tip->revision() == shown.tip_revision) return;
  set_tool_tip(row, control.tip->text().empty() ? control.tool_tip : control.tip->text());
  shown.tip_revision = control.tip->revision();
}

}  // namespace

std::string text_of(std::size_t row) {
  HWND const control = main_window.controls[row].window;
  if (main_window.table.controls[row].kind != ControlKind::memo) return text_of(control);
  const int length = ::GetWindowTextLengthW(control);
  std::wstring units(static_cast<std::size_t>(length) + 1, L'\0');
  units.resize(static_cast<std::size_t>(::GetWindowTextW(control, units.data(), length + 1)));
  return bytes_of(units);
}

std::string text_of(HWND control) {
  const int length = ::GetWindowTextLengthA(control);
  std::string text(static_cast<std::size_t>(length) + 1, '\0');
  text.resize(static_cast<std::size_t>(::GetWindowTextA(control, text.data(), length + 1)));
  return text;
}

void show_fields() {
  MainWindow& main = main_window;
  if (main.window == nullptr) return;
  rearrange();
  main.pushing = true;
  if (main.table.caption->revision() != main.caption_revision) {
    ::SetWindowTextA(main.window, main.table.caption->text().c_str());
    main.caption_revision = main.table.caption->revision();
  }
  for (std::size_t i = 0; i < main.controls.size(); ++i) {
    if (i == main.table.status && show_instead(main.status_instead, &main.controls[i])) continue;
    show_field(main.table.controls[i], &main.controls[i]);
    show_tip(i);
  }
  main.pushing = false;
}

void take_typed(std::size_t row, std::string text) {
  ShownControl& shown = main_window.controls[row];
  Field& field = *main_window.table.controls[row].field;
  field.set_typed(std::move(text));
  shown.revision = field.revision();
  shown.length = field.text().size();
  shown.caret = field.caret();
}

void text_changed(std::size_t row) {
  MainWindow& main = main_window;
  const Control& control = main.table.controls[row];
  if (main.pushing || control.field == nullptr) return;
  main.controls[row].typed = true;
  if (control.on_typed != nullptr) hand_over_typing();
}

}  // namespace win32
