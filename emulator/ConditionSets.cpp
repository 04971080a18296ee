#include "emulator/ConditionSets.h"

#include <algorithm>
#include <bit>
#include <iterator>
#include <optional>
#include <vector>

#include "catalog/Describe.h"
#include "emulator/Number.h"

namespace EngineEmulator {
namespace {

/// The numbers from the first to the last.
struct Interval {
  Number first;
  Number last;
};

/// What a condition's value stands for: numbers of so many bits.
struct Operand {
  unsigned bits;  ///< 0: no numbers, or no interval of them
  Interval interval;
};

Operand OfNetwork(unsigned bits, Number address, unsigned prefixLength) {
  const Number hosts = prefixLength == bits ? Number() : GreatestOf(bits - prefixLength);
  const Number first{address.high & ~hosts.high, address.low & ~hosts.low};
  return {bits, {first, first + hosts}};
}

Operand OperandOf(const FWP_CONDITION_VALUE0& value) {
  switch (value.type) {
    case FWP_RANGE_TYPE:
      return {BitsOf(value.rangeValue->valueLow.type),
              {NumberOf(value.rangeValue->valueLow), NumberOf(value.rangeValue->valueHigh)}};
    case FWP_V4_ADDR_MASK: {
      const auto [address, mask] = *value.v4AddrMask;
      const auto prefixLength = static_cast<unsigned>(std::countl_one(mask));
      const bool hasHoles = prefixLength != static_cast<unsigned>(std::popcount(mask));
      return hasHoles ? Operand{} : OfNetwork(32, {0, address}, prefixLength);
    }
    case FWP_V6_ADDR_MASK:
      return OfNetwork(128, NumberOf(value.v6AddrMask->addr), value.v6AddrMask->prefixLength);
    default:
      return {BitsOf(value.type), {NumberOf(value), NumberOf(value)}};
  }
}

std::vector<Interval> Below(const Interval& interval) {
  return interval.first == Number() ? std::vector<Interval>()
                                    : std::vector{Interval{Number(), interval.first - kOne}};
}

std::vector<Interval> Above(const Interval& interval, const Number& greatest) {
  return interval.last == greatest ? std::vector<Interval>()
                                   : std::vector{Interval{interval.last + kOne, greatest}};
}

/// The numbers that a condition matches, in rising order; nothing if it does not compare numbers.
std::optional<std::vector<Interval>> NumbersOf(const FWPM_FILTER_CONDITION0& condition) {
  const auto [bits, operand] = OperandOf(condition.conditionValue);
  if (bits == 0) {
    return std::nullopt;
  }
  const Number greatest = GreatestOf(bits);
  switch (condition.matchType) {
    case FWP_MATCH_EQUAL:
    case FWP_MATCH_RANGE:
      return std::vector{operand};
    case FWP_MATCH_LESS:
      return Below(operand);
    case FWP_MATCH_LESS_OR_EQUAL:
      return std::vector{Interval{Number(), operand.last}};
    case FWP_MATCH_GREATER:
      return Above(operand, greatest);
    case FWP_MATCH_GREATER_OR_EQUAL:
      return std::vector{Interval{operand.first, greatest}};
    case FWP_MATCH_NOT_EQUAL: {
      std::vector<Interval> numbers = Below(operand);
      std::ranges::copy(Above(operand, greatest), std::back_inserter(numbers));
      return numbers;
    }
    default:
      return std::nullopt;
  }
}

bool IsSame(const FWPM_FILTER_CONDITION0& left, const FWPM_FILTER_CONDITION0& right) {
  return Catalog::DescribeCondition(left) == Catalog::DescribeCondition(right);
}

/// Whether what the wanted condition matches, one of the others on its field matches, too.
bool Covers(Conditions filter, const FWPM_FILTER_CONDITION0& wanted) {
  std::vector<Interval> numbers;
  for (const FWPM_FILTER_CONDITION0& condition : filter) {
    if (condition.fieldKey == wanted.fieldKey) {
      if (IsSame(condition, wanted)) {
        return true;
      }
      std::ranges::copy(NumbersOf(condition).value_or(std::vector<Interval>()), std::back_inserter(numbers));
    }
  }
  std::ranges::sort(numbers, {}, &Interval::first);
  const auto toCover = NumbersOf(wanted);
  const auto isCovered = [&](Interval rest) {
    for (const Interval& interval : numbers) {
      if (interval.first > rest.first) {
        return false;
      }
      if (interval.last >= rest.last) {
        return true;
      }
      rest.first = std::max(rest.first, interval.last + kOne);
    }
    return false;
  };
  return toCover.has_value() && std::ranges::all_of(*toCover, isCovered);
}

/// Whether some value matches both of two conditions on one field. What nobody can tell counts as yes.
bool Meet(const FWPM_FILTER_CONDITION0& left, const FWPM_FILTER_CONDITION0& right) {
  const auto ours = NumbersOf(left);
  const auto theirs = NumbersOf(right);
  if (!ours || !theirs) {
    const bool areValues = left.matchType == FWP_MATCH_EQUAL && right.matchType == FWP_MATCH_EQUAL;
    return !areValues || IsSame(left, right);
  }
  return std::ranges::any_of(*ours, [&](const Interval& one) {
    return std::ranges::any_of(
        *theirs, [&](const Interval& other) { return one.first <= other.last && other.first <= one.last; });
  });
}

bool Tests(Conditions conditions, const GUID& field) {
  return std::ranges::any_of(
      conditions, [&](const FWPM_FILTER_CONDITION0& condition) { return condition.fieldKey == field; });
}

}  // namespace

bool Contain(Conditions filter, Conditions wanted) {
  const auto isWanted = [&](const FWPM_FILTER_CONDITION0& condition) {
    return Tests(wanted, condition.fieldKey);
  };
  const auto isCovered = [&](const FWPM_FILTER_CONDITION0& condition) {
    return !Tests(filter, condition.fieldKey) || Covers(filter, condition);
  };
  return std::ranges::all_of(filter, isWanted) && std::ranges::all_of(wanted, isCovered);
}

bool Overlap(Conditions filter, Conditions wanted) {
  const auto isMet = [&](const FWPM_FILTER_CONDITION0& condition) {
    const auto meets = [&](const FWPM_FILTER_CONDITION0& own) {
      return own.fieldKey == condition.fieldKey && Meet(own, condition);
    };
    return !Tests(filter, condition.fieldKey) || std::ranges::any_of(filter, meets);
  };
  return std::ranges::all_of(wanted, isMet);
}

}  // namespace EngineEmulator
