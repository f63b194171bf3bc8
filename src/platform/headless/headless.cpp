#include "platform/headless/headless.h"

#include <chrono>
#include <cmath>
#include <stdexcept>
#include <utility>

#include "platform/console.h"
#include "platform/window.h"

namespace headless {

namespace {

std::string take_answer(Box box) {
  if (desktop.answers.empty() && desktop.otherwise.empty()) {
    throw std::runtime_error("unanswered box: " + box.title + ": " + box.text);
  }
  if (desktop.at_box) desktop.at_box();
  box.answer = desktop.otherwise;
  if (!desktop.answers.empty()) {
    box.answer = desktop.answers.front();
    desktop.answers.pop_front();
  }
  desktop.boxes.push_back(box);
  note("box [" + box.title + "] [" + box.text + "] -> " + box.answer);
  return box.answer;
}

}  // namespace

void note(const std::string& event) {
  if (desktop.keeps_events) desktop.events.push_back(event);
}

platform::DateTime later(const platform::DateTime& when, std::int64_t seconds) {
  using namespace std::chrono;
  const year_month_day date{year(when.year), month(static_cast<unsigned>(when.month)),
                            day(static_cast<unsigned>(when.day))};
  const sys_seconds moved = sys_days(date) + hours(when.hour) + minutes(when.minute) +
                            std::chrono::seconds(when.second) + std::chrono::seconds(seconds);
  const sys_days midnight = floor<days>(moved);
  const year_month_day to(midnight);
  const hh_mm_ss time(moved - midnight);
  return {static_cast<int>(to.year()),
          static_cast<int>(static_cast<unsigned>(to.month())),
          static_cast<int>(static_cast<unsigned>(to.day())),
          static_cast<int>(time.hours().count()),
          static_cast<int>(time.minutes().count()),
          static_cast<int>(time.seconds().count())};
}

void pass_time(double seconds) {
  constexpr double kDay = 86400.0;
  const double before = desktop.steady;
  desktop.steady += seconds;
  desktop.now = later(desktop.now, static_cast<std::int64_t>(std::floor(desktop.steady) - std::floor(before)));
  desktop.midnight_seconds += seconds;
  if (desktop.midnight_seconds >= kDay) desktop.midnight_seconds -= kDay;
}

void press_control_c() {
  desktop.cancel_pressed = true;
}

void close_console() {
  desktop.close_pressed = true;
}

}  // namespace headless

namespace platform {

using headless::desktop;

bool open_window(const WindowTable& /*table*/) {
  return desktop.has_display;
}

void run_window(bool (*while_idle)()) {
  while (while_idle()) {
  }
}

bool pump_events() {
  const int pump = ++desktop.pumps;
  if (desktop.at_pump) desktop.at_pump(pump);
  if (desktop.cancel_pressed) {
    desktop.cancel_pressed = false;
    if (desktop.cancel_watcher != nullptr) desktop.cancel_watcher();
  }
  if (desktop.close_pressed) {
    desktop.close_pressed = false;
    if (desktop.exit_watcher != nullptr) desktop.exit_watcher();
  }
  return desktop.at_pump != nullptr;
}

void show_now() {}

bool take_given_up() {
  return std::exchange(desktop.given_up, false);
}

void begin_command() {
  headless::note("command begins");
  ++desktop.commands_begun;
}

void end_command() {
  headless::note("command ends");
  ++desktop.commands_ended;
  pump_events();
}

bool message_box(const std::string& text, Buttons buttons, const std::string& title, BoxIcon /*icon*/) {
  return headless::take_answer({.text = text, .title = title, .buttons = buttons}) == "OK";
}

bool checked_box(const std::string& text, const std::string& title, CheckBox* check) {
  const std::string answer =
      headless::take_answer({.text = text, .title = title, .check_box = check->caption, .ticked = check->ticked});
  if (answer == "OK TICKED") check->ticked = true;
  if (answer == "OK UNTICKED") check->ticked = false;
  return answer.starts_with("OK");
}

std::string input_box(const std::string& prompt, const std::string& title, const std::string& default_answer) {
  const std::string answer = headless::take_answer({.text = prompt, .title = title, .default_answer = default_answer});
  return answer == "CANCEL" ? std::string() : answer;
}

std::optional<std::size_t> pick_from_menu(std::span<const MenuItem> items, std::size_t /*row*/) {
  std::string shown;
  for (const MenuItem& item : items) shown += item.caption + (item.enabled ? ": " : " (grey): ") + item.hint + "\r\n";
  const std::string answer = headless::take_answer({.text = shown, .title = "menu"});
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (items[i].enabled && items[i].caption == answer) return i;
  }
  return std::nullopt;
}

std::string command_line() {
  return desktop.command_line;
}

std::uint32_t write_out(std::string_view text) {
  if (desktop.out_fails != 0) return desktop.out_fails;
  headless::note("out: " + std::string(text));
  desktop.out += text;
  desktop.terminal += text;
  return 0;
}

std::uint32_t write_err(std::string_view text) {
  headless::note("err: " + std::string(text));
  desktop.err += text;
  desktop.terminal += text;
  return 0;
}

void debug_text(const std::string& text) {
  desktop.debug += text + "\n";
}

bool err_is_terminal() {
  return desktop.err_is_terminal;
}

void release_lone_console() {}

void watch_console(void (*on_cancel)(), void (*on_exit)()) {
  desktop.cancel_watcher = on_cancel;
  desktop.exit_watcher = on_exit;
  desktop.cancel_pressed = false;
  desktop.close_pressed = false;
}

void hold_shutdown() {
  desktop.held = true;
}

void allow_shutdown() {
  desktop.held = false;
}

}  // namespace platform
