#include "platform/exchange.h"

#include <algorithm>
#include <utility>

namespace platform {

void Baton::lend() {
  holder_ = Holder::nobody;
}

void Baton::take_back() {
  Holder free = Holder::nobody;
  if (holder_.compare_exchange_strong(free, Holder::operations)) return;
  std::unique_lock lock(mutex_);
  returned_.wait(lock, [this] {
    Holder nobody = Holder::nobody;
    return holder_.compare_exchange_strong(nobody, Holder::operations);
  });
}

void Baton::offer(std::chrono::milliseconds patience) {
  lend();
  {
    std::unique_lock lock(mutex_);
    returned_.wait_for(lock, patience, [this] { return !wanted_.load(); });
  }
  take_back();
  wanted_ = false;
}

bool Baton::try_take() {
  Holder free = Holder::nobody;
  return holder_.compare_exchange_strong(free, Holder::window);
}

void Baton::give_back() {
  {
    const std::lock_guard lock(mutex_);
    wanted_ = false;
    holder_ = Holder::nobody;
  }
  returned_.notify_all();
}

void Presses::add(Press press) {
  {
    const std::lock_guard lock(mutex_);
    waiting_.push_back(std::move(press));
    any_ = true;
  }
  added_.notify_all();
}

std::optional<Press> Presses::take(const std::function<bool(const Press&)>& wanted) {
  const std::lock_guard lock(mutex_);
  const auto first = std::find_if(waiting_.begin(), waiting_.end(), wanted);
  if (first == waiting_.end()) return std::nullopt;
  Press press = std::move(*first);
  waiting_.erase(first);
  any_ = !waiting_.empty();
  return press;
}

void Presses::wait() {
  std::unique_lock lock(mutex_);
  added_.wait(lock, [this] { return !waiting_.empty(); });
}

bool Presses::waits(const std::function<bool(const Press&)>& like) {
  const std::lock_guard lock(mutex_);
  return std::any_of(waiting_.begin(), waiting_.end(), like);
}

}  // namespace platform
