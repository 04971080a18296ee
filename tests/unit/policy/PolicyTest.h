/**
 * @file
 * Filters in a fresh engine, and connections, for the tests of policy/ and promises/.
 */
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "emulator/Control.h"
#include "policy/Decide.h"
#include "policy/Map.h"
#include "support/EngineTest.h"
#include "support/FilterText.h"
#include "support/InstalledFeatures.h"
#include "support/InstalledFilters.h"

/// An engine that accepts everything that the documentation does not forbid.
class PolicyTest : public EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    ExpectOutstandingMemory(0);
    EngineEmulator::SetSwitches(EngineEmulator::LenientSwitches());
    filters_.emplace();
  }
  void TearDown() override {
    features_.reset();
    filters_.reset();
    EngineTest::TearDown();
  }

  /// Starts again with a fresh engine.
  void SetUpAgain() {
    PolicyTest::TearDown();
    PolicyTest::SetUp();
  }

  /// The sublayer has this weight even if another one has it: the policy library knows what to do with ties.
  void Install(UINT16 weight, const std::string& filters) {
    EngineEmulator::Switches switches = EngineEmulator::GetSwitches();
    switches.keepAsGiven = 1;
    EngineEmulator::SetSwitches(switches);
    filters_->Install(L"Sublayer", weight, filters);
  }
  /// Installs the library's rule sets. To be called once for each engine.
  void Install(const Promises::Features& features) {
    features_.emplace(features);
    // The library never frees the list that its copy of application blocks points into.
    ExpectOutstandingMemory(features.leakProtection ? 1 : 0);
  }

  static Policy::Snapshot Read() { return Policy::ReadEngine(Policy::LinkedEngine()); }

  /// The verdict of Decide for a connection, in words. Fails the test if the map has another one.
  static std::string VerdictOf(const Policy::Connection& connection) {
    const Policy::Snapshot snapshot = Read();
    const Policy::Verdict verdict = Policy::Decider(snapshot).Decide(connection);
    EXPECT_EQ(Policy::MakeMap(snapshot).At(connection), verdict);
    return Policy::Describe(verdict);
  }

 private:
  std::optional<InstalledFilters> filters_;
  std::optional<InstalledFeatures> features_;
};

/// An ordinary outbound connection to an address and port.
inline Policy::Connection To(const std::string& address, UINT16 port = 443) {
  const auto remote = Policy::ParseAddress(address);
  Policy::Connection connection =
      Policy::OrdinaryConnection(Policy::Direction::Outbound, remote.value().ipVersion);
  connection.remoteAddress = remote.value().number;
  connection.remotePort = port;
  return connection;
}

/// An ordinary inbound connection from an address.
inline Policy::Connection From(const std::string& address) {
  Policy::Connection connection = To(address);
  const Policy::Connection ordinary =
      Policy::OrdinaryConnection(Policy::Direction::Inbound, connection.ipVersion);
  connection.direction = ordinary.direction;
  connection.arrivalInterface = ordinary.arrivalInterface;
  connection.nextHopInterface = ordinary.nextHopInterface;
  return connection;
}
