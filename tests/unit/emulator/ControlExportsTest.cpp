#include "emulator/ControlExports.h"

#include <gmock/gmock.h>

#include <string>

#include "EngineClient.h"

extern "C" size_t CountOpenSessionsInC(void);

namespace {

using ControlExports = EngineTest;

template <class GiveText>
std::string Text(GiveText giveText) {
  std::string text(giveText(nullptr, 0), '?');
  giveText(text.data(), text.size());
  EXPECT_EQ(text.back(), '\0');
  text.pop_back();
  return text;
}

TEST_F(ControlExports, ServeProgramsInC) {
  const TestSession session;
  EXPECT_EQ(CountOpenSessionsInC(), 1U);
}

TEST_F(ControlExports, GiveTheJournalLineByLine) {
  const TestSession session;
  FWPM_PROVIDER0* found = nullptr;
  FwpmProviderGetByKey0(session, &kProviderKey, &found);
  EXPECT_EQ(Text(EngineEmulatorJournalText),
            "FwpmEngineOpen0(static) -> ERROR_SUCCESS (0x00000000)\n"
            "FwpmProviderGetByKey0(0a000001-0000-0000-0000-000000000000) -> "
            "FWP_E_PROVIDER_NOT_FOUND (0x80320005)\n");
  EngineEmulatorClearJournal();
  EXPECT_EQ(Text(EngineEmulatorJournalText), "");
}

TEST_F(ControlExports, GiveTheSnapshotLineByLine) {
  const TestSession session;
  GUID providerKey = kProviderKey;
  wchar_t service[] = L"tarnsvc";
  FWPM_PROVIDER0 provider = ProviderRecord();
  provider.serviceName = service;
  FWPM_SUBLAYER0 sublayer = SublayerRecord();
  sublayer.weight = 15;
  FWPM_FILTER0 filter = FilterRecord();
  filter.providerKey = &providerKey;
  filter.subLayerKey = kSublayerKey;
  UINT64 id = 0;
  ASSERT_EQ(Add(session, provider), kSuccess);
  ASSERT_EQ(Add(session, sublayer), kSuccess);
  ASSERT_EQ(FwpmFilterAdd0(session, &filter, nullptr, &id), kSuccess);
  EXPECT_EQ(Text(EngineEmulatorSnapshotText),
            "provider 0a000001-0000-0000-0000-000000000000 flags 0 \"Name\" \"Description\" "
            "service \"tarnsvc\"\n"
            "sublayer 0b000001-0000-0000-0000-000000000000 flags 0 weight 15 provider - "
            "\"Name\" \"Description\"\n"
            "filter " +
                std::to_string(id) +
                " 0c000001-0000-0000-0000-000000000000 sublayer 0b000001-0000-0000-0000-000000000000 "
                "provider 0a000001-0000-0000-0000-000000000000 \"Name\" \"Description\" "
                "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 14 | - | -\n");
}

TEST_F(ControlExports, CutATextThatDoesNotFit) {
  const TestSession session;
  char buffer[5];
  EXPECT_EQ(EngineEmulatorJournalText(buffer, sizeof(buffer)), 55U);
  EXPECT_STREQ(buffer, "Fwpm");
}

TEST_F(ControlExports, PlanFailures) {
  const TestSession session;
  EngineEmulatorFailCall("FwpmFilterAdd0", 1, 5);
  EXPECT_EQ(Add(session, FilterRecord()), 5U);
}

TEST_F(ControlExports, PretendFiles) {
  EngineEmulatorPretendFileExists(L"C:\\Nowhere\\A.exe");
  FWP_BYTE_BLOB* blob = nullptr;
  EXPECT_EQ(FwpmGetAppIdFromFileName0(L"C:\\Nowhere\\A.exe", &blob), kSuccess);
  Free(blob);
}

TEST_F(ControlExports, CountWhatIsOutstanding) {
  const TestSession session;
  FwpmTransactionBegin0(session, 0);
  HANDLE enumHandle = nullptr;
  FwpmFilterCreateEnumHandle0(session, nullptr, &enumHandle);
  FWPM_SUBLAYER0* found = nullptr;
  FwpmSubLayerGetByKey0(session, &kUniversalSublayer, &found);
  FwpmSubLayerGetByKey0(session, &kUniversalSublayer, &found);
  EngineEmulatorOutstanding outstanding{};
  EngineEmulatorCountOutstanding(&outstanding);
  EXPECT_EQ(outstanding.sessions, 1U);
  EXPECT_EQ(outstanding.openTransactions, 1U);
  EXPECT_EQ(outstanding.enumHandles, 1U);
  EXPECT_EQ(outstanding.memoryBlocks, 2U);
  ExpectOutstandingMemory(2);
}

TEST_F(ControlExports, NameWhoHandedOutTheOutstandingMemory) {
  const TestSession session;
  FWPM_SUBLAYER0* sublayer = nullptr;
  FWPM_LAYER0* layer = nullptr;
  ASSERT_EQ(FwpmSubLayerGetByKey0(session, &kUniversalSublayer, &sublayer), kSuccess);
  ASSERT_EQ(FwpmLayerGetByKey0(session, &kConnectV4, &layer), kSuccess);
  char buffer[100];
  EXPECT_EQ(EngineEmulatorOutstandingMemoryText(buffer, sizeof(buffer)), 42U);
  EXPECT_STREQ(buffer, "FwpmSubLayerGetByKey0\nFwpmLayerGetByKey0\n");
  Free(layer);
  Free(sublayer);
}

TEST_F(ControlExports, TellWhyTheEngineRefused) {
  const TestSession session;
  char buffer[100];
  EXPECT_EQ(EngineEmulatorLastRefusal(buffer, sizeof(buffer)), 1U);
  FWPM_FILTER0 filter = FilterRecord();
  filter.layerKey = kFilterKey;
  EXPECT_EQ(Add(session, filter), kLayerNotFound);
  EXPECT_EQ(EngineEmulatorLastRefusal(buffer, sizeof(buffer)), 62U);
  EXPECT_STREQ(buffer, "the layer 0c000001-0000-0000-0000-000000000000 does not exist");
}

TEST_F(ControlExports, ExpireTransactions) {
  const TestSession session;
  ASSERT_EQ(FwpmTransactionBegin0(session, 0), kSuccess);
  EngineEmulatorExpireTransactions();
  EXPECT_EQ(FwpmTransactionCommit0(session), kTransactionAborted);
}

TEST_F(ControlExports, Reset) {
  HANDLE handle = nullptr;
  FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, nullptr, &handle);
  EngineEmulatorReset();
  EXPECT_EQ(FwpmEngineClose0(handle), kInvalidHandle);
}

}  // namespace
