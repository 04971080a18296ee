/**
 * @file
 * Tells of drops while they happen.
 */
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>

#include "watch/Account.h"
#include "watch/EventCalls.h"
#include "watch/Folding.h"

namespace Watch {

/// A drop that is told of.
struct Drop {
  std::size_t number;  ///< 1 for the first; repeats are told of by it
  NetEvent event;
  std::size_t count;  ///< of drops like it
  UINT64 lastTime;    ///< of the last one, as in NetEvent
  Account account;
};

/// What was seen in all.
struct Totals {
  std::size_t drops = 0;                      ///< told of one by one
  std::size_t repeats = 0;                    ///< counted
  std::size_t lost = 0;                       ///< events that came too fast
  std::map<std::string, std::size_t> others;  ///< of other events, by the names of their types
};

/// Is told what happens, on the thread that watches.
class Audience {
 public:
  virtual ~Audience() = default;
  /// From now on nothing is missed.
  virtual void Begin() = 0;
  /// Something that the user should know, one sentence or more.
  virtual void Note(const std::string& text) = 0;
  virtual void Tell(const Drop& drop) = 0;
  /// There were more drops like one that was told of.
  virtual void TellRepeats(const Group& group) = 0;
  virtual void End(const Totals& totals) = 0;
};

/// Watches an engine, and changes nothing there.
class Watcher {
 public:
  /// @param engine, audience must outlive the watcher.
  /// @param read, ours as for FilterKeeper.
  Watcher(const EventCalls& engine, FilterKeeper::Read read, std::optional<GUID> ours, Audience& audience);

  /// Tells of drops as they come. Returns within a tenth of a second from when `isOver` says so.
  /// @throws WatchError with the engine's code when it lets nobody watch; LostSubscription when it does not
  /// answer any more, after all that was seen has been told; Policy::SnapshotError when its filters cannot be
  /// read.
  void Run(const std::function<bool()>& isOver);

  /// Tells of the drops that the engine remembers, the newest last; of repeats, once.
  /// @throws WatchError, Policy::SnapshotError as above.
  void TellRemembered();

 private:
  const EventCalls& engine_;
  FilterKeeper::Read read_;
  std::optional<GUID> ours_;
  Audience& audience_;
};

}  // namespace Watch
