#include <atomic>
#include <thread>

#include "EngineClient.h"

namespace {

using WriteLock = EngineTest;

constexpr UINT32 kOneMillisecond = 1;
constexpr UINT32 kOneMinute = 60'000;

TEST_F(WriteLock, IsWaitedForAsLongAsTheSessionSays) {
  const TestSession session;
  const TestSession impatient(0, kOneMillisecond);
  ASSERT_EQ(FwpmTransactionBegin0(session, 0), kSuccess);
  EXPECT_EQ(FwpmTransactionBegin0(impatient, 0), kTimeout);
  EXPECT_EQ(Add(impatient, SublayerRecord()), kTimeout);
  EXPECT_EQ(FwpmSubLayerDeleteByKey0(impatient, &kUniversalSublayer), kTimeout);
  EXPECT_EQ(EngineEmulator::LastRefusal(), "another session's transaction holds the write lock");
  ASSERT_EQ(FwpmTransactionCommit0(session), kSuccess);
  EXPECT_EQ(Add(impatient, SublayerRecord()), kSuccess);
}

TEST_F(WriteLock, IsWaitedForAsLongAsTheRulesSayWithoutAWishOfTheSession) {
  EngineEmulator::Switches switches;
  switches.lockWaitMilliseconds = kOneMillisecond;
  EngineEmulator::SetSwitches(switches);
  const TestSession session;
  const TestSession other;
  ASSERT_EQ(FwpmTransactionBegin0(session, 0), kSuccess);
  EXPECT_EQ(Add(other, SublayerRecord()), kTimeout);
  ASSERT_EQ(FwpmTransactionAbort0(session), kSuccess);
}

TEST_F(WriteLock, IsGotAtOnceIfNobodyHoldsIt) {
  for (const UINT32 patience : {kOneMillisecond, UINT32{INFINITE}}) {
    EXPECT_EQ(Add(TestSession(kDynamic, patience), SublayerRecord()), kSuccess) << patience;
  }
}

TEST_F(WriteLock, IsNotNeededForReading) {
  const TestSession session;
  const TestSession reader(0, kOneMillisecond);
  ASSERT_EQ(FwpmTransactionBegin0(session, 0), kSuccess);
  FWPM_SUBLAYER0* found = nullptr;
  EXPECT_EQ(FwpmSubLayerGetByKey0(reader, &kUniversalSublayer, &found), kSuccess);
  Free(found);
  EXPECT_EQ(FwpmTransactionBegin0(reader, 1), kSuccess);
  EXPECT_EQ(FwpmTransactionCommit0(reader), kSuccess);
  EXPECT_EQ(FwpmTransactionCommit0(session), kSuccess);
}

TEST_F(WriteLock, IsNotHeldByATransactionThatOnlyReads) {
  const TestSession reader;
  const TestSession writer(0, kOneMillisecond);
  ASSERT_EQ(FwpmTransactionBegin0(reader, 1), kSuccess);
  EXPECT_EQ(FwpmTransactionBegin0(writer, 0), kSuccess);
  EXPECT_EQ(FwpmTransactionCommit0(writer), kSuccess);
  EXPECT_EQ(FwpmTransactionCommit0(reader), kSuccess);
}

/// Lets another thread wait for the lock that `holder` has, then calls `endClaim`, which must release it.
template <class EndClaim>
DWORD AddWhileHeld(HANDLE holder, EndClaim endClaim) {
  const TestSession patient(kDynamic, kOneMinute);
  EXPECT_EQ(FwpmTransactionBegin0(holder, 0), kSuccess);
  std::atomic<bool> asking = false;
  DWORD result = kTimeout;
  std::thread other([&] {
    asking = true;
    result = Add(patient, SublayerRecord());
  });
  while (!asking) {
    std::this_thread::yield();
  }
  endClaim();
  other.join();
  return result;
}

TEST_F(WriteLock, IsGotWhenTheOtherTransactionCommits) {
  const TestSession holder;
  EXPECT_EQ(AddWhileHeld(holder, [&] { FwpmTransactionCommit0(holder); }), kSuccess);
}

TEST_F(WriteLock, IsGotWhenTheOtherTransactionAborts) {
  const TestSession holder;
  EXPECT_EQ(AddWhileHeld(holder, [&] { FwpmTransactionAbort0(holder); }), kSuccess);
}

TEST_F(WriteLock, IsGotWhenTheOtherSessionCloses) {
  HANDLE holder = nullptr;
  ASSERT_EQ(FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, nullptr, &holder), kSuccess);
  EXPECT_EQ(AddWhileHeld(holder, [&] { FwpmEngineClose0(holder); }), kSuccess);
}

TEST_F(WriteLock, IsGotWhenTheOtherTransactionExpires) {
  const TestSession holder;
  EXPECT_EQ(AddWhileHeld(holder, [] { EngineEmulator::ExpireTransactions(); }), kSuccess);
  EXPECT_EQ(FwpmTransactionCommit0(holder), kTransactionAborted);
}

TEST_F(WriteLock, IsNotWaitedForByASessionThatHasEnded) {
  const TestSession holder;
  HANDLE waiting = nullptr;
  ASSERT_EQ(FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, nullptr, &waiting), kSuccess);
  ASSERT_EQ(FwpmTransactionBegin0(holder, 0), kSuccess);
  DWORD result = kSuccess;
  std::thread other([&] { result = Add(waiting, SublayerRecord()); });
  FwpmEngineClose0(waiting);
  other.join();
  EXPECT_EQ(result, kInvalidHandle);
  FwpmTransactionAbort0(holder);
}

TEST_F(WriteLock, IsTakenAwayAfterTooLongATime) {
  const TestSession session;
  ASSERT_EQ(FwpmTransactionBegin0(session, 0), kSuccess);
  ASSERT_EQ(Add(session, SublayerRecord()), kSuccess);
  EngineEmulator::ExpireTransactions();
  EXPECT_EQ(Add(session, SublayerRecord(kOtherSublayerKey)), kTransactionAborted);
  EXPECT_TRUE(EngineEmulator::TakeSnapshot().sublayers.empty());
  EXPECT_EQ(FwpmTransactionBegin0(session, 0), kSuccess);
  EXPECT_EQ(FwpmTransactionCommit0(session), kSuccess);
}

TEST_F(WriteLock, OfManyThreadsLosesNoChange) {
  std::atomic<int> failures = 0;
  const auto addInTransactions = [&] {
    const TestSession session(0, kOneMinute);
    for (int count = 0; count < 25; ++count) {
      failures += FwpmTransactionBegin0(session, 0) != kSuccess;
      failures += Add(session, FilterRecord(GUID{})) != kSuccess;
      failures += FwpmTransactionCommit0(session) != kSuccess;
    }
  };
  std::thread first(addInTransactions);
  std::thread second(addInTransactions);
  std::thread third(addInTransactions);
  first.join();
  second.join();
  third.join();
  EXPECT_EQ(failures, 0);
  EXPECT_EQ(EngineEmulator::TakeSnapshot().filters.size(), 75U);
}

}  // namespace
