#pragma once

#include <cstdint>

#include "platform/exchange.h"
#include "platform/win32/win_api.h"

/// The operations' thread and what it waits for.
namespace win32 {

extern platform::Baton baton;
extern platform::Presses presses;

/// What the operations' thread is doing while it lends the baton.
enum class Doing : std::uint8_t {
  running,  // it does not lend it
  call,     // a system call
  read,     // a read, which may be given up
  showing,  // the window does something for it, or may show what has changed
  idle      // nothing, until the user presses something
};

/// Lends the baton for the length of a system call, whose code is read before this ends. Does nothing on another thread
/// than the operations'.
class Call {
 public:
  explicit Call(Doing what);
  ~Call();
  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;

 private:
  bool lends_;
};

/// The call under way: what it is, and a number that no other call has.
struct CallUnderWay {
  Doing doing;
  std::uint32_t number;
};
CallUnderWay call_under_way();

/// The calling thread runs the operations from here on.
void become_operations();

/// Ends the read under way; only while the window holds the baton, so that no other call can have begun.
void give_up_read();

/// Lets the window show what has changed, if it comes within `patience`.
void offer_baton(std::chrono::milliseconds patience);

/// Waits as platform::wait() does.
bool wait_for_drive(DWORD milliseconds, bool reads);

/// True between hold_shutdown() and allow_shutdown().
bool disk_holds_other_data();

}  // namespace win32
