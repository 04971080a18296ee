/**
 * @file
 * The net events that the engine remembers.
 */
#pragma once

#include <deque>
#include <vector>

#include "emulator/NetEventVersions.h"

namespace EngineEmulator {

/// The last events, as many as fit into 128 KB.
class NetEventLog {
 public:
  void Add(NetEventPtr event);

  /// Those that a sound template of an enumeration selects, oldest first. A null template selects all.
  [[nodiscard]] std::vector<NetEventPtr> Select(const FWPM_NET_EVENT_ENUM_TEMPLATE0* criteria) const;

 private:
  std::deque<NetEventPtr> events_;
  std::size_t size_ = 0;  ///< of them all in bytes
};

/// A snapshot of the log that a client pages through.
struct NetEventEnumeration {
  std::vector<NetEventPtr> events;
  std::size_t next = 0;

  /// The next events that records of a version can tell of, at most so many.
  template <class Native>
  std::vector<NetEventPtr> Take(std::size_t count) {
    std::vector<NetEventPtr> page;
    for (; next < events.size() && page.size() < count; ++next) {
      if (CanTell<Native>(events[next]->Record().type)) {
        page.push_back(events[next]);
      }
    }
    return page;
  }
};

}  // namespace EngineEmulator
