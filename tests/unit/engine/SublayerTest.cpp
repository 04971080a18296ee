#include "engine/Sublayer.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>
#include <utility>

#include "filtering/Values.h"
#include "support/LeftOf.h"
#include "unit/engine/Samples.h"

namespace WfpFirewall {
namespace {

/// The ports of a sublayer's filters, each of which has one condition, on a port.
std::vector<int> Ports(const Sublayer& sublayer) {
  std::vector<int> ports;
  for (const Filter& filter : sublayer.GetFilters()) {
    const auto value = filter.GetConditions().at(0).GetConditionValue();
    ports.push_back(*dynamic_cast<const Filtering::Values::Port&>(*value).GetValue());
  }
  return ports;
}

TEST(Sublayer, HasItsKeyAndNoFiltersAtFirst) {
  const Sublayer sublayer(Samples::kFirstKey, L"Name", L"Description");
  EXPECT_EQ(sublayer.GetGuid(), Samples::kFirstKey);
  EXPECT_TRUE(sublayer.IsEmpty());
  EXPECT_TRUE(sublayer.GetFilters().empty());
}

TEST(Sublayer, TakesItsTextsOver) {
  const auto left = [](const auto& make) { return LeftOf(std::wstring(L"Ports"), make); };
  EXPECT_EQ(left([](std::wstring&& text) { Sublayer(GUID(), std::move(text), L""); }), L"");
  EXPECT_EQ(left([](std::wstring&& text) { Sublayer(GUID(), L"", std::move(text)); }), L"");
}

TEST(Sublayer, KeepsFiltersInTheOrderOfAdding) {
  Sublayer sublayer = Samples::Empty(Samples::kFirstKey);
  sublayer.AddFilter(Samples::BlockPort(5)).AddFilter(Samples::BlockPort(4));
  sublayer.AddFilters({Samples::BlockPort(9), Samples::BlockPort(7), Samples::BlockPort(8)});
  EXPECT_FALSE(sublayer.IsEmpty());
  EXPECT_EQ(Ports(sublayer), (std::vector{5, 4, 9, 7, 8}));
}

TEST(Sublayer, AddingReturnsTheSublayerItself) {
  Sublayer sublayer = Samples::Empty(Samples::kFirstKey);
  EXPECT_EQ(&sublayer.AddFilter(Samples::BlockPort(1)), &sublayer);
  EXPECT_EQ(&sublayer.AddFilters({}), &sublayer);
}

TEST(Sublayer, GivesItsFiltersAsACopy) {
  const Sublayer sublayer = Samples::ThreeFilters();
  std::vector<Filter> filters = sublayer.GetFilters();
  filters[0].AddCondition(Filtering::ConditionEqual(new Filtering::Values::LocalPort(9)));
  filters.clear();
  ASSERT_EQ(sublayer.GetFilters().size(), 3u);
  EXPECT_EQ(sublayer.GetFilters()[0].GetConditions().size(), 1u);
}

TEST(Sublayer, FilterAddedToACopyDoesNotReachTheOriginal) {
  const Sublayer original = Samples::ThreeFilters();
  Sublayer copy = original;
  copy.AddFilter(Samples::BlockPort(4));
  EXPECT_EQ(original.GetFilters().size(), 3u);
  EXPECT_EQ(copy.GetFilters().size(), 4u);
}

TEST(Sublayer, RuleSetsAreDeletedThroughIt) {
  static_assert(std::has_virtual_destructor_v<Sublayer>);
  struct RuleSet : Sublayer {
    explicit RuleSet(bool& deleted) : Sublayer(Samples::Empty(Samples::kFirstKey)), deleted_(deleted) {}
    RuleSet(const RuleSet&) = delete;
    RuleSet& operator=(const RuleSet&) = delete;
    ~RuleSet() override { deleted_ = true; }

   private:
    bool& deleted_;
  };
  bool deleted = false;
  std::unique_ptr<Sublayer> ruleSet = std::make_unique<RuleSet>(deleted);
  ruleSet.reset();
  EXPECT_TRUE(deleted);
}

}  // namespace
}  // namespace WfpFirewall
