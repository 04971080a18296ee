#include <gmock/gmock.h>

#include <atomic>
#include <optional>
#include <thread>

#include "EngineClient.h"

namespace {

using testing::ElementsAre;
using testing::FieldsAre;
using Control = EngineTest;

constexpr DWORD kAccessDenied = 5;

TEST_F(Control, JournalHoldsEveryCallWithArgumentsAndResult) {
  wchar_t name[] = L"Tarn \u00E9\u20AC\xD83D\xDE00";
  wchar_t service[] = L"tarnsvc";
  {
    const TestSession session(kDynamic);
    FWPM_PROVIDER0 provider = ProviderRecord();
    provider.displayData.name = name;
    provider.serviceName = service;
    FWPM_SUBLAYER0 sublayer = SublayerRecord();
    sublayer.weight = 15;
    FwpmTransactionBegin0(session, 0);
    Add(session, provider);
    Add(session, sublayer);
    Add(session, FilterRecord());
    FwpmFilterDeleteById0(session, 7);
    FwpmSubLayerDeleteByKey0(session, nullptr);
    FwpmTransactionCommit0(session);
  }
  EXPECT_THAT(
      EngineEmulator::Journal(),
      ElementsAre(
          FieldsAre("FwpmEngineOpen0", "dynamic", 0U), FieldsAre("FwpmTransactionBegin0", "flags 0", 0U),
          FieldsAre("FwpmProviderAdd0",
                    "\"Tarn \xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\" "
                    "0a000001-0000-0000-0000-000000000000, flags 0, service \"tarnsvc\"",
                    0U),
          FieldsAre("FwpmSubLayerAdd0",
                    "\"Name\" 0b000001-0000-0000-0000-000000000000, weight 15, flags 0, provider -", 0U),
          FieldsAre("FwpmFilterAdd0", "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 14 | - | -", 0U),
          FieldsAre("FwpmFilterDeleteById0", "7", 0x80320003U),
          FieldsAre("FwpmSubLayerDeleteByKey0", "null", 0x8032001CU),
          FieldsAre("FwpmTransactionCommit0", "", 0U), FieldsAre("FwpmEngineClose0", "", 0U)));
}

TEST_F(Control, JournalHoldsEnumerations) {
  const TestSession session;
  EngineEmulator::ClearJournal();
  FWPM_FILTER_ENUM_TEMPLATE0 criteria{};
  criteria.layerKey = kConnectV4;
  HANDLE enumHandle = nullptr;
  FWPM_FILTER0** entries = nullptr;
  UINT32 returned = 0;
  FwpmFilterCreateEnumHandle0(session, nullptr, &enumHandle);
  FwpmFilterEnum0(session, enumHandle, 100, &entries, &returned);
  FwpmFilterDestroyEnumHandle0(session, enumHandle);
  FwpmFilterCreateEnumHandle0(session, &criteria, nullptr);
  EXPECT_THAT(
      EngineEmulator::Journal(),
      ElementsAre(FieldsAre("FwpmFilterCreateEnumHandle0", "all", 0U),
                  FieldsAre("FwpmFilterEnum0", "100", 0U), FieldsAre("FwpmFilterDestroyEnumHandle0", "", 0U),
                  FieldsAre("FwpmFilterCreateEnumHandle0", "provider -, layer ALE_AUTH_CONNECT_V4, flags 0",
                            0x8032001CU)));
}

TEST_F(Control, JournalHoldsCallsWithoutASession) {
  FWP_BYTE_BLOB* blob = nullptr;
  EngineEmulator::PretendFileExists(L"C:\\A.exe");
  FwpmGetAppIdFromFileName0(L"C:\\A.exe", &blob);
  Free(blob);
  EXPECT_THAT(EngineEmulator::Journal(), ElementsAre(FieldsAre("FwpmGetAppIdFromFileName0", "C:\\A.exe", 0U),
                                                     FieldsAre("FwpmFreeMemory0", "", 0U)));
}

TEST_F(Control, JournalStandsARecordFullOfNulls) {
  const TestSession session;
  FWPM_FILTER_CONDITION0 condition{};
  condition.conditionValue.type = FWP_BYTE_BLOB_TYPE;
  FWPM_FILTER0 filter{};
  filter.weight.type = FWP_UINT64;
  filter.numFilterConditions = 1;
  EXPECT_NE(Add(session, filter), kSuccess);
  filter.filterCondition = &condition;
  EXPECT_NE(Add(session, filter), kSuccess);
  EXPECT_NE(Add(session, FWPM_PROVIDER0{}), kSuccess);
  EXPECT_NE(Add(session, FWPM_SUBLAYER0{}), kSuccess);
  EXPECT_THAT(Calls(), ElementsAre("FwpmEngineOpen0", "FwpmFilterAdd0", "FwpmFilterAdd0", "FwpmProviderAdd0",
                                   "FwpmSubLayerAdd0"));
}

TEST_F(Control, JournalCanBeCleared) {
  const TestSession session;
  EngineEmulator::ClearJournal();
  EXPECT_TRUE(EngineEmulator::Journal().empty());
}

TEST_F(Control, PlannedFailureHasNoEffectButItsCode) {
  const TestSession session;
  EngineEmulator::FailCall("FwpmSubLayerAdd0", 1, kAccessDenied);
  EXPECT_EQ(Add(session, SublayerRecord()), kAccessDenied);
  EXPECT_TRUE(EngineEmulator::TakeSnapshot().sublayers.empty());
  EXPECT_EQ(EngineEmulator::Journal().back().result, kAccessDenied);
  EXPECT_EQ(Add(session, SublayerRecord()), kSuccess);
}

TEST_F(Control, PlannedFailureCountsCallsOfItsFunctionOnly) {
  const TestSession session;
  EngineEmulator::FailCall("FwpmFilterAdd0", 2, kAccessDenied);
  EXPECT_EQ(Add(session, SublayerRecord()), kSuccess);
  EXPECT_EQ(Add(session, FilterRecord(kFilterKey)), kSuccess);
  EXPECT_EQ(Add(session, FilterRecord(kOtherFilterKey)), kAccessDenied);
  EXPECT_EQ(Add(session, FilterRecord(kOtherFilterKey)), kSuccess);
}

TEST_F(Control, PlannedFailureOfAnyFunctionDoesNotCountFreedMemory) {
  const TestSession session;
  EngineEmulator::FailCall("", 2, kAccessDenied);
  void* nothing = nullptr;
  FwpmFreeMemory0(&nothing);
  EXPECT_EQ(Add(session, SublayerRecord()), kSuccess);
  EXPECT_EQ(Add(session, FilterRecord()), kAccessDenied);
}

TEST_F(Control, PlannedFailuresWaitSideBySide) {
  const TestSession session;
  EngineEmulator::FailCall("FwpmFilterAdd0", 1, kAccessDenied);
  EngineEmulator::FailCall("FwpmFilterAdd0", 2, kTimeout);
  EXPECT_EQ(Add(session, FilterRecord()), kAccessDenied);
  EXPECT_EQ(Add(session, FilterRecord()), kTimeout);
  EXPECT_EQ(Add(session, FilterRecord()), kSuccess);
}

TEST_F(Control, PlannedFailureOfACloseLeavesTheSessionOpen) {
  HANDLE handle = nullptr;
  FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, nullptr, &handle);
  EngineEmulator::FailCall("FwpmEngineClose0", 1, kAccessDenied);
  EXPECT_EQ(FwpmEngineClose0(handle), kAccessDenied);
  EXPECT_EQ(EngineEmulator::CountOutstanding().sessions, 1U);
  EXPECT_EQ(FwpmEngineClose0(handle), kSuccess);
}

