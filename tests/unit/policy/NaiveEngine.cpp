#include "unit/policy/NaiveEngine.h"

#include <algorithm>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "catalog/Names.h"

namespace {

using Policy::Action;
using Policy::Assumption;
using Policy::Connection;
using Policy::Direction;
using Policy::IpVersion;
using Policy::World;

/// From the strongest block to the strongest permit.
enum Decision { Veto, Block, Nothing, HardPermit };

using Filters = std::vector<const NaiveFilter*>;

/// What a filter does; none for a callout that goes on to the next filter.
std::optional<Decision> DecisionOf(const NaiveFilter& filter, World world) {
  const FWP_ACTION_TYPE action = filter.record->action.type;
  const bool isCallout = action == FWP_ACTION_CALLOUT_TERMINATING || action == FWP_ACTION_CALLOUT_UNKNOWN;
  if (isCallout && Second(world, Assumption::Callouts)) {
    return Veto;
  }
  if (action == FWP_ACTION_CALLOUT_UNKNOWN) {
    return std::nullopt;
  }
  if (action == FWP_ACTION_BLOCK) {
    return Block;
  }
  return (filter.record->flags & 8) != 0 ? HardPermit : Nothing;
}

/// Whether a filter is asked before another one.
bool IsBefore(const NaiveFilter& filter, const NaiveFilter& other, World world) {
  if (filter.effectiveWeight != other.effectiveWeight) {
    return filter.effectiveWeight > other.effectiveWeight;
  }
  const auto decision = DecisionOf(filter, world);
  const auto decisionOfOther = DecisionOf(other, world);
  const std::size_t reading = world.ReadingOf(Assumption::FilterTies);
  if (reading == 0 || decision == decisionOfOther) {
    return filter.id > other.id;
  }
  return (decision < decisionOfOther) == (reading == 1);
}

/// The decision that blocks most, or the one that permits most.
Decision Pick(const std::vector<Decision>& decisions, bool block) {
  return block ? *std::ranges::min_element(decisions) : *std::ranges::max_element(decisions);
}

/// Of the decisions that a sublayer can make, the one that blocks most and the one that permits most.
std::pair<Decision, Decision> Decide(const NaiveSublayer& sublayer, const GUID& layer,
                                     const Connection& connection, const NaiveCircumstances& circumstances,
                                     World world) {
  Filters sure;
  Filters perhaps;
  for (const NaiveFilter& filter : sublayer.filters) {
    if (filter.record->layerKey == layer && DecisionOf(filter, world)) {
      const Matching matching = Matches(filter, connection, circumstances, world);
      if (matching != No) {
        (matching == Yes ? sure : perhaps).push_back(&filter);
      }
    }
  }
  const auto isBefore = [world](const NaiveFilter* left, const NaiveFilter* right) {
    return IsBefore(*left, *right, world);
  };
  const auto first = std::ranges::min_element(sure, isBefore);
  std::vector<Decision> decisions{first == sure.end() ? Nothing : *DecisionOf(**first, world)};
  for (const NaiveFilter* filter : perhaps) {
    if (first == sure.end() || isBefore(filter, *first)) {
      decisions.push_back(*DecisionOf(*filter, world));
    }
  }
  return {Pick(decisions, true), Pick(decisions, false)};
}

/// The weights of sublayers, each with the sublayer's decision. Of equally heavy ones the first comes first.
using Turns = std::vector<std::pair<UINT16, Decision>>;

Action Combine(Turns turns, World world) {
  std::ranges::stable_sort(turns, std::greater<>(), &Turns::value_type::first);
  bool isHard = false;
  for (const auto& [weight, decision] : turns) {
    if (decision == Veto) {
      return Action::Block;
    }
    if (decision == Block && (!isHard || Second(world, Assumption::StaticBlocks))) {
      return Action::Block;
    }
    isHard = isHard || decision == HardPermit;
  }
  return Action::Permit;
}

std::vector<std::string> LayersOf(const Connection& connection) {
  const std::string version = connection.ipVersion == IpVersion::V4 ? "_V4" : "_V6";
  return {
      (connection.direction == Direction::Outbound ? "ALE_AUTH_CONNECT" : "ALE_AUTH_RECV_ACCEPT") + version,
      "ALE_FLOW_ESTABLISHED" + version};
}

}  // namespace

std::optional<Action> DecideNaively(const std::vector<NaiveSublayer>& sublayers, const Connection& connection,
                                    const NaiveCircumstances& circumstances, World world) {
  Action least = Action::Permit;
  Action most = Action::Permit;
  for (const std::string& name : LayersOf(connection)) {
    if (name.starts_with("ALE_FLOW") && Second(world, Assumption::FlowBlocks)) {
      continue;
    }
    const auto layer = std::ranges::find(Catalog::AllLayers(), std::string_view(name), &Catalog::Layer::name);
    Turns blocking;
    Turns permitting;
    for (const NaiveSublayer& sublayer : sublayers) {
      const auto [block, permit] = Decide(sublayer, layer->key, connection, circumstances, world);
      blocking.emplace_back(sublayer.weight, block);
      permitting.emplace_back(sublayer.weight, permit);
    }
    least = std::min(least, Combine(blocking, world));
    most = std::min(most, Combine(permitting, world));
  }
  return least == most ? std::optional(least) : std::nullopt;
}
