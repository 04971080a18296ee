#include "EngineClient.h"

namespace {

/// Each test spoils one thing in a filter that the engine would accept.
class FilterChecks : public EngineTest {
 protected:
  [[nodiscard]] DWORD Check() const {
    const TestSession session;
    return Add(session, filter_);
  }

  /// Gives the filter one condition, a remote port of 53.
  void AddPort() {
    condition_.fieldKey = kRemotePort;
    condition_.matchType = FWP_MATCH_EQUAL;
    condition_.conditionValue.type = FWP_UINT16;
    condition_.conditionValue.uint16 = 53;
    filter_.numFilterConditions = 1;
    filter_.filterCondition = &condition_;
  }

  FWPM_FILTER0 filter_ = FilterRecord();
  FWPM_FILTER_CONDITION0 condition_{};
};

TEST_F(FilterChecks, PassASoundFilter) {
  AddPort();
  EXPECT_EQ(Check(), kSuccess);
}

TEST_F(FilterChecks, LeaveNoTraceOfARefusedFilter) {
  filter_.weight.uint8 = 16;
  EXPECT_NE(Check(), kSuccess);
  EXPECT_TRUE(EngineEmulator::TakeSnapshot().filters.empty());
}

TEST_F(FilterChecks, DemandARecord) {
  const TestSession session;
  EXPECT_EQ(FwpmFilterAdd0(session, nullptr, nullptr, nullptr), kNullPointer);
}

TEST_F(FilterChecks, DemandAName) {
  filter_.displayData.name = nullptr;
  EXPECT_EQ(Check(), kNullDisplayName);
}

TEST_F(FilterChecks, DemandALayerThatExists) {
  filter_.layerKey = kFilterKey;
  EXPECT_EQ(Check(), kLayerNotFound);
  filter_.layerKey = GUID{};
  EXPECT_EQ(Check(), kLayerNotFound);
}

TEST_F(FilterChecks, DemandASublayerThatExists) {
  filter_.subLayerKey = kSublayerKey;
  EXPECT_EQ(Check(), kSublayerNotFound);
}

TEST_F(FilterChecks, DemandAProviderThatExists) {
  GUID providerKey = kProviderKey;
  filter_.providerKey = &providerKey;
  EXPECT_EQ(Check(), kProviderNotFound);
}

TEST_F(FilterChecks, TakeAWeightRangeUpToFifteen) {
  filter_.weight.uint8 = 16;
  EXPECT_EQ(Check(), 0x80320025U);
  filter_.weight.uint8 = 15;
  EXPECT_EQ(Check(), kSuccess);
}

TEST_F(FilterChecks, TakeAWeightLeftToTheEngine) {
  filter_.weight.type = FWP_EMPTY;
  EXPECT_EQ(Check(), kSuccess);
}

TEST_F(FilterChecks, RefuseBootTimeAtALayerOfUserMode) {
  const TestSession session;
  FWPM_FILTER0 filter = FilterRecord();
  filter.flags = FWPM_FILTER_FLAG_BOOTTIME;
  filter.layerKey = {
      0xb14b7bdb, 0xdbbd, 0x473e, {0xbe, 0xd4, 0x8b, 0x47, 0x08, 0xd4, 0xf2, 0x70}};  // IKEEXT_V4
  EXPECT_EQ(Add(session, filter), 0x80320014U);
  filter.layerKey = kConnectV4;
  EXPECT_EQ(Add(session, filter), kSuccess);
}

TEST_F(FilterChecks, RefuseAWeightOfAnotherType) {
  filter_.weight.type = FWP_UINT32;
  EXPECT_EQ(Check(), 0x80320025U);
  filter_.weight.type = FWP_UINT16;
  EXPECT_EQ(Check(), 0x80320025U);
}

TEST_F(FilterChecks, DemandTheWeightThatTheTypePromises) {
  filter_.weight.type = FWP_UINT64;
  filter_.weight.uint64 = nullptr;
  EXPECT_EQ(Check(), kNullPointer);
}

TEST_F(FilterChecks, RefuseActionsThatAreNotOfFilters) {
  for (const FWP_ACTION_TYPE action : {0x2006U, 7U, 8U, 0U, 0x1003U}) {
    filter_.action.type = action;
    EXPECT_EQ(Check(), 0x80320024U) << action;
  }
}

TEST_F(FilterChecks, DemandTheCalloutOfTheAction) {
  for (const FWP_ACTION_TYPE action : {0x5003U, 0x6004U, 0x4005U}) {
    filter_.action.type = action;
    EXPECT_EQ(Check(), 0x80320001U) << action;
  }
}

TEST_F(FilterChecks, DemandTheProviderContextOfTheFlag) {
  filter_.flags = 4;
  EXPECT_EQ(Check(), 0x80320006U);
}

TEST_F(FilterChecks, RefuseAVerdictInTheInspectionSublayer) {
  filter_.subLayerKey = {0x877519e1, 0xe6a9, 0x41a5, {0x81, 0xb4, 0x8c, 0x4f, 0x11, 0x8e, 0x4a, 0x60}};
  EXPECT_EQ(Check(), 0x8032002DU);
}

TEST_F(FilterChecks, RefuseFlagsThatContradictEachOther) {
  filter_.flags = 0x3;
  EXPECT_EQ(Check(), kInvalidFlags);
}

TEST_F(FilterChecks, RefuseTheFlagOfDisabledFilters) {
  filter_.flags = 0x20;
  EXPECT_EQ(Check(), kInvalidFlags);
}

TEST_F(FilterChecks, RefuseFlagsWithoutAMeaningUnlessToldOtherwise) {
  filter_.flags = 0x8000;
  EXPECT_EQ(Check(), kInvalidFlags);
  EngineEmulator::SetSwitches(EngineEmulator::LenientSwitches());
  EXPECT_EQ(Check(), kSuccess);
}

TEST_F(FilterChecks, RefuseTheFlagForMissingCalloutsWithoutACallout) {
  filter_.flags = 0x10;
  EXPECT_EQ(Check(), kInvalidFlags);
}

TEST_F(FilterChecks, DemandTheReservedPointerNull) {
  GUID reserved{};
  filter_.reserved = &reserved;
  EXPECT_EQ(Check(), 0x80320029U);
}

TEST_F(FilterChecks, DemandConditionsForTheirCount) {
  filter_.numFilterConditions = 1;
  filter_.filterCondition = nullptr;
  EXPECT_EQ(Check(), kNullPointer);
}

TEST_F(FilterChecks, IgnoreConditionsBeyondTheCount) {
  AddPort();
  condition_.matchType = static_cast<FWP_MATCH_TYPE>(15);
  filter_.numFilterConditions = 0;
  EXPECT_EQ(Check(), kSuccess);
}

TEST_F(FilterChecks, RefuseUnknownMatchTypes) {
  AddPort();
  condition_.matchType = static_cast<FWP_MATCH_TYPE>(13);
  EXPECT_EQ(Check(), kInvalidEnumerator);
}

TEST_F(FilterChecks, RefuseUnknownDataTypes) {
  AddPort();
  for (const int type : {0x70, 0x103}) {
    condition_.conditionValue.type = static_cast<FWP_DATA_TYPE>(type);
    EXPECT_EQ(Check(), kInvalidEnumerator) << type;
  }
}

TEST_F(FilterChecks, DemandTheDataThatTheTypePromises) {
  AddPort();
  condition_.conditionValue.uint64 = nullptr;
  for (const FWP_DATA_TYPE type :
       {FWP_UINT64, FWP_INT64, FWP_DOUBLE, FWP_BYTE_ARRAY16_TYPE, FWP_BYTE_BLOB_TYPE, FWP_SID,
        FWP_SECURITY_DESCRIPTOR_TYPE, FWP_TOKEN_INFORMATION_TYPE, FWP_TOKEN_ACCESS_INFORMATION_TYPE,
        FWP_UNICODE_STRING_TYPE, FWP_BYTE_ARRAY6_TYPE, FWP_V4_ADDR_MASK, FWP_V6_ADDR_MASK, FWP_RANGE_TYPE}) {
    condition_.conditionValue.type = type;
    EXPECT_EQ(Check(), kNullPointer) << type;
  }
}

TEST_F(FilterChecks, DemandTheBytesOfABlob) {
  AddPort();
  FWP_BYTE_BLOB blob{4, nullptr};
  condition_.conditionValue.type = FWP_BYTE_BLOB_TYPE;
  condition_.conditionValue.byteBlob = &blob;
  EXPECT_EQ(Check(), kNullPointer);
}

TEST_F(FilterChecks, DemandRangesOfOneType) {
  AddPort();
  FWP_RANGE0 range{};
  range.valueLow.type = FWP_UINT16;
  range.valueHigh.type = FWP_UINT32;
  condition_.matchType = FWP_MATCH_RANGE;
  condition_.conditionValue.type = FWP_RANGE_TYPE;
  condition_.conditionValue.rangeValue = &range;
  EXPECT_EQ(Check(), 0x80320020U);
}

TEST_F(FilterChecks, DemandTheEndsOfARange) {
  AddPort();
  FWP_RANGE0 range{};
  range.valueLow.type = range.valueHigh.type = FWP_UINT64;
  condition_.matchType = FWP_MATCH_RANGE;
  condition_.conditionValue.type = FWP_RANGE_TYPE;
  condition_.conditionValue.rangeValue = &range;
  EXPECT_EQ(Check(), kNullPointer);
}

}  // namespace
