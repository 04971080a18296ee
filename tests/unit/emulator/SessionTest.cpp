#include "EngineClient.h"

namespace {

using Session = EngineTest;

DWORD Open(const FWPM_SESSION0& session, HANDLE& handle) {
  return FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, &session, &handle);
}

TEST_F(Session, OpensWithoutASessionRecord) {
  HANDLE handle = nullptr;
  EXPECT_EQ(FwpmEngineOpen0(nullptr, RPC_C_AUTHN_DEFAULT, nullptr, nullptr, &handle), kSuccess);
  EXPECT_NE(handle, nullptr);
  EXPECT_EQ(EngineEmulator::CountOutstanding().sessions, 1U);
  EXPECT_EQ(FwpmEngineClose0(handle), kSuccess);
}

TEST_F(Session, OfOneProcessAreManyWithHandlesOfTheirOwn) {
  const TestSession first;
  const TestSession second;
  EXPECT_NE(static_cast<HANDLE>(first), static_cast<HANDLE>(second));
  EXPECT_EQ(EngineEmulator::CountOutstanding().sessions, 2U);
}

TEST_F(Session, IsRefusedWithAServerName) {
  HANDLE handle = nullptr;
  EXPECT_EQ(FwpmEngineOpen0(L"server", RPC_C_AUTHN_WINNT, nullptr, nullptr, &handle), 87U);
}

TEST_F(Session, IsRefusedWithAnotherAuthenticationService) {
  HANDLE handle = nullptr;
  EXPECT_EQ(FwpmEngineOpen0(nullptr, RPC_C_AUTHN_NONE, nullptr, nullptr, &handle), 87U);
}

TEST_F(Session, IsRefusedWithNowhereToPutTheHandle) {
  EXPECT_EQ(FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, nullptr, nullptr), kNullPointer);
}

TEST_F(Session, IsRefusedWithUnknownFlags) {
  FWPM_SESSION0 session{};
  session.flags = 2;
  HANDLE handle = nullptr;
  EXPECT_EQ(Open(session, handle), kInvalidFlags);
}

TEST_F(Session, KeyIsTakenWhileTheSessionLives) {
  FWPM_SESSION0 session{};
  session.sessionKey = kProviderKey;
  HANDLE first = nullptr;
  HANDLE second = nullptr;
  ASSERT_EQ(Open(session, first), kSuccess);
  EXPECT_EQ(Open(session, second), kAlreadyExists);
  FwpmEngineClose0(first);
  EXPECT_EQ(Open(session, second), kSuccess);
  FwpmEngineClose0(second);
}

TEST_F(Session, CannotBeClosedTwice) {
  HANDLE handle = nullptr;
  ASSERT_EQ(FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, nullptr, &handle), kSuccess);
  EXPECT_EQ(FwpmEngineClose0(handle), kSuccess);
  EXPECT_EQ(FwpmEngineClose0(handle), kInvalidHandle);
}

TEST_F(Session, HandleThatIsNullOrGarbageIsRefusedByEveryFunction) {
  int value = 0;
  for (const HANDLE handle : {HANDLE{nullptr}, HANDLE{&value}}) {
    const FWPM_PROVIDER0 provider = ProviderRecord();
    const FWPM_SUBLAYER0 sublayer = SublayerRecord();
    const FWPM_FILTER0 filter = FilterRecord();
    FWPM_SUBLAYER0* found = nullptr;
    HANDLE enumHandle = nullptr;
    EXPECT_EQ(FwpmEngineClose0(handle), kInvalidHandle);
    EXPECT_EQ(FwpmTransactionBegin0(handle, 0), kInvalidHandle);
    EXPECT_EQ(FwpmTransactionCommit0(handle), kInvalidHandle);
    EXPECT_EQ(FwpmTransactionAbort0(handle), kInvalidHandle);
    EXPECT_EQ(Add(handle, provider), kInvalidHandle);
    EXPECT_EQ(Add(handle, sublayer), kInvalidHandle);
    EXPECT_EQ(Add(handle, filter), kInvalidHandle);
    EXPECT_EQ(FwpmSubLayerGetByKey0(handle, &kSublayerKey, &found), kInvalidHandle);
    EXPECT_EQ(FwpmFilterDeleteById0(handle, 1), kInvalidHandle);
    EXPECT_EQ(FwpmFilterCreateEnumHandle0(handle, nullptr, &enumHandle), kInvalidHandle);
  }
}

TEST_F(Session, HandleOfBeforeAResetIsRefused) {
  HANDLE old = nullptr;
  FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, nullptr, &old);
  EngineEmulator::Reset();
  const TestSession session;
  EXPECT_EQ(FwpmTransactionBegin0(old, 0), kInvalidHandle);
}

TEST_F(Session, EndsItsDynamicObjectsWhateverTheirOrder) {
  {
    const TestSession session(kDynamic);
    FWPM_SUBLAYER0 sublayer = SublayerRecord();
    GUID providerKey = kProviderKey;
    sublayer.providerKey = &providerKey;
    FWPM_FILTER0 filter = FilterRecord();
    filter.subLayerKey = kSublayerKey;
    filter.providerKey = &providerKey;
    ASSERT_EQ(Add(session, ProviderRecord()), kSuccess);
    ASSERT_EQ(Add(session, sublayer), kSuccess);
    ASSERT_EQ(Add(session, filter), kSuccess);
  }
  const EngineEmulator::Snapshot snapshot = EngineEmulator::TakeSnapshot();
  EXPECT_TRUE(snapshot.providers.empty());
  EXPECT_TRUE(snapshot.sublayers.empty());
  EXPECT_TRUE(snapshot.filters.empty());
}

TEST_F(Session, LeavesStaticObjectsAndThoseOfOthers) {
  const TestSession other(kDynamic);
  ASSERT_EQ(Add(other, SublayerRecord(kOtherSublayerKey)), kSuccess);
  {
    const TestSession session;
    ASSERT_EQ(Add(session, SublayerRecord(kSublayerKey)), kSuccess);
  }
  EXPECT_EQ(EngineEmulator::TakeSnapshot().sublayers.size(), 2U);
}

TEST_F(Session, EndsItsDynamicObjectsEvenWhileAnotherHasATransaction) {
  const TestSession other;
  {
    const TestSession session(kDynamic);
    ASSERT_EQ(Add(session, SublayerRecord()), kSuccess);
    ASSERT_EQ(FwpmTransactionBegin0(other, 0), kSuccess);
  }
  ASSERT_EQ(FwpmTransactionCommit0(other), kSuccess);
  EXPECT_TRUE(EngineEmulator::TakeSnapshot().sublayers.empty());
}

TEST_F(Session, FreesItsEnumerationsAtItsEnd) {
  {
    const TestSession session;
    HANDLE enumHandle = nullptr;
    ASSERT_EQ(FwpmFilterCreateEnumHandle0(session, nullptr, &enumHandle), kSuccess);
    EXPECT_EQ(EngineEmulator::CountOutstanding().enumHandles, 1U);
  }
  EXPECT_EQ(EngineEmulator::CountOutstanding().enumHandles, 0U);
}

}  // namespace
