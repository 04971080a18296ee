#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Failure.h"
#include "corvane/native_firewall.h"

/// The arguments of EnableLeakProtection.
struct LeakProtectionRequest {
  std::string server;
  std::vector<std::wstring> interfaceNames;
  std::uint64_t luid = 0;
  std::vector<std::uint32_t> permittedAddresses;
};

/// The library, initialised with the tool's identities. When this object is destroyed, everything that was
/// installed through it is removed.
class FirewallCommands {
 public:
  FirewallCommands() = default;
  virtual ~FirewallCommands() = default;
  FirewallCommands(const FirewallCommands&) = delete;
  FirewallCommands& operator=(const FirewallCommands&) = delete;

  [[nodiscard]] virtual bool IsInternetEnabled() const = 0;
  [[nodiscard]] virtual bool IsDhcpEnabled() const = 0;
  [[nodiscard]] virtual bool IsLeakProtectionEnabled() const = 0;
  [[nodiscard]] virtual bool IsLocalNetworkEnabled() const = 0;

  /// The commands throw Failure with the code and the text of the library.
  virtual void EnableInternet() const = 0;
  virtual void DisableInternet(const std::vector<std::wstring>& apps,
                               const std::vector<std::wstring>& interfaceNames, LogCallback log) const = 0;
  virtual void EnableDhcp(LogCallback log) const = 0;
  virtual void DisableDhcp(LogCallback log) const = 0;
  /// The library keeps no text of this command's failures.
  virtual void EnableLeakProtection(const LeakProtectionRequest& request, LogCallback log) const = 0;
  virtual void DisableLeakProtection() const = 0;
  virtual void EnableLocalNetwork() const = 0;
  virtual void DisableLocalNetwork(LogCallback log) const = 0;
  /// @param interfaceLuid 0 to search the adapters for the names.
  /// @param peers in host byte order.
  virtual void EnableSkein(const std::vector<std::wstring>& interfaceNames, std::uint64_t interfaceLuid,
                           const std::vector<std::uint32_t>& peers, LogCallback log) const = 0;
  virtual void DisableSkein() const = 0;
};

/// Binds this process to an engine that is no dump, and loads the library. Null where there is none, off
/// Windows: the emulated engine is then part of the program.
/// @param dnsAppPath see Initialize.
/// @throws Failure when a file or a function is missing.
std::unique_ptr<FirewallCommands> LoadFirewall(Engine engine, const std::wstring& dnsAppPath);
