#include <gmock/gmock.h>

#include <optional>

#include "unit/engine/FailsWith.h"
#include "unit/engine/FirewallFixture.h"

namespace WfpFirewall {
namespace {

using EngineEmulator::FailCall;
using EngineEmulator::TakeSnapshot;
using Samples::kFirstKey;
using Samples::kSecondKey;
using Samples::kThirdKey;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr DWORD kProviderNotFound = 0x80320005;

class FirewallRegistry : public FirewallFixture {};

TEST_F(FirewallRegistry, IsEmptyAtFirst) {
  Sublayer sublayer = Samples::ThreeFilters();
  EXPECT_FALSE(firewall_->HasSublayer(kFirstKey));
  EXPECT_FALSE(firewall_->HasSublayer(sublayer));
}

TEST_F(FirewallRegistry, AddingRegistersWithoutCallingTheEngine) {
  Sublayer sublayer = Samples::ThreeFilters();
  EXPECT_EQ(&firewall_->AddSublayer(sublayer), &*firewall_);
  EXPECT_TRUE(firewall_->HasSublayer(kFirstKey));
  EXPECT_TRUE(firewall_->HasSublayer(sublayer));
  EXPECT_FALSE(firewall_->HasSublayer(kSecondKey));
  EXPECT_THAT(TakeCalls(), IsEmpty());
}

TEST_F(FirewallRegistry, KnowsEntriesByTheirWholeKey) {
  Add(Samples::Empty(kFirstKey));
  GUID lastByteDiffers = kFirstKey;
  lastByteDiffers.Data4[7] ^= 1;
  EXPECT_FALSE(firewall_->HasSublayer(lastByteDiffers));
  Sublayer sameKey(kFirstKey, L"Other texts", L"Other texts");
  EXPECT_TRUE(firewall_->HasSublayer(sameKey));
}

TEST_F(FirewallRegistry, HoldsCopies) {
  std::optional<Sublayer> sublayer = Samples::ThreeFilters();
  firewall_->AddSublayer(*sublayer);
  sublayer->AddFilter(Samples::BlockPort(4));
  sublayer.reset();
  firewall_->Apply();
  EXPECT_THAT(FilterTexts(), SizeIs(3));
}

TEST_F(FirewallRegistry, ApplyInstallsEntriesInTheOrderOfAdding) {
  Add(Samples::Empty(kThirdKey));
  Add(Samples::ThreeFilters(kFirstKey));
  firewall_->Apply();
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmEngineOpen0", "FwpmProviderGetByKey0", "FwpmProviderAdd0",  //
                                       "FwpmSubLayerGetByKey0", "FwpmSubLayerAdd0",                     //
                                       "FwpmSubLayerGetByKey0", "FwpmSubLayerAdd0", "FwpmFilterAdd0",
                                       "FwpmFilterAdd0", "FwpmFilterAdd0"));
  EXPECT_THAT(InstalledKeys(), ElementsAre(kThirdKey, kFirstKey));
}

TEST_F(FirewallRegistry, ApplyTwiceAddsNothingTheSecondTime) {
  Add(Samples::ThreeFilters());
  firewall_->Apply();
  TakeCalls();
  firewall_->Apply();
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmSubLayerGetByKey0", "FwpmFreeMemory0"));
  EXPECT_THAT(FilterTexts(), SizeIs(3));
}

TEST_F(FirewallRegistry, ApplyInstallsWhatIsNew) {
  Add(Samples::Empty(kFirstKey));
  firewall_->Apply();
  Add(Samples::Empty(kSecondKey));
  TakeCalls();
  firewall_->Apply();
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmSubLayerGetByKey0", "FwpmFreeMemory0", "FwpmSubLayerGetByKey0",
                                       "FwpmSubLayerAdd0"));
}

TEST_F(FirewallRegistry, ApplyStopsAtTheEntryThatFailsAndKeepsTheEarlierOnes) {
  Add(Samples::Empty(kFirstKey));
  Add(Samples::Empty(kSecondKey));
  Add(Samples::Empty(kThirdKey));
  FailCall("FwpmSubLayerAdd0", 2, 5);
  EXPECT_THAT([&] { firewall_->Apply(); }, FailsWith("Error creating sublayer.", 5));
  EXPECT_THAT(InstalledKeys(), ElementsAre(kFirstKey));
  EXPECT_TRUE(firewall_->HasSublayer(kThirdKey));
}