TEST_F(Control, SnapshotShowsWhatClientsAddedInTheirOrder) {
  const TestSession session;
  wchar_t service[] = L"tarnsvc";
  GUID providerKey = kProviderKey;
  FWPM_PROVIDER0 provider = ProviderRecord();
  provider.flags = kPersistent;
  provider.serviceName = service;
  FWPM_SUBLAYER0 sublayer = SublayerRecord();
  sublayer.providerKey = &providerKey;
  sublayer.weight = 15;
  FWPM_FILTER0 filter = FilterRecord();
  filter.providerKey = &providerKey;
  filter.subLayerKey = kSublayerKey;
  filter.flags = 8;
  ASSERT_EQ(Add(session, provider), kSuccess);
  ASSERT_EQ(Add(session, SublayerRecord(kOtherSublayerKey)), kSuccess);
  ASSERT_EQ(Add(session, sublayer), kSuccess);
  ASSERT_EQ(Add(session, filter), kSuccess);

  const EngineEmulator::Snapshot snapshot = EngineEmulator::TakeSnapshot();
  EXPECT_THAT(snapshot.providers,
              ElementsAre(FieldsAre(kProviderKey, L"Name", L"Description", L"tarnsvc", 1U)));
  EXPECT_THAT(snapshot.sublayers,
              ElementsAre(FieldsAre(kOtherSublayerKey, L"Name", L"Description", 0U, std::nullopt, 8),
                          FieldsAre(kSublayerKey, L"Name", L"Description", 0U, kProviderKey, 15)));
  ASSERT_EQ(snapshot.filters.size(), 1U);
  EXPECT_THAT(snapshot.filters[0],
              FieldsAre(testing::Gt(0U), kFilterKey, L"Name", L"Description", 8U, kProviderKey, kConnectV4,
                        kSublayerKey, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 14 | CLEAR_ACTION_RIGHT | -"));
}

TEST_F(Control, ResetForgetsEverything) {
  {
    HANDLE session = nullptr;
    FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, nullptr, &session);
    Add(session, SublayerRecord());
    FwpmTransactionBegin0(session, 0);
    HANDLE enumHandle = nullptr;
    FwpmFilterCreateEnumHandle0(session, nullptr, &enumHandle);
    FWPM_SUBLAYER0* found = nullptr;
    FwpmSubLayerGetByKey0(session, &kSublayerKey, &found);
    EngineEmulator::FailCall("FwpmEngineOpen0", 1, kAccessDenied);
    EngineEmulator::PretendFileExists(L"C:\\Nowhere\\A.exe");
  }
  const EngineEmulator::Outstanding before = EngineEmulator::CountOutstanding();
  EXPECT_EQ(before.sessions, 1U);
  EXPECT_EQ(before.openTransactions, 1U);
  EXPECT_EQ(before.enumHandles, 1U);
  EXPECT_EQ(before.memoryBlocks, 1U);
  EngineEmulator::Reset();
  EXPECT_TRUE(EngineEmulator::Journal().empty());
  EXPECT_TRUE(EngineEmulator::TakeSnapshot().sublayers.empty());
  const EngineEmulator::Outstanding after = EngineEmulator::CountOutstanding();
  EXPECT_EQ(after.sessions + after.openTransactions + after.enumHandles + after.memoryBlocks, 0U);
  const TestSession session;
  FWP_BYTE_BLOB* blob = nullptr;
  EXPECT_EQ(FwpmGetAppIdFromFileName0(L"C:\\Nowhere\\A.exe", &blob), 3U);
}

TEST_F(Control, FreshEngineStandsInForTheOneBefore) {
  const TestSession session;
  Add(session, SublayerRecord());
  {
    const EngineEmulator::FreshEngine fresh;
    EXPECT_TRUE(EngineEmulator::TakeSnapshot().sublayers.empty());
    EXPECT_EQ(EngineEmulator::CountOutstanding().sessions, 0U);
    HANDLE left = nullptr;
    EXPECT_EQ(FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, nullptr, &left), 0U);
    EXPECT_EQ(Add(left, ProviderRecord()), 0U);
  }
  EXPECT_TRUE(EngineEmulator::TakeSnapshot().providers.empty());
  EXPECT_EQ(EngineEmulator::TakeSnapshot().sublayers.size(), 1U);
  EXPECT_EQ(EngineEmulator::CountOutstanding().sessions, 1U);
}

TEST_F(Control, EngineTakesCallsOfManyThreads) {
  const TestSession session;
  std::atomic<int> failures = 0;
  const auto addAndRead = [&] {
    for (int count = 0; count < 50; ++count) {
      FWPM_SUBLAYER0* found = nullptr;
      failures += Add(session, FilterRecord(GUID{})) != kSuccess;
      failures += FwpmSubLayerGetByKey0(session, &kUniversalSublayer, &found) != kSuccess;
      Free(found);
    }
  };
  std::thread first(addAndRead);
  std::thread second(addAndRead);
  first.join();
  second.join();
  EXPECT_EQ(failures, 0);
  EXPECT_EQ(EngineEmulator::TakeSnapshot().filters.size(), 100U);
}

}  // namespace
