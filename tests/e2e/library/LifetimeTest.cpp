#include "LibraryTest.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class LibraryBeforeInitialize : public LibraryTest {};
class LibraryUnload : public LibraryTest {};

TEST_F(LibraryBeforeInitialize, AnswersThatNothingIsInForce) {
  EXPECT_EQ(library_->IsInternetEnabled(), 1U);
  EXPECT_EQ(library_->IsDhcpEnabled(), 0U);
}

TEST_F(LibraryBeforeInitialize, HasNoErrorText) {
  ASSERT_NE(library_->GetErrorText(), nullptr);
  EXPECT_STREQ(library_->GetErrorText(), "");
}

TEST_F(LibraryBeforeInitialize, HasNothingToRemove) {
  EXPECT_EQ(library_->EnableInternet(), 0U);
  EXPECT_EQ(library_->DisableDhcp(Log), 0U);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: disabling dhcp"));
  EXPECT_THAT(engine_.Journal(), IsEmpty());
}

TEST_F(LibraryUnload, WithoutASessionMakesNoEngineCall) {
  Initialize();
  library_.reset();
  EXPECT_EQ(GetModuleHandleW(L"Corvane.Native.Firewall.dll"), nullptr);
  EXPECT_THAT(engine_.Journal(), IsEmpty());
}

TEST_F(LibraryUnload, ClosesTheSessionAndWithItGoesEverything) {
  Initialize();
  ASSERT_EQ(DisableInternet(), 0U);
  ASSERT_EQ(library_->EnableDhcp(Log), 0U);
  ASSERT_EQ(engine_.CountOutstanding().sessions, 1U);
  engine_.ClearJournal();

  library_.reset();

  EXPECT_EQ(GetModuleHandleW(L"Corvane.Native.Firewall.dll"), nullptr);
  EXPECT_EQ(engine_.CountOutstanding().sessions, 0U);
  EXPECT_THAT(engine_.Journal(), ElementsAre("FwpmEngineClose0"));
  EXPECT_THAT(engine_.Snapshot(), IsEmpty());
}

TEST_F(LibraryUnload, EndsATransactionThatAFailureLeftOpen) {
  Initialize();
  ASSERT_EQ(DisableInternet(), 0U);
  engine_.FailCall("FwpmFilterAdd0", 51, 5);
  ASSERT_EQ(DisableInternet(), 5U);
  ASSERT_EQ(engine_.CountOutstanding().openTransactions, 1U);
  library_.reset();
  EXPECT_EQ(engine_.CountOutstanding().sessions, 0U);
  EXPECT_THAT(engine_.Snapshot(), IsEmpty());
}

TEST_F(LibraryUnload, ForgetsEverything) {
  engine_.FailCall("FwpmFilterAdd0", 1, 5);
  Initialize();
  ASSERT_EQ(DisableInternet(), 5U);
  library_.reset();
  library_.emplace();
  EXPECT_EQ(library_->IsInternetEnabled(), 1U);
  EXPECT_STREQ(library_->GetErrorText(), "");
}

TEST_F(LibraryUnload, CanBeRepeated) {
  for (int round = 0; round < 5; ++round) {
    Initialize();
    ASSERT_EQ(DisableInternet(), 0U);
    library_.reset();
    ASSERT_EQ(GetModuleHandleW(L"Corvane.Native.Firewall.dll"), nullptr);
    ASSERT_EQ(engine_.CountOutstanding().sessions, 0U);
    library_.emplace();
  }
}

}  // namespace
