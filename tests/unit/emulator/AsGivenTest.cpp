#include <limits>

#include "emulator/ControlExports.h"

#include "EngineClient.h"

namespace {

/// An engine that keeps what objects come with.
class AsGiven : public EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    ASSERT_EQ(EngineEmulatorSetRule("keepAsGiven", 1), 1);
  }

  /// @return the id that it got.
  static UINT64 AddFilter(HANDLE session, UINT64 id) {
    FWPM_FILTER0 filter = FilterRecord(GUID{});
    filter.filterId = id;
    UINT64 got = 0;
    EXPECT_EQ(FwpmFilterAdd0(session, &filter, nullptr, &got), kSuccess);
    return got;
  }

  static void AddFilter(HANDLE session, UINT64 id, const GUID& key) {
    FWPM_FILTER0 filter = FilterRecord(key);
    filter.filterId = id;
    EXPECT_EQ(FwpmFilterAdd0(session, &filter, nullptr, nullptr), kSuccess);
  }

  /// The id of the filter with this key; 0 if there is none.
  static UINT64 IdOf(HANDLE session, const GUID& key) {
    FWPM_FILTER0* found = nullptr;
    if (FwpmFilterGetByKey0(session, &key, &found) != kSuccess) {
      return 0;
    }
    const UINT64 id = found->filterId;
    Free(found);
    return id;
  }

  static UINT32 AddCallout(HANDLE session, UINT32 id, const GUID& key) {
    FWPM_CALLOUT0 callout = CalloutRecord(kConnectV4);
    callout.calloutKey = key;
    callout.calloutId = id;
    UINT32 got = 0;
    EXPECT_EQ(FwpmCalloutAdd0(session, &callout, nullptr, &got), kSuccess);
    return got;
  }
};

TEST_F(AsGiven, FiltersKeepFlagsAndWeight) {
  constexpr UINT32 kFlags = 0x8060;  // DISABLED, INDEXED and one without a name
  const TestSession session;
  UINT64 weight = 4711;
  FWPM_FILTER0 filter = FilterRecord();
  filter.flags = kFlags;
  filter.effectiveWeight.type = FWP_UINT64;
  filter.effectiveWeight.uint64 = &weight;
  ASSERT_EQ(Add(session, filter), kSuccess);
  FWPM_FILTER0* found = nullptr;
  ASSERT_EQ(FwpmFilterGetByKey0(session, &kFilterKey, &found), kSuccess);
  EXPECT_EQ(found->flags, kFlags);
  EXPECT_EQ(*found->effectiveWeight.uint64, 4711U);
  Free(found);
}

TEST_F(AsGiven, AFilterWithoutAWeightGetsOne) {
  const TestSession session;
  ASSERT_EQ(Add(session, FilterRecord()), kSuccess);
  FWPM_FILTER0* found = nullptr;
  ASSERT_EQ(FwpmFilterGetByKey0(session, &kFilterKey, &found), kSuccess);
  EXPECT_EQ(*found->effectiveWeight.uint64, 0xE000000000000000U);
  Free(found);
}

TEST_F(AsGiven, ProvidersAndCalloutsKeepTheirFlags) {
  constexpr UINT32 kRegistered = 0x40000;
  const TestSession session;
  FWPM_PROVIDER0 provider = ProviderRecord();
  provider.flags = FWPM_PROVIDER_FLAG_DISABLED;
  ASSERT_EQ(Add(session, provider), kSuccess);
  FWPM_CALLOUT0 callout = CalloutRecord(kConnectV4);
  callout.flags = kRegistered;
  ASSERT_EQ(FwpmCalloutAdd0(session, &callout, nullptr, nullptr), kSuccess);
  FWPM_PROVIDER0* foundProvider = nullptr;
  ASSERT_EQ(FwpmProviderGetByKey0(session, &kProviderKey, &foundProvider), kSuccess);
  EXPECT_EQ(foundProvider->flags, 0x10U);
  Free(foundProvider);
  FWPM_CALLOUT0* foundCallout = nullptr;
  ASSERT_EQ(FwpmCalloutGetByKey0(session, &kCalloutKey, &foundCallout), kSuccess);
  EXPECT_EQ(foundCallout->flags, kRegistered);
  Free(foundCallout);
}

TEST_F(AsGiven, FiltersKeepTheirIdsAndLaterOnesGetHigherOnes) {
  const TestSession session;
  EXPECT_EQ(AddFilter(session, 70001), 70001U);
  EXPECT_EQ(AddFilter(session, 0x2'0000'0000), 0x2'0000'0000U);
  EXPECT_EQ(AddFilter(session, 70002), 70002U);
  EXPECT_EQ(AddFilter(session, 0), 0x2'0000'0001U);
}

TEST_F(AsGiven, AnIdThatIsTakenOrLeavesNoRoomIsNotKept) {
  const TestSession session;
  EXPECT_EQ(AddFilter(session, 70001), 70001U);
  EXPECT_EQ(AddFilter(session, 70001), 0x1'0000'0001U);
  EXPECT_EQ(AddFilter(session, std::numeric_limits<UINT64>::max()), 0x1'0000'0002U);
}

TEST_F(AsGiven, InATransactionAKeyCanPassToALowerId) {
  const TestSession session;
  AddFilter(session, 70002, kFilterKey);
  ASSERT_EQ(FwpmTransactionBegin0(session, 0), kSuccess);
  ASSERT_EQ(FwpmFilterDeleteById0(session, 70002), kSuccess);
  EXPECT_EQ(IdOf(session, kFilterKey), 0U);
  AddFilter(session, 70001, kFilterKey);
  EXPECT_EQ(IdOf(session, kFilterKey), 70001U);
  ASSERT_EQ(FwpmTransactionCommit0(session), kSuccess);
  EXPECT_EQ(IdOf(session, kFilterKey), 70001U);
  EXPECT_EQ(FwpmFilterDeleteByKey0(session, &kFilterKey), kSuccess);
  EXPECT_EQ(IdOf(session, kFilterKey), 0U);
}

TEST_F(AsGiven, InATransactionAnIdCanPassToAnotherKey) {
  constexpr GUID kOtherKey{0x0c000002, 0, 0, {}};
  const TestSession session;
  AddFilter(session, 70001, kFilterKey);
  ASSERT_EQ(FwpmTransactionBegin0(session, 0), kSuccess);
  ASSERT_EQ(FwpmFilterDeleteByKey0(session, &kFilterKey), kSuccess);
  AddFilter(session, 70001, kOtherKey);
  EXPECT_EQ(IdOf(session, kFilterKey), 0U);
  EXPECT_EQ(IdOf(session, kOtherKey), 70001U);
  ASSERT_EQ(FwpmTransactionCommit0(session), kSuccess);
  EXPECT_EQ(IdOf(session, kFilterKey), 0U);
  EXPECT_EQ(IdOf(session, kOtherKey), 70001U);
}

TEST_F(AsGiven, CalloutsKeepTheirIds) {
  const TestSession session;
  EXPECT_EQ(AddCallout(session, 5000, GUID{1, 0, 0, {}}), 5000U);
  EXPECT_EQ(AddCallout(session, 0, GUID{2, 0, 0, {}}), 5001U);
  EXPECT_EQ(AddCallout(session, 0xFFFFFFFF, GUID{3, 0, 0, {}}), 5002U);
}

TEST_F(AsGiven, WhatAnObjectRefersToMustBeThere) {
  const TestSession session;
  FWPM_FILTER0 filter = FilterRecord();
  filter.subLayerKey = kSublayerKey;
  EXPECT_EQ(Add(session, filter), kSublayerNotFound);
}

}  // namespace
