#include "policy/FilterTests.h"

#include <algorithm>
#include <optional>

#include "catalog/Guid.h"
#include "policy/DerivedTests.h"
#include "policy/ModelledField.h"

namespace Policy {

bool IsOfQuarantineThatIsOver(const Filter& filter, Field field, const Circumstances& circumstances) {
  const bool isInterface =
      field == Field::LocalInterface || field == Field::ArrivalInterface || field == Field::NextHopInterface;
  return isInterface && circumstances.quarantine == Circumstances::Quarantine::Over &&
         std::ranges::any_of(filter.conditions, [](const Condition& condition) {
           return condition.field != nullptr && condition.field->name == "INTERFACE_QUARANTINE_EPOCH";
         });
}

FilterTests TestsOf(const Filter& filter, Direction direction, IpVersion ipVersion,
                    const Circumstances& circumstances, std::deque<Test>& derived) {
  const auto keep = [&derived](const std::vector<Test>& tests) {
    std::vector<const Test*> kept;
    kept.reserve(tests.size());
    for (const Test& test : tests) {
      kept.push_back(&derived.emplace_back(test));
    }
    return kept;
  };
  using ByKey = std::map<GUID, std::vector<const Test*>, Catalog::KeyOrder>;
  std::map<Field, ByKey> byField;
  std::map<GUID, std::vector<const Condition*>, Catalog::KeyOrder> fixed;
  for (const Condition& condition : filter.conditions) {
    std::optional<Field> field = ModelledField(condition);
    std::vector<const Test*> tests{&condition.test};
    if (const auto other = field ? std::nullopt : Derive(condition, filter, direction, ipVersion)) {
      field = other->field;
      tests = keep(other->tests);
    }
    if (!field) {
      fixed[condition.fieldKey].push_back(&condition);
    } else if (!IsOfQuarantineThatIsOver(filter, *field, circumstances)) {
      auto& ofKey = byField[*field][condition.fieldKey];
      ofKey.insert(ofKey.end(), tests.begin(), tests.end());
    }
  }
  FilterTests result;
  for (const auto& [field, ofField] : byField) {
    std::vector<std::vector<const Test*>> ofKeys;
    ofKeys.reserve(ofField.size());
    for (const auto& [key, tests] : ofField) {
      ofKeys.push_back(tests);
    }
    result.ofConnections[field] = ofKeys.size() == 1 ? ofKeys.front() : keep(HoldTogether(ofKeys));
  }
  result.ofCircumstances.reserve(fixed.size());
  for (const auto& [key, conditions] : fixed) {
    result.ofCircumstances.push_back(conditions);
  }
  return result;
}

}  // namespace Policy
