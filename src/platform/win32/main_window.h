#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/win32/win_api.h"
#include "platform/window.h"

namespace win32 {

/// What a control shows of its row's field.
struct ShownControl {
  HWND window = nullptr;
  std::uint64_t revision = 0;  // of the field or picture, as shown
  std::size_t length = 0;      // of the text, as shown
  std::size_t caret = 0;
  bool typed = false;         // the user changed the text since the field was told
  std::string description{};  // of a picture, as told
};

struct MainWindow {
  HWND window = nullptr;
  platform::WindowTable table{};
  std::vector<ShownControl> controls;  // one per row of the table
  std::uint64_t caption_revision = 0;
  HWND tips = nullptr;
  HFONT gui_font = nullptr;
  HFONT fixed_font = nullptr;
  int dpi = 0;                  // at which the controls are drawn
  HWND focus = nullptr;         // the control that has the focus when the window is active
  HWND focus_before = nullptr;  // and had it before the running command
  bool busy = false;            // a command runs
  bool pushing = false;         // changes that the controls report now are the program's own
};

extern MainWindow main_window;

/// Posted by another thread: an interruption waits to be turned into its handler's call.
inline constexpr UINT kInterrupted = WM_APP;

/// True for what the user chooses one of.
constexpr bool is_option(platform::ControlKind kind) {
  return kind == platform::ControlKind::option || kind == platform::ControlKind::tab;
}

/// A control's identifier is its row in the table, counted from here.
inline constexpr int kFirstControlId = 1000;

// controls.cpp

/// Makes the table's controls in the main window, in its order.
bool create_controls();

/// Places the controls in the client area, with fonts of its scale.
void place_all();

// shown.cpp

/// Shows every field that changed since it was last shown.
void show_fields();

/// Takes what the user typed back into the fields.
void take_typing();

/// The control of `row` reports a changed text.
void text_changed(std::size_t row);

// picture.cpp

/// The window class of pictures, registered on first use.
const char* picture_class();

/// Paints every picture that changed since it was last painted; while a command runs at most 10 times a second.
void show_pictures();

// events.cpp

/// Runs a handler of the table: typing is taken back before, and what it changed is shown after.
template <typename Handler>
void call_handler(Handler handler) {
  take_typing();
  handler();
  take_typing();
  if (main_window.busy) return;
  show_fields();
  show_pictures();
}

/// The user pressed or chose the control of `row`.
void control_clicked(std::size_t row);

/// Keeps in mind which control has the focus.
void note_focus();

/// Moves the focus, at once or when the window becomes active.
void move_focus(HWND control);

/// Dispatches one message with the window's tab, arrow and access keys.
void dispatch(MSG* message);

// console.cpp

/// Calls the handler of an interruption that came from the console or the session's end since the last call. An exit
/// waits while the disk holds data that are not its own.
void turn_interruptions();

/// The session ends: the next turn_interruptions() exits.
void request_exit();

// taskbar.cpp

/// The window's button on the taskbar shows how far the running command is. Nothing on a system without a taskbar.
void show_on_taskbar(const platform::Share& share);

/// The button shows no progress any more.
void clear_taskbar();

}  // namespace win32
