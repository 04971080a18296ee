#include <cstdint>

#include "api/Commands.h"
#include "api/Logging.h"
#include "api/ModuleState.h"
#include "corvane/native_firewall.h"
#include "sublayers/LocalNetworkBlock.h"

using WfpFirewall::FirewallException;
using WfpFirewall::Sublayers::LocalNetworkBlock;

std::uint64_t CORVANE_CALL IsLocalNetworkEnabled() {
  return IsRegistered(Identities().localNetwork.guid) ? 0 : 1;
}

std::uint64_t CORVANE_CALL EnableLocalNetwork() { return RemoveRuleSet(Identities().localNetwork.guid); }

std::uint64_t CORVANE_CALL DisableLocalNetwork(LogCallback log) {
  if (IsLocalNetworkEnabled() == 0) {
    return 0;
  }
  try {
    const RuleSetIdentity& identity = Identities().localNetwork;
    LocalNetworkBlock rules(identity.guid, identity.name, identity.description);
    // Registered before it is applied: after a failure EnableLocalNetwork then removes what there is, and a
    // second DisableLocalNetwork does nothing.
    Module().firewall->AddSublayer(rules);
    log("NATIVE: Apply firewall.");
    Module().firewall->Apply();
    return 0;
  } catch (const FirewallException& error) {
    log("NATIVE: Error applying firewall.");
    log(ToSignedDecimal(error.GetErrorCode()).c_str());
    return FailWith(error);
  }
}
