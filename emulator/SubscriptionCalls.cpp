#include "emulator/SubscriptionCalls.h"

namespace EngineEmulator {

Refusal CheckSubscriptionFlags(UINT32 flags) {
  // FWPM_SUBSCRIPTION_FLAG_NOTIFY_ON_ADD and ..._DELETE, which MinGW-w64 lacks.
  constexpr UINT32 kKnown = 0x3;
  return (flags & ~kKnown) == 0
             ? Refusal()
             : Refusal(FWP_E_INVALID_FLAGS, "NOTIFY_ON_ADD and NOTIFY_ON_DELETE are all there is");
}

}  // namespace EngineEmulator
