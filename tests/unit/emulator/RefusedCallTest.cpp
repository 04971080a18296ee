// The full text of the reason for calls that the emulator refuses, whatever the record.
#include <string>

#include "EngineClient.h"

namespace {

using RefusedCall = EngineTest;

constexpr GUID kMissingKey{0x0e000001, 0, 0, {}};

/// The reason why a call was refused.
std::string Reason(DWORD result) {
  EXPECT_NE(result, kSuccess);
  return EngineEmulator::LastRefusal();
}

std::string ReasonOfTemplate(HANDLE session, FWPM_FILTER_ENUM_TEMPLATE0 criteria) {
  HANDLE enumHandle = nullptr;
  return Reason(FwpmFilterCreateEnumHandle0(session, &criteria, &enumHandle));
}

TEST_F(RefusedCall, OfSessions) {
  HANDLE handle = nullptr;
  FWPM_SESSION0 session{};
  session.flags = 3;
  EXPECT_EQ(Reason(FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, &session, &handle)),
            "DYNAMIC is the only flag of sessions");
  session.flags = 0;
  session.sessionKey = kMissingKey;
  ASSERT_EQ(FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, &session, &handle), kSuccess);
  HANDLE other = nullptr;
  EXPECT_EQ(Reason(FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, &session, &other)),
            "the key is that of a session which is open");
  FwpmEngineClose0(handle);
}

TEST_F(RefusedCall, OfTransactions) {
  const TestSession session;
  EXPECT_EQ(Reason(FwpmTransactionCommit0(session)), "there is no transaction to commit");
  EXPECT_EQ(Reason(FwpmTransactionAbort0(session)), "there is no transaction to abort");
  EXPECT_EQ(Reason(FwpmTransactionBegin0(session, 2)), "READ_ONLY is the only flag of transactions");
  ASSERT_EQ(FwpmTransactionBegin0(session, 1), kSuccess);
  EXPECT_EQ(Reason(FwpmTransactionBegin0(session, 0)), "transactions do not nest");
  EXPECT_EQ(Reason(Add(session, ProviderRecord())), "the transaction is read-only");
  FwpmTransactionAbort0(session);
}

TEST_F(RefusedCall, OfAddingWhatIsThere) {
  const TestSession session;
  Add(session, ProviderRecord());
  Add(session, SublayerRecord());
  Add(session, FilterRecord());
  EXPECT_EQ(Reason(Add(session, ProviderRecord())),
            "there is a provider 0a000001-0000-0000-0000-000000000000");
  EXPECT_EQ(Reason(Add(session, SublayerRecord())),
            "there is a sublayer 0b000001-0000-0000-0000-000000000000");
  EXPECT_EQ(Reason(Add(session, FilterRecord())), "there is a filter 0c000001-0000-0000-0000-000000000000");
}

TEST_F(RefusedCall, OfDeletingWhatIsNotThere) {
  const TestSession session;
  EXPECT_EQ(Reason(FwpmProviderDeleteByKey0(session, &kMissingKey)),
            "there is no provider 0e000001-0000-0000-0000-000000000000");
  EXPECT_EQ(Reason(FwpmSubLayerDeleteByKey0(session, &kMissingKey)),
            "there is no sublayer 0e000001-0000-0000-0000-000000000000");
  EXPECT_EQ(Reason(FwpmCalloutDeleteByKey0(session, &kMissingKey)),
            "there is no callout 0e000001-0000-0000-0000-000000000000");
  EXPECT_EQ(Reason(FwpmCalloutDeleteById0(session, 77)), "there is no callout 77");
  EXPECT_EQ(Reason(FwpmFilterDeleteByKey0(session, &kMissingKey)),
            "there is no filter 0e000001-0000-0000-0000-000000000000");
  EXPECT_EQ(Reason(FwpmFilterDeleteById0(session, 7)), "there is no filter 7");
}

