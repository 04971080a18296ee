#include <cstdint>
#include <string>
#include <vector>

#include "api/Commands.h"
#include "api/InterfaceSearch.h"
#include "api/Logging.h"
#include "api/ModuleState.h"
#include "corvane/native_firewall.h"
#include "sublayers/SkeinFirewallRules.h"

namespace {

using WfpFirewall::FirewallException;
using WfpFirewall::Sublayers::SkeinFirewallRules;

std::uint64_t IsSkeinFirewallRulesEnabled() { return IsRegistered(Identities().skein.guid) ? 1 : 0; }

}  // namespace

std::uint64_t CORVANE_CALL EnableSkeinFirewallRules(LogCallback log, const wchar_t* const* interfaceNames,
                                                    std::uint32_t interfaceCount, std::uint64_t interfaceLuid,
                                                    const std::uint32_t* peers, std::uint64_t peerCount) {
  if (IsSkeinFirewallRulesEnabled() == 1) {
    // Contract: a failure here only leaves its text behind, and the new rules are then missing, see
    // docs/rule-sets.md#skein.
    DisableSkeinFirewallRules();
  }
  log("NATIVE: Enabling skein firewall rules");
  const std::vector<std::wstring> names = CopyTexts(interfaceNames, interfaceCount);
  // Contract: the two blanks, see docs/host-guide.md#the-log.
  log(ToNarrow(L"NATIVE: Enabling  skein firewall. Allowed interface: " + Join(names)).c_str());
  try {
    const std::vector<std::uint64_t> luids = ChooseInterfaceLuids(names, interfaceLuid, log);
    if (luids.empty()) {
      log("NATIVE: skein firewall luids empty.");
    }
    const RuleSetIdentity& identity = Identities().skein;
    SkeinFirewallRules rules(identity.guid, identity.name, identity.description, luids, peers, peerCount);
    Module().firewall->AddSublayer(rules);
    log("NATIVE: Apply skein firewall rules.");
    Module().firewall->Apply();
    return 0;
  } catch (const FirewallException& error) {
    log("NATIVE: Error applying skein firewall.");
    log(ToSignedDecimal(error.GetErrorCode()).c_str());
    return FailWith(error);
  }
}

std::uint64_t CORVANE_CALL DisableSkeinFirewallRules() { return RemoveRuleSet(Identities().skein.guid); }
