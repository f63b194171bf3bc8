#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/win32/win_api.h"
#include "platform/window.h"

namespace win32 {

/// What a control shows of its row's field.
struct ShownControl {
  HWND window = nullptr;
  std::uint64_t revision = 0;  // of the field or picture, as shown
  std::uint64_t tip_revision = 0;
  std::size_t length = 0;  // of the text, as shown
  std::size_t caret = 0;
  bool typed = false;         // the user changed the text since the field was told
  std::string description{};  // of a picture, as told
  HBITMAP bitmap = nullptr;   // of a picture, as last painted
  SIZE bitmap_size{};
  std::optional<platform::Rect> place{};  // where it was put last
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
  int arrangement = 0;          // in which they are placed
  HWND focus = nullptr;         // the control that has the focus when the window is active
  HWND focus_before = nullptr;  // and had it before the running command
  bool busy = false;            // a command runs
  bool pushing = false;         // changes that the controls report now are the program's own
  HWND hidden = nullptr;        // stands for the window in a session that shows none, to hear of the session's end
  std::string status_instead;   // what the status line shows in place of its field
  std::vector<std::string> menu_hints;  // of the menu that is open, by entry
  std::string menu_hint;                // of the entry that is highlighted
  bool pointer_moved = false;           // over the picture of `pointer_row`; its handler is still to be called
  std::size_t pointer_row = 0;
  std::optional<platform::Point> pointer;
};

extern MainWindow main_window;

/// Posted by the operations' thread: a piece of work for the window, and the baton on offer.
inline constexpr UINT kWork = WM_APP;
inline constexpr UINT kOffered = WM_APP + 1;

/// Posted by the window's thread to itself: a box says that the program is about to end.
inline constexpr UINT kLeaving = WM_APP + 2;

/// The baton, on the window's thread, when it can be had without waiting: when the operations' thread is idle, offers
/// it, or has been in one call for so long that nobody measures the moment that it may have to wait behind it.
class Stillness {
 public:
  Stillness();
  ~Stillness();
  Stillness(const Stillness&) = delete;
  Stillness& operator=(const Stillness&) = delete;
  explicit operator bool() const { return taken_; }

 private:
  bool taken_;
};

/// True for what the user chooses one of.
constexpr bool is_option(platform::ControlKind kind) {
  return kind == platform::ControlKind::option || kind == platform::ControlKind::tab;
}

/// True for a control that the layout gave a place.
inline bool is_shown(HWND control) {
  return (::GetWindowLongA(control, GWL_STYLE) & WS_VISIBLE) != 0;
}

/// A control's identifier is its row in the table, counted from here.
inline constexpr int kFirstControlId = 1000;

// controls.cpp

/// Makes the table's controls in the main window, in its order.
bool create_controls();

/// Places the controls in the client area, with fonts of its scale. The focus leaves a control that is not shown.
void place_all();

/// Places them anew where the program wants another arrangement. While the data stand still.
void rearrange();

/// Gives the control of `row` the tool tip `text`, in place of the one that it has.
void set_tool_tip(std::size_t row, const std::string& text);

// shown.cpp

/// Shows every field that changed since it was last shown. While the data stand still.
void show_fields();

/// Gives the text that the user typed into the control of `row` to its field. On the operations' thread.
void take_typed(std::size_t row, std::string text);

/// The text of the control of `row`, as it is shown; a memo's byte by byte (byte_units.h).
std::string text_of(std::size_t row);

/// The text of another control.
std::string text_of(HWND control);

/// The control of `row` reports a changed text.
void text_changed(std::size_t row);

// picture.cpp

/// The window class of pictures, registered on first use.
const char* picture_class();

/// Paints every picture that changed since it was last painted; while a command runs at most 10 times a second. While
/// the data stand still.
void show_pictures();

/// Tells the picture under the pointer where that is. While the data stand still.
void tell_pointer();

// window.cpp

/// Ends the window's thread, so that the process can; nothing without one.
void stop_window();

// events.cpp

/// Shows and paints everything that changed, at once where the data stand still, else when they next do.
void show_soon();

/// Hands over what the user typed, so that it comes before what he presses next.
void hand_over_typing();

/// The user pressed or chose the control of `row`.
void control_clicked(std::size_t row);

/// Keeps in mind which control has the focus.
void note_focus();

/// Moves the focus, at once or when the window becomes active; to the next control where this one is not shown.
void move_focus(HWND control);

/// Dispatches one message with the window's tab, arrow and access keys.
void dispatch(MSG* message);

/// Dispatches the messages that wait.
void drain_messages();

/// What is to be done again and again: showing, the time that a call takes, presses that stop it.
void tick();

/// The entry `number` (from 1) of the open menu is highlighted; 0 for none.
void menu_entry_highlighted(std::size_t number);

/// Says in a box that the program is about to end.
void show_leaving_box();

/// A command begins, or has ended: the buttons are locked or given back. While the data stand still.
void lock_buttons();
void unlock_buttons();

// operations.cpp

/// Runs `work` on the window's thread and waits for its end. `by_user`: it may take a user's time, and interruptions
/// are dealt with meanwhile.
void ask_window(const std::function<void()>& work, bool by_user = false);

/// On the window's thread: what ask_window() posted.
void do_work(LPARAM order);

// taskbar.cpp

/// The window's button on the taskbar shows how far the running command is. Nothing on a system without a taskbar.
void show_on_taskbar(const platform::Share& share);

/// The button shows no progress any more.
void clear_taskbar();

// console.cpp

/// What the console and the session's end call.
void call_cancel_watcher();
void call_exit_watcher();

/// The session is about to end. False while the disk holds data that are not its own; the system then shows why.
bool may_end_session();

/// Takes back the reason once it is none any more.
void clear_end_session();

}  // namespace win32
