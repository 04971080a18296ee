#include "Commands.h"

#include "emulator/Control.h"
#include "support/AppBlock.h"
#include "support/FakePlatform.h"

namespace {

constexpr const wchar_t* kTunnel[]{L"Tunnel"};
constexpr const wchar_t* kUnknown[]{L"Carrier Pigeon"};

const Texts kSkeinFailure{"NATIVE: Error applying skein firewall.", kCodeLine};
const Texts kDisableInternetFailure{"NATIVE: Error applying firewall.", kCodeLine};

std::uint64_t RunInitialize(LogCallback) {
  const GUID kKeys[]{kProviderKey, kKillSwitchKey,    kLocalNetworkKey, kDhcpKey,
                     kDnsLeakKey,  kInterfaceLeakKey, kFirewallCopyKey, kSkeinKey};
  Initialize(&kKeys[0], L"n", L"d", &kKeys[1], L"n", L"d", &kKeys[2], L"n", L"d", &kKeys[3], L"n", L"d",
             &kKeys[4], L"n", L"d", &kKeys[5], L"n", L"d", &kKeys[6], L"n", L"d", &kKeys[7], L"n", L"d",
             L"C:\\dns.exe");
  return 0;
}

std::uint64_t RunEnableInternet(LogCallback) { return EnableInternet(); }

std::uint64_t RunDisablePlain(LogCallback log) { return DisableInternet(nullptr, 0, nullptr, 0, log); }

std::uint64_t RunDisableWithApps(LogCallback log) { return DisableInternet(kApps, 2, nullptr, 0, log); }

std::uint64_t RunDisableWithInterfaces(LogCallback log) {
  return DisableInternet(nullptr, 0, kTunnel, 1, log);
}

std::uint64_t RunDisableWithUnknownInterfaces(LogCallback log) {
  return DisableInternet(nullptr, 0, kUnknown, 1, log);
}

std::uint64_t RunEnableDhcp(LogCallback log) { return EnableDhcp(log); }

std::uint64_t RunDisableDhcp(LogCallback log) { return DisableDhcp(log); }

std::uint64_t RunEnableLeakProtection(LogCallback log) {
  constexpr std::uint32_t kPermitted[]{0x01020304};
  return EnableLeakProtection("198.51.100.7", log, nullptr, 0, 7, kPermitted, 1);
}

std::uint64_t RunDisableLeakProtection(LogCallback) { return DisableLeakProtection(); }

std::uint64_t RunIsLeakProtectionEnabled(LogCallback) {
  IsLeakProtectionEnabled();
  return 0;
}

std::uint64_t RunEnableLocalNetwork(LogCallback) { return EnableLocalNetwork(); }

std::uint64_t RunDisableLocalNetwork(LogCallback log) { return DisableLocalNetwork(log); }

std::uint64_t RunEnableSkein(LogCallback log) {
  return EnableSkeinFirewallRules(log, nullptr, 0, kSkeinLuid, kSkeinPeers, 1);
}

std::uint64_t RunEnableSkeinByName(LogCallback log) {
  return EnableSkeinFirewallRules(log, kTunnel, 1, 0, kSkeinPeers, 1);
}

std::uint64_t RunDisableSkein(LogCallback) { return DisableSkeinFirewallRules(); }

std::uint64_t RunIsInternetEnabled(LogCallback) {
  IsInternetEnabled();
  return 0;
}

std::uint64_t RunIsDhcpEnabled(LogCallback) {
  IsDhcpEnabled();
  return 0;
}

std::uint64_t RunIsLocalNetworkEnabled(LogCallback) {
  IsLocalNetworkEnabled();
  return 0;
}

std::uint64_t RunGetErrorText(LogCallback) {
  GetErrorText();
  return 0;
}

}  // namespace

