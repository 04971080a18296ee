#include "helpers/NetworkInfo.h"

#include <gmock/gmock.h>

#include <functional>
#include <stdexcept>

#include "helpers/NetworkInfoException.h"
#include "support/FakePlatform.h"

namespace WfpFirewall::Helpers {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint64_t kEthernetLuid = 0x0006'000002'000000;
constexpr std::uint64_t kTunnelLuid = 0x0035'000007'000000;

FakePlatform::Device EthernetDevice() {
  return FakePlatform::NetworkDevice(L"Ethernet device", L"Gigabit device", 2, 6);
}
FakePlatform::Adapter EthernetAdapter() { return {L"Ethernet", L"Gigabit Adapter", kEthernetLuid, 6, {}}; }
FakePlatform::Adapter TunnelAdapter() { return {L"Tunnel", L"VPN Tunnel", kTunnelLuid, 53, {}}; }

class NetworkInfoTest : public testing::Test {
 protected:
  void SetUp() override { FakePlatform::Reset(); }
  void TearDown() override { EXPECT_EQ(FakePlatform::GetOpenHandles(), FakePlatform::OpenHandles{}); }

  static std::vector<std::wstring> GetNames() {
    std::vector<std::wstring> names;
    for (const NetworkInterface& found : NetworkInfo::GetInterfaces()) {
      names.push_back(found.GetName());
    }
    return names;
  }

  static int GetErrorCode() {
    try {
      NetworkInfo::GetInterfaces();
    } catch (const NetworkInfoException& exception) {
      EXPECT_STREQ(exception.what(), "Failed to get interfaces. ");
      return exception.GetErrorCode();
    }
    ADD_FAILURE() << "no exception";
    return 0;
  }

