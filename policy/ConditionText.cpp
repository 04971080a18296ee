#include "policy/ConditionText.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

#include "catalog/Format.h"
#include "catalog/Keys.h"
#include "catalog/Names.h"
#include "policy/PrincipalText.h"

namespace Policy {
namespace {

/// Of more conditions on one field the rest is counted.
constexpr std::size_t kMostOfAField = 3;

std::span<const UINT8> BytesOf(const std::string& text) {
  return {reinterpret_cast<const UINT8*>(text.data()), text.size()};
}

/// Where a network is; also what the firewall's rules are for.
constexpr auto kProfiles = std::to_array<std::string_view>({"unknown", "public", "private", "domain"});

/// The value with names; empty if the engine's own words are as good.
std::string NamedValue(const Condition& condition) {
  const Value& value = condition.value;
  if (const auto* bytes = std::get_if<std::string>(&value.data)) {
    if (value.type == FWP_SECURITY_DESCRIPTOR_TYPE) {
      return DescriptorText(BytesOf(*bytes));
    }
    if (value.type == FWP_SID) {
      ByteReader reader(BytesOf(*bytes));
      return PrincipalText(TakeSid(reader));
    }
  }
  const auto* number = std::get_if<UINT64>(&value.data);
  const bool isFlags = condition.fieldKey == Catalog::kFlagsFieldKey && value.type == FWP_UINT32;
  if (isFlags && number != nullptr) {
    return Catalog::ConditionFlagNames(static_cast<UINT32>(*number));
  }
  const bool isProfile = Catalog::FieldName(condition.fieldKey).ends_with("_PROFILE_ID");
  return isProfile && number != nullptr && *number < kProfiles.size() ? std::string(kProfiles[*number]) : "";
}

}  // namespace

std::string ConditionText(const Condition& condition) {
  std::string value;
  try {
    value = NamedValue(condition);
  } catch (const MalformedError&) {
    value = "a malformed SID";
  }
  return value.empty() ? condition.text
                       : Catalog::FieldName(condition.fieldKey) + ' ' + Catalog::MatchName(condition.match) +
                             ' ' + value;
}

std::string ConditionsText(const Filter& filter) {
  std::string text;
  const auto add = [&text](const std::string& more) { text.append(text.empty() ? "" : " & ").append(more); };
  for (std::size_t i = 0; i < filter.conditions.size();) {
    const auto begin = filter.conditions.begin() + static_cast<std::ptrdiff_t>(i);
    const auto end = std::find_if(begin, filter.conditions.end(), [&](const Condition& condition) {
      return condition.fieldKey != begin->fieldKey;
    });
    const auto count = static_cast<std::size_t>(end - begin);
    const std::size_t shown = std::min(count, kMostOfAField);
    std::for_each_n(begin, shown, [&](const Condition& condition) { add(ConditionText(condition)); });
    if (count > shown) {
      add(Catalog::FormatNumber(count - shown) + " more on " + Catalog::FieldName(begin->fieldKey));
    }
    i += count;
  }
  return text.empty() ? "every connection" : text;
}

}  // namespace Policy
