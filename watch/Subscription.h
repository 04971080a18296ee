/**
 * @file
 * Being told of events by the engine.
 */
#pragma once

#include <memory>
#include <optional>

#include "watch/EventCalls.h"
#include "watch/EventQueue.h"

namespace Watch {

struct CloseSession {
  decltype(EventCalls::FwpmEngineClose0) close;
  void operator()(HANDLE session) const { close(session); }
};
using Session = std::unique_ptr<void, CloseSession>;

/// A session with the engine, which changes nothing there.
/// @throws WatchError with the engine's code.
Session OpenSession(const EventCalls& engine);

/// Fills a queue with the engine's events, as long as this object lives.
class Subscription {
 public:
  /// Subscribes to all kinds of events, by the newest function that the engine has.
  /// @param engine, queue must outlive the subscription.
  /// @throws WatchError with the engine's code: ERROR_ACCESS_DENIED when rights are missing,
  /// ERROR_CALL_NOT_IMPLEMENTED when the engine has none of the functions.
  Subscription(const EventCalls& engine, EventQueue& queue);
  /// Waits for what the engine is just adding to the queue.
  ~Subscription();
  Subscription(const Subscription&) = delete;
  Subscription& operator=(const Subscription&) = delete;

  /// A setting of the engine; none if this user may not read it.
  /// @throws WatchError when the engine does not answer any more.
  [[nodiscard]] std::optional<UINT32> ReadOption(FWPM_ENGINE_OPTION option) const;

 private:
  const EventCalls& engine_;
  Session session_;
  HANDLE events_ = nullptr;
};

}  // namespace Watch
