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

constexpr unsigned kInternetAndDhcpCommands = kEnableInternet | kDisableInternet | kEnableDhcp | kDisableDhcp;
constexpr unsigned kDisableVariants = kDisableInternet & ~kDisablePlain;

void Disable(LogCallback log) { DisableInternet(nullptr, 0, nullptr, 0, log); }

void StayOff(LogCallback) {}

struct SessionCloser {
  void operator()(HANDLE engine) const { FwpmEngineClose0(engine); }
};

/// As an earlier process may have done.
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

void TurnBothOn(LogCallback log) {
  EnableDhcp(log);
  Disable(log);
}

template <void (*turnOn)(LogCallback)>
void FailToOpen(LogCallback log) {
  FailCall("FwpmEngineOpen0", 1, kAccessDenied);
  turnOn(log);
}

template <void (*turnOn)(LogCallback)>
void FailAtThirdFilter(LogCallback log) {
  FailCall("FwpmFilterAdd0", 3, kAccessDenied);
  turnOn(log);
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

constexpr StartingState kStates[]{
    {"Off", kOff, StayOff, {}},
    {"OffAgain", kOffAgain, TurnOnAndOff, {.session = true, .provider = true}},
    {"OffBesideProvider", kOffBesideProvider, LeaveProvider, {.provider = true}, true},
    {"KillSwitchOn", kKillSwitchOn, Disable, {.session = true, .provider = true, .killSwitch = {true, 51}}},
    {"KillSwitchWithAppsOn",
     kKillSwitchWithAppsOn,
     TurnKillSwitchWithAppsOn,
     {.session = true, .provider = true, .killSwitch = {true, 63}},
     false,
     kLeakProtectionCommands},
    {"DhcpOn",
     kDhcpOn,
     TurnDhcpOn,
     {.session = true, .provider = true, .dhcp = {true, 6}},
     false,
     kLeakProtectionCommands},
    {"BothOn",
     kBothOn,
     TurnBothOn,
     {.session = true, .provider = true, .killSwitch = {true, 51}, .dhcp = {true, 6}},
     false,
     kLeakProtectionCommands},
    {"KillSwitchUnopened",
     kKillSwitchUnopened,
     FailToOpen<Disable>,
     {.errorText = kOpenFailed, .killSwitch = {true, kAbsent}}},
    {"KillSwitchTorso",
     kKillSwitchTorso,
     FailAtThirdFilter<Disable>,
     {.session = true, .provider = true, .errorText = kFilterFailed, .killSwitch = {true, 2}},
     false,
     kLeakProtectionCommands},
    {"DhcpUnopened",
     kDhcpUnopened,
     FailToOpen<TurnDhcpOn>,
     {.errorText = kOpenFailed, .dhcp = {true, kAbsent}},
     false,
     kLeakProtectionCommands},
    {"DhcpTorso",
     kDhcpTorso,
     FailAtThirdFilter<TurnDhcpOn>,
     {.session = true, .provider = true, .errorText = kFilterFailed, .dhcp = {true, 2}},
     false,
     kLeakProtectionCommands},
    {"ReplacementFailed",
     kReplacementFailed,
     FailToReplace,
     {.session = true,
      .provider = true,
      .transaction = true,
      .errorText = "Error creating sublayer.",
      .killSwitch = {true, kAbsent}}},
    {"LeakProtectionOn",
     kLeakProtectionOn,
     TurnLeakProtectionOn,
     {.session = true,
      .provider = true,
      .dnsLeak = {true, 12},
      .firewallCopy = {true, 2},
      .interfaceLeak = {true, 21}},
     false,
     kDisableVariants},
    {"FirewallCopyMissing",
     kFirewallCopyMissing,
     FailToCopy,
     {.session = true, .provider = true, .dnsLeak = {true, 12}, .interfaceLeak = {true, 21}},
     false,
     kInternetAndDhcpCommands},
    {"OnlyDnsRulesLeft",
     kOnlyDnsRulesLeft,
     FailToApplyAndToRemove,
     {.session = true, .provider = true, .dnsLeak = {true, 0}},
     false,
     kInternetAndDhcpCommands},
    {"OnlyInterfaceRulesLeft",
     kOnlyInterfaceRulesLeft,
     FailToRemoveInterfaceRules,
     {.session = true, .provider = true, .interfaceLeak = {true, 0}},
     false,
     kInternetAndDhcpCommands},
    {"LeakReplacementFailed",
     kLeakReplacementFailed,
     FailToReplaceInterfaceRules,
     {.session = true, .provider = true, .transaction = true},
     false,
     kDisableVariants},
};

}  // namespace

std::span<const StartingState> StartingStates() { return kStates; }
