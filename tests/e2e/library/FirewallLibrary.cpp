#include "FirewallLibrary.h"

FirewallLibrary::FirewallLibrary()
    : module_(ProgramFolder() + L"Corvane.Native.Firewall.dll"),
      Initialize(module_.Find<decltype(&::Initialize)>("Initialize")),
      GetErrorText(module_.Find<decltype(&::GetErrorText)>("GetErrorText")),
      IsInternetEnabled(module_.Find<decltype(&::IsInternetEnabled)>("IsInternetEnabled")),
      EnableInternet(module_.Find<decltype(&::EnableInternet)>("EnableInternet")),
      DisableInternet(module_.Find<decltype(&::DisableInternet)>("DisableInternet")),
      IsDhcpEnabled(module_.Find<decltype(&::IsDhcpEnabled)>("IsDhcpEnabled")),
      EnableDhcp(module_.Find<decltype(&::EnableDhcp)>("EnableDhcp")),
      DisableDhcp(module_.Find<decltype(&::DisableDhcp)>("DisableDhcp")),
      IsLeakProtectionEnabled(module_.Find<decltype(&::IsLeakProtectionEnabled)>("IsLeakProtectionEnabled")),
      EnableLeakProtection(module_.Find<decltype(&::EnableLeakProtection)>("EnableLeakProtection")),
      DisableLeakProtection(module_.Find<decltype(&::DisableLeakProtection)>("DisableLeakProtection")),
      IsLocalNetworkEnabled(module_.Find<decltype(&::IsLocalNetworkEnabled)>("IsLocalNetworkEnabled")),
      EnableLocalNetwork(module_.Find<decltype(&::EnableLocalNetwork)>("EnableLocalNetwork")),
      DisableLocalNetwork(module_.Find<decltype(&::DisableLocalNetwork)>("DisableLocalNetwork")),
      EnableSkeinFirewallRules(
          module_.Find<decltype(&::EnableSkeinFirewallRules)>("EnableSkeinFirewallRules")),
      DisableSkeinFirewallRules(
          module_.Find<decltype(&::DisableSkeinFirewallRules)>("DisableSkeinFirewallRules")) {}
