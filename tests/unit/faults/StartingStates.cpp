#include "StartingStates.h"

#include <WfpPlatform.h>

#include <memory>
#include <string>

#include "Commands.h"
#include "emulator/Control.h"

namespace {

using EngineEmulator::FailCall;

constexpr DWORD kAccessDenied = 5;
constexpr std::uint32_t kPermitted[]{0x01020304};

/// For states in which all kinds of kill switch behave alike.
constexpr unsigned kOneOfInternet = kEnableInternet | kDisablePlain;

void Disable(LogCallback log) { DisableInternet(nullptr, 0, nullptr, 0, log); }

void StayOff(LogCallback) {}

struct SessionCloser {
  void operator()(HANDLE engine) const { FwpmEngineClose0(engine); }
};

/// Leaves a provider in the engine, as an earlier process may do.
void LeaveProvider(LogCallback) {
  HANDLE handle = nullptr;
  FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, nullptr, &handle);
  const std::unique_ptr<void, SessionCloser> engine(handle);
  std::wstring name = L"left";
  FWPM_PROVIDER0 provider{};
  provider.providerKey = kProviderKey;
  provider.displayData.name = name.data();
  FwpmProviderAdd0(engine.get(), &provider, nullptr);
}

void TurnOnAndOff(LogCallback log) {
  Disable(log);
  EnableInternet();
}

void TurnKillSwitchWithAppsOn(LogCallback log) { DisableInternet(kApps, 2, nullptr, 0, log); }

void TurnDhcpOn(LogCallback log) { EnableDhcp(log); }

void TurnLocalNetworkOff(LogCallback log) { DisableLocalNetwork(log); }

void TurnSkeinOn(LogCallback log) { EnableSkeinFirewallRules(log, nullptr, 0, kSkeinLuid, kSkeinPeers, 1); }

void TurnBothOn(LogCallback log) {
  EnableDhcp(log);
  Disable(log);
}

template <void (*turnOn)(LogCallback)>
void FailToOpen(LogCallback log) {
  FailCall("FwpmEngineOpen0", 1, kAccessDenied);
  turnOn(log);
}

template <std::size_t nth, void (*turnOn)(LogCallback)>
void FailAtFilter(LogCallback log) {
  FailCall("FwpmFilterAdd0", nth, kAccessDenied);
  turnOn(log);
}

void FailToRemove(LogCallback log) {
  Disable(log);
  FailCall("FwpmFilterDeleteById0", 2, kAccessDenied);
  EnableInternet();
}

void FailToReplace(LogCallback log) {
  Disable(log);
  FailCall("FwpmSubLayerAdd0", 1, kAccessDenied);
  Disable(log);
}

void TurnLeakProtectionOn(LogCallback log) {
  EnableLeakProtection("198.51.100.7", log, nullptr, 0, 7, kPermitted, 1);
}

void FailToCopy(LogCallback log) {
  FailCall("FwpmEngineOpen0", 1, kAccessDenied);
  TurnLeakProtectionOn(log);
}

void FailToApplyAndToRemove(LogCallback log) {
  FailCall("FwpmFilterAdd0", 3, kAccessDenied);
  FailCall("FwpmSubLayerDeleteByKey0", 1, kAccessDenied);
  TurnLeakProtectionOn(log);
}

void FailToRemoveInterfaceRules(LogCallback log) {
  TurnLeakProtectionOn(log);
  FailCall("FwpmSubLayerDeleteByKey0", 1, kAccessDenied);
  DisableLeakProtection();
}

void FailToReplaceInterfaceRules(LogCallback log) {
  TurnLeakProtectionOn(log);
  FailCall("FwpmSubLayerAdd0", 1, kAccessDenied);
  TurnLeakProtectionOn(log);
}

constexpr const char* kOpenFailed = "Error opening engine.";
constexpr const char* kFilterFailed = "Failed to add filter to firewall.";
constexpr const char* kRemovalFailed = "Failed to remove provider.";

