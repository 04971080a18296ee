#include "emulator/Switches.h"

#include <gmock/gmock.h>

#include <vector>

#include "emulator/ControlExports.h"

#include "EngineClient.h"

namespace {

using Switches = EngineTest;

TEST_F(Switches, AreSetByName) {
  const TestSession session;
  wchar_t empty[] = L"";
  FWPM_SUBLAYER0 sublayer = SublayerRecord();
  sublayer.displayData.name = empty;
  EXPECT_EQ(EngineEmulatorSetRule("refuseEmptyNames", 1), 1);
  EXPECT_EQ(Add(session, sublayer), kNullDisplayName);
  EXPECT_EQ(EngineEmulatorSetRule("refuseEmptyNames", 0), 1);
  EXPECT_EQ(Add(session, sublayer), kSuccess);
  EXPECT_EQ(EngineEmulatorSetRule("refuseNonsense", 1), 0);
}

TEST_F(Switches, AreBackToTheirDefaultsAfterAReset) {
  EngineEmulatorSetRule("invalidHandleCode", 1775);
  EXPECT_EQ(FwpmEngineClose0(nullptr), 1775U);
  EngineEmulator::Reset();
  EXPECT_EQ(FwpmEngineClose0(nullptr), kInvalidHandle);
}

TEST_F(Switches, AreLenientAllAtOnce) {
  const TestSession session;
  FWPM_FILTER0 filter = FilterRecord();
  GUID reserved{};
  filter.reserved = &reserved;
  filter.flags = 0x8000;
  EXPECT_NE(Add(session, filter), kSuccess);
  EXPECT_EQ(EngineEmulatorSetRule("lenient", 1), 1);
  EXPECT_EQ(Add(session, filter), kSuccess);
  EXPECT_EQ(EngineEmulatorSetRule("lenient", 0), 1);
  filter.filterKey = kOtherFilterKey;
  EXPECT_EQ(Add(session, filter), 0x80320029U);
}

TEST_F(Switches, KeepWhatIsDocumentedWhenLenient) {
  EngineEmulatorSetRule("lenient", 1);
  const TestSession session;
  FWPM_FILTER0 filter = FilterRecord();
  filter.weight.uint8 = 16;
  EXPECT_EQ(Add(session, filter), 0x80320025U);
}

TEST_F(Switches, CanKeepATransactionOpenThroughAFailedCommit) {
  const TestSession session;
  EngineEmulatorSetRule("failedCommitEndsTransaction", 0);
  FwpmTransactionBegin0(session, 0);
  ASSERT_EQ(Add(session, SublayerRecord()), kSuccess);
  EngineEmulator::FailCall("FwpmTransactionCommit0", 1, 5);
  EXPECT_EQ(FwpmTransactionCommit0(session), 5U);
  EXPECT_EQ(FwpmTransactionCommit0(session), kSuccess);
  EXPECT_EQ(EngineEmulator::TakeSnapshot().sublayers.size(), 1U);
}

TEST_F(Switches, LetAFailedCommitEndTheTransaction) {
  const TestSession session;
  FwpmTransactionBegin0(session, 0);
  ASSERT_EQ(Add(session, SublayerRecord()), kSuccess);
  EngineEmulator::FailCall("FwpmTransactionCommit0", 1, 5);
  EXPECT_EQ(FwpmTransactionCommit0(session), 5U);
  EXPECT_EQ(FwpmTransactionAbort0(session), kNoTransactionInProgress);
  EXPECT_TRUE(EngineEmulator::TakeSnapshot().sublayers.empty());
}

TEST_F(Switches, CanLetAStaticSessionDeleteDynamicObjects) {
  const TestSession session;
  const TestSession dynamic(kDynamic);
  ASSERT_EQ(Add(dynamic, SublayerRecord()), kSuccess);
  EngineEmulatorSetRule("refuseDeletingOthersDynamic", 0);
  EXPECT_EQ(FwpmSubLayerDeleteByKey0(session, &kSublayerKey), kSuccess);
}

TEST_F(Switches, CanLetATemplateGoWithoutALayer) {
  const TestSession session;
  ASSERT_EQ(Add(session, FilterRecord()), kSuccess);
  FWPM_FILTER_ENUM_TEMPLATE0 criteria{};
  criteria.actionMask = 0xFFFFFFFF;
  HANDLE enumHandle = nullptr;
  EXPECT_EQ(FwpmFilterCreateEnumHandle0(session, &criteria, &enumHandle), kLayerNotFound);
  EngineEmulatorSetRule("refuseZeroLayerInTemplate", 0);
  ASSERT_EQ(FwpmFilterCreateEnumHandle0(session, &criteria, &enumHandle), kSuccess);
  FWPM_FILTER0** filters = nullptr;
  UINT32 count = 0;
  EXPECT_EQ(FwpmFilterEnum0(session, enumHandle, 10, &filters, &count), kSuccess);
  EXPECT_EQ(count, 1U);
  Free(filters);
  FwpmFilterDestroyEnumHandle0(session, enumHandle);
}

/// The weights of all filters at a layer, in the order of an enumeration.
std::vector<UINT8> WeightsInOrder(HANDLE session, UINT32 flags) {
  FWPM_FILTER_ENUM_TEMPLATE0 criteria{};
  criteria.layerKey = kConnectV4;
  criteria.actionMask = 0xFFFFFFFF;
  criteria.flags = flags;
  HANDLE enumHandle = nullptr;
  FWPM_FILTER0** filters = nullptr;
  UINT32 count = 0;
  EXPECT_EQ(FwpmFilterCreateEnumHandle0(session, &criteria, &enumHandle), kSuccess);
  EXPECT_EQ(FwpmFilterEnum0(session, enumHandle, 100, &filters, &count), kSuccess);
  std::vector<UINT8> weights;
  for (UINT32 index = 0; index < count; ++index) {
    weights.push_back(filters[index]->weight.uint8);
  }
  Free(filters);
  FwpmFilterDestroyEnumHandle0(session, enumHandle);
  return weights;
}

TEST_F(Switches, CanShuffleWhatAsksForNoOrder) {
  constexpr UINT32 kSorted = 2;
  const TestSession session;
  std::vector<UINT8> ascending;
  for (UINT8 weight = 0; weight < 15; ++weight) {
    FWPM_FILTER0 filter = FilterRecord(GUID{});
    filter.weight.uint8 = weight;
    ASSERT_EQ(Add(session, filter), kSuccess);
    ascending.push_back(weight);
  }
  const std::vector<UINT8> descending(ascending.rbegin(), ascending.rend());
  EXPECT_EQ(WeightsInOrder(session, 0), ascending);
  EXPECT_EQ(WeightsInOrder(session, kSorted), descending);
  EngineEmulatorSetRule("shuffleEnumerations", 1);
  const std::vector<UINT8> shuffled = WeightsInOrder(session, 0);
  EXPECT_NE(shuffled, ascending);
  EXPECT_NE(shuffled, descending);
  EXPECT_THAT(shuffled, testing::UnorderedElementsAreArray(ascending));
  EXPECT_EQ(WeightsInOrder(session, kSorted), descending);
}

TEST_F(Switches, CanRefuseVerdictsWhereFlowsAreEstablished) {
  const TestSession session;
  FWPM_FILTER0 filter = FilterRecord();
  filter.layerKey = kFlowEstablishedV4;
  EngineEmulatorSetRule("refuseVerdictsAtFlowEstablished", 1);
  EXPECT_EQ(Add(session, filter), 0x8032002CU);
  EngineEmulatorSetRule("refuseVerdictsAtFlowEstablished", 0);
  EXPECT_EQ(Add(session, filter), kSuccess);
}

UINT32 CountFields(HANDLE session, const GUID& key) {
  FWPM_LAYER0* layer = nullptr;
  EXPECT_EQ(FwpmLayerGetByKey0(session, &key, &layer), kSuccess);
  const UINT32 count = layer->numFields;
  Free(layer);
  return count;
}

TEST_F(Switches, GiveTheLayersOfAVersionOfWindows) {
  const TestSession session;
  EXPECT_EQ(CountFields(session, kConnectV4), 42U);
  EngineEmulatorSetRule("windowsBuild", 22631);
  EXPECT_EQ(CountFields(session, kConnectV4), 37U);
  EngineEmulatorSetRule("windowsBuild", 19045);
  EXPECT_EQ(CountFields(session, kConnectV4), 41U);
}

TEST_F(Switches, RefuseFieldsThatTheVersionOfWindowsLacks) {
  const TestSession session;
  UINT8 bytes[20]{1, 0, 0, 0x80};
  FWP_BYTE_BLOB descriptor{sizeof(bytes), bytes};
  FWPM_FILTER_CONDITION0 condition{};
  condition.fieldKey = {0x81bc78fb, 0xf28d, 0x4886, {0xa6, 0x04, 0x6a, 0xcc, 0x26, 0x1f, 0x26, 0x1b}};
  condition.conditionValue.type = FWP_SECURITY_DESCRIPTOR_TYPE;
  condition.conditionValue.sd = &descriptor;
  FWPM_FILTER0 filter = FilterRecord();
  filter.numFilterConditions = 1;
  filter.filterCondition = &condition;
  EngineEmulatorSetRule("windowsBuild", 22000);
  EXPECT_EQ(Add(session, filter), 0x80320002U);
  EngineEmulatorSetRule("windowsBuild", 26100);
  EXPECT_EQ(Add(session, filter), kSuccess);
}

}  // namespace