const std::vector<Command>& Commands() {
  static const std::vector<Command> commands{
      {"Initialize", "Initialize", kInitialize, RunInitialize, nullptr, 0, {}, {}},
      {"IsInternetEnabled", "IsInternetEnabled", kQueries, RunIsInternetEnabled, nullptr, 0, {}, {}},
      {"IsDhcpEnabled", "IsDhcpEnabled", kQueries, RunIsDhcpEnabled, nullptr, 0, {}, {}},
      {"IsLeakProtectionEnabled",
       "IsLeakProtectionEnabled",
       kQueries,
       RunIsLeakProtectionEnabled,
       nullptr,
       0,
       {},
       {}},
      {"IsLocalNetworkEnabled",
       "IsLocalNetworkEnabled",
       kQueries,
       RunIsLocalNetworkEnabled,
       nullptr,
       0,
       {},
       {}},
      {"GetErrorText", "GetErrorText", kQueries, RunGetErrorText, nullptr, 0, {}, {}},
      {"EnableInternet",
       "EnableInternet",
       kEnableInternet,
       RunEnableInternet,
       &Facts::killSwitch,
       51,
       {},
       {}},
      {"DisableInternet",
       "DisableInternet",
       kDisablePlain,
       RunDisablePlain,
       &Facts::killSwitch,
       51,
       {{"NATIVE: DisableInternet"},
        {"NATIVE: Remove killswitch layer", When::Registered},
        {"NATIVE: create killswitch layer"},
        {"NATIVE: get interface luids"},
        {"NATIVE: KillSwitch without adapter filter"},
        {"NATIVE: Apply firewall."}},
       kDisableInternetFailure},
      {"DisableInternetWithApps",
       "DisableInternet",
       kDisableWithApps,
       RunDisableWithApps,
       &Facts::killSwitch,
       63,
       {{"NATIVE: DisableInternet"},
        {"NATIVE: Remove killswitch layer", When::Registered},
        {"NATIVE: create killswitch layer"},
        {"NATIVE: Apply firewall."}},
       kDisableInternetFailure},
      {"DisableInternetWithInterfaces",
       "DisableInternet",
       kDisableWithInterfaces,
       RunDisableWithInterfaces,
       &Facts::killSwitch,
       51,
       {{"NATIVE: DisableInternet"},
        {"NATIVE: DisableInternet: Tunnel"},
        {"NATIVE: Remove killswitch layer", When::Registered},
        {"NATIVE: create killswitch layer"},
        {"NATIVE: get interface luids"},
        {"NATIVE: found interface: A Tunnel:1688849877041152"},
        {"NATIVE available interface : vpn-A Tunnel"},
        {"NATIVE: Apply firewall."}},
       kDisableInternetFailure},
      {"DisableInternetWithUnknownInterfaces",
       "DisableInternet",
       kDisableWithUnknownInterfaces,
       RunDisableWithUnknownInterfaces,
       &Facts::killSwitch,
       51,
       {{"NATIVE: DisableInternet"},
        {"NATIVE: DisableInternet: Carrier Pigeon"},
        {"NATIVE: Remove killswitch layer", When::Registered},
        {"NATIVE: create killswitch layer"},
        {"NATIVE: get interface luids"},
        {"NATIVE available interface : vpn-A Tunnel"},
        {"NATIVE: No adapters found."},
        {"NATIVE: Apply firewall."}},
       kDisableInternetFailure},
      {"EnableDhcp",
       "EnableDhcp",
       kEnableDhcp,
       RunEnableDhcp,
       &Facts::dhcp,
       6,
       {{"NATIVE: enabling dhcp"}, {"NATIVE: dhcp enabled successfully.", When::NotRegistered}},
       {kMessageLine}},
      {"DisableDhcp",
       "DisableDhcp",
       kDisableDhcp,
       RunDisableDhcp,
       &Facts::dhcp,
       6,
       {{"NATIVE: disabling dhcp"}, {"NATIVE: dhcp disabled successfully.", When::Registered}},
       {"NATIVE: failed to enable dhcp. ", kMessageLine}},
      {"EnableLeakProtection",
       "EnableLeakProtection",
       kEnableLeakProtection,
       RunEnableLeakProtection,
       &Facts::interfaceLeak,
       21,
       {{"NATIVE: Enabling leak protection v3"},
        {"NATIVE: Enabling leak protection. Allowed interface: "},
        {"NATIVE: Allowing interface by LUID 7"},
        {"NATIVE: LeakProtection already enabled - changing only whitelisted IP.", When::Registered},
        {"NATIVE: LeakProtection dnsLeakSublayer set weight", When::NotRegistered},
        {"NATIVE: LeakProtection - apply firewall."},
        {"NATIVE: LeakProtection - transaction commit."},
        {"NATIVE: LeakProtection applying finished."}},
       {},
       false,
       true},
      {"DisableLeakProtection",
       "DisableLeakProtection",
       kDisableLeakProtection,
       RunDisableLeakProtection,
       &Facts::interfaceLeak,
       21,
       {},
       {},
       false,
       true},
      {"EnableLocalNetwork",
       "EnableLocalNetwork",
       kEnableLocalNetwork,
       RunEnableLocalNetwork,
       &Facts::localNetwork,
       15,
       {},
       {}},
      {"DisableLocalNetwork",
       "DisableLocalNetwork",
       kDisableLocalNetwork,
       RunDisableLocalNetwork,
       &Facts::localNetwork,
       15,
       {{"NATIVE: Apply firewall.", When::NotRegistered}},
       {"NATIVE: Error applying firewall.", kCodeLine},
       true},
      {"EnableSkein",
       "EnableSkeinFirewallRules",
       kEnableSkein,
       RunEnableSkein,
       &Facts::skein,
       2,
       {{"NATIVE: Enabling skein firewall rules"},
        {"NATIVE: Enabling  skein firewall. Allowed interface: "},
        {"NATIVE: Allowing interface by LUID 7"},
        {"NATIVE: Apply skein firewall rules."}},
       kSkeinFailure,
       true},
      {"EnableSkeinByName",
       "EnableSkeinFirewallRules",
       kEnableSkeinByName,
       RunEnableSkeinByName,
       &Facts::skein,
       2,
       {{"NATIVE: Enabling skein firewall rules"},
        {"NATIVE: Enabling  skein firewall. Allowed interface: Tunnel"},
        {"NATIVE: Using adapters search by name"},
        {"NATIVE: found interface: A Tunnel:1688849877041152"},
        {"NATIVE available interface : vpn-A Tunnel"},
        {"NATIVE: Apply skein firewall rules."}},
       kSkeinFailure,
       true},
      {"DisableSkein", "DisableSkeinFirewallRules", kDisableSkein, RunDisableSkein, &Facts::skein, 2, {}, {}},
  };
  return commands;
}

void PrepareMachine() {
  FakePlatform::AddAdapter({L"vpn", L"A Tunnel", 0x0006000001000000, 6, {}});
  for (const wchar_t* app : kApps) {
    EngineEmulator::PretendFileExists(app);
  }
  EngineEmulator::PretendFileExists(L"C:\\dns.exe");
  AppBlock(L"C:\\blocked.exe").Add();
  AppBlock(L"C:\\blocked too.exe").Add();
}
