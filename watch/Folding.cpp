#include "watch/Folding.h"

#include <algorithm>

#include "policy/Connection.h"

namespace Watch {
namespace {

std::optional<std::string> TextOf(const std::optional<Policy::Sid>& sid) {
  return sid ? std::optional(Policy::FormatSid(*sid)) : std::nullopt;
}

/// Whether an event's ports are ports, and not type and code of ICMP.
bool HasPorts(const NetEvent& event) {
  return event.protocol == Policy::kTcp || event.protocol == Policy::kUdp;
}

}  // namespace

Folding::Key Folding::KeyOf(const NetEvent& event) {
  const bool ignoresLocal = HasPorts(event) && event.direction == EventDirection::Outbound;
  const bool ignoresRemote = HasPorts(event) && event.direction == EventDirection::Inbound;
  return {event.kind,
          event.direction,
          event.ipVersion,
          event.protocol,
          event.localAddress,
          event.remoteAddress,
          ignoresLocal ? std::nullopt : event.localPort,
          ignoresRemote ? std::nullopt : event.remotePort,
          event.application,
          TextOf(event.user),
          TextOf(event.package),
          event.filterId,
          event.layerId,
          event.capability};
}

Folding::Added Folding::Add(const NetEvent& event, Clock::time_point now) {
  Added added;
  const auto [place, isNew] = places_.try_emplace(KeyOf(event));
  if (isNew) {
    place->second = {{++lastNumber_, event, event.time, 1, 1}, now, turns_.insert(turns_.end(), place)};
    added.begun = place->second.group;
    added.forgotten = ForgetOne();
    return added;
  }
  Group& group = place->second.group;
  ++group.count;
  group.lastTime = std::max(group.lastTime, event.time);
  turns_.splice(turns_.end(), turns_, place->second.turn);
  return added;
}

std::optional<Group> Folding::ForgetOne() {
  if (places_.size() <= mostGroups_) {
    return std::nullopt;
  }
  const auto place = turns_.front();
  turns_.pop_front();
  const Group group = std::move(place->second.group);
  places_.erase(place);
  return group.Untold() == 0 ? std::nullopt : std::optional(group);
}

template <class IsDue>
std::vector<Group> Folding::Take(IsDue isDue) {
  std::vector<Group> groups;
  for (auto& [key, place] : places_) {
    if (place.group.Untold() != 0 && isDue(place)) {
      groups.push_back(place.group);
      place.group.told = place.group.count;
    }
  }
  std::ranges::sort(groups, {}, &Group::number);
  return groups;
}

std::vector<Group> Folding::TakeDue(Clock::time_point now) {
  return Take([now](Place& place) {
    if (now - place.toldAt < kPatience) {
      return false;
    }
    place.toldAt = now;
    return true;
  });
}

std::vector<Group> Folding::TakeRest() {
  return Take([](const Place&) { return true; });
}

std::vector<Group> Folding::All() const {
  std::vector<Group> groups;
  for (const auto& [key, place] : places_) {
    groups.push_back(place.group);
  }
  std::ranges::sort(groups, {}, [](const Group& group) { return std::tuple(group.lastTime, group.number); });
  return groups;
}

}  // namespace Watch