TEST_F(FirewallRegistry, RemoveTakesTheEntryOutOfEngineAndRegistry) {
  Add(Samples::ThreeFilters(kFirstKey));
  Add(Samples::Empty(kSecondKey));
  firewall_->Apply();
  TakeCalls();
  firewall_->RemoveSublayer(kFirstKey);
  EXPECT_THAT(TakeCalls(),
              ElementsAre("FwpmSubLayerGetByKey0", "FwpmFreeMemory0", "FwpmFilterDeleteById0",
                          "FwpmFilterDeleteById0", "FwpmFilterDeleteById0", "FwpmSubLayerDeleteByKey0"));
  EXPECT_FALSE(firewall_->HasSublayer(kFirstKey));
  EXPECT_TRUE(firewall_->HasSublayer(kSecondKey));
  EXPECT_THAT(InstalledKeys(), ElementsAre(kSecondKey));
  EXPECT_THAT(FilterTexts(), IsEmpty());
}

TEST_F(FirewallRegistry, RemoveOfAnUnknownKeyDoesNothing) {
  Add(Samples::Empty(kFirstKey));
  firewall_->RemoveSublayer(kSecondKey);
  EXPECT_THAT(TakeCalls(), IsEmpty());
  EXPECT_TRUE(firewall_->HasSublayer(kFirstKey));
}

TEST_F(FirewallRegistry, RemoveKeepsTheOrderOfTheOthers) {
  Add(Samples::Empty(kThirdKey));
  Add(Samples::Empty(kFirstKey));
  Add(Samples::Empty(kSecondKey));
  firewall_->RemoveSublayer(kFirstKey);
  firewall_->Apply();
  EXPECT_THAT(InstalledKeys(), ElementsAre(kThirdKey, kSecondKey));
}

TEST_F(FirewallRegistry, RemoveBeforeAnySessionJustDropsTheEntry) {
  Add(Samples::ThreeFilters());
  firewall_->RemoveSublayer(kFirstKey);
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmSubLayerGetByKey0"));
  EXPECT_FALSE(firewall_->HasSublayer(kFirstKey));
  EXPECT_EQ(Sessions(), 0u);
}

TEST_F(FirewallRegistry, KeyAddedTwiceIsTwoEntriesAndOneRemoveDropsBoth) {
  Add(Samples::ThreeFilters());
  Add(Samples::ThreeFilters());
  EXPECT_TRUE(firewall_->HasSublayer(kFirstKey));
  firewall_->Apply();
  EXPECT_THAT(FilterTexts(), SizeIs(3));
  TakeCalls();
  firewall_->RemoveSublayer(kFirstKey);
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmSubLayerGetByKey0", "FwpmFreeMemory0", "FwpmFilterDeleteById0",
                                       "FwpmFilterDeleteById0", "FwpmFilterDeleteById0",
                                       "FwpmSubLayerDeleteByKey0",  //
                                       "FwpmSubLayerGetByKey0"));
  EXPECT_FALSE(firewall_->HasSublayer(kFirstKey));
}

TEST_F(FirewallRegistry, FailedRemoveLeavesTheRegistryAsItWas) {
  Add(Samples::ThreeFilters());
  firewall_->Apply();
  FailCall("FwpmSubLayerDeleteByKey0", 1, 5);
  EXPECT_THAT([&] { firewall_->RemoveSublayer(kFirstKey); }, FailsWith("Failed to remove provider.", 5));
  EXPECT_TRUE(firewall_->HasSublayer(kFirstKey));
  firewall_->RemoveSublayer(kFirstKey);
  EXPECT_FALSE(firewall_->HasSublayer(kFirstKey));
  EXPECT_THAT(InstalledKeys(), IsEmpty());
}

TEST_F(FirewallRegistry, RemoveAfterAFailedOneDeletesTheFilterThatStayed) {
  Add(Samples::ThreeFilters());
  firewall_->Apply();
  FailCall("FwpmFilterDeleteById0", 2, 5);
  EXPECT_THAT([&] { firewall_->RemoveSublayer(kFirstKey); }, FailsWith("Failed to remove provider.", kInUse));
  EXPECT_THAT(FilterTexts(), SizeIs(1));
  TakeCalls();
  firewall_->RemoveSublayer(kFirstKey);
  // The entry still has all of its filter ids, also those of deleted filters.
  EXPECT_THAT(TakeCalls(),
              ElementsAre("FwpmSubLayerGetByKey0", "FwpmFreeMemory0", "FwpmFilterDeleteById0",
                          "FwpmFilterDeleteById0", "FwpmFilterDeleteById0", "FwpmSubLayerDeleteByKey0"));
  EXPECT_FALSE(firewall_->HasSublayer(kFirstKey));
  EXPECT_THAT(FilterTexts(), IsEmpty());
  EXPECT_THAT(InstalledKeys(), IsEmpty());
}

