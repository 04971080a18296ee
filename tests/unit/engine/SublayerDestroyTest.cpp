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

/// The engine has a sublayer with three filters.
class SublayerDestroy : public SublayerFixture {
 protected:
  void SetUp() override {
    SublayerFixture::SetUp();
    Apply(sublayer_);
    EngineEmulator::ClearJournal();
  }

  Sublayer sublayer_ = Samples::ThreeFilters();
};

TEST_F(SublayerDestroy, DeletesTheFiltersThenTheSublayer) {
  sublayer_.Destroy(Session());
  EXPECT_THAT(TakeCalls(),
              ElementsAre("FwpmSubLayerGetByKey0", "FwpmFreeMemory0", "FwpmFilterDeleteById0",
                          "FwpmFilterDeleteById0", "FwpmFilterDeleteById0", "FwpmSubLayerDeleteByKey0"));
  EXPECT_THAT(TakeSnapshot().filters, IsEmpty());
  EXPECT_THAT(TakeSnapshot().sublayers, IsEmpty());
}

TEST_F(SublayerDestroy, DeletesTheFiltersInTheOrderOfTheirIds) {
  FailCall("FwpmFilterDeleteById0", 2, 5);
  EXPECT_THAT([&] { sublayer_.Destroy(Session()); }, FailsWith("Failed to remove provider.", kInUse));
  EXPECT_THAT(FilterTexts(),
              ElementsAre("ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT EQUAL UINT16 2"));
}

TEST_F(SublayerDestroy, OfASublayerThatTheEngineDoesNotHaveOnlyLooks) {
  Sublayer absent = Samples::ThreeFilters(Samples::kSecondKey);
  absent.Destroy(Session());
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmSubLayerGetByKey0"));
}

TEST_F(SublayerDestroy, KeepsItsIdsWhenTheSublayerIsNotFound) {
  FailCall("FwpmSubLayerGetByKey0", 1, 0x80320007);
  sublayer_.Destroy(Session());
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmSubLayerGetByKey0"));
  sublayer_.Destroy(Session());
  EXPECT_THAT(FilterTexts(), IsEmpty());
}

TEST_F(SublayerDestroy, WithoutASessionOnlyLooks) {
  sublayer_.Destroy(nullptr);
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmSubLayerGetByKey0"));
  EXPECT_THAT(FilterTexts(), SizeIs(3));
}

TEST_F(SublayerDestroy, IgnoresFiltersThatCannotBeDeleted) {
  const auto filters = TakeSnapshot().filters;
  ASSERT_THAT(filters, SizeIs(3));
  ASSERT_EQ(FwpmFilterDeleteById0(Session(), filters[1].id), DWORD{ERROR_SUCCESS});
  TakeCalls();
  sublayer_.Destroy(Session());
  EXPECT_THAT(TakeCalls(),
              ElementsAre("FwpmSubLayerGetByKey0", "FwpmFreeMemory0", "FwpmFilterDeleteById0",
                          "FwpmFilterDeleteById0", "FwpmFilterDeleteById0", "FwpmSubLayerDeleteByKey0"));
  EXPECT_THAT(TakeSnapshot().sublayers, IsEmpty());
}

TEST_F(SublayerDestroy, ForgetsItsIds) {
  FailCall("FwpmSubLayerDeleteByKey0", 1, 5);
  EXPECT_THAT([&] { sublayer_.Destroy(Session()); }, FailsWith("Failed to remove provider.", 5));
  TakeCalls();
  sublayer_.Destroy(Session());
  EXPECT_THAT(TakeCalls(),
              ElementsAre("FwpmSubLayerGetByKey0", "FwpmFreeMemory0", "FwpmSubLayerDeleteByKey0"));
}

TEST_F(SublayerDestroy, FailureToDeleteTheSublayerCarriesTheEnginesCode) {
  for (const DWORD code : {DWORD{5}, DWORD{1753}, DWORD{0x8032000C}}) {
    FailCall("FwpmSubLayerDeleteByKey0", 1, code);
    EXPECT_THAT([&] { sublayer_.Destroy(Session()); }, FailsWith("Failed to remove provider.", code));
  }
}

TEST_F(SublayerDestroy, ToleratesTheProvidersNotFoundCode) {
  FailCall("FwpmSubLayerDeleteByKey0", 1, 0x80320005);
  EXPECT_NO_THROW(sublayer_.Destroy(Session()));
}

TEST_F(SublayerDestroy, DoesNotTolerateTheSublayersOwnNotFoundCode) {
  FailCall("FwpmSubLayerDeleteByKey0", 1, 0x80320007);
  EXPECT_THAT([&] { sublayer_.Destroy(Session()); }, FailsWith("Failed to remove provider.", 0x80320007));
}

TEST_F(SublayerDestroy, FailsWhileOthersHaveFiltersInTheSublayer) {
  Sublayer sameKey = Samples::ThreeFilters();
  EXPECT_THAT([&] { sameKey.Destroy(Session()); }, FailsWith("Failed to remove provider.", kInUse));
  EXPECT_THAT(FilterTexts(), SizeIs(3));
}

TEST_F(SublayerDestroy, CopyTakesTheIdsAlong) {
  std::optional<Sublayer> copy = sublayer_;
  copy->Destroy(Session());
  EXPECT_THAT(FilterTexts(), IsEmpty());
  EXPECT_THAT(TakeSnapshot().sublayers, IsEmpty());
}

TEST_F(SublayerDestroy, EndOfTheObjectLeavesTheEngineAlone) {
  { const Sublayer moved = std::move(sublayer_); }
  EXPECT_THAT(TakeCalls(), IsEmpty());
  EXPECT_THAT(FilterTexts(), SizeIs(3));
}

TEST_F(SublayerDestroy, CanBeAppliedAgain) {
  sublayer_.Destroy(Session());
  Apply(sublayer_);
  EXPECT_THAT(FilterTexts(), SizeIs(3));
  sublayer_.Destroy(Session());
  EXPECT_THAT(FilterTexts(), IsEmpty());
}

}  // namespace
}  // namespace WfpFirewall
