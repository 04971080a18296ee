#include "filtering/Condition.h"

#include <gmock/gmock.h>

#include <memory>
#include <optional>

#include "filtering/Values.h"
#include "unit/engine/FailsWith.h"

namespace WfpFirewall::Filtering {
namespace {

using Values::LocalPort;
using Values::RemotePort;

/// Counts how often an object is destroyed.
class TrackedPort : public LocalPort {
 public:
  TrackedPort(std::uint16_t port, int& destroyed) : LocalPort(port), destroyed_(destroyed) {}
  TrackedPort(const TrackedPort&) = delete;
  TrackedPort& operator=(const TrackedPort&) = delete;
  ~TrackedPort() override { ++destroyed_; }

 private:
  int& destroyed_;
};

TEST(ConditionType, MembersHaveTheirNumbersAndMatchTypes) {
  struct Row {
    ConditionType type;
    int number;
    int match;
  };
  constexpr Row kRows[]{
      {ConditionType::Equal, 0, 0},          {ConditionType::EqualCaseInsensitive, 1, 9},
      {ConditionType::NotEqual, 2, 10},      {ConditionType::Greater, 3, 1},
      {ConditionType::GreaterOrEqual, 4, 3}, {ConditionType::Less, 5, 2},
      {ConditionType::LessOrEqual, 6, 4},    {ConditionType::Range, 7, 5},
  };
  for (const Row& row : kRows) {
    EXPECT_EQ(static_cast<int>(row.type), row.number);
    EXPECT_EQ(static_cast<int>(MapConditionType(row.type)), row.match);
  }
}

TEST(ConditionType, MatchTypesReadBack) {
  EXPECT_EQ(MapConditionType(FWP_MATCH_EQUAL), ConditionType::Equal);
  EXPECT_EQ(MapConditionType(FWP_MATCH_EQUAL_CASE_INSENSITIVE), ConditionType::EqualCaseInsensitive);
  EXPECT_EQ(MapConditionType(FWP_MATCH_NOT_EQUAL), ConditionType::NotEqual);
  EXPECT_EQ(MapConditionType(FWP_MATCH_GREATER_OR_EQUAL), ConditionType::GreaterOrEqual);
  EXPECT_EQ(MapConditionType(FWP_MATCH_LESS), ConditionType::Less);
  EXPECT_EQ(MapConditionType(FWP_MATCH_LESS_OR_EQUAL), ConditionType::LessOrEqual);
  EXPECT_EQ(MapConditionType(FWP_MATCH_RANGE), ConditionType::Range);
}

TEST(ConditionType, GreaterReadsBackAsNotEqual) {
  EXPECT_EQ(MapConditionType(FWP_MATCH_GREATER), ConditionType::NotEqual);
}

TEST(ConditionType, FlagAndPrefixMatchTypesAreRefused) {
  for (const int match : {6, 7, 8, 11, 12, 13, -1}) {
    EXPECT_THAT([&] { MapConditionType(static_cast<FWP_MATCH_TYPE>(match)); },
                FailsWith("Not supported Condition type."))
        << match;
  }
}

TEST(ConditionType, NumbersOutsideTheEnumerationAreRefused) {
  for (const int number : {8, -1}) {
    EXPECT_THAT([&] { MapConditionType(static_cast<ConditionType>(number)); },
                FailsWith("Not supported Condition type."))
        << number;
  }
}

TEST(Condition, OneValueIsNoRange) {
  auto* const value = new LocalPort(53);
  const Condition condition(ConditionType::Equal, value);
  EXPECT_FALSE(condition.IsRangeCondition());
  EXPECT_EQ(condition.GetConditionType(), ConditionType::Equal);
  EXPECT_EQ(condition.GetConditionValue().get(), value);
  EXPECT_EQ(condition.GetConditionValue2(), nullptr);
}

TEST(Condition, TwoValuesAreARangeWhateverTheType) {
  const Condition condition(ConditionType::Equal, new LocalPort(1), new LocalPort(2));
  EXPECT_TRUE(condition.IsRangeCondition());
  EXPECT_EQ(condition.GetConditionType(), ConditionType::Equal);
}

TEST(Condition, RangeTypeWithOneValueIsNoRange) {
  EXPECT_FALSE(Condition(ConditionType::Range, new LocalPort(1)).IsRangeCondition());
}

TEST(Condition, RangeHoldsBothEnds) {
  auto* const low = new RemotePort(1);
  auto* const high = new RemotePort(2);
  const Condition range = ConditionRange(low, high);
  EXPECT_TRUE(range.IsRangeCondition());
  EXPECT_EQ(range.GetConditionType(), ConditionType::Range);
  EXPECT_EQ(range.GetConditionValue().get(), low);
  EXPECT_EQ(range.GetConditionValue2().get(), high);
}

TEST(Condition, MakersHaveTheirTypes) {
  EXPECT_EQ(ConditionEqual(new LocalPort(53)).GetConditionType(), ConditionType::Equal);
  EXPECT_EQ(ConditionNotEqual(new LocalPort(53)).GetConditionType(), ConditionType::NotEqual);
  EXPECT_EQ(ConditionEqualCaseInsensitive(new LocalPort(53)).GetConditionType(),
            ConditionType::EqualCaseInsensitive);
  EXPECT_EQ(ConditionGreater(new LocalPort(53)).GetConditionType(), ConditionType::Greater);
  EXPECT_EQ(ConditionGreaterOrEqual(new LocalPort(53)).GetConditionType(), ConditionType::GreaterOrEqual);
  EXPECT_EQ(ConditionLess(new LocalPort(53)).GetConditionType(), ConditionType::Less);
  EXPECT_EQ(ConditionLessOrEqual(new LocalPort(53)).GetConditionType(), ConditionType::LessOrEqual);
}

TEST(Condition, GivesItsNativeMatchType) {
  EXPECT_EQ(ConditionEqual(new LocalPort(53)).GetNativeConditionType(), FWP_MATCH_EQUAL);
  EXPECT_EQ(ConditionGreater(new LocalPort(53)).GetNativeConditionType(), FWP_MATCH_GREATER);
  const Condition unknown(static_cast<ConditionType>(8), new LocalPort(53));
  EXPECT_THAT([&] { (void)unknown.GetNativeConditionType(); }, FailsWith("Not supported Condition type."));
}

TEST(Condition, DeletesItsValuesThroughTheirVirtualDestructor) {
  int destroyed = 0;
  { const Condition condition = ConditionEqual(new TrackedPort(53, destroyed)); }
  EXPECT_EQ(destroyed, 1);
  { const Condition range = ConditionRange(new TrackedPort(1, destroyed), new TrackedPort(2, destroyed)); }
  EXPECT_EQ(destroyed, 3);
}

TEST(Condition, CopiesShareTheValuesUntilTheLastGoes) {
  int destroyed = 0;
  std::optional<Condition> original =
      ConditionRange(new TrackedPort(1, destroyed), new TrackedPort(2, destroyed));
  std::optional<Condition> copy = original;
  EXPECT_EQ(copy->GetConditionValue(), original->GetConditionValue());
  EXPECT_EQ(copy->GetConditionValue2(), original->GetConditionValue2());
  original.reset();
  EXPECT_EQ(destroyed, 0);
  copy.reset();
  EXPECT_EQ(destroyed, 2);
}

TEST(Condition, ValueAskedForOutlivesIt) {
  int destroyed = 0;
  std::optional<Condition> condition = ConditionEqual(new TrackedPort(53, destroyed));
  std::shared_ptr<Values::BaseValue> value = condition->GetConditionValue();
  condition.reset();
  EXPECT_EQ(destroyed, 0);
  value.reset();
  EXPECT_EQ(destroyed, 1);
}

TEST(Condition, ValueThatTakesItsOwnCopyBackIsStillDeleted) {
  int destroyed = 0;
  auto* const value = new TrackedPort(53, destroyed);
  std::optional<Condition> condition = ConditionEqual(value);
  const UINT16* const address = value->GetValue();
  {
    const LocalPort copy = *value;
    LocalPort& port = *value;
    port = LocalPort(67);
    port = copy;
  }
  EXPECT_EQ(value->GetValue(), address);
  EXPECT_EQ(*address, 53);
  condition.reset();
  EXPECT_EQ(destroyed, 1);
}

TEST(Condition, ValueThatIsAssignedToItselfIsStillDeleted) {
  int destroyed = 0;
  auto* const value = new TrackedPort(53, destroyed);
  std::optional<Condition> condition = ConditionEqual(value);
  LocalPort& port = *value;
  const LocalPort& same = port;
  port = same;
  EXPECT_EQ(*value->GetValue(), 53);
  condition.reset();
  EXPECT_EQ(destroyed, 1);
}

}  // namespace
}  // namespace WfpFirewall::Filtering
