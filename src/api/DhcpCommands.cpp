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
    // Deliberate: registered before it is applied, so that after a failure DisableDhcp clears up and a
    // second EnableDhcp does not try again.
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
    // Deliberate: the word "enable" and the trailing blank; hosts match on the line as it stands.
    log("NATIVE: failed to enable dhcp. ");
    log(error.what());
    return FailWith(error);
  }
}
