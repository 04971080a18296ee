#pragma once

#include "ApiTest.h"

constexpr std::uint64_t kTunnelLuid = 7;

/// The module after Initialize on a machine where Windows Firewall blocks one application.
class LeakProtectionTest : public InitializedModuleTest {
 protected:
  void SetUp() override;
  /// Expects one array of an enumeration to be kept for each copy that was made.
  void TearDown() override;

  /// For the interface of the LUID above, without permitted addresses.
  static std::uint64_t Enable();
  /// The same with permitted addresses.
  static std::uint64_t Enable(const std::vector<std::uint32_t>& permittedAddresses);
  /// Brings the module into a state, and forgets the log and the calls made for it.
  static void TurnOn();
  /// On, but for the copy of Windows Firewall's blocks.
  static void TurnOnWithoutCopy();
  /// Leaves just one rule set registered, whose filters are gone: the nth that is removed.
  static void LeaveOnly(std::size_t nth);

  /// Which of the rule sets the registry has: "dns copy interface".
  static std::string Registered();
  /// The sublayers in the engine with their numbers of filters: "dns 12, copy 1, interface 20".
  static std::string Installed();
  static bool TransactionIsOpen();
};
