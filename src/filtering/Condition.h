#pragma once

#include <WfpPlatform.h>

#include <cstdint>
#include <memory>

#include "Export.h"
#include "filtering/BaseValue.h"

namespace WfpFirewall {
class Filter;
}

namespace WfpFirewall::Filtering {

/// How a field is compared with a condition's value.
enum class ConditionType : std::int32_t {
  Equal = 0,
  EqualCaseInsensitive = 1,
  NotEqual = 2,
  Greater = 3,
  GreaterOrEqual = 4,
  Less = 5,
  LessOrEqual = 6,
  Range = 7,
};

/// @throws FirewallException "Not supported Condition type." for a number outside the enumeration.
WFPFIREWALL_API FWP_MATCH_TYPE MapConditionType(ConditionType type);
/// The reverse, except that FWP_MATCH_GREATER reads as NotEqual.
/// @throws FirewallException "Not supported Condition type." for the flag and prefix match types.
WFPFIREWALL_API ConditionType MapConditionType(FWP_MATCH_TYPE type);

/// One check of a filter: a field compared with one value, or with two for a range. Copies share their
/// values, which live as long as any copy; native filter records point at them.
class WFPFIREWALL_API Condition {
 public:
  /// Takes ownership of value.
  Condition(ConditionType type, Values::BaseValue* value);
  /// A range, both ends included. Takes ownership of both. A range of ports or of networks can be made, but
  /// is refused when the filter is made native, see Values::Port.
  Condition(ConditionType type, Values::BaseValue* low, Values::BaseValue* high);

  /// True when made with two values, whatever the type.
  [[nodiscard]] bool IsRangeCondition() const;
  [[nodiscard]] ConditionType GetConditionType() const;
  /// The value, or the low end of a range.
  [[nodiscard]] std::shared_ptr<Values::BaseValue> GetConditionValue() const;
  /// The high end of a range; empty when made with one value.
  [[nodiscard]] std::shared_ptr<Values::BaseValue> GetConditionValue2() const;
  /// @throws FirewallException as MapConditionType does.
  [[nodiscard]] FWP_MATCH_TYPE GetNativeConditionType() const;

  /// Reads a condition of the engine. An application identifier keeps pointing at the engine's bytes.
  /// A native range comes back with one value.
  /// @throws FirewallException "Not yet supported condition" for an unknown field or an address in an
  ///         unknown form, "Not supported Condition type." for an unknown match type.
  static Condition FromNative(FWPM_FILTER_CONDITION0& native);

 private:
  friend class WfpFirewall::Filter;

  ConditionType type_;
  bool isRange_;
  Values::ValueOwner value_;
  Values::ValueOwner value2_;
};

// Each takes ownership of its values.
WFPFIREWALL_API Condition ConditionEqual(Values::BaseValue* value);
WFPFIREWALL_API Condition ConditionNotEqual(Values::BaseValue* value);
WFPFIREWALL_API Condition ConditionEqualCaseInsensitive(Values::BaseValue* value);
WFPFIREWALL_API Condition ConditionGreater(Values::BaseValue* value);
WFPFIREWALL_API Condition ConditionGreaterOrEqual(Values::BaseValue* value);
WFPFIREWALL_API Condition ConditionLess(Values::BaseValue* value);
WFPFIREWALL_API Condition ConditionLessOrEqual(Values::BaseValue* value);
WFPFIREWALL_API Condition ConditionRange(Values::BaseValue* low, Values::BaseValue* high);

}  // namespace WfpFirewall::Filtering
