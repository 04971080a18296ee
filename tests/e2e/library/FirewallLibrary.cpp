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
      DisableDhcp(module_.Find<decltype(&::DisableDhcp)>("DisableDhcp")) {}
