#include "watch/EventQueue.h"

#include <new>
#include <utility>

namespace Watch {

void EventQueue::Add(NetEvent event) noexcept {
  const std::lock_guard lock(mutex_);
  if (events_.size() >= mostEvents_) {
    ++lost_;
    return;
  }
  try {
    events_.push_back(std::move(event));
  } catch (const std::bad_alloc&) {
    ++lost_;
    return;
  }
  added_.notify_one();
}

void EventQueue::CountLost() noexcept {
  const std::lock_guard lock(mutex_);
  ++lost_;
}

std::optional<NetEvent> EventQueue::Take(Clock::time_point until) {
  std::unique_lock lock(mutex_);
  if (!added_.wait_until(lock, until, [this] { return !events_.empty(); })) {
    return std::nullopt;
  }
  NetEvent event = std::move(events_.front());
  events_.pop_front();
  return event;
}

std::size_t EventQueue::LostCount() const {
  const std::lock_guard lock(mutex_);
  return lost_;
}

}  // namespace Watch
