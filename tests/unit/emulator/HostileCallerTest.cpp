// Calls with invalid arguments give a code and do not crash.
#include <limits>
#include <string>

#include "EngineClient.h"

namespace {

using HostileCaller = EngineTest;

TEST_F(HostileCaller, CountsConditionsThatNobodyCanHave) {
  const TestSession session;
  FWPM_FILTER_CONDITION0 condition{};
  FWPM_FILTER0 filter = FilterRecord();
  filter.filterCondition = &condition;
  filter.numFilterConditions = std::numeric_limits<UINT32>::max();
  EXPECT_EQ(Add(session, filter), kInvalidParameter);
  EXPECT_EQ(EngineEmulator::Journal().back().arguments, "not readable");
}

TEST_F(HostileCaller, GivesBlobsThatNobodyCanHave) {
  const TestSession session;
  UINT8 byte = 0;
  FWPM_PROVIDER0 provider = ProviderRecord();
  provider.providerData = {std::numeric_limits<UINT32>::max(), &byte};
  EXPECT_EQ(Add(session, provider), kInvalidParameter);
}

TEST_F(HostileCaller, GivesASidWithTooManyParts) {
  const TestSession session;
  SID sid{1, 255, {}, {}};
  FWPM_FILTER_CONDITION0 condition{};
  condition.fieldKey = kPackageId;
  condition.conditionValue.type = FWP_SID;
  condition.conditionValue.sid = &sid;
  FWPM_FILTER0 filter = FilterRecord();
  filter.numFilterConditions = 1;
  filter.filterCondition = &condition;
  EXPECT_EQ(Add(session, filter), kInvalidParameter);
}

TEST_F(HostileCaller, NamesAFileThatTheHostCannotWrite) {
  const std::wstring path = std::wstring(L"C:\\no such folder\\") + static_cast<wchar_t>(0xD800);
  FWP_BYTE_BLOB* blob = nullptr;
  EXPECT_EQ(FwpmGetAppIdFromFileName0(path.c_str(), &blob), 3U);
}

TEST_F(HostileCaller, FreesTwice) {
  const TestSession session;
  FWPM_SUBLAYER0* found = nullptr;
  ASSERT_EQ(FwpmSubLayerGetByKey0(session, &kUniversalSublayer, &found), kSuccess);
  void* first = found;
  void* second = found;
  FwpmFreeMemory0(&first);
  FwpmFreeMemory0(&second);
  EXPECT_EQ(second, nullptr);
  EXPECT_EQ(EngineEmulator::Journal().back().arguments, "not a block of the engine");
}

TEST_F(HostileCaller, FreesTheInsideOfABlock) {
  const TestSession session;
  FWPM_SUBLAYER0* found = nullptr;
  ASSERT_EQ(FwpmSubLayerGetByKey0(session, &kUniversalSublayer, &found), kSuccess);
  void* inside = found->displayData.name;
  FwpmFreeMemory0(&inside);
  EXPECT_STREQ(found->displayData.name, L"UNIVERSAL");
  Free(found);
}

TEST_F(HostileCaller, UsesASessionThatIsClosed) {
  HANDLE closed = nullptr;
  FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, nullptr, &closed);
  HANDLE enumHandle = nullptr;
  FwpmFilterCreateEnumHandle0(closed, nullptr, &enumHandle);
  FwpmEngineClose0(closed);
  FWPM_FILTER0** filters = nullptr;
  UINT32 count = 0;
  EXPECT_EQ(Add(closed, FilterRecord()), kInvalidHandle);
  EXPECT_EQ(FwpmFilterEnum0(closed, enumHandle, 1, &filters, &count), kInvalidHandle);
  EXPECT_EQ(FwpmFilterDestroyEnumHandle0(closed, enumHandle), kInvalidHandle);
  EXPECT_EQ(FwpmTransactionBegin0(closed, 0), kInvalidHandle);
}

TEST_F(HostileCaller, EnumeratesWithAHandleOfNothing) {
  const TestSession session;
  int nothing = 0;
  FWPM_FILTER0** filters = nullptr;
  UINT32 count = 0;
  EXPECT_EQ(FwpmFilterEnum0(session, &nothing, 1, &filters, &count), kNotFound);
  EXPECT_EQ(FwpmFilterDestroyEnumHandle0(session, nullptr), kNotFound);
}

TEST_F(HostileCaller, GivesATemplateWithoutTheConditionsItCounts) {
  const TestSession session;
  FWPM_FILTER_ENUM_TEMPLATE0 criteria{};
  criteria.layerKey = kConnectV4;
  criteria.numFilterConditions = 5;
  HANDLE enumHandle = nullptr;
  EXPECT_EQ(FwpmFilterCreateEnumHandle0(session, &criteria, &enumHandle), kNullPointer);
}

TEST_F(HostileCaller, IsToldWhatItHasNotGivenBack) {
  const TestSession session;
  FWPM_SUBLAYER0* found = nullptr;
  FWPM_LAYER0* layer = nullptr;
  FwpmSubLayerGetByKey0(session, &kUniversalSublayer, &found);
  FwpmLayerGetByKey0(session, &kConnectV4, &layer);
  EXPECT_EQ(EngineEmulator::OutstandingMemory(),
            (std::vector<std::string>{"FwpmSubLayerGetByKey0", "FwpmLayerGetByKey0"}));
  Free(layer);
  Free(found);
  EXPECT_TRUE(EngineEmulator::OutstandingMemory().empty());
}

}  // namespace
