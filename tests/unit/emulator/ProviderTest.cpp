#include "EngineClient.h"

namespace {

using Provider = EngineTest;

TEST_F(Provider, ComesBackAsItWasAdded) {
  const TestSession session;
  wchar_t name[] = L"Tarn";
  wchar_t description[] = L"Filters of Tarn";
  wchar_t service[] = L"tarnsvc";
  UINT8 data[]{1, 2, 3};
  FWPM_PROVIDER0 record{};
  record.providerKey = kProviderKey;
  record.displayData = {name, description};
  record.providerData = {3, data};
  record.serviceName = service;
  ASSERT_EQ(Add(session, record), kSuccess);
  name[0] = description[0] = service[0] = L'?';
  data[0] = 9;

  FWPM_PROVIDER0* found = nullptr;
  ASSERT_EQ(FwpmProviderGetByKey0(session, &kProviderKey, &found), kSuccess);
  EXPECT_TRUE(found->providerKey == kProviderKey);
  EXPECT_STREQ(found->displayData.name, L"Tarn");
  EXPECT_STREQ(found->displayData.description, L"Filters of Tarn");
  EXPECT_STREQ(found->serviceName, L"tarnsvc");
  EXPECT_EQ(found->flags, 0U);
  ASSERT_EQ(found->providerData.size, 3U);
  EXPECT_EQ(found->providerData.data[0], 1);
  EXPECT_EQ(found->providerData.data[2], 3);
  Free(found);
}

TEST_F(Provider, NeedsNeitherDescriptionNorService) {
  const TestSession session;
  FWPM_PROVIDER0 record = ProviderRecord();
  record.displayData.description = nullptr;
  ASSERT_EQ(Add(session, record), kSuccess);
  FWPM_PROVIDER0* found = nullptr;
  ASSERT_EQ(FwpmProviderGetByKey0(session, &kProviderKey, &found), kSuccess);
  EXPECT_EQ(found->displayData.description, nullptr);
  EXPECT_EQ(found->serviceName, nullptr);
  Free(found);
}

TEST_F(Provider, NeedsAName) {
  const TestSession session;
  FWPM_PROVIDER0 record = ProviderRecord();
  record.displayData.name = nullptr;
  EXPECT_EQ(Add(session, record), kNullDisplayName);
}

TEST_F(Provider, MayHaveAnEmptyName) {
  const TestSession session;
  wchar_t empty[] = L"";
  FWPM_PROVIDER0 record = ProviderRecord();
  record.displayData.name = empty;
  EXPECT_EQ(Add(session, record), kSuccess);
}

TEST_F(Provider, TextMustBeUnicode) {
  const TestSession session;
  wchar_t halfAPair[] = L"\xD83D?";
  FWPM_PROVIDER0 record = ProviderRecord();
  record.displayData.name = halfAPair;
  EXPECT_EQ(Add(session, record), kInvalidParameter);
  record = ProviderRecord();
  record.displayData.description = halfAPair;
  EXPECT_EQ(Add(session, record), kInvalidParameter);
  record = ProviderRecord();
  record.serviceName = halfAPair;
  EXPECT_EQ(Add(session, record), kInvalidParameter);
}

TEST_F(Provider, KeyIsUniqueAmongProvidersOnly) {
  const TestSession session;
  ASSERT_EQ(Add(session, ProviderRecord(kProviderKey)), kSuccess);
  EXPECT_EQ(Add(session, ProviderRecord(kProviderKey)), kAlreadyExists);
  EXPECT_EQ(Add(session, SublayerRecord(kProviderKey)), kSuccess);
}

TEST_F(Provider, GetsAKeyWhenItHasNone) {
  const TestSession session;
  ASSERT_EQ(Add(session, ProviderRecord(GUID{})), kSuccess);
  ASSERT_EQ(Add(session, ProviderRecord(GUID{})), kSuccess);
  const auto providers = EngineEmulator::TakeSnapshot().providers;
  ASSERT_EQ(providers.size(), 2U);
  EXPECT_FALSE(providers[0].key == GUID{});
  EXPECT_FALSE(providers[0].key == providers[1].key);
}

TEST_F(Provider, CannotBeAddedDisabledNorWithUnknownFlags) {
  const TestSession session;
  FWPM_PROVIDER0 record = ProviderRecord();
  record.flags = 0x10;
  EXPECT_EQ(Add(session, record), kInvalidFlags);
  record.flags = 2;
  EXPECT_EQ(Add(session, record), kInvalidFlags);
}

TEST_F(Provider, DataOfASizeMustBeThere) {
  const TestSession session;
  FWPM_PROVIDER0 record = ProviderRecord();
  record.providerData.size = 1;
  EXPECT_EQ(Add(session, record), kNullPointer);
}

TEST_F(Provider, IsGoneAfterDeletion) {
  const TestSession session;
  ASSERT_EQ(Add(session, ProviderRecord()), kSuccess);
  EXPECT_EQ(FwpmProviderDeleteByKey0(session, &kProviderKey), kSuccess);
  FWPM_PROVIDER0* found = nullptr;
  EXPECT_EQ(FwpmProviderGetByKey0(session, &kProviderKey, &found), kProviderNotFound);
  EXPECT_EQ(FwpmProviderDeleteByKey0(session, &kProviderKey), kProviderNotFound);
}

TEST_F(Provider, StaysWhileASublayerRefersToIt) {
  const TestSession session;
  GUID key = kProviderKey;
  FWPM_SUBLAYER0 sublayer = SublayerRecord();
  sublayer.providerKey = &key;
  ASSERT_EQ(Add(session, ProviderRecord()), kSuccess);
  ASSERT_EQ(Add(session, sublayer), kSuccess);
  EXPECT_EQ(FwpmProviderDeleteByKey0(session, &kProviderKey), kInUse);
  ASSERT_EQ(FwpmSubLayerDeleteByKey0(session, &kSublayerKey), kSuccess);
  EXPECT_EQ(FwpmProviderDeleteByKey0(session, &kProviderKey), kSuccess);
}

TEST_F(Provider, StaysWhileAFilterRefersToIt) {
  const TestSession session;
  GUID key = kProviderKey;
  FWPM_FILTER0 filter = FilterRecord(kFilterKey);
  filter.providerKey = &key;
  FWPM_FILTER0 other = FilterRecord(kOtherFilterKey);
  other.providerKey = &key;
  ASSERT_EQ(Add(session, ProviderRecord()), kSuccess);
  ASSERT_EQ(Add(session, filter), kSuccess);
  ASSERT_EQ(Add(session, other), kSuccess);
  ASSERT_EQ(FwpmFilterDeleteByKey0(session, &kFilterKey), kSuccess);
  EXPECT_EQ(FwpmProviderDeleteByKey0(session, &kProviderKey), kInUse);
  ASSERT_EQ(FwpmFilterDeleteByKey0(session, &kOtherFilterKey), kSuccess);
  EXPECT_EQ(FwpmProviderDeleteByKey0(session, &kProviderKey), kSuccess);
}

TEST_F(Provider, NullArgumentsAreRefused) {
  const TestSession session;
  FWPM_PROVIDER0* found = nullptr;
  EXPECT_EQ(FwpmProviderAdd0(session, nullptr, nullptr), kNullPointer);
  EXPECT_EQ(FwpmProviderDeleteByKey0(session, nullptr), kNullPointer);
  EXPECT_EQ(FwpmProviderGetByKey0(session, nullptr, &found), kNullPointer);
  EXPECT_EQ(FwpmProviderGetByKey0(session, &kProviderKey, nullptr), kNullPointer);
}

}  // namespace
