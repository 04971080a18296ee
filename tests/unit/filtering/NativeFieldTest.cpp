#include <gmock/gmock.h>

#include <typeinfo>
#include <utility>

#include "filtering/Condition.h"
#include "filtering/Values.h"
#include "support/EngineKeys.h"
#include "unit/engine/FailsWith.h"
#include "unit/filtering/NativeForm.h"

namespace WfpFirewall::Filtering {
namespace {

using namespace Values;

TEST(NativeField, ClassDecidesFieldAndDataType) {
  constexpr FWP_V4_ADDR_AND_MASK kNetworkV4{};
  constexpr FWP_V6_ADDR_AND_MASK kNetworkV6{};
  struct Row {
    BaseValue* value;  ///< the condition takes ownership
    GUID key;
    int type;  ///< the number of the FWP_DATA_TYPE
  };
  const Row rows[]{
      {new AppId(FWP_BYTE_BLOB{}), kAppId, 12},
      {new ArrivalInterfaceLuid(1), kArrivalInterface, 4},
      {new LocalInterfaceLuid(1), kLocalInterface, 4},
      {new InterfaceIndex(1), kInterfaceIndex, 3},
      {new SubInterfaceIndex(1), kSubInterfaceIndex, 3},
      {new Protocol(IPPROTO_UDP), kProtocol, 1},
      {new IpLocalAddressType(NlatUnicast), kLocalAddressType, 1},
      {new Flag(1), kFlagsField, 3},
      {new LoopbackFlag(), kFlagsField, 3},
      {new LocalIpAddressV4(1u), kLocalAddress, 3},
      {new RemoteIpAddressV4(1u), kRemoteAddress, 3},
      {new DestinationIpAddressV4(1u), kDestinationAddress, 3},
      {new SourceIpAddressV4(1u), kSourceAddress, 3},
      {new LocalIpAddressAndMaskV4(kNetworkV4), kLocalAddress, 256},
      {new RemoteIpAddressAndMaskV4(kNetworkV4), kRemoteAddress, 256},
      {new DestinationIpAddressAndMaskV4(kNetworkV4), kDestinationAddress, 256},
      {new SourceIpAddressAndMaskV4(kNetworkV4), kSourceAddress, 256},
      {new RemoteIpAddressAndMaskV6(kNetworkV6), kRemoteAddress, 257},
      {new LocalPort(1), kLocalPort, 2},
      {new RemotePort(1), kRemotePort, 2},
  };
  for (const Row& row : rows) {
    const NativeForm native({ConditionEqual(row.value)});
    EXPECT_EQ(native.Condition().fieldKey, row.key) << typeid(*row.value).name();
    EXPECT_EQ(native.Condition().conditionValue.type, row.type) << typeid(*row.value).name();
  }
}

TEST(NativeField, ProtocolIsWrittenAsItsByte) {
  const NativeForm native({ConditionEqual(new Protocol(IPPROTO_UDP))});
  EXPECT_EQ(native.Condition().conditionValue.uint8, 17);
}

TEST(NativeField, OnlyTheLowByteOfAProtocolIsWritten) {
  const NativeForm native({ConditionEqual(new Protocol(static_cast<IPPROTO>(0x111)))});
  EXPECT_EQ(native.Condition().conditionValue.uint32, 0x11u);  // the other bytes are zero
}

TEST(NativeField, LocalAddressTypeIsWrittenAsItsByte) {
  const NativeForm native({ConditionEqual(new IpLocalAddressType(NlatBroadcast))});
  EXPECT_EQ(native.Condition().conditionValue.uint8, 4);
}

TEST(NativeField, PortIsWrittenInHostOrder) {
  const NativeForm native({ConditionEqual(new LocalPort(546)), ConditionEqual(new RemotePort(547))});
  EXPECT_EQ(native.Condition(0).conditionValue.uint16, 546);
  EXPECT_EQ(native.Condition(1).conditionValue.uint16, 547);
}

TEST(NativeField, LoopbackFlagIsTheFlagWordOne) {
  const NativeForm native({ConditionEqual(new LoopbackFlag())});
  EXPECT_EQ(native.Condition().conditionValue.uint32, 1u);
}

TEST(NativeField, IndexesAndFlagsAreWrittenAsTheyAre) {
  const NativeForm native({ConditionEqual(new InterfaceIndex(11)), ConditionEqual(new SubInterfaceIndex(12)),
                           ConditionEqual(new Flag(-1))});
  EXPECT_EQ(native.Condition(0).conditionValue.uint32, 11u);
  EXPECT_EQ(native.Condition(1).conditionValue.uint32, 12u);
  EXPECT_EQ(native.Condition(2).conditionValue.uint32, 0xFFFFFFFFu);
}

TEST(NativeField, AddressIsWrittenInHostOrder) {
  const NativeForm native({ConditionEqual(new RemoteIpAddressV4("192.168.0.1"))});
  EXPECT_EQ(native.Condition().conditionValue.uint32, 0xC0A80001u);
}

TEST(NativeField, NetworksLuidsAndApplicationsAreWrittenByPointerToTheHeldObject) {
  auto* const v4 = new RemoteIpAddressAndMaskV4("10.0.0.0", "255.0.0.0");
  auto* const v6 = new RemoteIpAddressAndMaskV6("fe80::", 10);
  auto* const luid = new LocalInterfaceLuid(42);
  auto* const app = new AppId(FWP_BYTE_BLOB{});
  const NativeForm native(
      {ConditionEqual(v4), ConditionEqual(v6), ConditionEqual(luid), ConditionEqual(app)});
  EXPECT_EQ(native.Condition(0).conditionValue.v4AddrMask, v4->GetValue());
  EXPECT_EQ(native.Condition(1).conditionValue.v6AddrMask, v6->GetValue());
  EXPECT_EQ(native.Condition(2).conditionValue.uint64, luid->GetValue());
  EXPECT_EQ(native.Condition(3).conditionValue.byteBlob, app->GetValue());
}

TEST(NativeField, ClassDerivedFromAFieldsClassStandsForThatField) {
  struct DnsPort : RemotePort {
    DnsPort() : RemotePort(53) {}
  };
  const NativeForm native({ConditionEqual(new DnsPort())});
  EXPECT_EQ(native.Condition().fieldKey, kRemotePort);
  EXPECT_EQ(native.Condition().conditionValue.uint16, 53);
}

TEST(NativeField, ClassWithTwoValuesGivesTheOneWhoseFieldItStandsFor) {
  struct Both : RemotePort, Protocol {
    Both() : RemotePort(53), Protocol(IPPROTO_UDP) {}
  };
  const NativeForm asPort({ConditionEqual(static_cast<RemotePort*>(new Both()))});
  EXPECT_EQ(asPort.Condition().fieldKey, kProtocol);
  EXPECT_EQ(asPort.Condition().conditionValue.uint8, 17);
  const NativeForm asProtocol({ConditionEqual(static_cast<Protocol*>(new Both()))});
  EXPECT_EQ(asProtocol.Condition().fieldKey, kProtocol);
  EXPECT_EQ(asProtocol.Condition().conditionValue.uint8, 17);
}

void ExpectRefused(BaseValue* value, const char* message) {
  Filter filter(Action::Permit);
  filter.SetLayer(LayerType::AleAuthConnectV4);
  filter.AddCondition(ConditionEqual(value));
  EXPECT_THAT([&] { filter.ToNativeFilter(); }, FailsWith(message));
}

TEST(NativeField, BaseClassesOfIpV4AreRefusedWithTheTextHostsKnow) {
  constexpr const char* kMessage = "You can use base IpAddressV4 class as condition";
  ExpectRefused(new IpAddressV4("10.0.0.1"), kMessage);
  ExpectRefused(new IpAddressAndMaskV4("10.0.0.0", "255.0.0.0"), kMessage);
}

TEST(NativeField, OtherBaseClassesAreRefused) {
  ExpectRefused(new InterfaceLuid(1), "Not supported condition value");
  ExpectRefused(new Port(53), "Not supported condition value");
  ExpectRefused(new IpAddressAndMaskV6("fe80::", 10), "Not supported condition value");
}

TEST(NativeField, IpV6NetworksOtherThanRemoteAreRefused) {
  ExpectRefused(new LocalIpAddressAndMaskV6("fe80::", 10), "Not supported condition value");
  ExpectRefused(new DestinationIpAddressAndMaskV6("fe80::", 10), "Not supported condition value");
  ExpectRefused(new SourceIpAddressAndMaskV6("fe80::", 10), "Not supported condition value");
}

TEST(NativeField, ClassesWithoutAFieldAreRefused) {
  struct Unknown : BaseValue {};
  ExpectRefused(new Unknown(), "Not supported condition value");
}

/// A value that was moved from.
template <class ValueClass>
BaseValue* MovedFrom(ValueClass value) {
  const ValueClass heir = std::move(value);
  return new ValueClass(std::move(value));  // NOLINT(bugprone-use-after-move): that is the test.
}

TEST(NativeField, ValuesThatWereMovedFromAreRefused) {
  constexpr const char* kMessage = "Not supported condition value";
  ExpectRefused(MovedFrom(Protocol(IPPROTO_UDP)), kMessage);
  ExpectRefused(MovedFrom(RemotePort(53)), kMessage);
  ExpectRefused(MovedFrom(RemoteIpAddressV4("10.0.0.1")), kMessage);
  ExpectRefused(MovedFrom(LocalInterfaceLuid(1)), kMessage);
  ExpectRefused(MovedFrom(AppId(FWP_BYTE_BLOB{})), kMessage);
  ExpectRefused(MovedFrom(RemoteIpAddressAndMaskV4("10.0.0.0", "255.0.0.0")), kMessage);
  ExpectRefused(MovedFrom(RemoteIpAddressAndMaskV6("fe80::", 10)), kMessage);
}

TEST(NativeField, MissingValueIsRefused) { ExpectRefused(nullptr, "Not supported condition value"); }

}  // namespace
}  // namespace WfpFirewall::Filtering
