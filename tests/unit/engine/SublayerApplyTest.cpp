#include <gmock/gmock.h>

#include <optional>

#include "engine/Sublayer.h"
#include "unit/engine/FailsWith.h"
#include "unit/engine/SublayerFixture.h"

namespace WfpFirewall {
namespace {

using EngineEmulator::FailCall;
using EngineEmulator::TakeSnapshot;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class SublayerApply : public SublayerFixture {};

TEST_F(SublayerApply, IsNotAppliedBefore) {
  EXPECT_FALSE(Samples::ThreeFilters().IsApplied(Session()));
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmSubLayerGetByKey0"));
}

TEST_F(SublayerApply, IsAppliedAfterAndTheRecordIsGivenBack) {
  Sublayer sublayer = Samples::ThreeFilters();
  Apply(sublayer);
  TakeCalls();
  EXPECT_TRUE(sublayer.IsApplied(Session()));
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmSubLayerGetByKey0", "FwpmFreeMemory0"));
}

TEST_F(SublayerApply, IsAppliedAnswersForTheEngineNotForTheObject) {
  Sublayer sublayer = Samples::ThreeFilters();
  Apply(sublayer);
  EXPECT_TRUE(Samples::Empty(Samples::kFirstKey).IsApplied(Session()));
  EXPECT_FALSE(Samples::Empty(Samples::kSecondKey).IsApplied(Session()));
}

TEST_F(SublayerApply, IsNotAppliedWhateverTheFailure) {
  Sublayer sublayer = Samples::ThreeFilters();
  Apply(sublayer);
  for (const DWORD code : {DWORD{5}, DWORD{1753}, DWORD{0x80320010}}) {
    FailCall("FwpmSubLayerGetByKey0", 1, code);
    EXPECT_FALSE(sublayer.IsApplied(Session()));
  }
  EXPECT_FALSE(sublayer.IsApplied(nullptr));
}

TEST_F(SublayerApply, AddsTheSublayerThenEachFilter) {
  Sublayer sublayer = Samples::ThreeFilters();
  Apply(sublayer);
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmSubLayerGetByKey0", "FwpmSubLayerAdd0", "FwpmFilterAdd0",
                                       "FwpmFilterAdd0", "FwpmFilterAdd0"));
}

TEST_F(SublayerApply, SublayerHasItsKeyAndTextsAndNoProvider) {
  Sublayer sublayer = Samples::ThreeFilters();
  Apply(sublayer);
  const auto sublayers = TakeSnapshot().sublayers;
  ASSERT_THAT(sublayers, SizeIs(1));
  EXPECT_EQ(sublayers[0].key, Samples::kFirstKey);
  EXPECT_EQ(sublayers[0].name, L"Ports");
  EXPECT_EQ(sublayers[0].description, L"Blocks three ports");
  EXPECT_EQ(sublayers[0].providerKey, std::nullopt);
  EXPECT_EQ(sublayers[0].flags, 0u);
  EXPECT_EQ(sublayers[0].weight, 8);  // the lowest that is free
}

TEST_F(SublayerApply, OnlyTheLowSixteenBitsOfTheWeightArrive) {
  Sublayer plain = Samples::Empty(Samples::kFirstKey);
  plain.SetWeight(32001);
  Apply(plain);
  Sublayer large = Samples::Empty(Samples::kSecondKey);
  large.SetWeight(0x12345);
  Apply(large);
  const auto sublayers = TakeSnapshot().sublayers;
  ASSERT_THAT(sublayers, SizeIs(2));
  EXPECT_EQ(sublayers[0].weight, 32001);
  EXPECT_EQ(sublayers[1].weight, 0x2345);
}

TEST_F(SublayerApply, FiltersCarryTheSublayersTextsAndTheProvider) {
  Sublayer sublayer = Samples::ThreeFilters();
  Apply(sublayer);
  const auto filters = TakeSnapshot().filters;
  ASSERT_THAT(filters, SizeIs(3));
  for (const EngineEmulator::FilterObject& filter : filters) {
    EXPECT_EQ(filter.name, L"Ports");
    EXPECT_EQ(filter.description, L"Blocks three ports");
    EXPECT_EQ(filter.subLayerKey, Samples::kFirstKey);
    EXPECT_EQ(filter.providerKey, kProviderKey);
  }
}

TEST_F(SublayerApply, FiltersGoInInTheOrderOfAdding) {
  Sublayer sublayer = Samples::ThreeFilters();
  Apply(sublayer);
  EXPECT_THAT(FilterTexts(),
              ElementsAre("ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT EQUAL UINT16 1",
                          "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT EQUAL UINT16 2",
                          "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT EQUAL UINT16 3"));
}

TEST_F(SublayerApply, OfASublayerWithoutFiltersAddsJustTheSublayer) {
  Sublayer sublayer = Samples::Empty(Samples::kFirstKey);
  Apply(sublayer);
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmSubLayerGetByKey0", "FwpmSubLayerAdd0"));
  EXPECT_THAT(TakeSnapshot().filters, IsEmpty());
}

