#include "sublayers/KillSwitchFilteredByInterface.h"

#include <utility>

#include "filtering/Values.h"

namespace WfpFirewall::Sublayers {

using Filtering::ConditionNotEqual;
using Filtering::Values::LocalInterfaceLuid;

KillSwitchFilteredByInterface::KillSwitchFilteredByInterface(KillSwitch& killSwitch,
                                                             std::vector<UINT64> luids)
    : KillSwitch(killSwitch), luids_(std::move(luids)) {
  KillSwitchFilteredByInterface::BuildFilters();
}

void KillSwitchFilteredByInterface::BuildFilters() {
  for (const UINT64 luid : luids_) {
    for (Filter& filter : Filters()) {
      filter.AddCondition(ConditionNotEqual(new LocalInterfaceLuid(luid)));
    }
  }
}

}  // namespace WfpFirewall::Sublayers
