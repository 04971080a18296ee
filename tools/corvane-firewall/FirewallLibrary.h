#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Failure.h"
#include "LoadedModule.h"
#include "corvane/native_firewall.h"

/// The arguments of EnableLeakProtection.
struct LeakProtectionRequest {
  std::string server;
  std::vector<std::wstring> interfaceNames;
  std::uint64_t luid = 0;
  std::vector<std::uint32_t> permittedAddresses;
};

/// Corvane.Native.Firewall.dll, loaded and initialised with the tool's identities. When this object is
/// destroyed, everything that was installed through it is removed.
class FirewallLibrary {
 public:
  /// Loads the DLL from this program's folder and binds it to `engine`.
  /// @param dnsAppPath see Initialize.
  /// @throws Failure when a file or a function is missing.
  FirewallLibrary(Engine engine, const std::wstring& dnsAppPath);

  [[nodiscard]] bool IsInternetEnabled() const { return isInternetEnabled_() == 1; }
  [[nodiscard]] bool IsDhcpEnabled() const { return isDhcpEnabled_() == 1; }
  [[nodiscard]] bool IsLeakProtectionEnabled() const { return isLeakProtectionEnabled_() == 1; }
  [[nodiscard]] bool IsLocalNetworkEnabled() const { return isLocalNetworkEnabled_() == 1; }

  /// The commands throw Failure with the code and the text of the library.
  void EnableInternet() const { Check(enableInternet_()); }
  void DisableInternet(const std::vector<std::wstring>& apps, const std::vector<std::wstring>& interfaceNames,
                       LogCallback log) const;
  void EnableDhcp(LogCallback log) const { Check(enableDhcp_(log)); }
  void DisableDhcp(LogCallback log) const { Check(disableDhcp_(log)); }
  /// The library keeps no text of this command's failures.
  /// @throws NetworkInfoException too, when the adapters cannot be listed.
  void EnableLeakProtection(const LeakProtectionRequest& request, LogCallback log) const;
  void DisableLeakProtection() const { Check(disableLeakProtection_()); }
  void EnableLocalNetwork() const { Check(enableLocalNetwork_()); }
  void DisableLocalNetwork(LogCallback log) const { Check(disableLocalNetwork_(log)); }
  /// @param interfaceLuid 0 to search the adapters for the names.
  /// @param peers in host byte order.
  /// @throws NetworkInfoException too, when the adapters cannot be listed.
  void EnableSkein(const std::vector<std::wstring>& interfaceNames, std::uint64_t interfaceLuid,
                   const std::vector<std::uint32_t>& peers, LogCallback log) const;
  void DisableSkein() const { Check(disableSkein_()); }

 private:
  void Initialize(const std::wstring& dnsAppPath) const;
  void Check(std::uint64_t result) const;

  ModuleHandle emulator_;  // unloaded last: the library closes its session when it unloads
  ModuleHandle module_;
  decltype(&::GetErrorText) getErrorText_;
  decltype(&::IsInternetEnabled) isInternetEnabled_;
  decltype(&::EnableInternet) enableInternet_;
  decltype(&::DisableInternet) disableInternet_;
  decltype(&::IsDhcpEnabled) isDhcpEnabled_;
  decltype(&::EnableDhcp) enableDhcp_;
  decltype(&::DisableDhcp) disableDhcp_;
  decltype(&::IsLeakProtectionEnabled) isLeakProtectionEnabled_;
  decltype(&::EnableLeakProtection) enableLeakProtection_;
  decltype(&::DisableLeakProtection) disableLeakProtection_;
  decltype(&::IsLocalNetworkEnabled) isLocalNetworkEnabled_;
  decltype(&::EnableLocalNetwork) enableLocalNetwork_;
  decltype(&::DisableLocalNetwork) disableLocalNetwork_;
  decltype(&::EnableSkeinFirewallRules) enableSkein_;
  decltype(&::DisableSkeinFirewallRules) disableSkein_;
};
