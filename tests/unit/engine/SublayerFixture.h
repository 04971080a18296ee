#pragma once

#include <WfpPlatform.h>

#include <memory>
#include <string>
#include <vector>

#include "emulator/Control.h"
#include "engine/Engine.h"
#include "support/EngineTest.h"
#include "unit/engine/Samples.h"

/// An open session in which the provider of the samples exists.
class SublayerFixture : public EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    session_ = WfpFirewall::Engine::OpenEngine();
    std::wstring name = L"Corvane";
    FWPM_PROVIDER0 provider{};
    provider.providerKey = kProviderKey;
    provider.displayData.name = name.data();
    ASSERT_EQ(FwpmProviderAdd0(Session(), &provider, nullptr), DWORD{ERROR_SUCCESS});
    EngineEmulator::ClearJournal();
  }

  void TearDown() override {
    session_.reset();
    EngineTest::TearDown();
  }

  [[nodiscard]] HANDLE Session() const { return session_.get(); }

  void Apply(WfpFirewall::Sublayer& sublayer) const { sublayer.Apply(Session(), Samples::MakeProvider()); }

  /// The calls since the last TakeCalls.
  std::vector<std::string> TakeCalls() {
    std::vector<std::string> calls = Calls();
    EngineEmulator::ClearJournal();
    return calls;
  }

 private:
  std::shared_ptr<void> session_;
};
