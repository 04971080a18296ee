#include <gmock/gmock.h>

#include "unit/engine/FailsWith.h"
#include "unit/engine/FirewallFixture.h"

namespace WfpFirewall {
namespace {

using EngineEmulator::FailCall;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class FirewallTransaction : public FirewallFixture {
 protected:
  static std::size_t Open() { return EngineEmulator::CountOutstanding().openTransactions; }
};

TEST_F(FirewallTransaction, BeginOpensTheSession) {
  firewall_->TransactionBegin();
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmEngineOpen0", "FwpmProviderGetByKey0", "FwpmProviderAdd0",
                                       "FwpmTransactionBegin0"));
  EXPECT_EQ(Open(), 1u);
}

TEST_F(FirewallTransaction, CommitOpensTheSession) {
  EXPECT_THAT([&] { firewall_->TransactionCommit(); },
              FailsWith("Failed to commit transaction.", 0x8032000D));
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmEngineOpen0", "FwpmProviderGetByKey0", "FwpmProviderAdd0",
                                       "FwpmTransactionCommit0"));
}

TEST_F(FirewallTransaction, CommitKeepsWhatWasDone) {
  firewall_->TransactionBegin();
  Add(Samples::ThreeFilters());
  firewall_->Apply();
  firewall_->TransactionCommit();
  EXPECT_EQ(Open(), 0u);
  EXPECT_THAT(FilterTexts(), SizeIs(3));
}

TEST_F(FirewallTransaction, AllowsWritingAndReading) {
  Add(Samples::ThreeFilters(Samples::kFirstKey));
  firewall_->Apply();
  firewall_->TransactionBegin();
  firewall_->RemoveSublayer(Samples::kFirstKey);
  Add(Samples::ThreeFilters(Samples::kFirstKey));
  firewall_->Apply();
  firewall_->TransactionCommit();
  EXPECT_THAT(FilterTexts(), SizeIs(3));
}

TEST_F(FirewallTransaction, SecondBeginFails) {
  firewall_->TransactionBegin();
  EXPECT_THAT([&] { firewall_->TransactionBegin(); }, FailsWith("Failed to begin transaction.", 0x8032000E));
}

TEST_F(FirewallTransaction, FailureToBeginCarriesTheEnginesCode) {
  for (const DWORD code : {DWORD{5}, DWORD{1753}, DWORD{0x80320012}}) {
    FailCall("FwpmTransactionBegin0", 1, code);
    EXPECT_THAT([&] { firewall_->TransactionBegin(); }, FailsWith("Failed to begin transaction.", code));
  }
  EXPECT_EQ(Open(), 0u);
}

TEST_F(FirewallTransaction, FailureToCommitCarriesTheEnginesCode) {
  firewall_->TransactionBegin();
  for (const DWORD code : {DWORD{5}, DWORD{1753}, DWORD{0x8032000F}}) {
    FailCall("FwpmTransactionCommit0", 1, code);
    EXPECT_THAT([&] { firewall_->TransactionCommit(); }, FailsWith("Failed to commit transaction.", code));
  }
}

TEST_F(FirewallTransaction, FailureToOpenTheSessionIsReportedAsSuch) {
  FailCall("FwpmEngineOpen0", 1, 5);
  EXPECT_THAT([&] { firewall_->TransactionBegin(); }, FailsWith("Error opening engine.", 5));
  FailCall("FwpmEngineOpen0", 1, 5);
  EXPECT_THAT([&] { firewall_->TransactionCommit(); }, FailsWith("Error opening engine.", 5));
}

TEST_F(FirewallTransaction, LeftOpenItEndsWithTheSession) {
  firewall_->TransactionBegin();
  Add(Samples::ThreeFilters());
  firewall_->Apply();
  TakeCalls();
  firewall_.reset();
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmEngineClose0"));
  EXPECT_EQ(Open(), 0u);
  EXPECT_THAT(FilterTexts(), IsEmpty());
}

}  // namespace
}  // namespace WfpFirewall
