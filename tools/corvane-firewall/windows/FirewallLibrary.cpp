#include "windows/FirewallLibrary.h"

#include "Identities.h"
#include "helpers/NetworkInfoException.h"

namespace {

/// Null for the system's engine: there is nothing to load, because the library imports it.
ModuleHandle LoadEmulator(Engine engine, const std::filesystem::path& folder) {
  if (engine == Engine::System) {
    return nullptr;
  }
  ModuleHandle emulator = LoadModule(folder / L"emulator" / L"fwpuclnt.dll");
  // The loader binds an import to the module of that name that is already loaded. If this is not the
  // emulator, the filters would go into the real engine.
  if (GetModuleHandleW(L"fwpuclnt.dll") != emulator.get()) {
    throw Failure("The system's fwpuclnt.dll is loaded already, the emulated engine cannot take its place",
                  "Something in this process brought it in, such as a security product.");
  }
  return emulator;
}

std::vector<const wchar_t*> Pointers(const std::vector<std::wstring>& texts) {
  std::vector<const wchar_t*> pointers;
  pointers.reserve(texts.size());
  for (const std::wstring& text : texts) {
    pointers.push_back(text.c_str());
  }
  return pointers;
}

/// Runs a command that searches the adapters. @throws Failure when they cannot be listed.
template <class Command>
std::uint64_t SearchAdapters(const Command& command) {
  try {
    return command();
  } catch (const WfpFirewall::Helpers::NetworkInfoException& error) {
    throw Failure(static_cast<std::uint32_t>(error.GetErrorCode()), error.what());
  }
}

}  // namespace

FirewallLibrary::FirewallLibrary(Engine engine, const std::wstring& dnsAppPath)
    : emulator_(LoadEmulator(engine, ModulePath(nullptr).parent_path())),
      module_(LoadModule(ModulePath(nullptr).parent_path() / L"Corvane.Native.Firewall.dll")),
      getErrorText_(FindFunction<decltype(getErrorText_)>(module_.get(), "GetErrorText")),
      isInternetEnabled_(FindFunction<decltype(isInternetEnabled_)>(module_.get(), "IsInternetEnabled")),
      enableInternet_(FindFunction<decltype(enableInternet_)>(module_.get(), "EnableInternet")),
      disableInternet_(FindFunction<decltype(disableInternet_)>(module_.get(), "DisableInternet")),
      isDhcpEnabled_(FindFunction<decltype(isDhcpEnabled_)>(module_.get(), "IsDhcpEnabled")),
      enableDhcp_(FindFunction<decltype(enableDhcp_)>(module_.get(), "EnableDhcp")),
      disableDhcp_(FindFunction<decltype(disableDhcp_)>(module_.get(), "DisableDhcp")),
      isLeakProtectionEnabled_(
          FindFunction<decltype(isLeakProtectionEnabled_)>(module_.get(), "IsLeakProtectionEnabled")),
      enableLeakProtection_(
          FindFunction<decltype(enableLeakProtection_)>(module_.get(), "EnableLeakProtection")),
      disableLeakProtection_(
          FindFunction<decltype(disableLeakProtection_)>(module_.get(), "DisableLeakProtection")),
      isLocalNetworkEnabled_(
          FindFunction<decltype(isLocalNetworkEnabled_)>(module_.get(), "IsLocalNetworkEnabled")),
      enableLocalNetwork_(FindFunction<decltype(enableLocalNetwork_)>(module_.get(), "EnableLocalNetwork")),
      disableLocalNetwork_(
          FindFunction<decltype(disableLocalNetwork_)>(module_.get(), "DisableLocalNetwork")),
      enableSkein_(FindFunction<decltype(enableSkein_)>(module_.get(), "EnableSkeinFirewallRules")),
      disableSkein_(FindFunction<decltype(disableSkein_)>(module_.get(), "DisableSkeinFirewallRules")) {
  Initialize(dnsAppPath);
}

void FirewallLibrary::Initialize(const std::wstring& dnsAppPath) const {
  const auto initialize = FindFunction<decltype(&::Initialize)>(module_.get(), "Initialize");
  initialize(&kProvider.key, kProvider.name, kProvider.description,                 //
             &kKillSwitch.key, kKillSwitch.name, kKillSwitch.description,           //
             &kLocalNetwork.key, kLocalNetwork.name, kLocalNetwork.description,     //
             &kDhcp.key, kDhcp.name, kDhcp.description,                             //
             &kDnsLeak.key, kDnsLeak.name, kDnsLeak.description,                    //
             &kInterfaceLeak.key, kInterfaceLeak.name, kInterfaceLeak.description,  //
             &kFirewallCopy.key, kFirewallCopy.name, kFirewallCopy.description,     //
             &kSkein.key, kSkein.name, kSkein.description,                          //
             dnsAppPath.c_str());
}

void FirewallLibrary::DisableInternet(const std::vector<std::wstring>& apps,
                                      const std::vector<std::wstring>& interfaceNames,
                                      LogCallback log) const {
  const std::vector<const wchar_t*> appPointers = Pointers(apps);
  const std::vector<const wchar_t*> interfacePointers = Pointers(interfaceNames);
  // With an empty list the library would still search the adapters; with null it does not.
  Check(disableInternet_(appPointers.data(), static_cast<std::uint32_t>(appPointers.size()),
                         interfacePointers.empty() ? nullptr : interfacePointers.data(),
                         static_cast<std::uint32_t>(interfacePointers.size()), log));
}

void FirewallLibrary::EnableLeakProtection(const LeakProtectionRequest& request, LogCallback log) const {
  const std::vector<const wchar_t*> interfacePointers = Pointers(request.interfaceNames);
  const std::uint64_t result = SearchAdapters([&] {
    return enableLeakProtection_(request.server.c_str(), log, interfacePointers.data(),
                                 static_cast<std::uint32_t>(interfacePointers.size()), request.luid,
                                 request.permittedAddresses.data(), request.permittedAddresses.size());
  });
  if (result != 0) {
    throw Failure(result, "Leak protection cannot be installed");
  }
}

void FirewallLibrary::EnableSkein(const std::vector<std::wstring>& interfaceNames,
                                  std::uint64_t interfaceLuid, const std::vector<std::uint32_t>& peers,
                                  LogCallback log) const {
  const std::vector<const wchar_t*> interfacePointers = Pointers(interfaceNames);
  Check(SearchAdapters([&] {
    return enableSkein_(log, interfacePointers.data(), static_cast<std::uint32_t>(interfacePointers.size()),
                        interfaceLuid, peers.data(), peers.size());
  }));
}

void FirewallLibrary::Check(std::uint64_t result) const {
  if (result != 0) {
    throw Failure(result, getErrorText_());
  }
}
