#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "platform/canvas.h"
#include "platform/fields.h"
#include "platform/geometry.h"

namespace platform {

/// A `display` is an edit that the user cannot change; it wraps onto as many lines as its place has. A `tab` is an
/// option that looks like a button.
enum class ControlKind : std::uint8_t { button, option, tab, edit, display, memo, frame, label, picture };

/// What a control does while a command runs.
enum class WhileBusy : std::uint8_t { stays, disabled, read_only };

/// What a press on a control stops.
enum class Stops : std::uint8_t { nothing, command, program };

/// What a control of kind `picture` shows, painted by the program. Places are pixels in the picture.
struct Picture {
  void (*paint)(Canvas* canvas);
  std::uint64_t (*revision)();             // differs from the one last painted when there is something new to paint
  std::string (*description)();            // the picture in words, for who cannot see it
  void (*on_hover)(const Point* pointer);  // where the mouse pointer is, null when it left; null for none
  void (*on_double_click)(Point place);    // null for none
};

/// One row of the table of controls. The order of the rows is the tab order.
struct Control {
  const char* name;  // the control's name in the program, also its window's accessible name where it has no caption
  ControlKind kind;
  const char* caption;   // "&" marks the access key; empty for edits
  const char* tool_tip;  // empty for none
  Field* field;          // text of an edit, memo or changing label, state of an option; null where nothing changes
  void (*on_click)();    // button pressed, option chosen, edit clicked into; null for none
  void (*on_typed)();    // the user changed the text by typing, pasting or cutting; null for none
  WhileBusy while_busy;
  const Picture* picture = nullptr;
  Stops stops = Stops::nothing;
  Field* tip = nullptr;  // the tool tip where it changes; `tool_tip` stands there while its text is empty
};

/// How far the running command is, as the window's button on the taskbar shows it.
struct Share {
  double done = 0.0;           // 0 to 1
  bool failed = false;         // something went wrong on the way
  double seconds_left = -1.0;  // -1 while unknown
};

/// A system call that has not come back yet.
struct Waiting {
  double seconds = 0.0;            // since it began
  Stops pressed = Stops::nothing;  // what a press that waits for its end wants
  bool can_be_given_up = false;    // a read: Cancel once more gives it up
  bool holds_other_data = false;   // the disk holds data that are not its own (hold_shutdown)
};

/// The main window: its controls, where they stand, and what its own events call.
struct WindowTable {
  Field* caption;
  std::span<const Control> controls;
  /// Fills `places` (one per control, same order; pixels) for a client area of `client` pixels at `dpi` dots per inch.
  /// A control whose place is empty is not shown, and keeps its text and caret.
  void (*layout)(Size client, int dpi, int arrangement, std::span<Rect> places);
  /// Which of the layout's arrangements such a window shows. Asked before the fields are shown; where it is another one
  /// than before, the controls are placed anew.
  int (*arrangement)(Size client, int dpi);
  Size first;          // client size to open with, in pixels at 96 dpi
  Size least;          // smallest client size, in pixels at 96 dpi
  Size whole;          // client size that shows everything, in pixels at 96 dpi
  void (*on_close)();  // the user closes the window; does not return (it ends the process)
  void (*on_help)();   // F1
  std::size_t cancel;  // the row of the button that has the focus while a command runs
  std::size_t status;  // the row of the status line
  Share (*share)();    // asked while a command runs
  /// What the status line says while a call does not come back; empty for what its field says.
  std::string (*waiting)(const Waiting& waiting);
  /// What a box says when the program is to end and a call that must not be given up has not come back.
  std::string (*leaving)(const Waiting& waiting);
};

/// Makes and shows the main window. False when the system has no place for one (no display); the program then runs on
/// its fields alone. On Windows it lives on a thread of its own, which ends with the process; what it calls of the
/// table is called while the program's data stand still, and handlers only from run_window(), pump_events() and
/// end_command().
bool open_window(const WindowTable& table);

/// Handles the window's events until it is destroyed. While none waits, `while_idle` does a piece of work, until it
/// returns false. Only after open_window() returned true.
void run_window(bool (*while_idle)());

/// Lets the user's presses that wait call their handlers, interruptions from the console too, and lets the window show
/// what has changed. False when there was nothing to do; that costs a look at two flags.
bool pump_events();

/// Shows everything as it stands, so that a stretch of work whose time is taken does not begin with that. Handles no
/// events.
void show_now();

/// True once behind a read that failed because the user gave it up while it did not come back.
bool take_given_up();

/// A command begins: fellow commands are disabled, texts become read-only, the focus goes to Cancel. The machine does
/// not go to sleep until it ends.
void begin_command();

/// The command has ended: what the user did meanwhile is dealt with as during it, everything is shown as it stands,
/// then the buttons come back and the focus with them.
void end_command();

enum class Buttons : std::uint8_t { ok, ok_cancel };
enum class BoxIcon : std::uint8_t { none, information };

/// Shows a modal box over the main window; true for OK, false for Cancel (also by Esc or closing it).
bool message_box(const std::string& text, Buttons buttons, const std::string& title, BoxIcon icon = BoxIcon::none);

/// A check box of a question.
struct CheckBox {
  std::string caption;
  bool ticked = false;  // as shown first, then as the user left it
};

/// A question, as message_box() asks it for OK or Cancel, with a check box, which changes on OK alone.
bool checked_box(const std::string& text, const std::string& title, CheckBox* check);

/// An entry of a menu.
struct MenuItem {
  std::string caption;  // "&" marks the access key; a key that does the same follows a tab
  std::string hint;     // shown in the status line while the entry is highlighted
  bool enabled = true;  // false: it is grey, and its hint says why
};

/// Shows a menu below the control of row `row` of the window's table. Returns the index of the chosen entry, or nullopt
/// if the user leaves the menu or there is no window.
std::optional<std::size_t> pick_from_menu(std::span<const MenuItem> items, std::size_t row);

/// Asks for a line of text in a modal box; empty for Cancel as well as for an empty answer.
std::string input_box(const std::string& prompt, const std::string& title, const std::string& default_answer);

}  // namespace platform
