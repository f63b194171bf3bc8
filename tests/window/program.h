#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <functional>
#include <string>
#include <vector>

/// The shipped program, run for one test: its controls are found by class and caption, pressed and read back.
class Program {
 public:
  /// Starts it with `arguments` and waits until its window takes input.
  explicit Program(const std::string& arguments);
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  HWND window() const { return window_; }

  /// The control with this caption ("&" left out); null when there is none.
  HWND find(const std::string& window_class, const std::string& caption) const;
  HWND button(const std::string& caption) const { return find("BUTTON", caption); }

  /// The n-th edit in tab order.
  HWND edit(std::size_t n) const;

  void press(const std::string& caption) const;

  /// Presses the button `caption`, which opens a menu, and chooses the entry `number`, from 1.
  void choose(const std::string& caption, int number) const;

  /// A key as the keyboard gives it, to the control that has the focus.
  void key(int virtual_key) const;
  void type(const std::string& text) const;
  void access_key(char letter) const;

  HWND focus() const;
  void set_focus(HWND control) const;

  /// A box of the program with this title; null when none opens in time. No waiting for none.
  HWND wait_for_box(const std::string& title) const;
  bool box_is_open() const;

  /// What the process ends with; 9999 when it does not end within half a minute.
  DWORD exit_code() const;
  bool running() const;

  /// Milliseconds that the window takes to answer a message.
  double answer_time() const;

  /// The text of every control and whether it is checked.
  std::vector<std::string> contents() const;
  std::vector<HWND> children() const;

 private:
  PROCESS_INFORMATION process_{};
  HWND window_ = nullptr;
};

std::string text_of(HWND window);
void set_text(HWND window, const std::string& text);
std::string class_of(HWND window);
bool checked(HWND option);
bool enabled(HWND window);
bool read_only(HWND edit);
RECT place_of(HWND window);

/// Asks until it is so, up to half a minute: other programs may keep the machine busy.
bool wait_until(const std::function<bool()>& holds);

/// Whether of the milliseconds that one of four rounds gives nineteen in twenty are below `usual` and all below
/// `worst`: a busy machine may spoil a round, a window that freezes spoils all.
testing::AssertionResult answers_within(double usual, double worst, const std::function<std::vector<double>()>& round);

/// Makes its window the smallest, in which the pictures share the report's place.
void make_small(const Program& program);

/// Writes a file into the current folder.
void write_file(const std::string& name, const std::string& text);

// The edits, in tab order.
inline constexpr std::size_t kStart = 0;
inline constexpr std::size_t kCount = 1;
inline constexpr std::size_t kCurrent = 2;
inline constexpr std::size_t kPattern = 3;
inline constexpr std::size_t kStatus = 4;
inline constexpr std::size_t kText = 5;
