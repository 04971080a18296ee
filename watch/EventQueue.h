/**
 * @file
 * The way of events from the engine's thread to the one that tells of them.
 */
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>

#include "watch/NetEvent.h"

namespace Watch {

/// A queue of limited length. Whoever adds never waits for room: what finds none is counted and dropped.
class EventQueue {
 public:
  using Clock = std::chrono::steady_clock;

  explicit EventQueue(std::size_t mostEvents = 4096) : mostEvents_(mostEvents) {}

  /// Does not throw: without memory, the event is lost too.
  void Add(NetEvent event) noexcept;
  void CountLost() noexcept;

  /// The oldest event; none if none comes in time.
  std::optional<NetEvent> Take(Clock::time_point until);
  /// How many events were lost so far.
  [[nodiscard]] std::size_t LostCount() const;

 private:
  const std::size_t mostEvents_;
  mutable std::mutex mutex_;
  std::condition_variable added_;
  std::deque<NetEvent> events_;
  std::size_t lost_ = 0;
};

}  // namespace Watch
