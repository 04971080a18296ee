#include "watch/FilterKeeper.h"

#include <gmock/gmock.h>

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using Watch::FilterKeeper;

constexpr GUID kOurs{0xaaaaaaaa, 1, 2, {3, 4, 5, 6, 7, 8, 9, 10}};
constexpr FilterKeeper::Clock::time_point kBegin{};

Policy::Filter FilterOf(UINT64 id, const std::string& name) {
  Policy::Filter filter{};
  filter.id = id;
  filter.name = name;
  filter.providerKey = kOurs;
  return filter;
}

class FilterKeeperTest : public testing::Test {
 protected:
  /// Reads the filters that the test says are there.
  FilterKeeper Keeper() {
    const auto read = [this] {
      ++reads_;
      if (fails_) {
        throw Policy::SnapshotError(1753, "FwpmEngineOpen0");
      }
      Policy::Snapshot snapshot = Policy::MakeSnapshot({}, filters_);
      snapshot.providers = {{kOurs, "Corvane", ""}};
      return snapshot;
    };
    return {read, kOurs, kBegin};
  }

  std::vector<Policy::Filter> filters_{FilterOf(12, "Twelve"), FilterOf(13, "Thirteen")};
  bool fails_ = false;
  int reads_ = 0;
};

TEST_F(FilterKeeperTest, KnowsWhatThereIsFromTheBeginning) {
  FilterKeeper keeper = Keeper();
  keeper.Refresh(12, kBegin);
  const auto found = keeper.Find(12);
  ASSERT_TRUE(found);
  EXPECT_EQ(found->filter.name, "Twelve");
  EXPECT_EQ(found->owner, "Corvane (ours)");
  EXPECT_TRUE(found->isOurs);
  EXPECT_FALSE(found->isGone);
  EXPECT_EQ(reads_, 1);
}

TEST_F(FilterKeeperTest, ReadsTheEngineAnewForAnUnknownFilter) {
  FilterKeeper keeper = Keeper();
  filters_.push_back(FilterOf(14, "Fourteen"));
  EXPECT_FALSE(keeper.Find(14));
  keeper.Refresh(14, kBegin);
  EXPECT_EQ(keeper.Find(14).value().filter.name, "Fourteen");
  EXPECT_EQ(reads_, 2);
}

TEST_F(FilterKeeperTest, DoesSoOnceForAFilterThatIsNotThere) {
  FilterKeeper keeper = Keeper();
  keeper.Refresh(99, kBegin);
  keeper.Refresh(99, kBegin);
  EXPECT_EQ(reads_, 2);
  EXPECT_FALSE(keeper.Find(99));
}

TEST_F(FilterKeeperTest, NoFilterHasTheIdZero) {
  FilterKeeper keeper = Keeper();
  keeper.Refresh(0, kBegin);
  EXPECT_EQ(reads_, 1);
}

TEST_F(FilterKeeperTest, RemembersFiltersThatAreGone) {
  FilterKeeper keeper = Keeper();
  filters_.pop_back();
  keeper.Refresh(12, kBegin + milliseconds(1999));
  EXPECT_FALSE(keeper.Find(13).value().isGone);
  keeper.Refresh(12, kBegin + seconds(2));
  const auto gone = keeper.Find(13);
  ASSERT_TRUE(gone);
  EXPECT_TRUE(gone->isGone);
  EXPECT_EQ(gone->filter.name, "Thirteen");
  EXPECT_EQ(gone->owner, "Corvane (ours)");
  EXPECT_EQ(keeper.Present().filters.size(), 1u);
  EXPECT_EQ(reads_, 2);
}

TEST_F(FilterKeeperTest, KeepsWhatItHasWhenTheEngineCannotBeRead) {
  FilterKeeper keeper = Keeper();
  fails_ = true;
  keeper.Refresh(12, kBegin + seconds(2));
  EXPECT_EQ(keeper.Error(), "FwpmEngineOpen0 failed: EPT_S_NOT_REGISTERED (0x000006d9)");
  EXPECT_EQ(keeper.Find(12).value().filter.name, "Twelve");
  EXPECT_FALSE(keeper.Find(12).value().isGone);
  fails_ = false;
  keeper.Refresh(12, kBegin + seconds(2));
  EXPECT_EQ(keeper.Error(), "");
}

TEST_F(FilterKeeperTest, CannotBeginWithoutReading) {
  fails_ = true;
  EXPECT_THROW(Keeper(), Policy::SnapshotError);
}

}  // namespace
