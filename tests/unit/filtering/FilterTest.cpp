#include "filtering/Filter.h"

#include <gmock/gmock.h>

#include <optional>
#include <vector>

#include "filtering/Values.h"
#include "support/EngineKeys.h"
#include "unit/engine/FailsWith.h"
#include "unit/filtering/NativeForm.h"

namespace WfpFirewall {
namespace {

using Filtering::Condition;
using Filtering::ConditionEqual;
using Filtering::ConditionNotEqual;
using Filtering::ConditionType;
using Filtering::Layer;
using Filtering::LayerType;
using Filtering::Values::LocalInterfaceLuid;
using Filtering::Values::LocalPort;
using Filtering::Values::Port;
using Filtering::Values::Protocol;
using Filtering::Values::RemotePort;
using testing::ElementsAre;

Filter InConnectV4(Action action) {
  Filter filter(action);
  filter.SetLayer(LayerType::AleAuthConnectV4);
  return filter;
}

TEST(Filter, BeginsWithoutLayerAndConditions) {
  const Filter filter(Action::Permit);
  EXPECT_EQ(filter.GetAction(), Action::Permit);
  EXPECT_EQ(filter.GetLayer().GetLayerType(), LayerType::None);
  EXPECT_TRUE(filter.GetConditions().empty());
}

TEST(Filter, ActionsHaveTheirNumbers) {
  EXPECT_EQ(static_cast<int>(Action::Block), 0);
  EXPECT_EQ(static_cast<int>(Action::Permit), 1);
}

TEST(Filter, LayerNoneIsRefusedAndLeavesTheFilterUnchanged) {
  Filter filter = InConnectV4(Action::Block);
  EXPECT_THAT([&] { filter.SetLayer(Layer()); },
              FailsWith("Layer type must be set befo assigning it to filter!"));
  EXPECT_EQ(filter.GetLayer().GetLayerType(), LayerType::AleAuthConnectV4);
}

TEST(Filter, GivesItsConditionsAsACopyInTheOrderOfAdding) {
  Filter filter(Action::Permit);
  auto* const first = new LocalPort(67);
  auto* const second = new RemotePort(68);
  filter.AddCondition(ConditionEqual(first));
  filter.AddCondition(ConditionEqual(second));
  std::vector<Condition> conditions = filter.GetConditions();
  ASSERT_EQ(conditions.size(), 2u);
  EXPECT_EQ(conditions[0].GetConditionValue().get(), first);
  EXPECT_EQ(conditions[1].GetConditionValue().get(), second);
  conditions.clear();
  EXPECT_EQ(filter.GetConditions().size(), 2u);
}

TEST(FilterToNative, WithoutLayerThrows) {
  EXPECT_THAT([] { Filter(Action::Block).ToNativeFilter(); }, FailsWith("Layer type None cant be set."));
}

TEST(FilterToNative, IpV6ForwardingLayerCannotBeWritten) {
  Filter filter(Action::Block);
  filter.SetLayer(LayerType::IpForwardV6);
  EXPECT_THAT([&] { filter.ToNativeFilter(); }, FailsWith("Not supported Layer type."));
}

TEST(FilterToNative, LayerBecomesItsKey) {
  EXPECT_EQ(InConnectV4(Action::Block).ToNativeFilter().layerKey, kConnectV4);
}

TEST(FilterToNative, ActionsBecomeTheEnginesNumbers) {
  EXPECT_EQ(InConnectV4(Action::Block).ToNativeFilter().action.type, 0x1001u);
  EXPECT_EQ(InConnectV4(Action::Permit).ToNativeFilter().action.type, 0x1002u);
}

TEST(FilterToNative, AnyActionButBlockPermits) {
  EXPECT_EQ(InConnectV4(static_cast<Action>(2)).ToNativeFilter().action.type, 0x1002u);
}

TEST(FilterToNative, WeightZeroIsLeftToTheEngine) {
  Filter filter = InConnectV4(Action::Block);
  EXPECT_EQ(filter.ToNativeFilter().weight.type, FWP_EMPTY);
  filter.SetWeight(14);
  filter.SetWeight(0);
  EXPECT_EQ(filter.ToNativeFilter().weight.type, FWP_EMPTY);
}

TEST(FilterToNative, WeightIsItsLowByteUnchecked) {
  struct Row {
    std::int16_t weight;
    int native;
  };
  for (const Row& row : {Row{1, 1}, {15, 15}, {16, 16}, {256, 0}, {300, 44}, {-1, 255}}) {
    Filter filter = InConnectV4(Action::Block);
    filter.SetWeight(row.weight);
    const FWPM_FILTER0 native = filter.ToNativeFilter();
    EXPECT_EQ(native.weight.type, FWP_UINT8) << row.weight;
    EXPECT_EQ(native.weight.uint8, row.native) << row.weight;
  }
}

TEST(FilterToNative, OverrideBecomesTheOneFlag) {
  Filter filter = InConnectV4(Action::Permit);
  EXPECT_EQ(filter.ToNativeFilter().flags, 0u);
  filter.OverrideOtherSublayers();
  EXPECT_EQ(filter.ToNativeFilter().flags, 8u);
}

TEST(FilterToNative, NoConditionsGiveNoArray) {
  const FWPM_FILTER0 native = InConnectV4(Action::Block).ToNativeFilter();
  EXPECT_EQ(native.numFilterConditions, 0u);
  EXPECT_EQ(native.filterCondition, nullptr);
}

TEST(FilterToNative, ConditionsKeepTheirOrderAndMatchTypes) {
  const NativeForm native({ConditionEqual(new Protocol(IPPROTO_UDP)), ConditionNotEqual(new LocalPort(67)),
                           Filtering::ConditionLess(new RemotePort(68))});
  ASSERT_EQ(native.record.numFilterConditions, 3u);
  EXPECT_EQ(native.Condition(0).matchType, FWP_MATCH_EQUAL);
  EXPECT_EQ(native.Condition(0).conditionValue.uint8, 17);
  EXPECT_EQ(native.Condition(1).matchType, FWP_MATCH_NOT_EQUAL);
  EXPECT_EQ(native.Condition(1).conditionValue.uint16, 67);
  EXPECT_EQ(native.Condition(2).matchType, FWP_MATCH_LESS);
  EXPECT_EQ(native.Condition(2).conditionValue.uint16, 68);
}

TEST(FilterToNative, LeavesTheSublayersFieldsZero) {
  Filter filter = InConnectV4(Action::Permit);
  filter.SetWeight(14);
  const FWPM_FILTER0 native = filter.ToNativeFilter();
  EXPECT_EQ(native.filterKey, GUID{});
  EXPECT_EQ(native.displayData.name, nullptr);
  EXPECT_EQ(native.displayData.description, nullptr);
  EXPECT_EQ(native.providerKey, nullptr);
  EXPECT_EQ(native.providerData.size, 0u);
  EXPECT_EQ(native.providerData.data, nullptr);
  EXPECT_EQ(native.subLayerKey, GUID{});
  EXPECT_EQ(native.action.filterType, GUID{});
  EXPECT_EQ(native.providerContextKey, GUID{});
  EXPECT_EQ(native.reserved, nullptr);
  EXPECT_EQ(native.filterId, 0u);
  EXPECT_EQ(native.effectiveWeight.type, FWP_EMPTY);
}

TEST(FilterToNative, UnknownConditionTypeThrows) {
  Filter filter = InConnectV4(Action::Permit);
  filter.AddCondition(Condition(static_cast<ConditionType>(8), new LocalPort(53)));
  EXPECT_THAT([&] { filter.ToNativeFilter(); }, FailsWith("Not supported Condition type."));
}

TEST(FilterToNative, BaseClassOfAPortFailsOnlyNow) {
  Filter filter = InConnectV4(Action::Permit);
  EXPECT_NO_THROW(filter.AddCondition(ConditionEqual(new Port(53))));
  EXPECT_THAT([&] { filter.ToNativeFilter(); }, FailsWith("Not supported condition value"));
}

TEST(FilterToNative, BaseClassOfAnAddressFailsOnlyNow) {
  Filter filter = InConnectV4(Action::Permit);
  EXPECT_NO_THROW(filter.AddCondition(ConditionEqual(new Filtering::Values::IpAddressV4("10.0.0.1"))));
  EXPECT_THAT([&] { filter.ToNativeFilter(); }, FailsWith("You can use base IpAddressV4 class as condition"));
}

TEST(FilterLifetime, CopiesShareTheirConditionsValues) {
  auto* const luid = new LocalInterfaceLuid(42);
  std::optional<NativeForm> original(std::in_place, std::vector{ConditionEqual(luid)});
  Filter copy = original->filter;
  const FWPM_FILTER0 native = copy.ToNativeFilter();
  original.reset();
  EXPECT_EQ(native.filterCondition[0].conditionValue.uint64, luid->GetValue());
  EXPECT_EQ(*native.filterCondition[0].conditionValue.uint64, 42u);
}

TEST(FilterLifetime, ConditionAddedToACopyDoesNotReachTheOriginal) {
  const Filter original = InConnectV4(Action::Permit);
  Filter copy = original;
  copy.AddCondition(ConditionEqual(new LocalPort(53)));
  EXPECT_TRUE(original.GetConditions().empty());
  EXPECT_EQ(copy.GetConditions().size(), 1u);
}

std::vector<int> Ports(const Filter& filter) {
  std::vector<int> ports;
  for (const Condition& condition : filter.GetConditions()) {
    ports.push_back(*dynamic_cast<const LocalPort&>(*condition.GetConditionValue()).GetValue());
  }
  return ports;
}

TEST(FilterLifetime, CopiesAddTheirConditionsApart) {
  Filter original = InConnectV4(Action::Permit);
  for (UINT16 port = 1; port <= 4; ++port) {
    original.AddCondition(ConditionEqual(new LocalPort(port)));
  }
  Filter copy = original;
  copy.AddCondition(ConditionEqual(new LocalPort(5)));
  original.AddCondition(ConditionEqual(new LocalPort(6)));
  EXPECT_THAT(Ports(copy), ElementsAre(1, 2, 3, 4, 5));
  EXPECT_THAT(Ports(original), ElementsAre(1, 2, 3, 4, 6));
}

TEST(FilterLifetime, NativeArrayIsSharedByCopies) {
  std::optional<NativeForm> original(std::in_place, std::vector{ConditionEqual(new RemotePort(53))});
  const FWPM_FILTER_CONDITION0* const array = original->record.filterCondition;
  const Filter copy = original->filter;
  original->filter.ToNativeFilter();
  original.reset();
  EXPECT_EQ(array[0].fieldKey, kRemotePort);
  EXPECT_EQ(array[0].conditionValue.uint16, 53);
}

TEST(FilterLifetime, NextNativeFormHasAnArrayOfItsOwn) {
  NativeForm form({ConditionEqual(new RemotePort(53))});
  form.filter.AddCondition(ConditionEqual(new LocalPort(67)));
  const FWPM_FILTER0 second = form.filter.ToNativeFilter();
  ASSERT_EQ(second.numFilterConditions, 2u);
  EXPECT_EQ(second.filterCondition[0].conditionValue.uint16, 53);
  EXPECT_EQ(second.filterCondition[1].conditionValue.uint16, 67);
}

TEST(FilterLifetime, FailedConversionKeepsThePreviousNativeArray) {
  NativeForm form({ConditionEqual(new RemotePort(53))});
  form.filter.AddCondition(ConditionEqual(new Port(1)));
  EXPECT_THROW(form.filter.ToNativeFilter(), FirewallException);
  EXPECT_EQ(form.Condition().fieldKey, kRemotePort);
  EXPECT_EQ(form.Condition().conditionValue.uint16, 53);
}

TEST(FilterLifetime, FailedConversionKeepsTheFiltersOwnFields) {
  Filter filter = InConnectV4(Action::Permit);
  filter.SetWeight(14);
  filter.AddCondition(ConditionEqual(new Port(1)));
  EXPECT_THROW(filter.ToNativeFilter(), FirewallException);
  EXPECT_EQ(filter.GetAction(), Action::Permit);
  EXPECT_EQ(filter.GetLayer().GetLayerType(), LayerType::AleAuthConnectV4);
  EXPECT_EQ(filter.GetConditions().size(), 1u);
}

}  // namespace
}  // namespace WfpFirewall
