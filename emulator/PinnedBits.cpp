#include "emulator/PinnedBits.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

#include "emulator/Number.h"

namespace EngineEmulator {
namespace {

/// Of `less` + 1 values. Exact for powers of two, whatever the platform's logarithm.
double Logarithm(const Number& less) {
  const auto ones = std::popcount(less.high) + std::popcount(less.low);
  const bool isPower = less.high == 0 ? (less.low & (less.low + 1)) == 0
                                      : less.low == ~UINT64{0} && (less.high & (less.high + 1)) == 0;
  if (isPower) {
    return ones;
  }
  const double low = static_cast<double>(less.low) + 1;
  return less.high == 0 ? std::log2(low)
                        : 64 + std::log2(static_cast<double>(less.high) + std::ldexp(low, -64));
}

/// The bits that a condition pins down if it leaves exactly the values that another, which pins down `pinned`
/// bits, does not leave.
double Complement(double pinned) { return -std::log1p(-std::exp2(-pinned)) / std::numbers::ln2; }

double PinnedByEqual(const FWPM_FILTER_CONDITION0& condition, unsigned fieldBits) {
  const FWP_CONDITION_VALUE0& value = condition.conditionValue;
  switch (value.type) {
    case FWP_RANGE_TYPE:
      return fieldBits -
             Logarithm(NumberOf(value.rangeValue->valueHigh) - NumberOf(value.rangeValue->valueLow));
    case FWP_V4_ADDR_MASK:
      return std::popcount(value.v4AddrMask->mask);
    case FWP_V6_ADDR_MASK:
      return value.v6AddrMask->prefixLength;
    default:
      return fieldBits;
  }
}

double PinnedByComparison(const FWPM_FILTER_CONDITION0& condition, unsigned fieldBits) {
  const Number number = NumberOf(condition.conditionValue);
  const Number greatest = GreatestOf(fieldBits);
  switch (condition.matchType) {
    case FWP_MATCH_GREATER:
      return number == greatest ? fieldBits : fieldBits - Logarithm(greatest - number - kOne);
    case FWP_MATCH_GREATER_OR_EQUAL:
      return fieldBits - Logarithm(greatest - number);
    case FWP_MATCH_LESS:
      return number == Number() ? fieldBits : fieldBits - Logarithm(number - kOne);
    default:
      return fieldBits - Logarithm(number);
  }
}

/// The bits of a mask that FLAGS_... tests.
double PinnedByFlags(const FWPM_FILTER_CONDITION0& condition) {
  const double bits = std::popcount(NumberOf(condition.conditionValue).low);
  return condition.matchType == FWP_MATCH_FLAGS_ANY_SET ? Complement(bits) : bits;
}

}  // namespace

double PinnedBits(const FWPM_FILTER_CONDITION0& condition, unsigned fieldBits, const Switches& switches) {
  const bool isNetwork =
      condition.conditionValue.type == FWP_V4_ADDR_MASK || condition.conditionValue.type == FWP_V6_ADDR_MASK;
  double pinned = fieldBits;
  if (condition.matchType == FWP_MATCH_EQUAL || condition.matchType == FWP_MATCH_RANGE) {
    pinned = PinnedByEqual(condition, fieldBits);
  } else if (switches.weighUnobservedAsExact == 0) {
    switch (condition.matchType) {
      case FWP_MATCH_GREATER:
      case FWP_MATCH_LESS:
      case FWP_MATCH_GREATER_OR_EQUAL:
      case FWP_MATCH_LESS_OR_EQUAL:
        pinned = isNetwork ? PinnedByEqual(condition, fieldBits) : PinnedByComparison(condition, fieldBits);
        break;
      case FWP_MATCH_FLAGS_ALL_SET:
      case FWP_MATCH_FLAGS_ANY_SET:
      case FWP_MATCH_FLAGS_NONE_SET:
        pinned = PinnedByFlags(condition);
        break;
      default:
        pinned = Complement(PinnedByEqual(condition, fieldBits));
        break;
    }
  }
  return std::min<double>(pinned, fieldBits);
}

}  // namespace EngineEmulator