constexpr StartingState kStates[]{
    {"Off", kOff, StayOff, {}, kAllCommands},
    {"OffAgain", kOffAgain, TurnOnAndOff, {.session = true, .provider = true}, kAllCommands},
    {"OffBesideProvider", kOffBesideProvider, LeaveProvider, {.provider = true}, kAllCommands, true},
    {"KillSwitchOn",
     kKillSwitchOn,
     Disable,
     {.session = true, .provider = true, .killSwitch = {true, 51}},
     kModule | kInternet | kDhcp | kLeakProtection},
    {"KillSwitchWithAppsOn",
     kKillSwitchWithAppsOn,
     TurnKillSwitchWithAppsOn,
     {.session = true, .provider = true, .killSwitch = {true, 63}},
     kModule | kOneOfInternet | kDisableWithApps | kDhcp},
    {"DhcpOn",
     kDhcpOn,
     TurnDhcpOn,
     {.session = true, .provider = true, .dhcp = {true, 6}},
     kAllCommands & ~kLeakProtection},
    {"BothOn",
     kBothOn,
     TurnBothOn,
     {.session = true, .provider = true, .killSwitch = {true, 51}, .dhcp = {true, 6}},
     kModule | kOneOfInternet | kDhcp},
    {"KillSwitchUnopened",
     kKillSwitchUnopened,
     FailToOpen<Disable>,
     {.errorText = kOpenFailed, .killSwitch = {true, kAbsent}},
     kModule | kInternet | kDhcp | kLeakProtection},
    {"KillSwitchTorso",
     kKillSwitchTorso,
     FailAtFilter<3, Disable>,
     {.session = true, .provider = true, .errorText = kFilterFailed, .killSwitch = {true, 2}},
     kModule | kInternet | kDhcp},
    {"KillSwitchHalfRemoved",
     kKillSwitchHalfRemoved,
     FailToRemove,
     {.session = true, .provider = true, .errorText = kRemovalFailed, .killSwitch = {true, 1}},
     kModule | kOneOfInternet},
    {"DhcpUnopened",
     kDhcpUnopened,
     FailToOpen<TurnDhcpOn>,
     {.errorText = kOpenFailed, .dhcp = {true, kAbsent}},
     kAllCommands & ~kLeakProtection},
    {"DhcpTorso",
     kDhcpTorso,
     FailAtFilter<3, TurnDhcpOn>,
     {.session = true, .provider = true, .errorText = kFilterFailed, .dhcp = {true, 2}},
     kModule | kInternet | kDhcp},
    {"ReplacementFailed",
     kReplacementFailed,
     FailToReplace,
     {.session = true,
      .provider = true,
      .transaction = true,
      .errorText = "Error creating sublayer.",
      .killSwitch = {true, kAbsent}},
     kModule | kInternet | kDhcp | kLeakProtection},
    {"LeakProtectionOn",
     kLeakProtectionOn,
     TurnLeakProtectionOn,
     {.session = true,
      .provider = true,
      .dnsLeak = {true, 12},
      .firewallCopy = {true, 2},
      .interfaceLeak = {true, 21}},
     kModule | kOneOfInternet | kDhcp | kLeakProtection},
    {"FirewallCopyMissing",
     kFirewallCopyMissing,
     FailToCopy,
     {.session = true, .provider = true, .dnsLeak = {true, 12}, .interfaceLeak = {true, 21}},
     kModule | kLeakProtection},
    {"OnlyDnsRulesLeft",
     kOnlyDnsRulesLeft,
     FailToApplyAndToRemove,
     {.session = true, .provider = true, .dnsLeak = {true, 0}},
     kModule | kLeakProtection},
    {"OnlyInterfaceRulesLeft",
     kOnlyInterfaceRulesLeft,
     FailToRemoveInterfaceRules,
     {.session = true, .provider = true, .interfaceLeak = {true, 0}},
     kModule | kLeakProtection},
    {"LeakReplacementFailed",
     kLeakReplacementFailed,
     FailToReplaceInterfaceRules,
     {.session = true, .provider = true, .transaction = true},
     kModule | kOneOfInternet | kDhcp | kLeakProtection},
    {"LocalNetworkOn",
     kLocalNetworkOn,
     TurnLocalNetworkOff,
     {.session = true, .provider = true, .localNetwork = {true, 15}},
     kModule | kDhcp | kLocalNetwork},
    {"LocalNetworkUnopened",
     kLocalNetworkUnopened,
     FailToOpen<TurnLocalNetworkOff>,
     {.errorText = kOpenFailed, .localNetwork = {true, kAbsent}},
     kModule | kLocalNetwork},
    {"LocalNetworkTorso",
     kLocalNetworkTorso,
     FailAtFilter<3, TurnLocalNetworkOff>,
     {.session = true, .provider = true, .errorText = kFilterFailed, .localNetwork = {true, 2}},
     kModule | kLocalNetwork},
    {"SkeinOn",
     kSkeinOn,
     TurnSkeinOn,
     {.session = true, .provider = true, .skein = {true, 2}},
     kModule | kDhcp | kSkein},
    {"SkeinUnopened",
     kSkeinUnopened,
     FailToOpen<TurnSkeinOn>,
     {.errorText = kOpenFailed, .skein = {true, kAbsent}},
     kModule | kSkein},
    {"SkeinTorso",
     kSkeinTorso,
     FailAtFilter<2, TurnSkeinOn>,
     {.session = true, .provider = true, .errorText = kFilterFailed, .skein = {true, 1}},
     kModule | kSkein},
};

}  // namespace

std::span<const StartingState> StartingStates() { return kStates; }
