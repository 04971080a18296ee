#include <gmock/gmock.h>

#include <utility>

#include "filtering/Condition.h"
#include "filtering/Filter.h"
#include "filtering/Values.h"
#include "support/EngineKeys.h"
#include "unit/engine/FailsWith.h"
#include "unit/filtering/NativeForm.h"

namespace WfpFirewall {
namespace {

using namespace Filtering::Values;
using Filtering::Condition;
using Filtering::ConditionRange;
using Filtering::ConditionType;

void ExpectRefused(Condition condition, const char* message) {
  EXPECT_THAT([&] { NativeForm({condition}); }, FailsWith(message));
}

TEST(FilterRange, ThirtyTwoBitEndsAreCopied) {
  const NativeForm native({ConditionRange(new InterfaceIndex(3), new InterfaceIndex(7))});
  EXPECT_EQ(native.Condition().fieldKey, kInterfaceIndex);
  EXPECT_EQ(native.Condition().matchType, FWP_MATCH_RANGE);
  ASSERT_EQ(native.Condition().conditionValue.type, 258);
  const FWP_RANGE0& range = *native.Condition().conditionValue.rangeValue;
  EXPECT_EQ(range.valueLow.type, FWP_UINT32);
  EXPECT_EQ(range.valueLow.uint32, 3u);
  EXPECT_EQ(range.valueHigh.type, FWP_UINT32);
  EXPECT_EQ(range.valueHigh.uint32, 7u);
}

TEST(FilterRange, EightBitEndsAreCopied) {
  const NativeForm native({ConditionRange(new Protocol(IPPROTO_TCP), new Protocol(IPPROTO_UDP))});
  const FWP_RANGE0& range = *native.Condition().conditionValue.rangeValue;
  EXPECT_EQ(range.valueLow.type, FWP_UINT8);
  EXPECT_EQ(range.valueLow.uint8, 6);
  EXPECT_EQ(range.valueHigh.type, FWP_UINT8);
  EXPECT_EQ(range.valueHigh.uint8, 17);
}

TEST(FilterRange, SixtyFourBitEndsAreGivenByPointer) {
  auto* const low = new LocalInterfaceLuid(1);
  auto* const high = new LocalInterfaceLuid(2);
  const NativeForm native({ConditionRange(low, high)});
  const FWP_RANGE0& range = *native.Condition().conditionValue.rangeValue;
  EXPECT_EQ(range.valueLow.type, FWP_UINT64);
  EXPECT_EQ(range.valueLow.uint64, low->GetValue());
  EXPECT_EQ(range.valueHigh.type, FWP_UINT64);
  EXPECT_EQ(range.valueHigh.uint64, high->GetValue());
}

TEST(FilterRange, ApplicationEndsAreGivenByPointer) {
  auto* const low = new AppId(FWP_BYTE_BLOB{});
  auto* const high = new AppId(FWP_BYTE_BLOB{});
  const NativeForm native({ConditionRange(low, high)});
  const FWP_RANGE0& range = *native.Condition().conditionValue.rangeValue;
  EXPECT_EQ(range.valueLow.type, FWP_BYTE_BLOB_TYPE);
  EXPECT_EQ(range.valueLow.byteBlob, low->GetValue());
  EXPECT_EQ(range.valueHigh.type, FWP_BYTE_BLOB_TYPE);
  EXPECT_EQ(range.valueHigh.byteBlob, high->GetValue());
}

TEST(FilterRange, LowEndDecidesTheFieldAndEachEndItsOwnType) {
  const NativeForm native({ConditionRange(new InterfaceIndex(3), new Protocol(IPPROTO_UDP))});
  EXPECT_EQ(native.Condition().fieldKey, kInterfaceIndex);
  const FWP_RANGE0& range = *native.Condition().conditionValue.rangeValue;
  EXPECT_EQ(range.valueLow.type, FWP_UINT32);
  EXPECT_EQ(range.valueHigh.type, FWP_UINT8);
  EXPECT_EQ(range.valueHigh.uint8, 17);
}

TEST(FilterRange, EachRangeHasARecordOfItsOwn) {
  const NativeForm native({ConditionRange(new InterfaceIndex(1), new InterfaceIndex(2)),
                           ConditionRange(new InterfaceIndex(3), new InterfaceIndex(4)),
                           ConditionRange(new InterfaceIndex(5), new InterfaceIndex(6))});
  for (UINT32 i = 0; i < 3; ++i) {
    const FWP_RANGE0& range = *native.Condition(i).conditionValue.rangeValue;
    EXPECT_EQ(range.valueLow.uint32, 2 * i + 1);
    EXPECT_EQ(range.valueHigh.uint32, 2 * i + 2);
  }
}

TEST(FilterRange, PortsCannotBeARange) {
  ExpectRefused(ConditionRange(new RemotePort(1), new RemotePort(2)), "Not supported value type in range.");
  ExpectRefused(ConditionRange(new InterfaceIndex(1), new LocalPort(2)),
                "Not supported value type in range.");
}

TEST(FilterRange, NetworksCannotBeARange) {
  ExpectRefused(ConditionRange(new RemoteIpAddressAndMaskV4("10.0.0.0", "255.0.0.0"),
                               new RemoteIpAddressAndMaskV4("11.0.0.0", "255.0.0.0")),
                "Not supported value type in range.");
  ExpectRefused(
      ConditionRange(new RemoteIpAddressAndMaskV6("fe80::", 10), new RemoteIpAddressAndMaskV6("fec0::", 10)),
      "Not supported value type in range.");
}

TEST(FilterRange, MissingHighEndIsRefused) {
  ExpectRefused(Condition(ConditionType::Range, new InterfaceIndex(1)), "Not supported condition value");
}

TEST(FilterRange, EndOfABaseClassIsRefused) {
  ExpectRefused(ConditionRange(new InterfaceIndex(1), new InterfaceLuid(2)), "Not supported condition value");
  ExpectRefused(ConditionRange(new IpAddressV4("10.0.0.1"), new IpAddressV4("10.0.0.2")),
                "You can use base IpAddressV4 class as condition");
}

TEST(FilterRange, EndThatWasMovedFromIsRefused) {
  for (const bool low : {true, false}) {
    auto* const empty = new InterfaceIndex(3);
    const InterfaceIndex heir = std::move(*empty);
    auto* const whole = new InterfaceIndex(7);
    ExpectRefused(low ? ConditionRange(empty, whole) : ConditionRange(whole, empty),
                  "Not supported condition value");
  }
}

TEST(FilterRange, TypeDecidesNotTheNumberOfValues) {
  const NativeForm native({Condition(ConditionType::Equal, new RemotePort(1), new RemotePort(2))});
  EXPECT_EQ(native.Condition().matchType, FWP_MATCH_EQUAL);
  EXPECT_EQ(native.Condition().conditionValue.type, FWP_UINT16);
  EXPECT_EQ(native.Condition().conditionValue.uint16, 1);
}

TEST(FilterRange, RecordsLiveAsLongAsACopyOfTheFilter) {
  auto original =
      std::make_unique<NativeForm>(std::vector{ConditionRange(new InterfaceIndex(3), new InterfaceIndex(7))});
  const FWP_RANGE0* const range = original->Condition().conditionValue.rangeValue;
  const Filter copy = original->filter;
  original->filter.ToNativeFilter();
  original.reset();
  EXPECT_EQ(range->valueLow.uint32, 3u);
  EXPECT_EQ(range->valueHigh.uint32, 7u);
}

}  // namespace
}  // namespace WfpFirewall
