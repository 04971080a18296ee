#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "LibraryTest.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class LibraryLeakProtection : public LibraryTest {
 protected:
  LibraryLeakProtection() {
    engine_.PretendFileExists(L"C:\\dns.exe");
    Initialize();
  }

  [[nodiscard]] std::uint64_t Enable(const std::vector<std::uint32_t>& permittedAddresses,
                                     std::uint64_t luid = 7) const {
    return library_->EnableLeakProtection("198.51.100.7", Log, nullptr, 0, luid, permittedAddresses.data(),
                                          permittedAddresses.size());
  }

  /// The filters that permit the listed addresses.
  [[nodiscard]] Texts ListedAddresses() const {
    Texts filters = engine_.Filters();
    std::erase_if(filters, [](const std::string& filter) {
      return filter.find("| PERMIT | UINT8 15 | CLEAR_ACTION_RIGHT |") == std::string::npos;
    });
    return filters;
  }
};

TEST_F(LibraryLeakProtection, GoesOnIsReplacedAndGoesOff) {
  EXPECT_EQ(library_->IsLeakProtectionEnabled(), 0U);
  EXPECT_EQ(Enable({0x01020304}), 0U);
  EXPECT_THAT(
      TakeLog(),
      ElementsAre(
          "NATIVE: Enabling leak protection v3",
          "NATIVE: Enabling leak protection. Allowed interface: ", "NATIVE: Allowing interface by LUID 7",
          "NATIVE: LeakProtection dnsLeakSublayer set weight", "NATIVE: LeakProtection - apply firewall.",
          "NATIVE: LeakProtection - transaction commit.", "NATIVE: LeakProtection applying finished."));
  EXPECT_EQ(library_->IsLeakProtectionEnabled(), 1U);
  EXPECT_THAT(engine_.Filters(), SizeIs(33));
  EXPECT_THAT(ListedAddresses(), ElementsAre(EndsWith("| IP_REMOTE_ADDRESS EQUAL UINT32 1.2.3.4")));

  engine_.ClearJournal();
  EXPECT_EQ(Enable({0xC8010203}), 0U);
  EXPECT_EQ(engine_.Journal().front(), "FwpmTransactionBegin0");
  EXPECT_EQ(engine_.Journal().back(), "FwpmTransactionCommit0");
  EXPECT_THAT(engine_.Filters(), SizeIs(33));
  EXPECT_THAT(ListedAddresses(), ElementsAre(EndsWith("| IP_REMOTE_ADDRESS EQUAL UINT32 200.1.2.3")));

  EXPECT_EQ(library_->DisableLeakProtection(), 0U);
  EXPECT_EQ(library_->IsLeakProtectionEnabled(), 0U);
  EXPECT_THAT(engine_.Snapshot(), SizeIs(1));  // the provider
}

TEST_F(LibraryLeakProtection, KeepsNoPointerToTheAddresses) {
  std::vector<std::uint32_t> addresses{0x01020304, 0xFFFFFFFF};
  // While another program owns the sublayer, the engine refuses the filters of the interface rules.
  std::shared_ptr<void> otherProgram = engine_.OccupySublayer(kInterfaceLeakKey);
  ASSERT_EQ(Enable(addresses), 0U);
  ASSERT_THAT(ListedAddresses(), IsEmpty());
  std::ranges::fill(addresses, 0U);
  otherProgram.reset();
  // Installing the kill switch also installs everything else that is registered.
  ASSERT_EQ(DisableInternet(), 0U);
  EXPECT_THAT(ListedAddresses(), ElementsAre(EndsWith("| IP_REMOTE_ADDRESS EQUAL UINT32 1.2.3.4 & "
                                                      "IP_REMOTE_ADDRESS EQUAL UINT32 255.255.255.255")));
}

TEST_F(LibraryLeakProtection, PassesAllSixtyFourBitsOfALuid) {
  ASSERT_EQ(Enable({}, 0xFEDCBA9876543210), 0U);
  EXPECT_THAT(TakeLog(), Contains("NATIVE: Allowing interface by LUID 18364758544493064720"));
  EXPECT_THAT(engine_.Filters(),
              Contains(EndsWith("| BLOCK | UINT8 13 | - | IP_LOCAL_INTERFACE NOT_EQUAL UINT64 "
                                "18364758544493064720")));
}

TEST_F(LibraryLeakProtection, TakesMoreAddressesThanSixteenBitsCount) {
  constexpr std::uint32_t kCount = 70'000;
  std::vector<std::uint32_t> addresses(kCount);
  for (std::uint32_t i = 0; i < kCount; ++i) {
    addresses[i] = 0x08000000 + i;
  }
  ASSERT_EQ(Enable(addresses), 0U);
  const Texts filters = ListedAddresses();
  ASSERT_THAT(filters, SizeIs(1));
  EXPECT_THAT(filters[0], HasSubstr("| IP_REMOTE_ADDRESS EQUAL UINT32 8.0.0.0 & "));
  EXPECT_THAT(filters[0], EndsWith(" & IP_REMOTE_ADDRESS EQUAL UINT32 8.1.17.111"));
  EXPECT_EQ(std::ranges::count(filters[0], '&'), 69'999);
}

TEST_F(LibraryLeakProtection, KeepsTheArrayOfItsEnumerationBeyondUnload) {
  ASSERT_EQ(DisableInternet(), 0U);  // so that there is something to enumerate
  ASSERT_EQ(Enable({}), 0U);
  ExpectOutstandingMemory(1);
}

TEST_F(LibraryLeakProtection, LeavesOutWhatCannotBeBuilt) {
  engine_.FailCall("FwpmEngineOpen0", 1, 5);
  EXPECT_EQ(Enable({}), 0U);
  EXPECT_THAT(TakeLog(), Contains("NATIVE: Win Firewall Copy FirewallException"));
  EXPECT_EQ(library_->IsLeakProtectionEnabled(), 0U);
  EXPECT_THAT(engine_.Filters(), SizeIs(32));
}

TEST_F(LibraryLeakProtection, RemovesAllAfterAFailureAndKeepsTheErrorText) {
  engine_.FailCall("FwpmFilterAdd0", 20, 0x80320012);
  EXPECT_EQ(Enable({}), 2150760466U);
  EXPECT_STREQ(library_->GetErrorText(), "");
  EXPECT_EQ(library_->IsLeakProtectionEnabled(), 0U);
  EXPECT_THAT(engine_.Snapshot(), SizeIs(1));  // the provider
}

}  // namespace
