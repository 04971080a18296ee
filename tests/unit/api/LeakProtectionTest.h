#pragma once

#include "ApiTest.h"

constexpr std::uint64_t kTunnelLuid = 7;

/// The state after Initialize on a machine where Windows Firewall blocks one application.
class LeakProtectionTest : public InitializedModuleTest {
 protected:
  void SetUp() override;
  /// Expects one list of filters that is never freed for each copy that was made.
  void TearDown() override;

  /// EnableLeakProtection for the interface with the LUID above, without permitted addresses.
  static std::uint64_t Enable();
  /// The same with permitted addresses.
  static std::uint64_t Enable(const std::vector<std::uint32_t>& permittedAddresses);
  /// Switches leak protection on, and forgets the log and the calls of that.
  static void TurnOn();
  /// The same without the copy of Windows Firewall's blocks.
  static void TurnOnWithoutCopy();
  /// Leaves only one rule set registered, without filters: the nth in the order of removal.
  static void LeaveOnly(std::size_t nth);

  /// The rule sets in the registry, such as "dns copy interface".
  static std::string Registered();
  /// The sublayers in the engine with their numbers of filters, such as "dns 12, copy 1, interface 20".
  static std::string Installed();
  static bool TransactionIsOpen();
};
