/**
 * @file
 * The fixture of tests that do experiments with the emulated engine.
 */
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "calibrate/Calibration.h"
#include "calibrate/SimulatedNetwork.h"
#include "emulator/Control.h"
#include "support/EngineTest.h"

/// A machine without IPv6, which takes half of the time.
class IpV4Network : public Calibrate::SimulatedNetwork {
 public:
  using SimulatedNetwork::SimulatedNetwork;

  std::unique_ptr<Calibrate::Listener> Listen(const Calibrate::Path& path) override {
    if (path.ipVersion == Policy::IpVersion::V6) {
      throw Calibrate::NetworkError("There is no IPv6 here");
    }
    return SimulatedNetwork::Listen(path);
  }
};

/// After each test the engine must be as it was before.
class CalibrateTest : public EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    EngineEmulator::Switches switches = EngineEmulator::GetSwitches();
    switches.journalEntries = 0;
    EngineEmulator::SetSwitches(switches);
  }
  void TearDown() override {
    const EngineEmulator::Snapshot left = EngineEmulator::TakeSnapshot();
    EXPECT_EQ(left.providers.size(), 0U);
    EXPECT_EQ(left.sublayers.size(), 0U);
    EXPECT_EQ(left.filters.size(), 0U);
    EngineTest::TearDown();
  }

  static std::string Application() {
    return Policy::ApplicationBytes("\\device\\harddiskvolume1\\corvane-firewall.exe");
  }

  /// Each trial once: nothing in a simulation changes from round to round.
  static Calibrate::Calibration Run(Calibrate::Network& network, std::size_t mostRounds = 1) {
    return Calibrate::CalibrateEngine({Calibrate::LinkedEngine(), Application(), mostRounds}, network);
  }

  /// "filter-ties = newest-first" or "filter-ties: WHY", a line for each assumption.
  static std::string ReadingsOf(const std::vector<Calibrate::Result>& results) {
    std::string lines;
    for (const auto& [text, answer] : results) {
      lines.append(text.name);
      lines.append(answer.reading ? " = " : ": ");
      lines.append(answer.reading ? text.readings[*answer.reading].name : answer.why).append("\n");
    }
    return lines;
  }
};
