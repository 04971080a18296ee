#include <cstdint>

#include "api/Commands.h"
#include "api/ModuleState.h"
#include "corvane/native_firewall.h"
#include "sublayers/EnableDhcp.h"

using WfpFirewall::FirewallException;

std::uint64_t CORVANE_CALL IsDhcpEnabled() { return IsRegistered(Identities().dhcp.guid) ? 1 : 0; }

std::uint64_t CORVANE_CALL EnableDhcp(LogCallback log) {
  log("NATIVE: enabling dhcp");
  if (IsDhcpEnabled() == 1) {
    return 0;
  }
  try {
    const RuleSetIdentity& identity = Identities().dhcp;
    WfpFirewall::Sublayers::EnableDhcp rules(identity.guid, identity.name, identity.description);
    // Registered before it is applied: after a failure DisableDhcp then removes what there is, and a second
    // EnableDhcp does nothing.
    Module().firewall->AddSublayer(rules);
    Module().firewall->Apply();
    log("NATIVE: dhcp enabled successfully.");
    return 0;
  } catch (const FirewallException& error) {
    log(error.what());
    return FailWith(error);
  }
}

std::uint64_t CORVANE_CALL DisableDhcp(LogCallback log) {
  log("NATIVE: disabling dhcp");
  if (IsDhcpEnabled() == 0) {
    return 0;
  }
  try {
    Module().firewall->RemoveSublayer(Identities().dhcp.guid);
    log("NATIVE: dhcp disabled successfully.");
    return 0;
  } catch (const FirewallException& error) {
    // Contract: the word "enable" and the blank at the end, see docs/host-guide.md#the-log.
    log("NATIVE: failed to enable dhcp. ");
    log(error.what());
    return FailWith(error);
  }
}
