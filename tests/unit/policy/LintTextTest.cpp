#include "policy/LintText.h"

#include <gmock/gmock.h>

#include "catalog/Keys.h"

namespace {

using Policy::Detail;
using Policy::Finding;
using Policy::FindingKind;

constexpr GUID kUs{0xaaaaaaaa, 1, 2, {3, 4, 5, 6, 7, 8, 9, 10}};
constexpr GUID kThem{0xbbbbbbbb, 1, 2, {3, 4, 5, 6, 7, 8, 9, 10}};

/// Filters 1 to 3 are of Windows Firewall, 4 to 10 of another program, 11 and 12 ours.
class LintTextTest : public testing::Test {
 protected:
  LintTextTest() {
    snapshot_.providers = {{kUs, "Corvane", ""}, {kThem, "Other VPN", ""}};
    for (UINT64 id = 1; id <= 12; ++id) {
      Policy::Filter filter{};
      filter.id = id;
      filter.name = "F";
      filter.providerKey = id <= 10 ? kThem : kUs;
      if (id <= 3) {
        filter.providerKey = Catalog::kWindowsFirewallProviderKey;
      }
      snapshot_.filters.push_back(filter);
    }
  }

  [[nodiscard]] Finding About(UINT64 id, FindingKind kind = FindingKind::NeverDecides) const {
    return {kind, &snapshot_.filters[id - 1], nullptr, "Why.", "do better"};
  }

  [[nodiscard]] std::string TextOf(const std::vector<Finding>& findings,
                                   Detail detail = Detail::Brief) const {
    return Policy::Describe(findings, Policy::Owners(snapshot_, kUs), detail);
  }

 private:
  Policy::Snapshot snapshot_;
};

TEST_F(LintTextTest, SaysThatThereIsNothing) { EXPECT_EQ(TextOf({}), "no findings\n"); }

TEST_F(LintTextTest, OursComeFirstAndTheSystemsLastInOneLineAKind) {
  EXPECT_EQ(TextOf({About(1), About(2), About(2), About(3, FindingKind::FlagsEquality), About(4), About(11),
                    About(12, FindingKind::FlagsEquality)}),
            "filters of Corvane (ours):\n"
            "  flags-equality: Why. Clearer: do better.\n"
            "    filter 12 \"F\"\n"
            "  never-decides: Why. Clearer: do better.\n"
            "    filter 11 \"F\"\n"
            "filters of Other VPN, which only their owner can change:\n"
            "  never-decides: Why. Clearer: do better.\n"
            "    filter 4 \"F\"\n"
            "Windows Firewall: 2 filters never decide\n"
            "Windows Firewall: 1 filter compares a whole word of flags\n");
}

TEST_F(LintTextTest, CountsTheRestOfManyFilters) {
  const std::vector<Finding> seven{About(4), About(5), About(6), About(7), About(8), About(9), About(10)};
  EXPECT_EQ(
      TextOf(seven),
      "filters of Other VPN, which only their owner can change:\n"
      "  never-decides: Why. Clearer: do better.\n"
      "    filter 4 \"F\"\n    filter 5 \"F\"\n    filter 6 \"F\"\n    filter 7 \"F\"\n    filter 8 \"F\"\n"
      "    and 2 more\n");
  EXPECT_THAT(TextOf(seven, Detail::Whole), testing::EndsWith("    filter 9 \"F\"\n    filter 10 \"F\"\n"));
}

TEST_F(LintTextTest, WholeNamesTheSystemsFiltersToo) {
  EXPECT_EQ(TextOf({About(3)}, Detail::Whole),
            "filters of Windows Firewall, which come with the system:\n"
            "  never-decides: Why. Clearer: do better.\n"
            "    filter 3 \"F\"\n");
}

}  // namespace
