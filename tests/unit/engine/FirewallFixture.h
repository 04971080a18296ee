#pragma once

#include <optional>
#include <string>
#include <vector>

#include "emulator/Control.h"
#include "engine/Firewall.h"
#include "support/EngineTest.h"
#include "unit/engine/Samples.h"

/// A new firewall.
class FirewallFixture : public EngineTest {
 protected:
  void TearDown() override {
    firewall_.reset();
    EngineTest::TearDown();
  }

  void Add(WfpFirewall::Sublayer sublayer) { firewall_->AddSublayer(sublayer); }

  /// The calls since the last TakeCalls.
  std::vector<std::string> TakeCalls() {
    std::vector<std::string> calls = Calls();
    EngineEmulator::ClearJournal();
    return calls;
  }

  static std::size_t Sessions() { return EngineEmulator::CountOutstanding().sessions; }

  /// The keys of the sublayers in the engine, in the order of adding.
  static std::vector<GUID> InstalledKeys() {
    std::vector<GUID> keys;
    for (const auto& sublayer : EngineEmulator::TakeSnapshot().sublayers) {
      keys.push_back(sublayer.key);
    }
    return keys;
  }

  std::optional<WfpFirewall::Firewall> firewall_{std::in_place, Samples::MakeProvider()};
};
