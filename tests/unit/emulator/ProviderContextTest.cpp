#include <gmock/gmock.h>

#include <future>
#include <utility>

#include "EngineClient.h"

namespace {

constexpr DWORD kContextNotFound = 0x80320006;
constexpr GUID kContextKey{0x0f000001, 0, 0, {}};
constexpr GUID kOtherContextKey{0x0f000002, 0, 0, {}};

FWPM_PROVIDER_CONTEXT0 ContextRecord(const GUID& key = kContextKey) {
  FWPM_PROVIDER_CONTEXT0 context{};
  context.providerContextKey = key;
  context.displayData = {kName, kDescription};
  context.type = FWPM_GENERAL_CONTEXT;
  return context;
}

DWORD AddContext(HANDLE engine, const FWPM_PROVIDER_CONTEXT0& context) {
  return FwpmProviderContextAdd0(engine, &context, nullptr, nullptr);
}

/// A filter that names the context.
FWPM_FILTER0 FilterWithContext() {
  FWPM_FILTER0 filter = FilterRecord();
  filter.flags = FWPM_FILTER_FLAG_HAS_PROVIDER_CONTEXT;
  filter.providerContextKey = kContextKey;
  return filter;
}

class ProviderContext : public EngineTest {
 protected:
  static std::vector<GUID> Selected(HANDLE session, const FWPM_PROVIDER_CONTEXT_ENUM_TEMPLATE0* criteria) {
    HANDLE enumHandle = nullptr;
    EXPECT_EQ(FwpmProviderContextCreateEnumHandle0(session, criteria, &enumHandle), kSuccess);
    FWPM_PROVIDER_CONTEXT0** entries = nullptr;
    UINT32 returned = 0;
    EXPECT_EQ(FwpmProviderContextEnum0(session, enumHandle, INFINITE, &entries, &returned), kSuccess);
    std::vector<GUID> keys;
    for (UINT32 index = 0; index < returned; ++index) {
      keys.push_back(entries[index]->providerContextKey);
    }
    Free(entries);
    EXPECT_EQ(FwpmProviderContextDestroyEnumHandle0(session, enumHandle), kSuccess);
    return keys;
  }
};

TEST_F(ProviderContext, ComesBackAsItWasAdded) {
  const TestSession session;
  wchar_t name[] = L"Tarn";
  GUID providerKey = kProviderKey;
  UINT8 ofProvider[]{7};
  UINT8 bytes[]{1, 2, 3};
  FWP_BYTE_BLOB blob{3, bytes};
  FWPM_PROVIDER_CONTEXT0 record = ContextRecord();
  record.displayData.name = name;
  record.providerKey = &providerKey;
  record.providerData = {1, ofProvider};
  record.dataBuffer = &blob;
  ASSERT_EQ(Add(session, ProviderRecord()), kSuccess);
  UINT64 id = 0;
  ASSERT_EQ(FwpmProviderContextAdd0(session, &record, nullptr, &id), kSuccess);
  name[0] = L'?';
  providerKey = GUID{};
  ofProvider[0] = bytes[2] = 9;
  blob.size = 1;

  FWPM_PROVIDER_CONTEXT0* found = nullptr;
  ASSERT_EQ(FwpmProviderContextGetByKey0(session, &kContextKey, &found), kSuccess);
  EXPECT_STREQ(found->displayData.name, L"Tarn");
  EXPECT_STREQ(found->displayData.description, L"Description");
  EXPECT_TRUE(*found->providerKey == kProviderKey);
  EXPECT_THAT(std::vector(found->providerData.data, found->providerData.data + found->providerData.size),
              testing::ElementsAre(7));
  EXPECT_EQ(found->type, FWPM_GENERAL_CONTEXT);
  EXPECT_EQ(found->flags, 0U);
  EXPECT_THAT(std::vector(found->dataBuffer->data, found->dataBuffer->data + found->dataBuffer->size),
              testing::ElementsAre(1, 2, 3));
  EXPECT_EQ(found->providerContextId, id);
  Free(found);
  EXPECT_EQ(EngineEmulator::CountOutstanding().memoryBlocks, 0U);
}

TEST_F(ProviderContext, IsFoundAndDeletedByItsId) {
  const TestSession session;
  const FWPM_PROVIDER_CONTEXT0 first = ContextRecord(kContextKey);
  const FWPM_PROVIDER_CONTEXT0 second = ContextRecord(kOtherContextKey);
  UINT64 firstId = 0;
  UINT64 secondId = 0;
  ASSERT_EQ(FwpmProviderContextAdd0(session, &first, nullptr, &firstId), kSuccess);
  ASSERT_EQ(FwpmProviderContextAdd0(session, &second, nullptr, &secondId), kSuccess);
  EXPECT_GT(secondId, firstId);
  FWPM_PROVIDER_CONTEXT0* found = nullptr;
  ASSERT_EQ(FwpmProviderContextGetById0(session, firstId, &found), kSuccess);
  EXPECT_TRUE(found->providerContextKey == kContextKey);
  Free(found);
  EXPECT_EQ(FwpmProviderContextDeleteById0(session, firstId), kSuccess);
  EXPECT_EQ(FwpmProviderContextDeleteById0(session, firstId), kContextNotFound);
  EXPECT_EQ(FwpmProviderContextGetById0(session, firstId, &found), kContextNotFound);
  EXPECT_EQ(FwpmProviderContextDeleteByKey0(session, &kOtherContextKey), kSuccess);
  EXPECT_EQ(FwpmProviderContextGetByKey0(session, &kOtherContextKey, &found), kContextNotFound);
}

TEST_F(ProviderContext, MayBeWithoutData) {
  const TestSession session;
  for (const int type : {0, 4, 7, 8, 12}) {
    FWPM_PROVIDER_CONTEXT0 record = ContextRecord(GUID{});
    record.type = static_cast<FWPM_PROVIDER_CONTEXT_TYPE>(type);
    UINT64 id = 0;
    ASSERT_EQ(FwpmProviderContextAdd0(session, &record, nullptr, &id), kSuccess) << type;
    FWPM_PROVIDER_CONTEXT0* found = nullptr;
    ASSERT_EQ(FwpmProviderContextGetById0(session, id, &found), kSuccess);
    EXPECT_EQ(int{found->type}, type);
    EXPECT_EQ(found->dataBuffer, nullptr);
    Free(found);
  }
}

TEST_F(ProviderContext, OfAnotherTypeThanGeneralKeepsNoData) {
  const TestSession session;
  FWP_BYTE_BLOB garbage{0xFFFFFFFF, nullptr};
  FWPM_PROVIDER_CONTEXT0 record = ContextRecord();
  record.type = FWPM_CLASSIFY_OPTIONS_CONTEXT;
  record.dataBuffer = &garbage;
  ASSERT_EQ(AddContext(session, record), kSuccess);
  FWPM_PROVIDER_CONTEXT0* found = nullptr;
  ASSERT_EQ(FwpmProviderContextGetByKey0(session, &kContextKey, &found), kSuccess);
  EXPECT_EQ(found->dataBuffer, nullptr);
  Free(found);
}

TEST_F(ProviderContext, IsCheckedLikeOtherObjects) {
  const TestSession session;
  GUID missing = kProviderKey;
  FWP_BYTE_BLOB blob{4, nullptr};
  const auto refusal = [&](auto spoil) {
    FWPM_PROVIDER_CONTEXT0 record = ContextRecord();
    spoil(record);
    return AddContext(session, record);
  };
  EXPECT_EQ(refusal([](auto& record) { record.displayData.name = nullptr; }), kNullDisplayName);
  EXPECT_EQ(refusal([](auto& record) { record.flags = 4; }), kInvalidFlags);
  EXPECT_EQ(refusal([&](auto& record) { record.providerData = blob; }), kNullPointer);
  EXPECT_EQ(refusal([&](auto& record) { record.dataBuffer = &blob; }), kNullPointer);
  EXPECT_EQ(refusal([&](auto& record) { record.providerKey = &missing; }), kProviderNotFound);
  int unknown = 14;
  EXPECT_EQ(refusal([&](auto& record) { record.type = static_cast<FWPM_PROVIDER_CONTEXT_TYPE>(unknown); }),
            kInvalidEnumerator);
  EXPECT_EQ(EngineEmulator::LastRefusal(), "there is no type 14 of provider contexts");
  EXPECT_EQ(refusal([](auto&) {}), kSuccess);
  EXPECT_EQ(refusal([](auto&) {}), kAlreadyExists);
}

TEST_F(ProviderContext, KeepsItsProviderInUse) {
  const TestSession session;
  GUID providerKey = kProviderKey;
  FWPM_PROVIDER_CONTEXT0 record = ContextRecord();
  record.providerKey = &providerKey;
  ASSERT_EQ(Add(session, ProviderRecord()), kSuccess);
  ASSERT_EQ(AddContext(session, record), kSuccess);
  EXPECT_EQ(FwpmProviderDeleteByKey0(session, &kProviderKey), kInUse);
  ASSERT_EQ(FwpmProviderContextDeleteByKey0(session, &kContextKey), kSuccess);
  EXPECT_EQ(FwpmProviderDeleteByKey0(session, &kProviderKey), kSuccess);
}

TEST_F(ProviderContext, StaysWhileAFilterNamesIt) {
  const TestSession session;
  EXPECT_EQ(Add(session, FilterWithContext()), kContextNotFound);
  ASSERT_EQ(AddContext(session, ContextRecord()), kSuccess);
  ASSERT_EQ(Add(session, FilterWithContext()), kSuccess);
  EXPECT_EQ(FwpmProviderContextDeleteByKey0(session, &kContextKey), kInUse);
  FWPM_FILTER0* found = nullptr;
  ASSERT_EQ(FwpmFilterGetByKey0(session, &kFilterKey, &found), kSuccess);
  EXPECT_TRUE(found->providerContextKey == kContextKey);
  EXPECT_EQ(found->flags, 4U);
  Free(found);
  ASSERT_EQ(FwpmFilterDeleteByKey0(session, &kFilterKey), kSuccess);
  EXPECT_EQ(FwpmProviderContextDeleteByKey0(session, &kContextKey), kSuccess);
}

TEST_F(ProviderContext, IsNotNamedByARawContextWithTheSameBytes) {
  const TestSession session;
  ASSERT_EQ(AddContext(session, ContextRecord()), kSuccess);
  FWPM_FILTER0 filter = FilterWithContext();
  filter.flags = 0;
  ASSERT_EQ(Add(session, filter), kSuccess);
  EXPECT_EQ(FwpmProviderContextDeleteByKey0(session, &kContextKey), kSuccess);
}

TEST_F(ProviderContext, OutlivesTheFiltersThatNameIt) {
  const TestSession session;
  FWPM_FILTER0 filter = FilterWithContext();
  filter.flags |= FWPM_FILTER_FLAG_PERSISTENT;
  FWPM_PROVIDER_CONTEXT0 record = ContextRecord();
  ASSERT_EQ(AddContext(session, record), kSuccess);
  EXPECT_EQ(Add(session, filter), kLifetimeMismatch);
  EXPECT_EQ(EngineEmulator::LastRefusal(),
            "the provider context 0f000001-0000-0000-0000-000000000000 may end before the filter");
  ASSERT_EQ(FwpmProviderContextDeleteByKey0(session, &kContextKey), kSuccess);
  record.flags = kPersistent;
  ASSERT_EQ(AddContext(session, record), kSuccess);
  EXPECT_EQ(Add(session, filter), kSuccess);
}

TEST_F(ProviderContext, EndsWithItsDynamicSession) {
  const TestSession session;
  FWPM_PROVIDER_CONTEXT0* found = nullptr;
  {
    const TestSession dynamic(kDynamic);
    ASSERT_EQ(AddContext(dynamic, ContextRecord()), kSuccess);
    ASSERT_EQ(Add(dynamic, FilterWithContext()), kSuccess);
    ASSERT_EQ(FwpmProviderContextGetByKey0(session, &kContextKey, &found), kSuccess);
    Free(found);
  }
  EXPECT_EQ(FwpmProviderContextGetByKey0(session, &kContextKey, &found), kContextNotFound);
}

TEST_F(ProviderContext, IsGoneWhenItsTransactionIsAborted) {
  const TestSession session;
  ASSERT_EQ(FwpmTransactionBegin0(session, 0), kSuccess);
  ASSERT_EQ(AddContext(session, ContextRecord()), kSuccess);
  ASSERT_EQ(Add(session, FilterWithContext()), kSuccess);
  ASSERT_EQ(FwpmTransactionAbort0(session), kSuccess);
  EXPECT_EQ(FwpmProviderContextDeleteByKey0(session, &kContextKey), kContextNotFound);
}

TEST_F(ProviderContext, ListCanSelectAProviderAndAType) {
  const TestSession session;
  GUID providerKey = kProviderKey;
  FWPM_PROVIDER_CONTEXT0 owned = ContextRecord(kContextKey);
  owned.providerKey = &providerKey;
  FWPM_PROVIDER_CONTEXT0 options = ContextRecord(kOtherContextKey);
  options.type = FWPM_CLASSIFY_OPTIONS_CONTEXT;
  ASSERT_EQ(Add(session, ProviderRecord()), kSuccess);
  ASSERT_EQ(AddContext(session, owned), kSuccess);
  ASSERT_EQ(AddContext(session, options), kSuccess);
  EXPECT_THAT(Selected(session, nullptr), testing::SizeIs(2));
  const FWPM_PROVIDER_CONTEXT_ENUM_TEMPLATE0 ofType{nullptr, FWPM_CLASSIFY_OPTIONS_CONTEXT};
  EXPECT_EQ(Selected(session, &ofType).at(0).Data1, 0x0f000002U);
  EXPECT_THAT(Selected(session, &ofType), testing::SizeIs(1));
  const FWPM_PROVIDER_CONTEXT_ENUM_TEMPLATE0 ofProvider{&providerKey, FWPM_GENERAL_CONTEXT};
  EXPECT_EQ(Selected(session, &ofProvider).at(0).Data1, 0x0f000001U);
  const FWPM_PROVIDER_CONTEXT_ENUM_TEMPLATE0 ofBoth{&providerKey, FWPM_CLASSIFY_OPTIONS_CONTEXT};
  EXPECT_THAT(Selected(session, &ofBoth), testing::IsEmpty());
}

TEST_F(ProviderContext, HasASecurityDescriptorOfItsOwn) {
  const TestSession session;
  ASSERT_EQ(AddContext(session, ContextRecord()), kSuccess);
  SID owner{SID_REVISION, 1, {{0, 0, 0, 0, 0, 5}}, {32}};
  ASSERT_EQ(FwpmProviderContextSetSecurityInfoByKey0(session, &kContextKey, OWNER_SECURITY_INFORMATION,
                                                     &owner, nullptr, nullptr, nullptr),
            kSuccess);
  PSID found = nullptr;
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  ASSERT_EQ(FwpmProviderContextGetSecurityInfoByKey0(session, &kContextKey, OWNER_SECURITY_INFORMATION,
                                                     &found, nullptr, nullptr, nullptr, &descriptor),
            kSuccess);
  EXPECT_EQ(static_cast<SID*>(found)->SubAuthority[0], 32U);
  Free(descriptor);
  EXPECT_EQ(FwpmProviderContextGetSecurityInfoByKey0(session, &kOtherContextKey, OWNER_SECURITY_INFORMATION,
                                                     nullptr, nullptr, nullptr, nullptr, &descriptor),
            kContextNotFound);
}

TEST_F(ProviderContext, ChangesAreToldWithItsId) {
  const TestSession session;
  GUID providerKey = kProviderKey;
  FWPM_PROVIDER_CONTEXT_ENUM_TEMPLATE0 criteria{&providerKey, FWPM_GENERAL_CONTEXT};
  const FWPM_PROVIDER_CONTEXT_SUBSCRIPTION0 wanted{&criteria, 1, {}};
  std::promise<UINT64> told;
  const auto hear = [](void* context, const FWPM_PROVIDER_CONTEXT_CHANGE0* change) {
    static_cast<std::promise<UINT64>*>(context)->set_value(change->providerContextId);
  };
  HANDLE handle = nullptr;
  ASSERT_EQ(FwpmProviderContextSubscribeChanges0(session, &wanted, hear, &told, &handle), kSuccess);
  FWPM_PROVIDER_CONTEXT_SUBSCRIPTION0** subscriptions = nullptr;
  UINT32 count = 0;
  ASSERT_EQ(FwpmProviderContextSubscriptionsGet0(session, &subscriptions, &count), kSuccess);
  ASSERT_EQ(count, 1U);
  EXPECT_TRUE(*subscriptions[0]->enumTemplate->providerKey == kProviderKey);
  Free(subscriptions);
  FWPM_PROVIDER_CONTEXT0 record = ContextRecord(kContextKey);
  record.providerKey = &providerKey;
  ASSERT_EQ(Add(session, ProviderRecord()), kSuccess);
  ASSERT_EQ(AddContext(session, ContextRecord(kOtherContextKey)), kSuccess);
  UINT64 id = 0;
  ASSERT_EQ(FwpmProviderContextAdd0(session, &record, nullptr, &id), kSuccess);
  EXPECT_EQ(told.get_future().get(), id);
  EXPECT_EQ(FwpmProviderContextUnsubscribeChanges0(session, handle), kSuccess);
  EXPECT_EQ(FwpmProviderContextUnsubscribeChanges0(session, handle), kNotFound);
}

TEST_F(ProviderContext, StandsInTheJournal) {
  const TestSession session;
  ASSERT_EQ(AddContext(session, ContextRecord()), kSuccess);
  EXPECT_EQ(EngineEmulator::Journal().back().arguments,
            "\"Name\" 0f000001-0000-0000-0000-000000000000, type 8, flags 0, provider -");
}

TEST_F(ProviderContext, NullArgumentsAreRefused) {
  const TestSession session;
  EXPECT_EQ(FwpmProviderContextAdd0(session, nullptr, nullptr, nullptr), kNullPointer);
  EXPECT_EQ(FwpmProviderContextDeleteByKey0(session, nullptr), kNullPointer);
  EXPECT_EQ(FwpmProviderContextGetByKey0(session, &kContextKey, nullptr), kNullPointer);
  EXPECT_EQ(FwpmProviderContextAdd0(nullptr, nullptr, nullptr, nullptr), kInvalidHandle);
}

}  // namespace