  static std::vector<std::string> GetAdapterCalls() {
    std::vector<std::string> calls = FakePlatform::GetCalls();
    std::erase_if(calls, [](const std::string& call) { return !call.starts_with("GetAdaptersAddresses"); });
    return calls;
  }
};

TEST_F(NetworkInfoTest, DeviceGivesItsFriendlyNameDescriptionAndLuid) {
  FakePlatform::AddDevice(EthernetDevice());
  const auto interfaces = NetworkInfo::GetInterfaces();
  ASSERT_EQ(interfaces.size(), 1u);
  EXPECT_EQ(interfaces[0].GetName(), L"Ethernet device");
  EXPECT_EQ(interfaces[0].GetDescription(), L"Gigabit device");
  EXPECT_EQ(interfaces[0].GetLuid(), 0x0006'000002'000000u);
}

TEST_F(NetworkInfoTest, AdapterGivesItsFriendlyNameDescriptionAndLuid) {
  FakePlatform::AddAdapter(TunnelAdapter());
  const auto interfaces = NetworkInfo::GetInterfaces();
  ASSERT_EQ(interfaces.size(), 1u);
  EXPECT_EQ(interfaces[0].GetName(), L"Tunnel");
  EXPECT_EQ(interfaces[0].GetDescription(), L"VPN Tunnel");
  EXPECT_EQ(interfaces[0].GetLuid(), 0x0035'000007'000000u);
}

TEST_F(NetworkInfoTest, DevicesComeBeforeAdapters) {
  FakePlatform::AddAdapter(TunnelAdapter());
  FakePlatform::AddAdapter({L"Wi-Fi", L"Wireless Adapter", 0x0047'000003'000000, 71, {}});
  FakePlatform::AddDevice(EthernetDevice());
  EXPECT_THAT(GetNames(), ElementsAre(L"Ethernet device", L"Tunnel", L"Wi-Fi"));
}

TEST_F(NetworkInfoTest, AdapterThatIsADeviceAppearsOnceAsTheDevice) {
  FakePlatform::AddDevice(EthernetDevice());
  FakePlatform::AddAdapter(EthernetAdapter());
  FakePlatform::AddAdapter(TunnelAdapter());
  EXPECT_THAT(GetNames(), ElementsAre(L"Ethernet device", L"Tunnel"));
}

TEST_F(NetworkInfoTest, AdaptersOfOneLuidAppearOnce) {
  FakePlatform::AddAdapter(EthernetAdapter());
  FakePlatform::AddAdapter({L"Ethernet again", L"Gigabit Adapter", kEthernetLuid, 6, {}});
  EXPECT_THAT(GetNames(), ElementsAre(L"Ethernet"));
}

TEST_F(NetworkInfoTest, MachineWithLoopbackAloneHasNoInterfaces) {
  FakePlatform::AddAdapter({L"Second loopback", L"Software Loopback", 0x0018'000002'000000, 24, {}});
  EXPECT_THAT(NetworkInfo::GetInterfaces(), IsEmpty());
}

TEST_F(NetworkInfoTest, GatewaysNeverReachTheAddressLists) {
  FakePlatform::Adapter ethernet = EthernetAdapter();
  ethernet.gateways = {FakePlatform::GatewayV4("192.168.0.1"), FakePlatform::GatewayV4("192.168.0.1"),
                       FakePlatform::GatewayV6("fe80::1"), FakePlatform::GatewayV6("fe80::1")};
  FakePlatform::Adapter tunnel = TunnelAdapter();
  tunnel.gateways = ethernet.gateways;
  FakePlatform::AddDevice(EthernetDevice());
  FakePlatform::AddAdapter(ethernet);
  FakePlatform::AddAdapter(tunnel);
  const auto interfaces = NetworkInfo::GetInterfaces();
  ASSERT_EQ(interfaces.size(), 2u);
  for (const NetworkInterface& found : interfaces) {
    EXPECT_THAT(found.GetIpV4Addresses(), IsEmpty());
    EXPECT_THAT(found.GetIpV6Addresses(), IsEmpty());
  }
}

TEST_F(NetworkInfoTest, OddGatewaysAreHarmless) {
  FakePlatform::Adapter ethernet = EthernetAdapter();
  FakePlatform::Bytes cutOff = FakePlatform::GatewayV6("fe80::1");
  cutOff.resize(16);
  FakePlatform::Bytes unknownFamily = FakePlatform::GatewayV4("192.168.0.1");
  unknownFamily[0] = 99;
  ethernet.gateways = {cutOff, unknownFamily};
  FakePlatform::AddAdapter(ethernet);
  EXPECT_THAT(GetNames(), ElementsAre(L"Ethernet"));
}

TEST_F(NetworkInfoTest, AdaptersAreAskedForWithGatewaysAndFifteenKilobytes) {
  FakePlatform::AddAdapter(EthernetAdapter());
  NetworkInfo::GetInterfaces();
  EXPECT_THAT(GetAdapterCalls(), ElementsAre("GetAdaptersAddresses(0, 8e, 3c00)"));
}

TEST_F(NetworkInfoTest, BufferGrowsToTheSizeAskedFor) {
  FakePlatform::AddAdapter({L"Ethernet", std::wstring(65536, L'x'), kEthernetLuid, 6, {}});
  const auto interfaces = NetworkInfo::GetInterfaces();
  ASSERT_EQ(interfaces.size(), 1u);
  EXPECT_EQ(interfaces[0].GetDescription().size(), 65536u);
  EXPECT_EQ(GetAdapterCalls().size(), 2u);
}

TEST_F(NetworkInfoTest, AdaptersThatAppearBetweenTheCallsAreWaitedForOnceMore) {
  const auto addLongAdapter = [] {
    FakePlatform::AddAdapter({L"Adapter", std::wstring(65536, L'x'), kEthernetLuid, 6, {}});
  };
  FakePlatform::OnCall("GetAdaptersAddresses", 1, addLongAdapter);
  FakePlatform::OnCall("GetAdaptersAddresses", 2, addLongAdapter);
  EXPECT_THAT(GetNames(), ElementsAre(L"Adapter"));
  EXPECT_EQ(GetAdapterCalls().size(), 3u);
}

TEST_F(NetworkInfoTest, ThreeOverflowsAreAFailure) {
  FakePlatform::FailCall("GetAdaptersAddresses", FakePlatform::kEveryCall, ERROR_BUFFER_OVERFLOW);
  EXPECT_EQ(GetErrorCode(), 111);
  EXPECT_EQ(GetAdapterCalls().size(), 3u);
}

TEST_F(NetworkInfoTest, ThreeFailuresAreAFailureWithTheLastErrorOfTheSystem) {
  FakePlatform::FailCall("GetAdaptersAddresses", 1, ERROR_NOT_ENOUGH_MEMORY, 1);
  FakePlatform::FailCall("GetAdaptersAddresses", 2, ERROR_NO_DATA, 2);
  FakePlatform::FailCall("GetAdaptersAddresses", 3, ERROR_INVALID_PARAMETER, 31);
  EXPECT_EQ(GetErrorCode(), 31);
  EXPECT_EQ(GetAdapterCalls().size(), 3u);
}

TEST_F(NetworkInfoTest, TwoFailuresAreNotYetAFailure) {
  FakePlatform::AddAdapter(EthernetAdapter());
  FakePlatform::FailCall("GetAdaptersAddresses", 1, ERROR_NO_DATA);
  FakePlatform::FailCall("GetAdaptersAddresses", 2, ERROR_NOT_ENOUGH_MEMORY);
  EXPECT_THAT(GetNames(), ElementsAre(L"Ethernet"));
}

TEST_F(NetworkInfoTest, OnlyAnOverflowMakesTheBufferGrow) {
  FakePlatform::AddAdapter({L"Ethernet", std::wstring(65536, L'x'), kEthernetLuid, 6, {}});
  FakePlatform::FailCall("GetAdaptersAddresses", FakePlatform::kEveryCall, ERROR_NOT_ENOUGH_MEMORY);
  EXPECT_EQ(GetErrorCode(), 8);
  EXPECT_THAT(GetAdapterCalls(),
              ElementsAre("GetAdaptersAddresses(0, 8e, 3c00)", "GetAdaptersAddresses(0, 8e, 3c00)",
                          "GetAdaptersAddresses(0, 8e, 3c00)"));
}

TEST_F(NetworkInfoTest, FailureOfTheAdaptersIsDroppedWhenThereAreDevices) {
  FakePlatform::AddDevice(EthernetDevice());
  FakePlatform::FailCall("GetAdaptersAddresses", FakePlatform::kEveryCall, ERROR_NO_DATA);
  EXPECT_THAT(GetNames(), ElementsAre(L"Ethernet device"));
}

TEST_F(NetworkInfoTest, FailureOfTheDevicesIsDropped) {
  FakePlatform::AddDevice(EthernetDevice());
  FakePlatform::AddAdapter(TunnelAdapter());
  FakePlatform::FailCall("SetupDiGetClassDevsW", 1, ERROR_ACCESS_DENIED);
  EXPECT_THAT(GetNames(), ElementsAre(L"Tunnel"));
}

TEST_F(NetworkInfoTest, FailureOfTheDevicesIsDroppedEvenWithoutAdapters) {
  FakePlatform::FailCall("SetupDiGetClassDevsW", 1, ERROR_ACCESS_DENIED);
  EXPECT_THAT(NetworkInfo::GetInterfaces(), IsEmpty());
}

TEST_F(NetworkInfoTest, DevicesBeforeAnOddOneStayInTheList) {
  FakePlatform::Device nameless = FakePlatform::NetworkDevice(L"Odd", L"Odd device", 3);
  nameless.friendlyName.reset();
  FakePlatform::AddDevice(EthernetDevice());
  FakePlatform::AddDevice(nameless);
  FakePlatform::AddDevice(FakePlatform::NetworkDevice(L"Behind", L"Device behind", 4));
  FakePlatform::AddAdapter(TunnelAdapter());
  EXPECT_THAT(GetNames(), ElementsAre(L"Ethernet device", L"Tunnel"));
}

TEST_F(NetworkInfoTest, FailureOfBothStepsIsTheAdapters) {
  FakePlatform::FailCall("SetupDiGetClassDevsW", 1, ERROR_ACCESS_DENIED);
  FakePlatform::FailCall("GetAdaptersAddresses", FakePlatform::kEveryCall, ERROR_NO_DATA);
  EXPECT_EQ(GetErrorCode(), 232);
}

std::vector<NetworkInterface> ThreeInterfaces() {
  return {{L"A", L"Gigabit", {}, {}, 1}, {L"B", L"Tunnel", {}, {}, 2}, {L"C", L"Gigabit", {}, {}, 3}};
}

TEST(NetworkInfoFilter, KeepsWhatThePredicateHoldsForInOrder) {
  const auto kept = NetworkInfo::Filter(ThreeInterfaces(), [](const NetworkInterface& candidate) {
    return candidate.GetDescription() == L"Gigabit";
  });
  ASSERT_EQ(kept.size(), 2u);
  EXPECT_EQ(kept[0].GetName(), L"A");
  EXPECT_EQ(kept[1].GetName(), L"C");
}

TEST(NetworkInfoFilter, NothingThatMatchesGivesAnEmptyList) {
  EXPECT_THAT(NetworkInfo::Filter(ThreeInterfaces(), [](const NetworkInterface&) { return false; }),
              IsEmpty());
}

TEST(NetworkInfoFilter, GivesCopiesAndLeavesTheInput) {
  auto interfaces = ThreeInterfaces();
  for (const bool matches : {true, false}) {
    NetworkInfo::Filter(interfaces, [matches](const NetworkInterface&) { return matches; });
    ASSERT_EQ(interfaces.size(), 3u);
    EXPECT_EQ(interfaces[0].GetName(), L"A");
    EXPECT_EQ(interfaces[1].GetName(), L"B");
    EXPECT_EQ(interfaces[2].GetName(), L"C");
  }
}

TEST(NetworkInfoFilter, EmptyPredicateIsABadFunctionCall) {
  EXPECT_THROW(NetworkInfo::Filter(ThreeInterfaces(), nullptr), std::bad_function_call);
}

TEST(NetworkInfoFilter, EmptyPredicateIsABadFunctionCallWithoutInterfacesToo) {
  EXPECT_THROW(NetworkInfo::Filter({}, nullptr), std::bad_function_call);
}

}  // namespace
}  // namespace WfpFirewall::Helpers
