#include "emulator/Rules.h"

#include <algorithm>

namespace EngineEmulator {
namespace {

struct NamedRule {
  std::string_view name;
  UINT32 Rules::*rule;
  bool isRefusal = false;  ///< 0 is lenient
};

constexpr NamedRule kRules[]{
    {"refuseComparedNetworks", &Rules::refuseComparedNetworks, true},
    {"refuseNotEqualOfOpaqueData", &Rules::refuseNotEqualOfOpaqueData, true},
    {"refuseNetMasksWithHoles", &Rules::refuseNetMasksWithHoles, true},
    {"refuseUnknownFlags", &Rules::refuseUnknownFlags, true},
    {"refuseReservedPointer", &Rules::refuseReservedPointer, true},
    {"refuseVerdictsInInspection", &Rules::refuseVerdictsInInspection, true},
    {"refuseZeroLayerInTemplate", &Rules::refuseZeroLayerInTemplate, true},
    {"refusePersistentInDynamicSession", &Rules::refusePersistentInDynamicSession, true},
    {"refuseMissingProviderAsOther", &Rules::refuseMissingProviderAsOther, true},
    {"refuseDeletingOthersDynamic", &Rules::refuseDeletingOthersDynamic, true},
    {"refuseVerdictsAtFlowEstablished", &Rules::refuseVerdictsAtFlowEstablished, true},
    {"refuseExactDuplicates", &Rules::refuseExactDuplicates, true},
    {"refuseEmptyNames", &Rules::refuseEmptyNames, true},
    {"refuseEmptyBlobs", &Rules::refuseEmptyBlobs, true},
    {"invalidHandleCode", &Rules::invalidHandleCode},
    {"failedCommitEndsTransaction", &Rules::failedCommitEndsTransaction},
    {"shuffleEnumerations", &Rules::shuffleEnumerations},
    {"lockWaitMilliseconds", &Rules::lockWaitMilliseconds},
    {"windowsBuild", &Rules::windowsBuild},
    {"guessWeights", &Rules::guessWeights},
    {"weighUnobservedAsExact", &Rules::weighUnobservedAsExact},
};

}  // namespace

Rules LenientRules() {
  Rules rules;
  for (const NamedRule& entry : kRules) {
    if (entry.isRefusal) {
      rules.*entry.rule = 0;
    }
  }
  return rules;
}

UINT32 Rules::*FindRule(std::string_view name) {
  const auto* found = std::ranges::find(kRules, name, &NamedRule::name);
  return found == std::end(kRules) ? nullptr : found->rule;
}

}  // namespace EngineEmulator