TEST_F(FirewallRegistry, RemoveThatFailsOnALaterEntryLeavesTheEarlierOnesRegistered) {
  Add(Samples::Empty(kFirstKey));
  Add(Samples::Empty(kFirstKey));
  firewall_->Apply();
  FailCall("FwpmSubLayerDeleteByKey0", 1, kProviderNotFound);
  FailCall("FwpmSubLayerDeleteByKey0", 2, 5);
  EXPECT_THAT([&] { firewall_->RemoveSublayer(kFirstKey); }, FailsWith("Failed to remove provider.", 5));
  TakeCalls();
  firewall_->RemoveSublayer(kFirstKey);
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmSubLayerGetByKey0", "FwpmFreeMemory0", "FwpmSubLayerDeleteByKey0",
                                       "FwpmSubLayerGetByKey0"));
}

class FirewallDestroy : public FirewallFixture {};

TEST_F(FirewallDestroy, RemovesEntriesThenTheProviderThenClosesTheSession) {
  Add(Samples::Empty(kFirstKey));
  Add(Samples::Empty(kSecondKey));
  firewall_->Apply();
  TakeCalls();
  firewall_->Destroy();
  EXPECT_THAT(TakeCalls(),
              ElementsAre("FwpmSubLayerGetByKey0", "FwpmFreeMemory0", "FwpmSubLayerDeleteByKey0",  //
                          "FwpmSubLayerGetByKey0", "FwpmFreeMemory0", "FwpmSubLayerDeleteByKey0",  //
                          "FwpmProviderDeleteByKey0", "FwpmEngineClose0"));
  EXPECT_FALSE(firewall_->HasSublayer(kFirstKey));
  EXPECT_FALSE(firewall_->HasSublayer(kSecondKey));
  EXPECT_EQ(Sessions(), 0u);
}

TEST_F(FirewallDestroy, OpensTheSessionIfNeeded) {
  firewall_->Destroy();
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmEngineOpen0", "FwpmProviderGetByKey0", "FwpmProviderAdd0",
                                       "FwpmProviderDeleteByKey0", "FwpmEngineClose0"));
}

TEST_F(FirewallDestroy, NextUseOpensANewSessionAndAddsTheProviderAgain) {
  firewall_->Apply();
  firewall_->Destroy();
  TakeCalls();
  firewall_->Apply();
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmEngineOpen0", "FwpmProviderGetByKey0", "FwpmProviderAdd0"));
  EXPECT_THAT(TakeSnapshot().providers, SizeIs(1));
}

TEST_F(FirewallDestroy, SucceedsWhenTheProviderIsGone) {
  Add(Samples::Empty(kFirstKey));
  FailCall("FwpmProviderDeleteByKey0", 1, kProviderNotFound);
  firewall_->Destroy();
  EXPECT_FALSE(firewall_->HasSublayer(kFirstKey));
  EXPECT_EQ(Sessions(), 0u);
}

TEST_F(FirewallDestroy, FailureToDeleteTheProviderLeavesRegistryAndSession) {
  Add(Samples::Empty(kFirstKey));
  firewall_->Apply();
  for (const DWORD code : {DWORD{5}, DWORD{1753}, DWORD{0x8032000A}}) {
    FailCall("FwpmProviderDeleteByKey0", 1, code);
    EXPECT_THAT([&] { firewall_->Destroy(); }, FailsWith("Failed to remove provider.", code));
    EXPECT_TRUE(firewall_->HasSublayer(kFirstKey));
    EXPECT_EQ(Sessions(), 1u);
  }
}

TEST_F(FirewallDestroy, FailureOfAnEntryLeavesTheProviderAlone) {
  Add(Samples::Empty(kFirstKey));
  firewall_->Apply();
  FailCall("FwpmSubLayerDeleteByKey0", 1, 5);
  EXPECT_THAT([&] { firewall_->Destroy(); }, FailsWith("Failed to remove provider.", 5));
  EXPECT_TRUE(firewall_->HasSublayer(kFirstKey));
  EXPECT_THAT(TakeSnapshot().providers, SizeIs(1));
  EXPECT_EQ(Sessions(), 1u);
}

TEST_F(FirewallDestroy, FailureToOpenTheSessionIsReportedAsSuch) {
  FailCall("FwpmEngineOpen0", 1, 1753);
  EXPECT_THAT([&] { firewall_->Destroy(); }, FailsWith("Error opening engine.", 1753));
}

}  // namespace
}  // namespace WfpFirewall
