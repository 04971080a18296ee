#include "filtering/Values.h"

#include <gmock/gmock.h>

#include <atomic>
#include <cstdint>
#include <deque>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "filtering/Condition.h"
#include "support/LeftOf.h"
#include "unit/engine/FailsWith.h"

namespace WfpFirewall::Filtering::Values {
namespace {

using testing::ElementsAre;

TEST(Values, HoldTheNumberGiven) {
  EXPECT_EQ(*InterfaceLuid(0x0006008001000000).GetValue(), 0x0006008001000000u);
  EXPECT_EQ(*ArrivalInterfaceLuid(7).GetValue(), 7u);
  EXPECT_EQ(*LocalInterfaceLuid(8).GetValue(), 8u);
  EXPECT_EQ(*InterfaceIndex(11).GetValue(), 11);
  EXPECT_EQ(*SubInterfaceIndex(12).GetValue(), 12);
  EXPECT_EQ(*Flag(0x41).GetValue(), 0x41);
  EXPECT_EQ(*Port(53).GetValue(), 53);
  EXPECT_EQ(*LocalPort(546).GetValue(), 546);
  EXPECT_EQ(*RemotePort(65535).GetValue(), 65535);
}

TEST(Values, ProtocolsAndAddressTypesHoldTheirNumbers) {
  EXPECT_EQ(*Protocol(IPPROTO_UDP).GetValue(), 17);
  EXPECT_EQ(*Protocol(IPPROTO_TCP).GetValue(), 6);
  EXPECT_EQ(*IpLocalAddressType(NlatMulticast).GetValue(), 3);
}

TEST(Values, LoopbackFlagHoldsTheLowestBit) { EXPECT_EQ(*LoopbackFlag().GetValue(), 1); }

TEST(Values, CopiesShareTheHeldObject) {
  const LocalPort original(53);
  const LocalPort copy = original;  // NOLINT(performance-unnecessary-copy-initialization): tested here.
  EXPECT_EQ(copy.GetValue(), original.GetValue());
  *original.GetValue() = 54;
  EXPECT_EQ(*copy.GetValue(), 54);
}

TEST(Values, HeldObjectOutlivesTheOriginal) {
  auto original = std::make_unique<LocalInterfaceLuid>(42);
  const std::uint64_t* const address = original->GetValue();
  const LocalInterfaceLuid copy = *original;
  original.reset();
  EXPECT_EQ(copy.GetValue(), address);
  EXPECT_EQ(*copy.GetValue(), 42u);
}

TEST(Values, HeldObjectKeepsItsAddressWhenACopyWasMade) {
  const LocalInterfaceLuid original(42);
  const std::uint64_t* const address = original.GetValue();
  const LocalInterfaceLuid copy(original);  // NOLINT(performance-unnecessary-copy-initialization)
  EXPECT_EQ(copy.GetValue(), address);
  EXPECT_EQ(original.GetValue(), address);
}

TEST(Values, HeldObjectKeepsItsAddressWhenAConditionTakesTheValue) {
  auto* const value = new LocalInterfaceLuid(42);
  const std::uint64_t* const address = value->GetValue();
  const Condition condition = ConditionEqual(value);
  EXPECT_EQ(value->GetValue(), address);
  EXPECT_EQ(*address, 42u);
}

TEST(Values, CopyOfAConditionsValueSharesItAndOutlivesTheCondition) {
  auto* const value = new LocalInterfaceLuid(42);
  auto condition = std::make_unique<Condition>(ConditionEqual(value));
  const std::uint64_t* const address = value->GetValue();
  const LocalInterfaceLuid copy = *value;
  const LocalInterfaceLuid copyOfCopy = copy;  // NOLINT(performance-unnecessary-copy-initialization)
  condition.reset();
  EXPECT_EQ(copy.GetValue(), address);
  EXPECT_EQ(copyOfCopy.GetValue(), address);
  EXPECT_EQ(*address, 42u);
}

TEST(Values, MovingTakesTheHeldObject) {
  LocalPort original(53);
  const UINT16* const address = original.GetValue();
  LocalPort moved = std::move(original);
  EXPECT_EQ(moved.GetValue(), address);
  EXPECT_EQ(original.GetValue(), nullptr);  // NOLINT(bugprone-use-after-move): tested here.
  LocalPort other(67);
  other = std::move(moved);
  EXPECT_EQ(other.GetValue(), address);
  EXPECT_EQ(moved.GetValue(), nullptr);  // NOLINT(bugprone-use-after-move): tested here.
}

TEST(Values, AssigningSharesTheHeldObject) {
  const LocalPort original(53);
  LocalPort other(67);
  const LocalPort copyOfOther = other;
  other = original;
  EXPECT_EQ(other.GetValue(), original.GetValue());
  EXPECT_EQ(*other.GetValue(), 53);
  EXPECT_EQ(*copyOfOther.GetValue(), 67);
}

TEST(Values, ThreadsMayReadOneValueAtOnce) {
  std::deque<LocalInterfaceLuid> values;
  for (std::uint64_t luid = 0; luid < 10000; ++luid) {
    values.emplace_back(luid);
  }
  std::atomic<int> arrived = 0;
  const auto readAll = [&] {
    ++arrived;
    while (arrived < 2) {
      std::this_thread::yield();
    }
    std::vector<const std::uint64_t*> addresses;
    for (const LocalInterfaceLuid& value : std::as_const(values)) {
      const LocalInterfaceLuid copy = value;  // NOLINT(performance-unnecessary-copy-initialization)
      addresses.push_back(copy.GetValue());
    }
    return addresses;
  };
  std::future<std::vector<const std::uint64_t*>> other = std::async(std::launch::async, readAll);
  const std::vector<const std::uint64_t*> own = readAll();
  EXPECT_EQ(other.get(), own);
}

TEST(Values, HierarchyLetsACallerAskForTheWiderKind) {
  static_assert(std::is_base_of_v<InterfaceLuid, ArrivalInterfaceLuid>);
  static_assert(std::is_base_of_v<InterfaceLuid, LocalInterfaceLuid>);
  static_assert(std::is_base_of_v<InterfaceIndex, SubInterfaceIndex>);
  static_assert(std::is_base_of_v<Flag, LoopbackFlag>);
  static_assert(std::is_base_of_v<IpAddressV4, SourceIpAddressV4>);
  static_assert(std::is_base_of_v<IpAddressAndMaskV4, DestinationIpAddressAndMaskV4>);
  static_assert(std::is_base_of_v<IpAddressAndMaskV6, LocalIpAddressAndMaskV6>);
  static_assert(std::is_base_of_v<Port, RemotePort>);
  static_assert(std::has_virtual_destructor_v<BaseValue>);
}

TEST(IpAddressV4, KeepsANumberInHostOrderTopBitIncluded) {
  EXPECT_EQ(*IpAddressV4(0x0A000001u).GetValue(), 0x0A000001u);
  EXPECT_EQ(*RemoteIpAddressV4(0xC0A80001u).GetValue(), 0xC0A80001u);
}

TEST(IpAddressV4, ParsesTextToHostOrder) {
  EXPECT_EQ(*LocalIpAddressV4("192.168.0.1").GetValue(), 0xC0A80001u);
  EXPECT_EQ(*DestinationIpAddressV4("255.255.255.255").GetValue(), 0xFFFFFFFFu);
}

template <class ValueClass>
std::string LeftOfAddress() {
  return LeftOf(std::string("10.0.0.1"), [](std::string&& text) { ValueClass{std::move(text)}; });
}

TEST(IpAddressV4, TakesItsTextOver) {
  EXPECT_EQ(LeftOfAddress<IpAddressV4>(), "");
  EXPECT_EQ(LeftOfAddress<LocalIpAddressV4>(), "");
  EXPECT_EQ(LeftOfAddress<RemoteIpAddressV4>(), "");
  EXPECT_EQ(LeftOfAddress<DestinationIpAddressV4>(), "");
  EXPECT_EQ(LeftOfAddress<SourceIpAddressV4>(), "");
}

TEST(IpAddressV4, TakesAnAddressOfEitherForm) {
  EXPECT_EQ(*SourceIpAddressV4(IpV4Address(0x7F000001)).GetValue(), 0x7F000001u);
  EXPECT_EQ(*SourceIpAddressV4(IpV4Address("10.0.0.1")).GetValue(), 0x0A000001u);
}

TEST(IpAddressV4, TextThatDoesNotParseHoldsZero) {
  EXPECT_EQ(*RemoteIpAddressV4("not an address").GetValue(), 0u);
}

TEST(IpAddressAndMaskV4, ParsesAddressAndMask) {
  const LocalIpAddressAndMaskV4 value("192.168.0.0", "255.255.0.0");
  EXPECT_EQ(value.GetValue()->addr, 0xC0A80000u);
  EXPECT_EQ(value.GetValue()->mask, 0xFFFF0000u);
}

TEST(IpAddressAndMaskV4, TakesAddressesOfEitherForm) {
  const RemoteIpAddressAndMaskV4 value(IpV4Address(0x0A000000), IpV4Address("255.0.0.0"));
  EXPECT_EQ(value.GetValue()->addr, 0x0A000000u);
  EXPECT_EQ(value.GetValue()->mask, 0xFF000000u);
}

template <class ValueClass>
std::string LeftOfNetworkV4() {
  const auto fromAddress = [](std::string&& text) { ValueClass(std::move(text), "255.0.0.0"); };
  const auto fromMask = [](std::string&& text) { ValueClass("10.0.0.0", std::move(text)); };
  return LeftOf(std::string("10.0.0.0"), fromAddress) + "/" + LeftOf(std::string("255.0.0.0"), fromMask);
}

TEST(IpAddressAndMaskV4, TakesItsTextsOverWhereTheDerivedClassesCopyThem) {
  EXPECT_EQ(LeftOfNetworkV4<IpAddressAndMaskV4>(), "/");
  EXPECT_EQ(LeftOfNetworkV4<LocalIpAddressAndMaskV4>(), "10.0.0.0/255.0.0.0");
  EXPECT_EQ(LeftOfNetworkV4<RemoteIpAddressAndMaskV4>(), "10.0.0.0/255.0.0.0");
  EXPECT_EQ(LeftOfNetworkV4<DestinationIpAddressAndMaskV4>(), "10.0.0.0/255.0.0.0");
  EXPECT_EQ(LeftOfNetworkV4<SourceIpAddressAndMaskV4>(), "10.0.0.0/255.0.0.0");
}

TEST(IpAddressAndMaskV4, CopiesANativeNetwork) {
  const DestinationIpAddressAndMaskV4 value(FWP_V4_ADDR_AND_MASK{0xC0A80000, 0xFFFF0000});
  EXPECT_EQ(value.GetValue()->addr, 0xC0A80000u);
  EXPECT_EQ(value.GetValue()->mask, 0xFFFF0000u);
}

TEST(IpAddressAndMaskV4, MaskThatIsAPrefixLengthHoldsZero) {
  EXPECT_EQ(SourceIpAddressAndMaskV4("10.0.0.0", "/8").GetValue()->mask, 0u);
}

TEST(IpAddressAndMaskV6, ParsesTextAndKeepsThePrefixLength) {
  const RemoteIpAddressAndMaskV6 value("fe80::", 10);
  EXPECT_THAT(value.GetValue()->addr, ElementsAre(0xfe, 0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
  EXPECT_EQ(value.GetValue()->prefixLength, 10);
}

template <class ValueClass>
std::string LeftOfNetworkV6() {
  return LeftOf(std::string("fe80::"), [](std::string&& text) { ValueClass(std::move(text), 10); });
}

TEST(IpAddressAndMaskV6, TakesItsTextOverWhereTheDerivedClassesCopyIt) {
  EXPECT_EQ(LeftOfNetworkV6<IpAddressAndMaskV6>(), "");
  EXPECT_EQ(LeftOfNetworkV6<LocalIpAddressAndMaskV6>(), "fe80::");
  EXPECT_EQ(LeftOfNetworkV6<RemoteIpAddressAndMaskV6>(), "fe80::");
  EXPECT_EQ(LeftOfNetworkV6<DestinationIpAddressAndMaskV6>(), "fe80::");
  EXPECT_EQ(LeftOfNetworkV6<SourceIpAddressAndMaskV6>(), "fe80::");
}

TEST(IpAddressAndMaskV6, TakesAnAddressMadeFromText) {
  const LocalIpAddressAndMaskV6 value(IpV6Address("ff02::c"), 128);
  EXPECT_THAT(value.GetValue()->addr, ElementsAre(0xff, 0x02, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x0c));
  EXPECT_EQ(value.GetValue()->prefixLength, 128);
}

TEST(IpAddressAndMaskV6, CopiesANativeNetwork) {
  const SourceIpAddressAndMaskV6 value(FWP_V6_ADDR_AND_MASK{{0xfc}, 7});
  EXPECT_THAT(value.GetValue()->addr, ElementsAre(0xfc, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
  EXPECT_EQ(value.GetValue()->prefixLength, 7);
}

TEST(IpAddressAndMaskV6, KeepsTheLowByteOfThePrefixLengthUnchecked) {
  EXPECT_EQ(RemoteIpAddressAndMaskV6("fe80::", 200).GetValue()->prefixLength, 200);
  EXPECT_EQ(RemoteIpAddressAndMaskV6("fe80::", 0x10A).GetValue()->prefixLength, 0x0A);
  EXPECT_EQ(RemoteIpAddressAndMaskV6("fe80::", -1).GetValue()->prefixLength, 255);
}

TEST(IpAddressAndMaskV6, TextThatDoesNotParseThrowsAtOnce) {
  EXPECT_THAT([] { RemoteIpAddressAndMaskV6("10.0.0.1", 8); }, FailsWith("Failed to convert ipv6 address"));
  EXPECT_THAT([] { DestinationIpAddressAndMaskV6("", 8); }, FailsWith("Failed to convert ipv6 address"));
}

TEST(IpAddressAndMaskV6, AddressMadeFromBytesThrowsAtOnce) {
  const IpV6Address fromBytes(in6_addr{});
  EXPECT_THAT([&] { RemoteIpAddressAndMaskV6(fromBytes, 8); }, FailsWith("Failed to convert ipv6 address"));
}

}  // namespace
}  // namespace WfpFirewall::Filtering::Values
