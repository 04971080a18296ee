#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "FirewallCommands.h"
#include "windows/LoadedModule.h"

/// Corvane.Native.Firewall.dll.
class FirewallLibrary : public FirewallCommands {
 public:
  /// Loads the DLL from this program's folder and binds it to `engine`.
  /// @param dnsAppPath see Initialize.
  /// @throws Failure when a file or a function is missing.
  FirewallLibrary(Engine engine, const std::wstring& dnsAppPath);

  [[nodiscard]] bool IsInternetEnabled() const override { return isInternetEnabled_() == 1; }
  [[nodiscard]] bool IsDhcpEnabled() const override { return isDhcpEnabled_() == 1; }
  [[nodiscard]] bool IsLeakProtectionEnabled() const override { return isLeakProtectionEnabled_() == 1; }
  [[nodiscard]] bool IsLocalNetworkEnabled() const override { return isLocalNetworkEnabled_() == 1; }

  void EnableInternet() const override { Check(enableInternet_()); }
  void DisableInternet(const std::vector<std::wstring>& apps, const std::vector<std::wstring>& interfaceNames,
                       LogCallback log) const override;
  void EnableDhcp(LogCallback log) const override { Check(enableDhcp_(log)); }
  void DisableDhcp(LogCallback log) const override { Check(disableDhcp_(log)); }
  void EnableLeakProtection(const LeakProtectionRequest& request, LogCallback log) const override;
  void DisableLeakProtection() const override { Check(disableLeakProtection_()); }
  void EnableLocalNetwork() const override { Check(enableLocalNetwork_()); }
  void DisableLocalNetwork(LogCallback log) const override { Check(disableLocalNetwork_(log)); }
  void EnableSkein(const std::vector<std::wstring>& interfaceNames, std::uint64_t interfaceLuid,
                   const std::vector<std::uint32_t>& peers, LogCallback log) const override;
  void DisableSkein() const override { Check(disableSkein_()); }

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
