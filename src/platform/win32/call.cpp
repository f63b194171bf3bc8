#include "platform/win32/call.h"

#include <atomic>

#include "platform/window.h"

namespace win32 {

platform::Baton baton;
platform::Presses presses;

namespace {

struct Operations {
  DWORD id = ::GetCurrentThreadId();
  HANDLE thread = nullptr;
  HANDLE given_up_event = nullptr;
  std::atomic<Doing> doing = Doing::running;
  std::atomic<std::uint32_t> calls = 0;
  std::atomic<bool> given_up = false;
};
Operations operations;

}  // namespace

void become_operations() {
  operations.id = ::GetCurrentThreadId();
  HANDLE const process = ::GetCurrentProcess();
  ::DuplicateHandle(process, ::GetCurrentThread(), process, &operations.thread, 0, FALSE, DUPLICATE_SAME_ACCESS);
  operations.given_up_event = ::CreateEventA(nullptr, TRUE, FALSE, nullptr);
}

Call::Call(Doing what) : lends_(::GetCurrentThreadId() == operations.id) {
  if (!lends_) return;
  if (what == Doing::read) operations.given_up.store(false, std::memory_order_relaxed);
  operations.calls.store(operations.calls.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
  operations.doing.store(what, std::memory_order_relaxed);
  baton.lend();
}

Call::~Call() {
  if (!lends_) return;
  baton.take_back();
  operations.doing.store(Doing::running, std::memory_order_relaxed);
}

void offer_baton(std::chrono::milliseconds patience) {
  operations.doing.store(Doing::showing, std::memory_order_relaxed);
  baton.offer(patience);
  operations.doing.store(Doing::running, std::memory_order_relaxed);
}

CallUnderWay call_under_way() {
  return {operations.doing, operations.calls};
}

void give_up_read() {
  operations.given_up = true;
  ::SetEvent(operations.given_up_event);
  ::CancelSynchronousIo(operations.thread);
}

bool wait_for_drive(DWORD milliseconds, bool reads) {
  if (operations.given_up_event == nullptr) {
    ::Sleep(milliseconds);
    return true;
  }
  ::ResetEvent(operations.given_up_event);
  const Call call(reads ? Doing::read : Doing::call);
  return ::WaitForSingleObject(operations.given_up_event, milliseconds) == WAIT_TIMEOUT;
}

}  // namespace win32

namespace platform {

bool take_given_up() {
  return win32::operations.given_up.exchange(false);
}

}  // namespace platform