TEST_F(RefusedCall, OfDeletingWhatIsNotTheCallers) {
  const TestSession session;
  const TestSession dynamic(kDynamic);
  EXPECT_EQ(Reason(FwpmSubLayerDeleteByKey0(session, &kUniversalSublayer)), "the object is built in");
  Add(session, SublayerRecord());
  EXPECT_EQ(Reason(FwpmSubLayerDeleteByKey0(dynamic, &kSublayerKey)),
            "a dynamic session deletes only what it added");
  Add(dynamic, ProviderRecord());
  EXPECT_EQ(Reason(FwpmProviderDeleteByKey0(session, &kProviderKey)), "the object is another session's");
}

TEST_F(RefusedCall, OfDeletingWhatIsInUse) {
  const TestSession session;
  GUID providerKey = kProviderKey;
  FWPM_SUBLAYER0 sublayer = SublayerRecord();
  sublayer.providerKey = &providerKey;
  FWPM_FILTER0 filter = FilterRecord();
  filter.providerKey = &providerKey;
  Add(session, ProviderRecord());
  Add(session, sublayer);
  Add(session, filter);
  EXPECT_EQ(Reason(FwpmProviderDeleteByKey0(session, &kProviderKey)), "objects that refer to it: 2");
}

TEST_F(RefusedCall, OfAddingWhatIsPersistentToADynamicSession) {
  FWPM_PROVIDER0 provider = ProviderRecord();
  provider.flags = kPersistent;
  EXPECT_EQ(Reason(Add(TestSession(kDynamic), provider)), "a dynamic session adds nothing persistent");
}

TEST_F(RefusedCall, OfTemplates) {
  const TestSession session;
  FWPM_FILTER_CONDITION0 conditions[2]{};
  conditions[0].fieldKey = conditions[1].fieldKey = kRemotePort;
  conditions[0].conditionValue.type = conditions[1].conditionValue.type = FWP_UINT16;
  FWPM_FILTER_ENUM_TEMPLATE0 criteria{};
  criteria.layerKey = kConnectV4;
  criteria.flags = 0x8000;
  EXPECT_EQ(ReasonOfTemplate(session, criteria), "the template has unknown flags");
  criteria.flags = 0;
  criteria.numFilterConditions = 2;
  EXPECT_EQ(ReasonOfTemplate(session, criteria),
            "the template has a number of conditions but no array of them");
  criteria.filterCondition = conditions;
  EXPECT_EQ(ReasonOfTemplate(session, criteria), "the template tests IP_REMOTE_PORT twice");
  criteria.numFilterConditions = 100'001;
  EXPECT_EQ(ReasonOfTemplate(session, criteria), "the template has too many conditions to be meant");
  criteria.numFilterConditions = 1;
  conditions[0].fieldKey = kMissingKey;
  EXPECT_EQ(ReasonOfTemplate(session, criteria),
            "0e000001-0000-0000-0000-000000000000 is not a field of ALE_AUTH_CONNECT_V4");
  criteria.layerKey = kMissingKey;
  EXPECT_EQ(ReasonOfTemplate(session, criteria),
            "the layer 0e000001-0000-0000-0000-000000000000 of the template does not exist");
}

TEST_F(RefusedCall, OfSubscriptions) {
  const TestSession session;
  const FWPM_PROVIDER_SUBSCRIPTION0 wanted{nullptr, 4, {}};
  const auto hear = [](void*, const FWPM_PROVIDER_CHANGE0*) {};
  HANDLE handle = nullptr;
  EXPECT_EQ(Reason(FwpmProviderSubscribeChanges0(session, &wanted, hear, nullptr, &handle)),
            "NOTIFY_ON_ADD and NOTIFY_ON_DELETE are all there is");
}

TEST_F(RefusedCall, OfAddingMoreSublayersThanThereIsRoomFor) {
  const TestSession session;
  // 65,518 and the 18 built-in sublayers are 65,536, the most that the engine takes.
  for (int count = 0; count < 65'518; ++count) {
    ASSERT_EQ(Add(session, SublayerRecord(GUID{})), kSuccess);
  }
  EXPECT_EQ(Add(session, SublayerRecord(GUID{})), 0x80320036U);
  EXPECT_EQ(EngineEmulator::LastRefusal(), "there are 65536 sublayers already");
}

}  // namespace
