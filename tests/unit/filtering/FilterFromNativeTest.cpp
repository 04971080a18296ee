#include <gmock/gmock.h>

#include "catalog/Guid.h"
#include "filtering/Filter.h"
#include "filtering/Values.h"
#include "support/EngineKeys.h"
#include "unit/engine/FailsWith.h"

namespace WfpFirewall {
namespace {

using Catalog::operator""_guid;

using Filtering::Condition;
using Filtering::ConditionType;
using Filtering::LayerType;
using Filtering::Values::LocalPort;
using Filtering::Values::Protocol;

/// A permit at the outbound IPv4 connect layer.
FWPM_FILTER0 NativePermit() {
  FWPM_FILTER0 native{};
  native.action.type = FWP_ACTION_PERMIT;
  native.layerKey = kConnectV4;
  return native;
}

/// Reads a filter from a record, and writes it to a new record.
FWPM_FILTER0 ReadAndWrite(FWPM_FILTER0 native) { return Filter::BuildFromNative(&native).ToNativeFilter(); }

TEST(FilterFromNative, BlockIsReadAsBlock) {
  FWPM_FILTER0 native = NativePermit();
  native.action.type = FWP_ACTION_BLOCK;
  EXPECT_EQ(Filter::BuildFromNative(&native).GetAction(), Action::Block);
}

TEST(FilterFromNative, AnyOtherActionIsReadAsPermit) {
  for (const FWP_ACTION_TYPE type : {0x1002u, 0x5003u, 0x6004u, 0x4005u, 0u}) {
    FWPM_FILTER0 native = NativePermit();
    native.action.type = type;
    EXPECT_EQ(Filter::BuildFromNative(&native).GetAction(), Action::Permit) << type;
  }
}

TEST(FilterFromNative, LayerIsRead) {
  FWPM_FILTER0 native = NativePermit();
  EXPECT_EQ(Filter::BuildFromNative(&native).GetLayer().GetLayerType(), LayerType::AleAuthConnectV4);
}

TEST(FilterFromNative, IpV6ForwardingLayerCanBeRead) {
  FWPM_FILTER0 native = NativePermit();
  native.layerKey = "7b964818-19c7-493a-b71f-832c3684d28c"_guid;
  EXPECT_EQ(Filter::BuildFromNative(&native).GetLayer().GetLayerType(), LayerType::IpForwardV6);
}

TEST(FilterFromNative, UnknownLayerIsRefused) {
  FWPM_FILTER0 native = NativePermit();
  native.layerKey = "3b89653c-c170-49e4-b1cd-e0eeeee19a3e"_guid;
  EXPECT_THAT([&] { Filter::BuildFromNative(&native); }, FailsWith("Not supported Layer type."));
}

TEST(FilterFromNative, EmptyWeightStaysEmpty) {
  EXPECT_EQ(ReadAndWrite(NativePermit()).weight.type, FWP_EMPTY);
}

TEST(FilterFromNative, WeightIsTheFirstByteWhateverItsType) {
  FWPM_FILTER0 native = NativePermit();
  native.weight.type = FWP_UINT8;
  native.weight.uint8 = 15;
  EXPECT_EQ(ReadAndWrite(native).weight.uint8, 15);
  native.weight.type = FWP_UINT16;
  native.weight.uint16 = 0x0203;
  EXPECT_EQ(ReadAndWrite(native).weight.uint8, 3);
  native.weight.type = FWP_EMPTY;
  native.weight.uint8 = 9;
  EXPECT_EQ(ReadAndWrite(native).weight.uint8, 9);
}

TEST(FilterFromNative, LargestWeightByteIsKept) {
  FWPM_FILTER0 native = NativePermit();
  native.weight.type = FWP_UINT8;
  native.weight.uint8 = 255;
  EXPECT_EQ(ReadAndWrite(native).weight.uint8, 255);
}

TEST(FilterFromNative, OverrideIsReadOnlyWhenItIsTheOnlyFlag) {
  FWPM_FILTER0 native = NativePermit();
  EXPECT_EQ(ReadAndWrite(native).flags, 0u);
  native.flags = FWPM_FILTER_FLAG_CLEAR_ACTION_RIGHT;
  EXPECT_EQ(ReadAndWrite(native).flags, 8u);
  native.flags = FWPM_FILTER_FLAG_CLEAR_ACTION_RIGHT | FWPM_FILTER_FLAG_PERSISTENT;
  EXPECT_EQ(ReadAndWrite(native).flags, 0u);
  native.flags = FWPM_FILTER_FLAG_PERSISTENT;
  EXPECT_EQ(ReadAndWrite(native).flags, 0u);
}

TEST(FilterFromNative, ConditionsAreReadInOrder) {
  FWPM_FILTER_CONDITION0 conditions[2]{};
  conditions[0].fieldKey = kProtocol;
  conditions[0].conditionValue.type = FWP_UINT8;
  conditions[0].conditionValue.uint8 = 17;
  conditions[1].fieldKey = kLocalPort;
  conditions[1].matchType = FWP_MATCH_NOT_EQUAL;
  conditions[1].conditionValue.type = FWP_UINT16;
  conditions[1].conditionValue.uint16 = 67;
  FWPM_FILTER0 native = NativePermit();
  native.numFilterConditions = 2;
  native.filterCondition = conditions;

  const std::vector<Condition> read = Filter::BuildFromNative(&native).GetConditions();
  ASSERT_EQ(read.size(), 2u);
  EXPECT_EQ(read[0].GetConditionType(), ConditionType::Equal);
  const auto* const protocol = dynamic_cast<Protocol*>(read[0].GetConditionValue().get());
  ASSERT_NE(protocol, nullptr);
  EXPECT_EQ(*protocol->GetValue(), 17);
  EXPECT_EQ(read[1].GetConditionType(), ConditionType::NotEqual);
  const auto* const port = dynamic_cast<LocalPort*>(read[1].GetConditionValue().get());
  ASSERT_NE(port, nullptr);
  EXPECT_EQ(*port->GetValue(), 67);
}

TEST(FilterFromNative, UnknownConditionIsRefused) {
  FWPM_FILTER_CONDITION0 condition{};
  condition.fieldKey = kOriginalIcmpType;
  FWPM_FILTER0 native = NativePermit();
  native.numFilterConditions = 1;
  native.filterCondition = &condition;
  EXPECT_THAT([&] { Filter::BuildFromNative(&native); }, FailsWith("Not yet supported condition"));
}

TEST(FilterFromNative, RangeCanBeReadButNotWrittenBack) {
  FWP_RANGE0 range{};
  FWPM_FILTER_CONDITION0 condition{};
  condition.fieldKey = kInterfaceIndex;
  condition.matchType = FWP_MATCH_RANGE;
  condition.conditionValue.type = FWP_RANGE_TYPE;
  condition.conditionValue.rangeValue = &range;
  FWPM_FILTER0 native = NativePermit();
  native.numFilterConditions = 1;
  native.filterCondition = &condition;
  Filter filter = Filter::BuildFromNative(&native);
  EXPECT_THAT([&] { filter.ToNativeFilter(); }, FailsWith("Not supported condition value"));
}

TEST(FilterFromNative, OwnersAndNamesAreNotKept) {
  GUID provider = "11111111-2222-3333-4444-555555555555"_guid;
  wchar_t name[] = L"someone else's";
  FWPM_FILTER0 native = NativePermit();
  native.filterKey = provider;
  native.displayData.name = name;
  native.providerKey = &provider;
  native.subLayerKey = provider;
  native.filterId = 7;
  const FWPM_FILTER0 written = ReadAndWrite(native);
  EXPECT_EQ(written.filterKey, GUID{});
  EXPECT_EQ(written.displayData.name, nullptr);
  EXPECT_EQ(written.providerKey, nullptr);
  EXPECT_EQ(written.subLayerKey, GUID{});
  EXPECT_EQ(written.filterId, 0u);
}

}  // namespace
}  // namespace WfpFirewall
