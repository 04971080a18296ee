#include "unit/policy/NaiveEngine.h"

#include <algorithm>
#include <map>
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

using Fields = std::map<std::string, NaiveFilter::OnField>;
using Filters = std::vector<const NaiveFilter*>;

/// How narrow the conditions on a field are. If this is not known exactly, `least` and `most` differ.
struct Narrowness {
  int least = 0;  ///< 0: no value is excluded, 1: a range is left, 2: one value is left
  int most = 0;
};

Narrowness NarrownessOf(const FWPM_FILTER_CONDITION0& condition) {
  const FWP_CONDITION_VALUE0& value = condition.conditionValue;
  if (value.type == FWP_V4_ADDR_MASK && condition.matchType == FWP_MATCH_EQUAL) {
    const UINT32 mask = value.v4AddrMask->mask;
    return mask == 0 ? Narrowness{0, 1} : mask == 0xFFFFFFFF ? Narrowness{2, 2} : Narrowness{1, 1};
  }
  if (value.type == FWP_V6_ADDR_MASK && condition.matchType == FWP_MATCH_EQUAL) {
    const UINT8 length = value.v6AddrMask->prefixLength;
    return length == 0 ? Narrowness{0, 1} : length == 128 ? Narrowness{2, 2} : Narrowness{1, 1};
  }
  if (value.type == FWP_RANGE_TYPE) {
    return {1, 1};
  }
  const bool isComparison =
      condition.matchType >= FWP_MATCH_GREATER && condition.matchType <= FWP_MATCH_LESS_OR_EQUAL;
  if (value.type == FWP_EMPTY || value.type == FWP_SECURITY_DESCRIPTOR_TYPE || isComparison) {
    return {0, 2};
  }
  return condition.matchType == FWP_MATCH_EQUAL ? Narrowness{2, 2} : Narrowness{1, 2};
}

Narrowness NarrownessOf(const std::vector<const FWPM_FILTER_CONDITION0*>& conditions) {
  Narrowness all = NarrownessOf(*conditions.front());
  for (std::size_t i = 1; i < conditions.size(); ++i) {
    all = {std::min({all.least, NarrownessOf(*conditions[i]).least, 1}), 2};
  }
  return all;
}

enum Order { Less, Same, Greater, Unknown };

Order Compare(const Fields& left, const Fields& right, const std::string& field) {
  const auto ofLeft = left.find(field);
  const auto ofRight = right.find(field);
  const bool both = ofLeft != left.end() && ofRight != right.end();
  if (both && ofLeft->second.text == ofRight->second.text) {
    return Same;
  }
  const Narrowness narrow = ofLeft == left.end() ? Narrowness{} : NarrownessOf(ofLeft->second.conditions);
  const Narrowness other = ofRight == right.end() ? Narrowness{} : NarrownessOf(ofRight->second.conditions);
  if (narrow.least > other.most) {
    return Greater;
  }
  if (narrow.most < other.least) {
    return Less;
  }
  return other.most == 0 ? Same : Unknown;
}

bool IsNumber(const NaiveFilter& filter) {
  return filter.record->weight.type == FWP_UINT64 || filter.fields.empty();
}

/// Whether a filter outranks another by what is known about weights that the engine chooses.
bool OutranksAsKnown(const NaiveFilter& filter, const NaiveFilter& other) {
  if (IsNumber(filter) && IsNumber(other)) {
    return filter.effectiveWeight > other.effectiveWeight;
  }
  if (filter.effectiveWeight >> 60 != other.effectiveWeight >> 60) {
    return filter.effectiveWeight >> 60 > other.effectiveWeight >> 60;
  }
  if (IsNumber(filter) || (IsNumber(other) && other.effectiveWeight << 4 != 0)) {
    return false;
  }
  const Fields& mine = filter.fields;
  const Fields theirs = IsNumber(other) ? Fields() : other.fields;
  const Order byAddress = Compare(mine, theirs, "IP_REMOTE_ADDRESS");
  if (byAddress != Same) {
    return byAddress == Greater;
  }
  bool isGreater = false;
  Fields all = mine;
  all.insert(theirs.begin(), theirs.end());
  for (const auto& [field, conditions] : all) {
    const Order order = Compare(mine, theirs, field);
    if (order == Less || order == Unknown) {
      return false;
    }
    isGreater = isGreater || order == Greater;
  }
  return isGreater;
}

