#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <string>

#include "platform/geometry.h"

/// All that passes between the thread that runs the operations and the window's own: a baton and a queue of presses.
namespace platform {

/// Who may touch the program's data. The operations' thread holds the baton while it runs and lends it for the length
/// of each system call, so that the window can read everything while a drive does not answer. The window takes it for
/// the moment of showing or painting; meanwhile a call that returns waits.
class Baton {
 public:
  // The operations' thread.

  /// Before a call that may take its time.
  void lend();

  /// Behind it. Waits while the window shows something.
  void take_back();

  /// The window asked for the baton: a look at a flag.
  bool wanted() const { return wanted_.load(std::memory_order_relaxed); }

  /// Lends the baton to a window that wants it until it has been there, `patience` at most should it not come.
  void offer(std::chrono::milliseconds patience);

  // The window's thread.

  /// False while the other one runs.
  bool try_take();
  void give_back();

  /// The other one is to offer the baton when it gets to it.
  void want() { wanted_ = true; }

 private:
  enum class Holder : std::uint8_t { operations, nobody, window };
  std::atomic<Holder> holder_ = Holder::operations;
  std::atomic<bool> wanted_ = false;
  std::mutex mutex_;
  std::condition_variable returned_;
};

/// What a user did, for the operations' thread to deal with.
struct Press {
  enum class What : std::uint8_t {
    click,      // on the control of `row`
    typing,     // its text is now `text`
    picked,     // a double click at `place` of the picture of `row`
    help,       // F1
    closing,    // the window is to be closed
    interrupt,  // Control-C
    leave       // the console closes, the session ends
  };
  What what = What::click;
  std::size_t row = 0;
  std::string text{};
  Point place{};
};

/// The presses that wait, in the order in which they were made. Any thread adds, the operations' thread takes.
class Presses {
 public:
  void add(Press press);

  /// A look at a flag.
  bool any() const { return any_.load(std::memory_order_relaxed); }

  /// The first one that `wanted` takes.
  std::optional<Press> take(const std::function<bool(const Press&)>& wanted);

  /// Waits until there is one.
  void wait();

  /// Whether one waits that `like` says yes to.
  bool waits(const std::function<bool(const Press&)>& like);

 private:
  std::mutex mutex_;
  std::condition_variable added_;
  std::deque<Press> waiting_;
  std::atomic<bool> any_ = false;
};

}  // namespace platform
