#include "EngineClient.h"

namespace {

using Transaction = EngineTest;

std::size_t CountSublayers() { return EngineEmulator::TakeSnapshot().sublayers.size(); }

TEST_F(Transaction, KeepsItsChangesAtCommit) {
  const TestSession session;
  ASSERT_EQ(FwpmTransactionBegin0(session, 0), kSuccess);
  ASSERT_EQ(Add(session, SublayerRecord()), kSuccess);
  ASSERT_EQ(FwpmTransactionCommit0(session), kSuccess);
  EXPECT_EQ(CountSublayers(), 1U);
}

TEST_F(Transaction, UndoesAdditionsAndDeletionsAtAbort) {
  const TestSession session;
  ASSERT_EQ(Add(session, SublayerRecord(kSublayerKey)), kSuccess);
  ASSERT_EQ(FwpmTransactionBegin0(session, 0), kSuccess);
  ASSERT_EQ(FwpmSubLayerDeleteByKey0(session, &kSublayerKey), kSuccess);
  ASSERT_EQ(Add(session, SublayerRecord(kOtherSublayerKey)), kSuccess);
  ASSERT_EQ(FwpmTransactionAbort0(session), kSuccess);
  const auto sublayers = EngineEmulator::TakeSnapshot().sublayers;
  ASSERT_EQ(sublayers.size(), 1U);
  EXPECT_TRUE(sublayers[0].key == kSublayerKey);
}

TEST_F(Transaction, RestoresWhoRefersToWhomAtAbort) {
  const TestSession session;
  FWPM_FILTER0 filter = FilterRecord();
  filter.subLayerKey = kSublayerKey;
  ASSERT_EQ(Add(session, SublayerRecord()), kSuccess);
  ASSERT_EQ(Add(session, filter), kSuccess);
  ASSERT_EQ(FwpmTransactionBegin0(session, 0), kSuccess);
  ASSERT_EQ(FwpmFilterDeleteByKey0(session, &kFilterKey), kSuccess);
  ASSERT_EQ(FwpmTransactionAbort0(session), kSuccess);
  EXPECT_EQ(FwpmSubLayerDeleteByKey0(session, &kSublayerKey), kInUse);
}

TEST_F(Transaction, DoesNotNest) {
  const TestSession session;
  ASSERT_EQ(FwpmTransactionBegin0(session, 0), kSuccess);
  EXPECT_EQ(FwpmTransactionBegin0(session, 0), kTransactionInProgress);
  EXPECT_EQ(FwpmTransactionCommit0(session), kSuccess);
}

TEST_F(Transaction, CannotEndWithoutABeginning) {
  const TestSession session;
  EXPECT_EQ(FwpmTransactionCommit0(session), kNoTransactionInProgress);
  EXPECT_EQ(FwpmTransactionAbort0(session), kNoTransactionInProgress);
}

TEST_F(Transaction, IsOverAfterCommitAndAbort) {
  const TestSession session;
  ASSERT_EQ(FwpmTransactionBegin0(session, 0), kSuccess);
  ASSERT_EQ(FwpmTransactionCommit0(session), kSuccess);
  EXPECT_EQ(FwpmTransactionCommit0(session), kNoTransactionInProgress);
  ASSERT_EQ(FwpmTransactionBegin0(session, 0), kSuccess);
  ASSERT_EQ(FwpmTransactionAbort0(session), kSuccess);
  EXPECT_EQ(FwpmTransactionAbort0(session), kNoTransactionInProgress);
}

TEST_F(Transaction, IsRefusedWithUnknownFlags) {
  const TestSession session;
  EXPECT_EQ(FwpmTransactionBegin0(session, 2), kInvalidFlags);
  EXPECT_EQ(EngineEmulator::CountOutstanding().openTransactions, 0U);
}

TEST_F(Transaction, ThatIsReadOnlyReadsButDoesNotChange) {
  const TestSession session;
  ASSERT_EQ(Add(session, SublayerRecord()), kSuccess);
  ASSERT_EQ(FwpmTransactionBegin0(session, 1), kSuccess);
  FWPM_SUBLAYER0* sublayer = nullptr;
  EXPECT_EQ(FwpmSubLayerGetByKey0(session, &kSublayerKey, &sublayer), kSuccess);
  Free(sublayer);
  EXPECT_EQ(Add(session, SublayerRecord(kOtherSublayerKey)), kIncompatibleTransaction);
  EXPECT_EQ(FwpmSubLayerDeleteByKey0(session, &kSublayerKey), kIncompatibleTransaction);
  EXPECT_EQ(FwpmTransactionCommit0(session), kSuccess);
  EXPECT_EQ(CountSublayers(), 1U);
}

TEST_F(Transaction, ThatIsReadOnlyDoesNotTakeBackTheChangesOfOthers) {
  const TestSession reader;
  const TestSession writer;
  ASSERT_EQ(FwpmTransactionBegin0(reader, 1), kSuccess);
  ASSERT_EQ(Add(writer, SublayerRecord()), kSuccess);
  ASSERT_EQ(FwpmTransactionCommit0(reader), kSuccess);
  EXPECT_EQ(CountSublayers(), 1U);
}

TEST_F(Transaction, SurvivesACallThatFails) {
  const TestSession session;
  ASSERT_EQ(FwpmTransactionBegin0(session, 0), kSuccess);
  ASSERT_EQ(Add(session, SublayerRecord(kSublayerKey)), kSuccess);
  EXPECT_EQ(Add(session, SublayerRecord(kSublayerKey)), kAlreadyExists);
  ASSERT_EQ(Add(session, SublayerRecord(kOtherSublayerKey)), kSuccess);
  ASSERT_EQ(FwpmTransactionCommit0(session), kSuccess);
  EXPECT_EQ(CountSublayers(), 2U);
}

TEST_F(Transaction, IsUndoneWhenItsSessionCloses) {
  {
    const TestSession session;
    ASSERT_EQ(FwpmTransactionBegin0(session, 0), kSuccess);
    ASSERT_EQ(Add(session, SublayerRecord()), kSuccess);
    EXPECT_EQ(CountSublayers(), 1U);
  }
  EXPECT_EQ(CountSublayers(), 0U);
}

TEST_F(Transaction, ShowsItsChangesToItsOwnSessionOnly) {
  const TestSession session;
  const TestSession other;
  ASSERT_EQ(FwpmTransactionBegin0(session, 0), kSuccess);
  ASSERT_EQ(Add(session, SublayerRecord()), kSuccess);
  FWPM_SUBLAYER0* sublayer = nullptr;
  EXPECT_EQ(FwpmSubLayerGetByKey0(session, &kSublayerKey, &sublayer), kSuccess);
  Free(sublayer);
  EXPECT_EQ(FwpmSubLayerGetByKey0(other, &kSublayerKey, &sublayer), kSublayerNotFound);
  ASSERT_EQ(FwpmTransactionCommit0(session), kSuccess);
  EXPECT_EQ(FwpmSubLayerGetByKey0(other, &kSublayerKey, &sublayer), kSuccess);
  Free(sublayer);
}

TEST_F(Transaction, LetsOthersReadMeanwhile) {
  const TestSession session;
  const TestSession other;
  ASSERT_EQ(FwpmTransactionBegin0(session, 0), kSuccess);
  ASSERT_EQ(FwpmTransactionBegin0(other, 1), kSuccess);
  EXPECT_EQ(FwpmTransactionCommit0(other), kSuccess);
  EXPECT_EQ(FwpmTransactionCommit0(session), kSuccess);
}

TEST_F(Transaction, DoesNotGiveOutTheIdOfAnAbortedFilterAgain) {
  const TestSession session;
  const FWPM_FILTER0 filter = FilterRecord();
  UINT64 aborted = 0;
  UINT64 kept = 0;
  ASSERT_EQ(FwpmTransactionBegin0(session, 0), kSuccess);
  ASSERT_EQ(FwpmFilterAdd0(session, &filter, nullptr, &aborted), kSuccess);
  ASSERT_EQ(FwpmTransactionAbort0(session), kSuccess);
  ASSERT_EQ(FwpmFilterAdd0(session, &filter, nullptr, &kept), kSuccess);
  EXPECT_GT(kept, aborted);
}

}  // namespace
