#include "EngineClient.h"

namespace {

using Sublayer = EngineTest;

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

TEST_F(Sublayer, WeightNeedNotBeUnique) {
  const TestSession session;
  FWPM_SUBLAYER0 first = SublayerRecord(kSublayerKey);
  FWPM_SUBLAYER0 second = SublayerRecord(kOtherSublayerKey);
  first.weight = second.weight = 5;
  EXPECT_EQ(Add(session, first), kSuccess);
  EXPECT_EQ(Add(session, second), kSuccess);
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
