#include "StartingStates.h"

#include <WfpPlatform.h>

#include <memory>
#include <string>

#include "Commands.h"
#include "emulator/Control.h"

namespace {

using EngineEmulator::FailCall;

constexpr DWORD kAccessDenied = 5;

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
     {.session = true, .provider = true, .killSwitch = {true, 63}}},
    {"DhcpOn", kDhcpOn, TurnDhcpOn, {.session = true, .provider = true, .dhcp = {true, 6}}},
    {"BothOn",
     kBothOn,
     TurnBothOn,
     {.session = true, .provider = true, .killSwitch = {true, 51}, .dhcp = {true, 6}}},
    {"KillSwitchUnopened",
     kKillSwitchUnopened,
     FailToOpen<Disable>,
     {.errorText = kOpenFailed, .killSwitch = {true, kAbsent}}},
    {"KillSwitchTorso",
     kKillSwitchTorso,
     FailAtThirdFilter<Disable>,
     {.session = true, .provider = true, .errorText = kFilterFailed, .killSwitch = {true, 2}}},
    {"DhcpUnopened",
     kDhcpUnopened,
     FailToOpen<TurnDhcpOn>,
     {.errorText = kOpenFailed, .dhcp = {true, kAbsent}}},
    {"DhcpTorso",
     kDhcpTorso,
     FailAtThirdFilter<TurnDhcpOn>,
     {.session = true, .provider = true, .errorText = kFilterFailed, .dhcp = {true, 2}}},
    {"ReplacementFailed",
     kReplacementFailed,
     FailToReplace,
     {.session = true,
      .provider = true,
      .transaction = true,
      .errorText = "Error creating sublayer.",
      .killSwitch = {true, kAbsent}}},
};

}  // namespace

std::span<const StartingState> StartingStates() { return kStates; }
