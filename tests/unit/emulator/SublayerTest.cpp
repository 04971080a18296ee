#include "EngineClient.h"

namespace {

constexpr GUID Key(UINT32 number) { return {number, 0, 0, {}}; }

class Sublayer : public EngineTest {
 protected:
  /// Adds a sublayer. The weight that it reads back.
  static int AddWeighing(HANDLE session, const GUID& key, UINT16 weight) {
    FWPM_SUBLAYER0 record = SublayerRecord(key);
    record.weight = weight;
    EXPECT_EQ(Add(session, record), kSuccess);
    FWPM_SUBLAYER0* found = nullptr;
    EXPECT_EQ(FwpmSubLayerGetByKey0(session, &key, &found), kSuccess);
    const int assigned = found->weight;
    Free(found);
    return assigned;
  }
};

TEST_F(Sublayer, ComesBackAsItWasAdded) {
  const TestSession session;
  wchar_t name[] = L"Tarn";
  GUID providerKey = kProviderKey;
  UINT8 data[]{7};
  FWPM_SUBLAYER0 record = SublayerRecord();
  record.displayData.name = name;
  record.providerKey = &providerKey;
  record.providerData = {1, data};
  record.weight = 0xFFFE;
  ASSERT_EQ(Add(session, ProviderRecord()), kSuccess);
  ASSERT_EQ(Add(session, record), kSuccess);
  name[0] = L'?';
  providerKey = GUID{};
  data[0] = 9;

  FWPM_SUBLAYER0* found = nullptr;
  ASSERT_EQ(FwpmSubLayerGetByKey0(session, &kSublayerKey, &found), kSuccess);
  EXPECT_TRUE(found->subLayerKey == kSublayerKey);
  EXPECT_STREQ(found->displayData.name, L"Tarn");
  EXPECT_STREQ(found->displayData.description, L"Description");
  EXPECT_TRUE(*found->providerKey == kProviderKey);
  EXPECT_EQ(found->weight, 0xFFFE);
  EXPECT_EQ(found->flags, 0);
  ASSERT_EQ(found->providerData.size, 1U);
  EXPECT_EQ(found->providerData.data[0], 7);
  Free(found);
}

TEST_F(Sublayer, NeedsAName) {
  const TestSession session;
  FWPM_SUBLAYER0 record = SublayerRecord();
  record.displayData.name = nullptr;
  EXPECT_EQ(Add(session, record), kNullDisplayName);
}

TEST_F(Sublayer, NeedsItsProvider) {
  const TestSession session;
  GUID providerKey = kProviderKey;
  FWPM_SUBLAYER0 record = SublayerRecord();
  record.providerKey = &providerKey;
  EXPECT_EQ(Add(session, record), kProviderNotFound);
}

TEST_F(Sublayer, IsRefusedWithUnknownFlags) {
  const TestSession session;
  FWPM_SUBLAYER0 record = SublayerRecord();
  record.flags = 2;
  EXPECT_EQ(Add(session, record), kInvalidFlags);
}

TEST_F(Sublayer, KeyIsUnique) {
  const TestSession session;
  ASSERT_EQ(Add(session, SublayerRecord()), kSuccess);
  EXPECT_EQ(Add(session, SublayerRecord()), kAlreadyExists);
}

TEST_F(Sublayer, HasTheWeightThatItAsksForIfThatIsFree) {
  const TestSession session;
  EXPECT_EQ(AddWeighing(session, kSublayerKey, 5000), 5000);
  EXPECT_EQ(AddWeighing(session, kOtherSublayerKey, 5001), 5001);
}

// 0 to 7 and 32767 to 32768 are built-in sublayers'.
TEST_F(Sublayer, HasTheNearestFreeWeightTheHigherOfTwo) {
  const TestSession session;
  EXPECT_EQ(AddWeighing(session, Key(1), 0), 8);
  EXPECT_EQ(AddWeighing(session, Key(2), 0), 9);
  EXPECT_EQ(AddWeighing(session, Key(3), 7), 10);
  EXPECT_EQ(AddWeighing(session, Key(4), 32767), 32766);
  EXPECT_EQ(AddWeighing(session, Key(5), 32767), 32769);
  EXPECT_EQ(AddWeighing(session, Key(6), 32767), 32765);
  EXPECT_EQ(AddWeighing(session, Key(7), 40960), 40961);
  EXPECT_EQ(AddWeighing(session, Key(8), 40960), 40959);
}

TEST_F(Sublayer, ThatAsksForTheHighestWeightGoesBelowTheOthersThatDid) {
  const TestSession session;
  EXPECT_EQ(AddWeighing(session, Key(1), 65535), 65535);
  EXPECT_EQ(AddWeighing(session, Key(2), 65535), 65534);
  EXPECT_EQ(AddWeighing(session, Key(3), 65535), 65533);
}

TEST_F(Sublayer, WeightIsFreeAgainWhenItIsDeleted) {
  const TestSession session;
  ASSERT_EQ(AddWeighing(session, kSublayerKey, 0), 8);
  ASSERT_EQ(AddWeighing(session, Key(2), 0), 9);
  ASSERT_EQ(FwpmSubLayerDeleteByKey0(session, &kSublayerKey), kSuccess);
  EXPECT_EQ(AddWeighing(session, Key(3), 0), 8);
}

TEST_F(Sublayer, WeightIsFreeAgainWhenTheTransactionIsAborted) {
  const TestSession session;
  ASSERT_EQ(FwpmTransactionBegin0(session, 0), kSuccess);
  ASSERT_EQ(AddWeighing(session, Key(1), 0), 8);
  EXPECT_EQ(AddWeighing(session, Key(2), 0), 9);
  ASSERT_EQ(FwpmTransactionAbort0(session), kSuccess);
  EXPECT_EQ(AddWeighing(session, Key(3), 0), 8);
}

TEST_F(Sublayer, WeightStaysTakenAfterTheCommit) {
  const TestSession session;
  ASSERT_EQ(AddWeighing(session, kSublayerKey, 0), 8);
  ASSERT_EQ(FwpmTransactionBegin0(session, 0), kSuccess);
  ASSERT_EQ(AddWeighing(session, Key(2), 0), 9);
  ASSERT_EQ(FwpmSubLayerDeleteByKey0(session, &kSublayerKey), kSuccess);
  ASSERT_EQ(FwpmTransactionCommit0(session), kSuccess);
  EXPECT_EQ(AddWeighing(session, Key(3), 0), 8);
  EXPECT_EQ(AddWeighing(session, Key(4), 0), 10);
}

TEST_F(Sublayer, WeightStaysTakenWhenItsDeletionIsAborted) {
  const TestSession session;
  ASSERT_EQ(AddWeighing(session, kSublayerKey, 0), 8);
  ASSERT_EQ(FwpmTransactionBegin0(session, 0), kSuccess);
  ASSERT_EQ(FwpmSubLayerDeleteByKey0(session, &kSublayerKey), kSuccess);
  ASSERT_EQ(FwpmTransactionAbort0(session), kSuccess);
  EXPECT_EQ(AddWeighing(session, Key(2), 0), 9);
}

TEST_F(Sublayer, WeightIsFreeAgainWhenTheDynamicSessionEnds) {
  const TestSession session;
  {
    const TestSession dynamic(kDynamic);
    ASSERT_EQ(AddWeighing(dynamic, Key(1), 0), 8);
    ASSERT_EQ(AddWeighing(session, Key(2), 0), 9);
  }
  EXPECT_EQ(AddWeighing(session, Key(3), 0), 8);
}

TEST_F(Sublayer, KeepsItsWeightOnRequestEvenIfAnotherHasIt) {
  const TestSession session;
  EngineEmulator::Switches switches;
  switches.keepAsGiven = 1;
  EngineEmulator::SetSwitches(switches);
  EXPECT_EQ(AddWeighing(session, Key(1), 0), 0);
  EXPECT_EQ(AddWeighing(session, Key(2), 0), 0);
}

TEST_F(Sublayer, GetsAKeyWhenItHasNone) {
  const TestSession session;
  ASSERT_EQ(Add(session, SublayerRecord(GUID{})), kSuccess);
  EXPECT_FALSE(EngineEmulator::TakeSnapshot().sublayers.at(0).key == GUID{});
}

TEST_F(Sublayer, StaysWhileAFilterIsInIt) {
  const TestSession session;
  FWPM_FILTER0 filter = FilterRecord();
  filter.subLayerKey = kSublayerKey;
  ASSERT_EQ(Add(session, SublayerRecord()), kSuccess);
  ASSERT_EQ(Add(session, filter), kSuccess);
  EXPECT_EQ(FwpmSubLayerDeleteByKey0(session, &kSublayerKey), kInUse);
  ASSERT_EQ(FwpmFilterDeleteByKey0(session, &kFilterKey), kSuccess);
  EXPECT_EQ(FwpmSubLayerDeleteByKey0(session, &kSublayerKey), kSuccess);
  EXPECT_EQ(FwpmSubLayerDeleteByKey0(session, &kSublayerKey), kSublayerNotFound);
}

TEST_F(Sublayer, ThatIsBuiltInIsThereFromTheStartAndStays) {
  const TestSession session;
  FWPM_SUBLAYER0* found = nullptr;
  ASSERT_EQ(FwpmSubLayerGetByKey0(session, &kUniversalSublayer, &found), kSuccess);
  EXPECT_STREQ(found->displayData.name, L"UNIVERSAL");
  Free(found);
  EXPECT_EQ(FwpmSubLayerDeleteByKey0(session, &kUniversalSublayer), kBuiltInObject);
  EXPECT_TRUE(EngineEmulator::TakeSnapshot().sublayers.empty());
}

TEST_F(Sublayer, NullArgumentsAreRefused) {
  const TestSession session;
  FWPM_SUBLAYER0* found = nullptr;
  EXPECT_EQ(FwpmSubLayerAdd0(session, nullptr, nullptr), kNullPointer);
  EXPECT_EQ(FwpmSubLayerDeleteByKey0(session, nullptr), kNullPointer);
  EXPECT_EQ(FwpmSubLayerGetByKey0(session, nullptr, &found), kNullPointer);
  EXPECT_EQ(FwpmSubLayerGetByKey0(session, &kSublayerKey, nullptr), kNullPointer);
}

}  // namespace
