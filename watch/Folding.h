/**
 * @file
 * Repeats of drops, counted.
 */
#pragma once

#include <chrono>
#include <cstddef>
#include <list>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "watch/NetEvent.h"

namespace Watch {

/// Drops that differ in nothing that a person would tell them apart by.
struct Group {
  std::size_t number;  ///< 1 for the first group
  NetEvent first;
  UINT64 lastTime;    ///< of the last drop, as in NetEvent
  std::size_t count;  ///< of all
  std::size_t told;   ///< of those that were told of

  [[nodiscard]] std::size_t Untold() const { return count - told; }
};

/// Counts drops of the same program, connection, filter and direction as one. Programs try again: each
/// attempt comes from another port, and each of its packets is another event. So the port of the end that
/// opens a connection makes no difference.
class Folding {
 public:
  using Clock = std::chrono::steady_clock;

  /// Repeats are not told of more often.
  static constexpr std::chrono::seconds kPatience{10};

  /// @param mostGroups beyond which the one that came longest ago is forgotten; its next drop counts as new.
  explicit Folding(std::size_t mostGroups = 4096) : mostGroups_(mostGroups) {}

  struct Added {
    std::optional<Group> begun;      ///< the drop's group, if it is its first one; it counts as told
    std::optional<Group> forgotten;  ///< a group with repeats that nobody was told of
  };
  Added Add(const NetEvent& event, Clock::time_point now);

  /// The groups with repeats that are to be told of now, oldest first. They then count as told.
  std::vector<Group> TakeDue(Clock::time_point now);
  /// The same of all groups, however recently they were told of.
  std::vector<Group> TakeRest();
  /// All groups, the one with the latest drop last.
  [[nodiscard]] std::vector<Group> All() const;

 private:
  using Key = std::tuple<EventKind, std::optional<EventDirection>, std::optional<Policy::IpVersion>,
                         std::optional<UINT8>, std::optional<Policy::Number>, std::optional<Policy::Number>,
                         std::optional<UINT16>, std::optional<UINT16>, std::optional<std::string>,
                         std::optional<std::string>, std::optional<std::string>, std::optional<UINT64>,
                         std::optional<UINT16>, std::optional<UINT32>>;
  struct Place;
  using Places = std::map<Key, Place>;
  struct Place {
    Group group;
    Clock::time_point toldAt;
    std::list<Places::iterator>::iterator turn;
  };

  static Key KeyOf(const NetEvent& event);
  std::optional<Group> ForgetOne();
  template <class IsDue>
  std::vector<Group> Take(IsDue isDue);

  const std::size_t mostGroups_;
  std::size_t lastNumber_ = 0;
  Places places_;
  std::list<Places::iterator> turns_;  ///< the one that came longest ago first
};

}  // namespace Watch
