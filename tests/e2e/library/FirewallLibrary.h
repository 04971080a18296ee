#pragma once

#include "LoadedModule.h"
#include "corvane/native_firewall.h"

/// The DLL as a host uses it: loaded, with its functions looked up by name.
class FirewallLibrary {
  LoadedModule module_;

 public:
  FirewallLibrary();

  [[nodiscard]] HMODULE Get() const { return module_.Get(); }

  const decltype(&::Initialize) Initialize;
  const decltype(&::GetErrorText) GetErrorText;
  const decltype(&::IsInternetEnabled) IsInternetEnabled;
  const decltype(&::EnableInternet) EnableInternet;
  const decltype(&::DisableInternet) DisableInternet;
  const decltype(&::IsDhcpEnabled) IsDhcpEnabled;
  const decltype(&::EnableDhcp) EnableDhcp;
  const decltype(&::DisableDhcp) DisableDhcp;
  const decltype(&::IsLeakProtectionEnabled) IsLeakProtectionEnabled;
  const decltype(&::EnableLeakProtection) EnableLeakProtection;
  const decltype(&::DisableLeakProtection) DisableLeakProtection;
  const decltype(&::IsLocalNetworkEnabled) IsLocalNetworkEnabled;
  const decltype(&::EnableLocalNetwork) EnableLocalNetwork;
  const decltype(&::DisableLocalNetwork) DisableLocalNetwork;
  const decltype(&::EnableSkeinFirewallRules) EnableSkeinFirewallRules;
  const decltype(&::DisableSkeinFirewallRules) DisableSkeinFirewallRules;
};