TEST_F(SublayerApply, SecondTimeAddsNothingAndKeepsTheIds) {
  Sublayer sublayer = Samples::ThreeFilters();
  Apply(sublayer);
  TakeCalls();
  sublayer.AddFilter(Samples::BlockPort(4));
  Apply(sublayer);
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmSubLayerGetByKey0", "FwpmFreeMemory0"));
  EXPECT_THAT(FilterTexts(), SizeIs(3));
  sublayer.Destroy(Session());
  EXPECT_THAT(FilterTexts(), IsEmpty());
}

TEST_F(SublayerApply, OverASublayerOfThatKeyRecordsNoIds) {
  Sublayer other = Samples::Empty(Samples::kFirstKey);
  Apply(other);
  Sublayer sublayer = Samples::ThreeFilters();
  Apply(sublayer);
  EXPECT_THAT(FilterTexts(), IsEmpty());
  TakeCalls();
  sublayer.Destroy(Session());
  EXPECT_THAT(TakeCalls(),
              ElementsAre("FwpmSubLayerGetByKey0", "FwpmFreeMemory0", "FwpmSubLayerDeleteByKey0"));
}

TEST_F(SublayerApply, FailureToAddTheSublayerCarriesTheEnginesCode) {
  for (const DWORD code : {DWORD{5}, DWORD{1753}, DWORD{0x80320009}}) {
    Sublayer sublayer = Samples::ThreeFilters();
    FailCall("FwpmSubLayerAdd0", 1, code);
    EXPECT_THAT([&] { Apply(sublayer); }, FailsWith("Error creating sublayer.", code));
  }
  EXPECT_THAT(TakeSnapshot().sublayers, IsEmpty());
  EXPECT_THAT(FilterTexts(), IsEmpty());
}

TEST_F(SublayerApply, WithoutASessionFailsToAddTheSublayer) {
  Sublayer sublayer = Samples::ThreeFilters();
  EXPECT_THAT([&] { sublayer.Apply(nullptr, Samples::MakeProvider()); },
              FailsWith("Error creating sublayer.", ERROR_INVALID_HANDLE));
}

TEST_F(SublayerApply, FailureToAddAFilterCarriesTheEnginesCode) {
  const GUID keys[]{Samples::kFirstKey, Samples::kSecondKey, Samples::kThirdKey};
  const DWORD codes[]{5, 1753, 0x80320033};
  for (int i = 0; i < 3; ++i) {
    Sublayer sublayer = Samples::ThreeFilters(keys[i]);
    FailCall("FwpmFilterAdd0", 1, codes[i]);
    EXPECT_THAT([&] { Apply(sublayer); }, FailsWith("Failed to add filter to firewall.", codes[i]));
  }
}

TEST_F(SublayerApply, FailureOnTheThirdFilterLeavesTheFirstTwoWithTheirIds) {
  Sublayer sublayer = Samples::ThreeFilters();
  FailCall("FwpmFilterAdd0", 3, 0x80320033);
  EXPECT_THAT([&] { Apply(sublayer); }, FailsWith("Failed to add filter to firewall.", 0x80320033));
  EXPECT_THAT(FilterTexts(),
              ElementsAre("ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT EQUAL UINT16 1",
                          "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT EQUAL UINT16 2"));
  EXPECT_THAT(TakeSnapshot().sublayers, SizeIs(1));
  sublayer.Destroy(Session());
  EXPECT_THAT(FilterTexts(), IsEmpty());
  EXPECT_THAT(TakeSnapshot().sublayers, IsEmpty());
}

TEST_F(SublayerApply, ConvertsAllFiltersBeforeTheFirstIsAdded) {
  Sublayer sublayer = Samples::ThreeFilters();
  sublayer.AddFilter(Filter(Action::Block));
  EXPECT_THAT([&] { Apply(sublayer); }, FailsWith("Layer type None cant be set."));
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmSubLayerGetByKey0", "FwpmSubLayerAdd0"));
}

TEST_F(SublayerApply, SurvivingARestartMakesTheSublayerPersistent) {
  FWPM_SESSION0 record{};
  HANDLE handle = nullptr;
  ASSERT_EQ(FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, &record, &handle), DWORD{ERROR_SUCCESS});
  const std::shared_ptr<void> lasting(handle, [](HANDLE session) { FwpmEngineClose0(session); });
  Sublayer sublayer = Samples::Empty(Samples::kFirstKey);
  sublayer.SurviveRestart();
  sublayer.Apply(lasting.get(), Samples::MakeProvider());
  const auto sublayers = TakeSnapshot().sublayers;
  ASSERT_THAT(sublayers, SizeIs(1));
  EXPECT_EQ(sublayers[0].flags, 1u);
}

TEST_F(SublayerApply, OriginalCanBeDiscardedOnceCopied) {
  std::optional<Sublayer> original = Samples::ThreeFilters();
  Sublayer copy = *original;
  original.reset();
  Apply(copy);
  EXPECT_THAT(FilterTexts(), SizeIs(3));
}

}  // namespace
}  // namespace WfpFirewall
