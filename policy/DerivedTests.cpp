#include "policy/DerivedTests.h"

#include <algorithm>
#include <string_view>

#include "catalog/Keys.h"

namespace Policy {
namespace {

constexpr unsigned kTypeShift = 48;
constexpr UINT64 kMostTypes = 0xFFFF;

Test OfInterval(Interval interval, bool negated = false) {
  return {Test::Kind::InInterval, negated, interval, {}};
}

const Test kNever = OfInterval({1, 0});

/// What a test of an interface's type asks of its LUID, the upper 16 bits of which are the type.
Test OfLuid(const Test& test) {
  if (test.kind == Test::Kind::Unset) {
    return test;
  }
  if (test.kind != Test::Kind::InInterval) {
    return {};
  }
  const auto [first, last] = test.interval;
  if (first > last || first > Number(kMostTypes)) {
    return OfInterval({1, 0}, test.negated);
  }
  const UINT64 lastType = std::min(last, Number(kMostTypes)).low;
  return OfInterval({first.low << kTypeShift, lastType << kTypeShift | GreatestOfBits(kTypeShift).low},
                    test.negated);
}

enum class AddressKind { Unspecified, Unicast, Anycast, Multicast, Broadcast };

struct AddressBlock {
  AddressKind kind;
  Interval interval;
};

constexpr AddressBlock kV4Blocks[]{{AddressKind::Unspecified, {0, 0}},
                                   {AddressKind::Unicast, {1, 0xDFFFFFFF}},
                                   {AddressKind::Multicast, {0xE0000000, 0xEFFFFFFF}},
                                   {AddressKind::Unicast, {0xF0000000, 0xFFFFFFFE}},
                                   {AddressKind::Broadcast, {0xFFFFFFFF, 0xFFFFFFFF}}};

constexpr Number kFirstMulticastV6{0xFF00000000000000, 0};
constexpr AddressBlock kV6Blocks[]{
    {AddressKind::Unspecified, {0, 0}},
    {AddressKind::Unicast, {1, Previous(kFirstMulticastV6)}},
    {AddressKind::Multicast, {kFirstMulticastV6, GreatestOfBits(128)}},
};

/// What a test of an address's kind asks of the address.
std::vector<Test> OfAddress(const Test& test, IpVersion ipVersion) {
  if (test.kind != Test::Kind::InInterval) {
    return {test.kind == Test::Kind::Unset ? test : Test()};
  }
  const std::span<const AddressBlock> blocks =
      ipVersion == IpVersion::V4 ? std::span<const AddressBlock>(kV4Blocks) : kV6Blocks;
  std::vector<Test> tests;
  for (const auto& [kind, interval] : blocks) {
    const Number number(static_cast<UINT64>(kind));
    if (test.interval.first <= number && number <= test.interval.last) {
      tests.push_back(OfInterval(interval, test.negated));
    }
  }
  if (tests.empty()) {
    return {OfInterval(kNever.interval, test.negated)};
  }
  // Several negations do not hold together in all readings.
  return test.negated && tests.size() > 1 ? std::vector<Test>(1) : tests;
}

/// Whether a filter is about ICMP of its IP version alone.
bool IsAboutIcmp(const Filter& filter, IpVersion ipVersion) {
  const Number protocol = ipVersion == IpVersion::V4 ? 1 : 58;
  const Test icmp = OfInterval({protocol, protocol});
  const auto isOnProtocol = [](const Condition& condition) {
    return condition.fieldKey == Catalog::kIpProtocolFieldKey;
  };
  return std::ranges::count_if(filter.conditions, isOnProtocol) == 1 &&
         std::ranges::find_if(filter.conditions, isOnProtocol)->test == icmp;
}

struct InterfaceType {
  std::string_view name;
  Field luid;
};
constexpr InterfaceType kInterfaceTypes[]{{"INTERFACE_TYPE", Field::LocalInterface},
                                          {"ARRIVAL_INTERFACE_TYPE", Field::ArrivalInterface},
                                          {"NEXTHOP_INTERFACE_TYPE", Field::NextHopInterface}};

constexpr std::string_view kLocalAddressType = "IP_LOCAL_ADDRESS_TYPE";
constexpr std::string_view kDestinationAddressType = "IP_DESTINATION_ADDRESS_TYPE";
constexpr std::string_view kOriginalIcmpType = "ORIGINAL_ICMP_TYPE";

/// The values for which one of a group's tests holds.
struct Values {
  std::vector<Interval> intervals;
  bool unset = false;         ///< whether the field without a value is one
  bool perhapsUnset = false;  ///< or whether that depends on a reading
};

/// None where readings differ about numbers, too.
std::optional<Values> ValuesOf(const std::vector<const Test*>& group) {
  Values values;
  for (const Test* test : group) {
    const auto [first, last] = test->interval;
    if (test->kind == Test::Kind::Unset) {
      values.unset = true;
    } else if (test->kind != Test::Kind::InInterval || (test->negated && group.size() > 1)) {
      return std::nullopt;
    } else if (!test->negated) {
      values.intervals.push_back(test->interval);
    } else {
      values.perhapsUnset = true;
      if (first > Number(0)) {
        values.intervals.push_back({0, Previous(first)});
      }
      if (last < GreatestOfBits(128)) {
        values.intervals.push_back({Next(last), GreatestOfBits(128)});
      }
    }
  }
  return values;
}

std::vector<Interval> Meet(const std::vector<Interval>& left, const std::vector<Interval>& right) {
  std::vector<Interval> both;
  for (const Interval& one : left) {
    for (const Interval& other : right) {
      const Interval common{std::max(one.first, other.first), std::min(one.last, other.last)};
      if (common.first <= common.last) {
        both.push_back(common);
      }
    }
  }
  return both;
}

}  // namespace

std::optional<DerivedTests> Derive(const Condition& condition, const Filter& filter, Direction direction,
                                   IpVersion ipVersion) {
  if (condition.field == nullptr) {
    return std::nullopt;
  }
  const std::string_view name = condition.field->name;
  const auto* type = std::ranges::find(kInterfaceTypes, name, &InterfaceType::name);
  if (type != std::end(kInterfaceTypes)) {
    return DerivedTests{type->luid, {OfLuid(condition.test)}};
  }
  if (name == kLocalAddressType) {
    return DerivedTests{Field::LocalAddress, OfAddress(condition.test, ipVersion)};
  }
  if (name == kDestinationAddressType) {
    return DerivedTests{direction == Direction::Outbound ? Field::RemoteAddress : Field::LocalAddress,
                        OfAddress(condition.test, ipVersion)};
  }
  if (name == kOriginalIcmpType && IsAboutIcmp(filter, ipVersion)) {
    return DerivedTests{Field::LocalPort, {condition.test}};
  }
  return std::nullopt;
}

bool IsDerived(const Catalog::Field& field) {
  constexpr std::string_view kOthers[]{kLocalAddressType, kDestinationAddressType, kOriginalIcmpType};
  return std::ranges::find(kInterfaceTypes, field.name, &InterfaceType::name) != std::end(kInterfaceTypes) ||
         std::ranges::find(kOthers, field.name) != std::end(kOthers);
}

std::vector<Test> HoldTogether(std::span<const std::vector<const Test*>> groups) {
  Values common{{{0, GreatestOfBits(128)}}, true};
  for (const auto& group : groups) {
    const auto values = ValuesOf(group);
    if (!values) {
      return std::vector<Test>(1);
    }
    common.intervals = Meet(common.intervals, values->intervals);
    common.perhapsUnset = (common.unset || common.perhapsUnset) && (values->unset || values->perhapsUnset) &&
                          (common.perhapsUnset || values->perhapsUnset);
    common.unset = common.unset && values->unset;
  }
  if (common.perhapsUnset) {
    return std::vector<Test>(1);
  }
  std::vector<Test> tests;
  for (const Interval& interval : common.intervals) {
    tests.push_back(OfInterval(interval));
  }
  if (common.unset) {
    tests.push_back({Test::Kind::Unset, false, {}, {}});
  }
  return tests.empty() ? std::vector(1, kNever) : tests;
}

}  // namespace Policy
