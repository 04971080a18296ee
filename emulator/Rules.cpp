#include "emulator/Rules.h"

#include <algorithm>

namespace EngineEmulator {
namespace {

struct NamedRule {
  std::string_view name;
  UINT32 Rules::*rule;
};

constexpr NamedRule kRules[]{
    {"refuseComparedNetworks", &Rules::refuseComparedNetworks},
    {"refuseNotEqualOfOpaqueData", &Rules::refuseNotEqualOfOpaqueData},
    {"refuseNetMasksWithHoles", &Rules::refuseNetMasksWithHoles},
    {"refuseUnknownFlags", &Rules::refuseUnknownFlags},
    {"refuseReservedPointer", &Rules::refuseReservedPointer},
    {"refuseVerdictsInInspection", &Rules::refuseVerdictsInInspection},
    {"refuseZeroLayerInTemplate", &Rules::refuseZeroLayerInTemplate},
    {"refusePersistentInDynamicSession", &Rules::refusePersistentInDynamicSession},
    {"refuseMissingProviderAsOther", &Rules::refuseMissingProviderAsOther},
    {"refuseDeletingOthersDynamic", &Rules::refuseDeletingOthersDynamic},
    {"refuseVerdictsAtFlowEstablished", &Rules::refuseVerdictsAtFlowEstablished},
    {"refuseExactDuplicates", &Rules::refuseExactDuplicates},
    {"refuseEmptyNames", &Rules::refuseEmptyNames},
    {"refuseEmptyBlobs", &Rules::refuseEmptyBlobs},
    {"invalidHandleCode", &Rules::invalidHandleCode},
    {"failedCommitEndsTransaction", &Rules::failedCommitEndsTransaction},
    {"shuffleEnumerations", &Rules::shuffleEnumerations},
    {"lockWaitMilliseconds", &Rules::lockWaitMilliseconds},
    {"weightOfServiceHardening", &Rules::weightOfServiceHardening},
    {"weightOfWindowsFirewall", &Rules::weightOfWindowsFirewall},
    {"weightOfUniversal", &Rules::weightOfUniversal},
    {"weightOfOtherSublayers", &Rules::weightOfOtherSublayers},
};

}  // namespace

Rules LenientRules() {
  Rules rules;
  for (const NamedRule& entry : kRules) {
    if (entry.name.starts_with("refuse")) {
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
