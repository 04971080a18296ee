#include "emulator/Switches.h"

#include <algorithm>

namespace EngineEmulator {
namespace {

struct NamedSwitch {
  std::string_view name;
  UINT32 Switches::*member;
  bool isRefusal = false;  ///< 0 is lenient
};

constexpr NamedSwitch kSwitches[]{
    {"refuseComparedNetworks", &Switches::refuseComparedNetworks, true},
    {"refuseNotEqualOfOpaqueData", &Switches::refuseNotEqualOfOpaqueData, true},
    {"refuseNetMasksWithHoles", &Switches::refuseNetMasksWithHoles, true},
    {"refuseUnknownFlags", &Switches::refuseUnknownFlags, true},
    {"refuseReservedPointer", &Switches::refuseReservedPointer, true},
    {"refuseVerdictsInInspection", &Switches::refuseVerdictsInInspection, true},
    {"refuseZeroLayerInTemplate", &Switches::refuseZeroLayerInTemplate, true},
    {"refusePersistentInDynamicSession", &Switches::refusePersistentInDynamicSession, true},
    {"refuseMissingProviderAsOther", &Switches::refuseMissingProviderAsOther, true},
    {"refuseDeletingOthersDynamic", &Switches::refuseDeletingOthersDynamic, true},
    {"refuseVerdictsAtFlowEstablished", &Switches::refuseVerdictsAtFlowEstablished, true},
    {"refuseRangesInEqual", &Switches::refuseRangesInEqual, true},
    {"refuseExactDuplicates", &Switches::refuseExactDuplicates, true},
    {"refuseEmptyNames", &Switches::refuseEmptyNames, true},
    {"refuseEmptyBlobs", &Switches::refuseEmptyBlobs, true},
    {"invalidHandleCode", &Switches::invalidHandleCode},
    {"failedCommitEndsTransaction", &Switches::failedCommitEndsTransaction},
    {"shuffleEnumerations", &Switches::shuffleEnumerations},
    {"lockWaitMilliseconds", &Switches::lockWaitMilliseconds},
    {"journalEntries", &Switches::journalEntries},
    {"waitingEvents", &Switches::waitingEvents},
    {"windowsBuild", &Switches::windowsBuild},
    {"keepAsGiven", &Switches::keepAsGiven},
    {"guessWeights", &Switches::guessWeights},
    {"weighUnobservedAsExact", &Switches::weighUnobservedAsExact},
};

}  // namespace

Switches LenientSwitches() {
  Switches switches;
  for (const NamedSwitch& entry : kSwitches) {
    if (entry.isRefusal) {
      switches.*entry.member = 0;
    }
  }
  return switches;
}

UINT32 Switches::*FindSwitch(std::string_view name) {
  const auto* found = std::ranges::find(kSwitches, name, &NamedSwitch::name);
  return found == std::end(kSwitches) ? nullptr : found->member;
}

}  // namespace EngineEmulator
