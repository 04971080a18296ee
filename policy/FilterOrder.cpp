#include "policy/FilterOrder.h"

#include <algorithm>

#include "catalog/Format.h"
#include "catalog/Keys.h"

namespace Policy {
namespace {

constexpr UINT64 kClassShift = 60;

bool IsEverything(const Condition& condition) {
  const Interval& interval = condition.test.interval;
  constexpr unsigned kWidths[]{8, 16, 32, 64, 128};
  return interval.first == 0 &&
         std::ranges::any_of(kWidths, [&](unsigned bits) { return interval.last == GreatestOfBits(bits); });
}

}  // namespace

KnownWeight::KnownWeight(const Filter& filter)
    : weight_(filter.effectiveWeight), isNumber_(!filter.automaticWeight || filter.conditions.empty()) {
  if (isNumber_) {
    tieKey_ = Catalog::FormatNumber(weight_);
    return;
  }
  for (const Condition& condition : filter.conditions) {
    Share share = ShareOf(condition);
    const auto [before, isFirst] = shares_.try_emplace(condition.fieldKey, share);
    if (!isFirst) {
      before->second.Join(share);
    }
  }
  tieKey_ = "class " + Catalog::FormatNumber(weight_ >> kClassShift);
  for (const auto& [field, share] : shares_) {
    tieKey_ += '&' + share.conditions;
  }
}

KnownWeight::Share KnownWeight::ShareOf(const Condition& condition) {
  using enum Narrowness;
  Share share{Range, Exact, condition.text};
  switch (condition.test.kind) {
    case Test::Kind::InInterval:
      if (condition.test.negated) {
        break;
      }
      // Nothing is known about the share of comparisons.
      if (condition.match != FWP_MATCH_EQUAL && condition.match != FWP_MATCH_RANGE) {
        share.least = Everything;
        break;
      }
      if (condition.test.interval.first == condition.test.interval.last) {
        share.least = Exact;
      } else {
        share.least = IsEverything(condition) ? Everything : Range;
        share.most = Range;
      }
      break;
    case Test::Kind::IsBytes:
      share.least = condition.test.negated ? Range : Exact;
      break;
    case Test::Kind::Unset:
    case Test::Kind::Unreadable:
      share.least = Everything;
      break;
    default:
      break;
  }
  return share;
}

/// Nothing is known about the share of several conditions on one field.
void KnownWeight::Share::Join(const Share& other) {
  least = std::min({least, other.least, Narrowness::Range});
  most = Narrowness::Exact;
  conditions.append("|").append(other.conditions);
}

/// A share of nothing is equivalent to any: the other may be nothing as well.
std::partial_ordering KnownWeight::Compare(const Share& left, const Share& right) {
  if (left.least > right.most) {
    return std::partial_ordering::greater;
  }
  if (left.conditions == right.conditions || right.most == Narrowness::Everything) {
    return std::partial_ordering::equivalent;
  }
  return left.most < right.least ? std::partial_ordering::less : std::partial_ordering::unordered;
}

bool KnownWeight::HasShare() const {
  return std::ranges::any_of(shares_,
                             [](const auto& share) { return share.second.least > Narrowness::Everything; });
}

const KnownWeight::Share& KnownWeight::ShareOf(const GUID& field) const {
  static const Share kNothing;
  const auto share = shares_.find(field);
  return share == shares_.end() ? kNothing : share->second;
}

bool KnownWeight::ChosenByEngineOutranks(const KnownWeight& other) const {
  const auto byAddress =
      Compare(ShareOf(Catalog::kIpRemoteAddressFieldKey), other.ShareOf(Catalog::kIpRemoteAddressFieldKey));
  if (byAddress != std::partial_ordering::equivalent) {
    return byAddress == std::partial_ordering::greater;
  }
  bool isGreater = false;
  for (const auto& [field, share] : shares_) {
    const auto order = Compare(share, other.ShareOf(field));
    if (!std::is_gteq(order)) {
      return false;
    }
    isGreater = isGreater || std::is_gt(order);
  }
  return isGreater && std::ranges::all_of(other.shares_, [this](const auto& share) {
           return shares_.contains(share.first) || share.second.most == Narrowness::Everything;
         });
}

bool KnownWeight::Outranks(const KnownWeight& other) const {
  if (isNumber_ && other.isNumber_) {
    return weight_ > other.weight_;
  }
  const UINT64 weightClass = weight_ >> kClassShift;
  const UINT64 otherClass = other.weight_ >> kClassShift;
  if (weightClass != otherClass) {
    return weightClass > otherClass;
  }
  if (other.isNumber_) {
    return other.weight_ == otherClass << kClassShift && HasShare();
  }
  return !isNumber_ && ChosenByEngineOutranks(other);
}

}  // namespace Policy
