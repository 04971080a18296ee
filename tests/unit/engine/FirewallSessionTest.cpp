#include <gmock/gmock.h>

#include <memory>

#include "engine/Engine.h"
#include "unit/engine/FailsWith.h"
#include "unit/engine/FirewallFixture.h"

namespace WfpFirewall {
namespace {

using EngineEmulator::FailCall;
using EngineEmulator::TakeSnapshot;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

/// Adds the provider to the engine before the firewall is used. It stays until the end of the test.
void InstallProvider() {
  HANDLE handle = nullptr;
  ASSERT_EQ(FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, nullptr, &handle), DWORD{ERROR_SUCCESS});
  const std::shared_ptr<void> session(handle, [](HANDLE engine) { FwpmEngineClose0(engine); });
  std::wstring name = L"Somebody's";
  FWPM_PROVIDER0 provider{};
  provider.providerKey = kProviderKey;
  provider.displayData.name = name.data();
  ASSERT_EQ(FwpmProviderAdd0(handle, &provider, nullptr), DWORD{ERROR_SUCCESS});
}

class FirewallSession : public FirewallFixture {};

TEST_F(FirewallSession, ConstructionOpensNothing) { EXPECT_THAT(TakeCalls(), IsEmpty()); }

TEST_F(FirewallSession, EndWithoutUseCallsNothing) {
  firewall_.reset();
  EXPECT_THAT(TakeCalls(), IsEmpty());
}

TEST_F(FirewallSession, FirstApplyOpensItAndAddsTheProvider) {
  firewall_->Apply();
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmEngineOpen0", "FwpmProviderGetByKey0", "FwpmProviderAdd0"));
  EXPECT_EQ(Sessions(), 1u);
}

TEST_F(FirewallSession, IsOpenedOnce) {
  firewall_->Apply();
  TakeCalls();
  firewall_->Apply();
  firewall_->TransactionBegin();
  firewall_->TransactionCommit();
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmTransactionBegin0", "FwpmTransactionCommit0"));
  EXPECT_EQ(Sessions(), 1u);
}

TEST_F(FirewallSession, ProviderHasItsTextsAndNoFlags) {
  firewall_->Apply();
  const auto providers = TakeSnapshot().providers;
  ASSERT_THAT(providers, SizeIs(1));
  EXPECT_EQ(providers[0].key, kProviderKey);
  EXPECT_EQ(providers[0].name, L"Corvane");
  EXPECT_EQ(providers[0].description, L"Corvane firewall provider");
  EXPECT_EQ(providers[0].serviceName, L"CorvaneService");
  EXPECT_EQ(providers[0].flags, 0u);
}

TEST_F(FirewallSession, PersistentProviderIsGivenToTheEngineAsSuch) {
  Provider provider = Samples::MakeProvider();
  provider.MakePersistent();
  Firewall firewall(provider);
  // A dynamic session cannot add persistent objects, so the engine refuses.
  EXPECT_THAT([&] { firewall.Apply(); }, FailsWith("Failed to add provider"));
  const auto journal = EngineEmulator::Journal();
  ASSERT_THAT(journal, SizeIs(3));
  EXPECT_THAT(journal[2].arguments, HasSubstr("flags 1"));
}

TEST_F(FirewallSession, ExistingProviderIsLeftAsItIs) {
  InstallProvider();
  TakeCalls();
  firewall_->Apply();
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmEngineOpen0", "FwpmProviderGetByKey0"));
  const auto providers = TakeSnapshot().providers;
  ASSERT_THAT(providers, SizeIs(1));
  EXPECT_EQ(providers[0].name, L"Somebody's");
  ExpectOutstandingMemory(1);  // the record of the provider, which the library never frees
}

TEST_F(FirewallSession, ProviderIsAddedWhateverTheLookUpAnswers) {
  FailCall("FwpmProviderGetByKey0", 1, 5);
  firewall_->Apply();
  EXPECT_THAT(TakeSnapshot().providers, SizeIs(1));
}

TEST_F(FirewallSession, FailureToOpenCarriesTheEnginesCodeAndTheNextTryOpens) {
  for (const DWORD code : {DWORD{5}, DWORD{1753}, DWORD{0x80320010}}) {
    FailCall("FwpmEngineOpen0", 1, code);
    EXPECT_THAT([&] { firewall_->Apply(); }, FailsWith("Error opening engine.", code));
    EXPECT_EQ(Sessions(), 0u);
  }
  TakeCalls();
  firewall_->Apply();
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmEngineOpen0", "FwpmProviderGetByKey0", "FwpmProviderAdd0"));
}

TEST_F(FirewallSession, FailureToAddTheProviderCarriesOneWhateverTheEnginesCode) {
  for (const DWORD code : {DWORD{5}, DWORD{1753}, DWORD{0x80320009}}) {
    Firewall firewall(Samples::MakeProvider());
    FailCall("FwpmProviderAdd0", 1, code);
    EXPECT_THAT([&] { firewall.Apply(); }, FailsWith("Failed to add provider", 1));
  }
}

TEST_F(FirewallSession, StaysOpenWithoutProviderAfterThatFailure) {
  FailCall("FwpmProviderAdd0", 1, 5);
  EXPECT_THROW(firewall_->Apply(), FirewallException);
  EXPECT_EQ(Sessions(), 1u);
  TakeCalls();
  firewall_->Apply();
  EXPECT_THAT(TakeCalls(), IsEmpty());
  EXPECT_THAT(TakeSnapshot().providers, IsEmpty());
}

TEST_F(FirewallSession, ClosesWithTheFirewallAndTakesEverythingAlong) {
  Add(Samples::ThreeFilters());
  firewall_->Apply();
  TakeCalls();
  firewall_.reset();
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmEngineClose0"));
  EXPECT_THAT(TakeSnapshot().providers, IsEmpty());
  EXPECT_THAT(TakeSnapshot().sublayers, IsEmpty());
  EXPECT_THAT(TakeSnapshot().filters, IsEmpty());
}

TEST_F(FirewallSession, SecondSessionSeesWhatTheFirewallAdded) {
  Add(Samples::ThreeFilters());
  firewall_->Apply();
  std::shared_ptr<void> second = Engine::OpenEngine();
  EXPECT_TRUE(Samples::Empty(Samples::kFirstKey).IsApplied(second.get()));
  second.reset();
  EXPECT_THAT(FilterTexts(), SizeIs(3));
}

TEST_F(FirewallSession, SecondSessionCannotRemoveWhatTheFirewallAdded) {
  Add(Samples::Empty(Samples::kFirstKey));
  firewall_->Apply();
  const std::shared_ptr<void> second = Engine::OpenEngine();
  Sublayer sublayer = Samples::Empty(Samples::kFirstKey);
  EXPECT_THAT([&] { sublayer.Destroy(second.get()); }, FailsWith("Failed to remove provider.", 0x8032000C));
}

}  // namespace
}  // namespace WfpFirewall
