#include "filtering/FilterBuilder.h"

#include <gmock/gmock.h>

#include "filtering/Values.h"
#include "unit/engine/FailsWith.h"

namespace WfpFirewall {
namespace {

using Filtering::ConditionEqual;
using Filtering::ConditionNotEqual;
using Filtering::LayerType;
using Filtering::Values::LocalPort;
using Filtering::Values::RemotePort;

TEST(FilterBuilder, BuildsAFilterInOneChain) {
  Filter filter = FilterBuilder()
                      .CreateFilter(Action::Permit)
                      .InLayer(LayerType::AleAuthConnectV4)
                      .WithCondition(ConditionNotEqual(new RemotePort(53)))
                      .SetWeight(15)
                      .OverrideOtherSublayers()
                      .Get();
  EXPECT_EQ(filter.GetAction(), Action::Permit);
  EXPECT_EQ(filter.GetLayer().GetLayerType(), LayerType::AleAuthConnectV4);
  const FWPM_FILTER0 native = filter.ToNativeFilter();
  EXPECT_EQ(native.weight.uint8, 15);
  EXPECT_EQ(native.flags, 8u);
  ASSERT_EQ(native.numFilterConditions, 1u);
  EXPECT_EQ(native.filterCondition[0].matchType, FWP_MATCH_NOT_EQUAL);
  EXPECT_EQ(native.filterCondition[0].conditionValue.uint16, 53);
}

TEST(FilterBuilder, KeepsTheOrderOfConditions) {
  Filter filter = FilterBuilder()
                      .CreateFilter(Action::Block)
                      .InLayer(LayerType::AleAuthConnectV4)
                      .WithCondition(ConditionEqual(new LocalPort(1)))
                      .WithCondition(ConditionEqual(new LocalPort(2)))
                      .Get();
  const FWPM_FILTER0 native = filter.ToNativeFilter();
  ASSERT_EQ(native.numFilterConditions, 2u);
  EXPECT_EQ(native.filterCondition[0].conditionValue.uint16, 1);
  EXPECT_EQ(native.filterCondition[1].conditionValue.uint16, 2);
}

TEST(FilterBuilder, LayerNoneIsRefusedAndLeavesTheFilterUnchanged) {
  FilterBuilder builder;
  builder.CreateFilter(Action::Block).InLayer(LayerType::AleAuthConnectV4);
  EXPECT_THAT([&] { builder.InLayer(LayerType::None); },
              FailsWith("Layer type must be set befo assigning it to filter!"));
  EXPECT_EQ(builder.Get().GetLayer().GetLayerType(), LayerType::AleAuthConnectV4);
}

TEST(FilterBuilder, CopiesShareOneFilter) {
  FilterBuilder first;
  first.CreateFilter(Action::Permit);
  FilterBuilder second = first;
  second.InLayer(LayerType::AleAuthConnectV6).WithCondition(ConditionEqual(new LocalPort(53)));
  EXPECT_EQ(first.Get().GetLayer().GetLayerType(), LayerType::AleAuthConnectV6);
  EXPECT_EQ(first.Get().GetConditions().size(), 1u);
}

TEST(FilterBuilder, EveryStepReturnsABuilderOfTheSameFilter) {
  FilterBuilder builder;
  FilterBuilder created = builder.CreateFilter(Action::Permit);
  FilterBuilder placed = builder.InLayer(LayerType::AleAuthConnectV4);
  FilterBuilder conditioned = builder.WithCondition(ConditionEqual(new LocalPort(1)));
  FilterBuilder weighted = builder.SetWeight(13);
  FilterBuilder overriding = builder.OverrideOtherSublayers();
  builder.WithCondition(ConditionEqual(new LocalPort(2)));
  for (FilterBuilder* copy : {&created, &placed, &conditioned, &weighted, &overriding}) {
    EXPECT_EQ(copy->Get().GetConditions().size(), 2u);
  }
}

TEST(FilterBuilder, SecondCreateFilterDetachesOnlyThatBuilder) {
  FilterBuilder first;
  first.CreateFilter(Action::Permit);
  FilterBuilder second = first;
  FilterBuilder third = first;
  second.CreateFilter(Action::Block).InLayer(LayerType::AleAuthConnectV6);
  EXPECT_EQ(second.Get().GetAction(), Action::Block);
  EXPECT_EQ(first.Get().GetAction(), Action::Permit);
  EXPECT_EQ(first.Get().GetLayer().GetLayerType(), LayerType::None);
  third.InLayer(LayerType::AleAuthConnectV4);
  EXPECT_EQ(first.Get().GetLayer().GetLayerType(), LayerType::AleAuthConnectV4);
}

TEST(FilterBuilder, GetIsACopyAsTheFilterStands) {
  FilterBuilder builder;
  builder.CreateFilter(Action::Permit);
  const Filter early = builder.Get();
  builder.InLayer(LayerType::AleAuthConnectV4).WithCondition(ConditionEqual(new LocalPort(53)));
  EXPECT_EQ(early.GetLayer().GetLayerType(), LayerType::None);
  EXPECT_TRUE(early.GetConditions().empty());
}

}  // namespace
}  // namespace WfpFirewall
