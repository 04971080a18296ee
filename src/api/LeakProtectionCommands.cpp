#include <cstdint>
#include <string>
#include <vector>

#include "api/InterfaceSearch.h"
#include "api/Logging.h"
#include "api/ModuleState.h"
#include "corvane/native_firewall.h"
#include "engine/FirewallException.h"
#include "filtering/IpV4Address.h"
#include "sublayers/BlockAppsBlockedInWinFirewall.h"
#include "sublayers/DnsLeakProtection.h"
#include "sublayers/InterfaceLeakProtection.h"

namespace {

using WfpFirewall::Firewall;
using WfpFirewall::FirewallException;
using WfpFirewall::IpV4Address;
using WfpFirewall::Sublayers::BlockAppsBlockedInWinFirewall;
using WfpFirewall::Sublayers::DnsLeakProtection;
using WfpFirewall::Sublayers::InterfaceLeakProtection;

constexpr std::uint64_t kDnsLeakWeight = 32001;
constexpr std::uint64_t kFirewallCopyWeight = 15;

struct FailureTexts {
  const char* ofRuleSet;
  const char* ofCleanUp;
};

constexpr FailureTexts kDnsLeakTexts{"NATIVE: DNS leak FirewallException",
                                     "NATIVE: DNS leak RemoveSublayer FirewallException"};
constexpr FailureTexts kFirewallCopyTexts{"NATIVE: Win Firewall Copy FirewallException",
                                          "NATIVE: Win Firewall Copy RemoveSublayer FirewallException"};
constexpr FailureTexts kInterfaceLeakTexts{"NATIVE: IFaceLeakProtection FirewallException",
                                           "NATIVE: IFaceLeakProtection RemoveSublayer FirewallException"};

/// Builds a rule set and registers it; says whether that worked. A failure neither ends the command nor
/// becomes its result: the rule set is left out and the others still protect.
template <class Build>
bool Register(const GUID& key, const FailureTexts& texts, LogCallback log, const Build& build) {
  try {
    auto ruleSet = build();
    Module().firewall->AddSublayer(ruleSet);
    return true;
  } catch (const FirewallException&) {
    log(texts.ofRuleSet);
  }
  try {
    Module().firewall->RemoveSublayer(key);
  } catch (const FirewallException&) {
    log(texts.ofCleanUp);
  }
  return false;
}

bool RegisterDnsRules(const std::vector<std::uint64_t>& luids, LogCallback log) {
  const RuleSetIdentity& identity = Identities().dnsLeak;
  return Register(identity.guid, kDnsLeakTexts, log, [&] {
    DnsLeakProtection rules(identity.guid, identity.name, identity.description, luids,
                            Identities().dnsPermittedAppPath);
    log("NATIVE: LeakProtection dnsLeakSublayer set weight");
    rules.SetWeight(kDnsLeakWeight);
    return rules;
  });
}

bool RegisterFirewallCopy(LogCallback log) {
  return Register(Identities().firewallCopy.guid, kFirewallCopyTexts, log, [] {
    BlockAppsBlockedInWinFirewall rules;
    rules.SetWeight(kFirewallCopyWeight);
    return rules;
  });
}

bool RegisterInterfaceRules(const std::vector<std::uint64_t>& luids, const char* serverAddress,
                            const std::uint32_t* permittedAddresses, std::uint64_t permittedAddressCount,
                            LogCallback log) {
  const RuleSetIdentity& identity = Identities().interfaceLeak;
  return Register(identity.guid, kInterfaceLeakTexts, log, [&] {
    return InterfaceLeakProtection(identity.guid, identity.name, identity.description, luids,
                                   IpV4Address(serverAddress), permittedAddresses, permittedAddressCount);
  });
}

/// Attempts all three removals, whatever becomes of each.
void RemoveLeakProtection() {
  for (const RuleSetIdentity* identity :
       {&Identities().interfaceLeak, &Identities().dnsLeak, &Identities().firewallCopy}) {
    try {
      if (IsRegistered(identity->guid)) {
        Module().firewall->RemoveSublayer(identity->guid);
      }
    } catch (const FirewallException&) {  // NOLINT(bugprone-empty-catch): the others still count.
    }
  }
}

std::vector<std::uint64_t> FindAllowedInterfaces(const std::vector<std::wstring>& names, std::uint64_t luid,
                                                 LogCallback log) {
  log("NATIVE: Enabling leak protection v3");
  log(ToNarrow(L"NATIVE: Enabling leak protection. Allowed interface: " + Join(names)).c_str());
  std::vector<std::uint64_t> luids = ChooseInterfaceLuids(names, luid, log);
  if (luids.empty()) {
    log("NATIVE: adapter luids empty.");
  }
  return luids;
}

}  // namespace

std::uint64_t CORVANE_CALL IsLeakProtectionEnabled() {
  const StoredIdentities& identities = Identities();
  return IsRegistered(identities.interfaceLeak.guid) && IsRegistered(identities.dnsLeak.guid) &&
                 IsRegistered(identities.firewallCopy.guid)
             ? 1
             : 0;
}

std::uint64_t CORVANE_CALL EnableLeakProtection(const char* serverAddress, LogCallback log,
                                                const wchar_t* const* interfaceNames,
                                                std::uint32_t interfaceCount, std::uint64_t interfaceLuid,
                                                const std::uint32_t* permittedAddresses,
                                                std::uint64_t permittedAddressCount) {
  const bool wasEnabled = IsLeakProtectionEnabled() == 1;
  const std::vector<std::uint64_t> luids =
      FindAllowedInterfaces(CopyTexts(interfaceNames, interfaceCount), interfaceLuid, log);
  try {
    Firewall& firewall = *Module().firewall;
    const GUID& interfaceLeak = Identities().interfaceLeak.guid;
    if (IsRegistered(interfaceLeak)) {
      firewall.TransactionBegin();
      log("NATIVE: LeakProtection already enabled - changing only whitelisted IP.");
      firewall.RemoveSublayer(interfaceLeak);
    } else {
      RegisterDnsRules(luids, log);
      RegisterFirewallCopy(log);
    }
    const bool hasInterfaceRules =
        RegisterInterfaceRules(luids, serverAddress, permittedAddresses, permittedAddressCount, log);
    log("NATIVE: LeakProtection - apply firewall.");
    firewall.Apply();
    log("NATIVE: LeakProtection - transaction commit.");
    // Contract: a transaction that began while the protection was incomplete stays open until the session
    // closes, see docs/host-guide.md#when-a-command-fails.
    if (wasEnabled && hasInterfaceRules) {
      firewall.TransactionCommit();
    }
    log("NATIVE: LeakProtection applying finished.");
    return 0;
  } catch (const FirewallException& error) {
    // Contract: the only command that leaves the error text as it was, see
    // docs/host-guide.md#when-a-command-fails.
    RemoveLeakProtection();
    return error.GetErrorCode();
  }
}

std::uint64_t CORVANE_CALL DisableLeakProtection() {
  RemoveLeakProtection();
  return 0;
}