bool TiesAsKnown(const NaiveFilter& filter, const NaiveFilter& other) {
  if (IsNumber(filter) || IsNumber(other)) {
    return IsNumber(filter) && IsNumber(other) && filter.effectiveWeight == other.effectiveWeight;
  }
  bool same = filter.fields.size() == other.fields.size() &&
              filter.effectiveWeight >> 60 == other.effectiveWeight >> 60;
  for (const auto& [field, mine] : filter.fields) {
    const auto theirs = other.fields.find(field);
    same = same && theirs != other.fields.end() && mine.text == theirs->second.text;
  }
  return same;
}

bool AsReported(World world) { return world.ReadingOf(Assumption::AutomaticWeights) == 0; }

bool Outranks(const NaiveFilter& filter, const NaiveFilter& other, World world) {
  return AsReported(world) ? filter.effectiveWeight > other.effectiveWeight : OutranksAsKnown(filter, other);
}

bool Ties(const NaiveFilter& filter, const NaiveFilter& other, World world) {
  return AsReported(world) ? filter.effectiveWeight == other.effectiveWeight : TiesAsKnown(filter, other);
}

Decision Least(const NaiveFilter& filter) {
  if (filter.IsCallout()) {
    return Veto;
  }
  if (filter.record->action.type == FWP_ACTION_BLOCK) {
    return Block;
  }
  return (filter.record->flags & 8) != 0 ? HardPermit : Nothing;
}

Decision Most(const NaiveFilter& filter) {
  if (filter.record->action.type == FWP_ACTION_BLOCK) {
    return Block;
  }
  return (filter.record->flags & 8) != 0 ? HardPermit : Nothing;
}

/// The decision that blocks most, or the one that permits most.
Decision Pick(const std::vector<Decision>& decisions, bool block) {
  return block ? *std::ranges::min_element(decisions) : *std::ranges::max_element(decisions);
}

bool IsOutranked(const NaiveFilter& filter, const Filters& others, World world) {
  return std::ranges::any_of(others,
                             [&](const NaiveFilter* other) { return Outranks(*other, filter, world); });
}

/// The decision of the filters that certainly match.
Decision DecideSurely(const Filters& filters, World world) {
  Filters first;
  for (const NaiveFilter* filter : filters) {
    if (!IsOutranked(*filter, filters, world)) {
      first.push_back(filter);
    }
  }
  std::vector<Decision> decisions;
  for (const NaiveFilter* filter : first) {
    std::vector<Decision> tied;
    for (const NaiveFilter* other : first) {
      if (Ties(*filter, *other, world)) {
        tied.push_back(Least(*other));
      }
    }
    decisions.push_back(Pick(tied, !Second(world, Assumption::FilterTies)));
  }
  return decisions.empty() ? Nothing : Pick(decisions, Second(world, Assumption::AutomaticWeights));
}

/// Of the decisions that a sublayer can make, the one that blocks most and the one that permits most.
std::pair<Decision, Decision> Decide(const NaiveSublayer& sublayer, const GUID& layer,
                                     const Connection& connection, World world) {
  Filters sure;
  Filters perhaps;
  for (const NaiveFilter& filter : sublayer.filters) {
    if (filter.record->layerKey == layer) {
      const Matching matching = Matches(filter, connection, world);
      if (matching != No) {
        (matching == Yes ? sure : perhaps).push_back(&filter);
      }
    }
  }
  std::vector<Decision> decisions{DecideSurely(sure, world)};
  for (const NaiveFilter* filter : perhaps) {
    if (!IsOutranked(*filter, sure, world)) {
      decisions.push_back(Least(*filter));
      decisions.push_back(Most(*filter));
    }
  }
  return {Pick(decisions, true), Pick(decisions, false)};
}

/// The weights of sublayers, each with the sublayer's decision.
using Turns = std::vector<std::pair<UINT16, Decision>>;

Action Combine(Turns turns, World world) {
  const bool blockFirst = !Second(world, Assumption::SublayerTies);
  std::ranges::sort(turns, [blockFirst](const auto& left, const auto& right) {
    if (left.first != right.first) {
      return left.first > right.first;
    }
    return blockFirst ? left.second < right.second : left.second > right.second;
  });
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
                                    World world) {
  Action least = Action::Permit;
  Action most = Action::Permit;
  for (const std::string& name : LayersOf(connection)) {
    const auto layer = std::ranges::find(Catalog::AllLayers(), std::string_view(name), &Catalog::Layer::name);
    Turns blocking;
    Turns permitting;
    for (const NaiveSublayer& sublayer : sublayers) {
      const auto [block, permit] = Decide(sublayer, layer->key, connection, world);
      blocking.emplace_back(sublayer.weight, block);
      permitting.emplace_back(sublayer.weight, permit);
    }
    least = std::min(least, Combine(blocking, world));
    most = std::min(most, Combine(permitting, world));
  }
  return least == most ? std::optional(least) : std::nullopt;
}
