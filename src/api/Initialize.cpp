#include <memory>

#include "api/ModuleState.h"
#include "corvane/native_firewall.h"

using WfpFirewall::Firewall;
using WfpFirewall::Provider;

// One identity a line.
// clang-format off
void CORVANE_CALL Initialize(
    const GUID* providerKey, const wchar_t* providerName, const wchar_t* providerDescription,
    const GUID* killSwitchKey, const wchar_t* killSwitchName, const wchar_t* killSwitchDescription,
    const GUID* localNetworkKey, const wchar_t* localNetworkName, const wchar_t* localNetworkDescription,
    const GUID* dhcpKey, const wchar_t* dhcpName, const wchar_t* dhcpDescription,
    const GUID* dnsLeakKey, const wchar_t* dnsLeakName, const wchar_t* dnsLeakDescription,
    const GUID* interfaceLeakKey, const wchar_t* interfaceLeakName, const wchar_t* interfaceLeakDescription,
    const GUID* firewallCopyKey, const wchar_t* firewallCopyName, const wchar_t* firewallCopyDescription,
    const GUID* skeinKey, const wchar_t* skeinName, const wchar_t* skeinDescription,
    const wchar_t* dnsPermittedAppPath) {
  // clang-format on
  StoredIdentities& identities = Identities();
  identities.provider = {*providerKey, providerName, providerDescription};
  identities.killSwitch = {*killSwitchKey, killSwitchName, killSwitchDescription};
  identities.localNetwork.guid = *localNetworkKey;
  // Contract: the rule set is named after its description, and the description stays empty, see
  // docs/rule-sets.md#local-network-block.
  identities.localNetwork.name = localNetworkName;
  identities.localNetwork.name = localNetworkDescription;
  identities.dhcp = {*dhcpKey, dhcpName, dhcpDescription};
  identities.dnsLeak = {*dnsLeakKey, dnsLeakName, dnsLeakDescription};
  identities.interfaceLeak = {*interfaceLeakKey, interfaceLeakName, interfaceLeakDescription};
  identities.firewallCopy = {*firewallCopyKey, firewallCopyName, firewallCopyDescription};
  identities.skein = {*skeinKey, skeinName, skeinDescription};
  identities.dnsPermittedAppPath = dnsPermittedAppPath;

  const RuleSetIdentity& provider = identities.provider;
  Module().firewall =
      std::make_shared<Firewall>(Provider(provider.guid, provider.name, provider.name, provider.description));
}

const char* CORVANE_CALL GetErrorText() { return Module().lastErrorText.c_str(); }
