#include <gmock/gmock.h>

#include <cstring>
#include <memory>
#include <typeinfo>

#include "catalog/Names.h"
#include "filtering/Condition.h"
#include "filtering/Values.h"
#include "support/EngineKeys.h"
#include "unit/engine/FailsWith.h"

namespace WfpFirewall::Filtering {
namespace {

using namespace Values;
using testing::ElementsAre;

const GUID kAddressFields[]{kLocalAddress, kRemoteAddress, kDestinationAddress, kSourceAddress};

/// A native condition. It tests for equality unless the test changes it.
FWPM_FILTER_CONDITION0 Native(const GUID& key, FWP_DATA_TYPE type) {
  FWPM_FILTER_CONDITION0 native{};
  native.fieldKey = key;
  native.matchType = FWP_MATCH_EQUAL;
  native.conditionValue.type = type;
  return native;
}

/// The same for a number. The other bytes of the union are not zero, because they do not belong to the
/// number.
FWPM_FILTER_CONDITION0 NativeNumber(const GUID& key, FWP_DATA_TYPE type) {
  FWPM_FILTER_CONDITION0 native = Native(key, type);
  std::memset(&native.conditionValue, 0xEE, sizeof(native.conditionValue));
  native.conditionValue.type = type;
  return native;
}

/// The value read from a condition. If it is not of exactly this class, gives null and fails the test.
template <class ValueClass>
std::shared_ptr<ValueClass> Read(FWPM_FILTER_CONDITION0& native) {
  const std::shared_ptr<BaseValue> value = Condition::FromNative(native).GetConditionValue();
  const BaseValue& held = *value;
  EXPECT_EQ(typeid(held), typeid(ValueClass)) << typeid(held).name();
  return typeid(held) == typeid(ValueClass) ? std::static_pointer_cast<ValueClass>(value) : nullptr;
}

TEST(ConditionFromNative, ApplicationKeepsPointingAtTheEnginesBytes) {
  UINT8 bytes[]{'a', 0, 0, 0};
  FWP_BYTE_BLOB blob{sizeof(bytes), bytes};
  FWPM_FILTER_CONDITION0 native = Native(kAppId, FWP_BYTE_BLOB_TYPE);
  native.conditionValue.byteBlob = &blob;
  const auto value = Read<AppId>(native);
  ASSERT_NE(value, nullptr);
  EXPECT_NE(value->GetValue(), &blob);
  EXPECT_EQ(value->GetValue()->size, 4u);
  EXPECT_EQ(value->GetValue()->data, bytes);
}

TEST(ConditionFromNative, InterfaceLuidsAreCopied) {
  UINT64 luid = 0x0006008001000000;
  FWPM_FILTER_CONDITION0 arrival = Native(kArrivalInterface, FWP_UINT64);
  arrival.conditionValue.uint64 = &luid;
  FWPM_FILTER_CONDITION0 local = Native(kLocalInterface, FWP_UINT64);
  local.conditionValue.uint64 = &luid;
  const auto arrivalValue = Read<ArrivalInterfaceLuid>(arrival);
  const auto localValue = Read<LocalInterfaceLuid>(local);
  ASSERT_TRUE(arrivalValue != nullptr && localValue != nullptr);
  luid = 0;
  EXPECT_EQ(*arrivalValue->GetValue(), 0x0006008001000000u);
  EXPECT_EQ(*localValue->GetValue(), 0x0006008001000000u);
}

template <class ValueClass>
void ExpectNumberRead(FWPM_FILTER_CONDITION0 native, int expected) {
  const auto value = Read<ValueClass>(native);
  ASSERT_NE(value, nullptr);
  EXPECT_EQ(*value->GetValue(), expected);
}

TEST(ConditionFromNative, ThirtyTwoBitFields) {
  FWPM_FILTER_CONDITION0 index = NativeNumber(kInterfaceIndex, FWP_UINT32);
  index.conditionValue.uint32 = 0x10001;
  ExpectNumberRead<InterfaceIndex>(index, 0x10001);
  FWPM_FILTER_CONDITION0 subIndex = NativeNumber(kSubInterfaceIndex, FWP_UINT32);
  subIndex.conditionValue.uint32 = 0x10002;
  ExpectNumberRead<SubInterfaceIndex>(subIndex, 0x10002);
  FWPM_FILTER_CONDITION0 flags = NativeNumber(kFlagsField, FWP_UINT32);
  flags.conditionValue.uint32 = 1;
  ExpectNumberRead<Flag>(flags, 1);
}

TEST(ConditionFromNative, EightBitFields) {
  FWPM_FILTER_CONDITION0 protocol = NativeNumber(kProtocol, FWP_UINT8);
  protocol.conditionValue.uint8 = 255;
  ExpectNumberRead<Protocol>(protocol, 255);
  FWPM_FILTER_CONDITION0 addressType = NativeNumber(kLocalAddressType, FWP_UINT8);
  addressType.conditionValue.uint8 = 3;
  ExpectNumberRead<IpLocalAddressType>(addressType, 3);
}

TEST(ConditionFromNative, Ports) {
  FWPM_FILTER_CONDITION0 local = NativeNumber(kLocalPort, FWP_UINT16);
  local.conditionValue.uint16 = 65535;
  ExpectNumberRead<LocalPort>(local, 65535);
  FWPM_FILTER_CONDITION0 remote = NativeNumber(kRemotePort, FWP_UINT16);
  remote.conditionValue.uint16 = 8080;
  ExpectNumberRead<RemotePort>(remote, 8080);
}

template <class ValueClass>
void ExpectAddressRead(const GUID& key) {
  FWPM_FILTER_CONDITION0 native = NativeNumber(key, FWP_UINT32);
  native.conditionValue.uint32 = 0xC0A80001;
  const auto value = Read<ValueClass>(native);
  ASSERT_NE(value, nullptr);
  EXPECT_EQ(*value->GetValue(), 0xC0A80001u);
}

TEST(ConditionFromNative, SingleAddressesAreReadByTheirField) {
  ExpectAddressRead<LocalIpAddressV4>(kLocalAddress);
  ExpectAddressRead<RemoteIpAddressV4>(kRemoteAddress);
  ExpectAddressRead<DestinationIpAddressV4>(kDestinationAddress);
  ExpectAddressRead<SourceIpAddressV4>(kSourceAddress);
}

template <class ValueClass>
void ExpectNetworkV4Read(const GUID& key) {
  FWP_V4_ADDR_AND_MASK network{0xC0A80000, 0xFFFF0000};
  FWPM_FILTER_CONDITION0 native = Native(key, FWP_V4_ADDR_MASK);
  native.conditionValue.v4AddrMask = &network;
  const auto value = Read<ValueClass>(native);
  ASSERT_NE(value, nullptr);
  network = {};
  EXPECT_EQ(value->GetValue()->addr, 0xC0A80000u);
  EXPECT_EQ(value->GetValue()->mask, 0xFFFF0000u);
}

TEST(ConditionFromNative, IpV4NetworksAreCopied) {
  ExpectNetworkV4Read<LocalIpAddressAndMaskV4>(kLocalAddress);
  ExpectNetworkV4Read<RemoteIpAddressAndMaskV4>(kRemoteAddress);
  ExpectNetworkV4Read<DestinationIpAddressAndMaskV4>(kDestinationAddress);
  ExpectNetworkV4Read<SourceIpAddressAndMaskV4>(kSourceAddress);
}

template <class ValueClass>
void ExpectNetworkV6Read(const GUID& key) {
  FWP_V6_ADDR_AND_MASK network{{0xfe, 0x80}, 10};
  FWPM_FILTER_CONDITION0 native = Native(key, FWP_V6_ADDR_MASK);
  native.conditionValue.v6AddrMask = &network;
  const auto value = Read<ValueClass>(native);
  ASSERT_NE(value, nullptr);
  network = {};
  EXPECT_THAT(value->GetValue()->addr, ElementsAre(0xfe, 0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
  EXPECT_EQ(value->GetValue()->prefixLength, 10);
}

TEST(ConditionFromNative, IpV6NetworksAreCopied) {
  ExpectNetworkV6Read<LocalIpAddressAndMaskV6>(kLocalAddress);
  ExpectNetworkV6Read<RemoteIpAddressAndMaskV6>(kRemoteAddress);
  ExpectNetworkV6Read<DestinationIpAddressAndMaskV6>(kDestinationAddress);
  ExpectNetworkV6Read<SourceIpAddressAndMaskV6>(kSourceAddress);
}

TEST(ConditionFromNative, AddressesOfAnotherDataTypeAreRefused) {
  for (const GUID& key : kAddressFields) {
    for (const FWP_DATA_TYPE type : {FWP_EMPTY, FWP_UINT64, FWP_BYTE_ARRAY16_TYPE, FWP_RANGE_TYPE}) {
      FWPM_FILTER_CONDITION0 native = Native(key, type);
      EXPECT_THAT([&] { Condition::FromNative(native); }, FailsWith("Not yet supported condition"))
          << Catalog::FormatGuid(key) << " of type " << static_cast<int>(type);
    }
  }
}

TEST(ConditionFromNative, UnknownFieldsAreRefused) {
  FWPM_FILTER_CONDITION0 icmpType = Native(kOriginalIcmpType, FWP_UINT16);
  EXPECT_THAT([&] { Condition::FromNative(icmpType); }, FailsWith("Not yet supported condition"));
  FWPM_FILTER_CONDITION0 zero{};
  EXPECT_THAT([&] { Condition::FromNative(zero); }, FailsWith("Not yet supported condition"));
}

TEST(ConditionFromNative, NullPointersAreRefused) {
  for (const GUID& key : {kAppId, kArrivalInterface, kLocalInterface}) {
    FWPM_FILTER_CONDITION0 native = Native(key, FWP_EMPTY);
    EXPECT_THAT([&] { Condition::FromNative(native); }, FailsWith("Not yet supported condition"))
        << Catalog::FormatGuid(key);
  }
  for (const GUID& key : kAddressFields) {
    for (const FWP_DATA_TYPE type : {FWP_V4_ADDR_MASK, FWP_V6_ADDR_MASK}) {
      FWPM_FILTER_CONDITION0 native = Native(key, type);
      EXPECT_THAT([&] { Condition::FromNative(native); }, FailsWith("Not yet supported condition"))
          << Catalog::FormatGuid(key);
    }
  }
}

TEST(ConditionFromNative, MatchTypeIsReadBack) {
  FWPM_FILTER_CONDITION0 native = Native(kRemotePort, FWP_UINT16);
  native.matchType = FWP_MATCH_LESS_OR_EQUAL;
  EXPECT_EQ(Condition::FromNative(native).GetConditionType(), ConditionType::LessOrEqual);
  native.matchType = FWP_MATCH_GREATER;
  EXPECT_EQ(Condition::FromNative(native).GetConditionType(), ConditionType::NotEqual);
}

TEST(ConditionFromNative, UnknownMatchTypesAreRefused) {
  FWPM_FILTER_CONDITION0 native = Native(kFlagsField, FWP_UINT32);
  native.matchType = FWP_MATCH_FLAGS_ALL_SET;
  EXPECT_THAT([&] { Condition::FromNative(native); }, FailsWith("Not supported Condition type."));
}

TEST(ConditionFromNative, UnknownFieldIsReportedBeforeAnUnknownMatchType) {
  FWPM_FILTER_CONDITION0 native = Native(kOriginalIcmpType, FWP_UINT16);
  native.matchType = FWP_MATCH_FLAGS_ALL_SET;
  EXPECT_THAT([&] { Condition::FromNative(native); }, FailsWith("Not yet supported condition"));
}

TEST(ConditionFromNative, RangeComesBackWithOneValue) {
  FWP_RANGE0 ports{};
  FWPM_FILTER_CONDITION0 native = Native(kRemotePort, FWP_RANGE_TYPE);
  native.matchType = FWP_MATCH_RANGE;
  native.conditionValue.rangeValue = &ports;
  const Condition condition = Condition::FromNative(native);
  EXPECT_EQ(condition.GetConditionType(), ConditionType::Range);
  EXPECT_FALSE(condition.IsRangeCondition());
  EXPECT_EQ(condition.GetConditionValue2(), nullptr);
}

}  // namespace
}  // namespace WfpFirewall::Filtering
