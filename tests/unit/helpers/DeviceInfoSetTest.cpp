#include "helpers/tarnwell/DeviceInfoSet.h"

#include <gmock/gmock.h>

#include <optional>
#include <stdexcept>
#include <vector>

#include "support/FakePlatform.h"

namespace Tarnwell {
namespace {

using testing::ElementsAre;
using testing::ThrowsMessage;

class DeviceInfoSet : public testing::Test {
 protected:
  void SetUp() override {
    FakePlatform::Reset();
    FakePlatform::AddDevice(Ethernet());
    FakePlatform::AddDevice(FakePlatform::NetworkDevice(L"Wi-Fi", L"Wireless Adapter", 3, 71));
  }

  static FakePlatform::Device Ethernet() {
    return FakePlatform::NetworkDevice(L"Ethernet", L"Gigabit Adapter", 2, 6);
  }

  static std::vector<NetworkDevice> Walk() {
    std::vector<NetworkDevice> devices;
    ForEachNetworkDevice([&devices](NetworkDevice device) { devices.push_back(std::move(device)); });
    return devices;
  }

  static void ExpectFailure(const std::string& message) {
    EXPECT_THAT([] { Walk(); }, ThrowsMessage<std::runtime_error>(message));
    EXPECT_EQ(FakePlatform::GetOpenHandles(), FakePlatform::OpenHandles{});
  }

  /// The LUID of the Ethernet device if its driver key has these values.
  static std::uint64_t LuidWith(const FakePlatform::RegistryData& netLuidIndex,
                                const FakePlatform::RegistryData& ifType) {
    FakePlatform::Device device = Ethernet();
    device.driverKey = {{L"NetLuidIndex", netLuidIndex}, {L"*IfType", ifType}};
    FakePlatform::ReplaceDevice(0, device);
    return Walk().front().luid;
  }
};

TEST_F(DeviceInfoSet, WalksOverDevicesInTheirOrder) {
  const std::vector<NetworkDevice> devices = Walk();
  ASSERT_EQ(devices.size(), 2u);
  EXPECT_EQ(devices[0].friendlyName, L"Ethernet");
  EXPECT_EQ(devices[0].description, L"Gigabit Adapter");
  EXPECT_EQ(devices[0].luid, 0x0006'000002'000000u);
  EXPECT_EQ(devices[1].friendlyName, L"Wi-Fi");
  EXPECT_EQ(devices[1].description, L"Wireless Adapter");
  EXPECT_EQ(devices[1].luid, 0x0047'000003'000000u);
}

TEST_F(DeviceInfoSet, MachineWithoutDevicesIsNoError) {
  FakePlatform::Reset();
  EXPECT_TRUE(Walk().empty());
  EXPECT_EQ(FakePlatform::GetOpenHandles(), FakePlatform::OpenHandles{});
}

TEST_F(DeviceInfoSet, AsksForPresentNetworkInterfacesAndReadsInAFixedOrder) {
  FakePlatform::Reset();
  FakePlatform::AddDevice(Ethernet());
  Walk();
  EXPECT_THAT(
      FakePlatform::GetCalls(),
      ElementsAre("SetupDiGetClassDevsW(cac88484-7515-4c03-82-e6-71-a8-7a-ba-c3-61, 0, 0, 12)",
                  "SetupDiEnumDeviceInfo(0)", "SetupDiOpenDevRegKey(0, 1, 0, 2, 20019)",
                  "SetupDiGetDeviceRegistryPropertyW(0, c)", "SetupDiGetDeviceRegistryPropertyW(0, c)",
                  "SetupDiGetDeviceRegistryPropertyW(0, 0)", "SetupDiGetDeviceRegistryPropertyW(0, 0)",
                  "RegQueryValueExW(NetLuidIndex)", "RegQueryValueExW(NetLuidIndex)",
                  "RegQueryValueExW(*IfType)", "RegQueryValueExW(*IfType)", "RegCloseKey()",
                  "SetupDiEnumDeviceInfo(1)", "SetupDiDestroyDeviceInfoList()"));
}

TEST_F(DeviceInfoSet, GivesBackEveryHandle) {
  Walk();
  EXPECT_EQ(FakePlatform::GetOpenHandles(), FakePlatform::OpenHandles{});
}

TEST_F(DeviceInfoSet, LuidTakesTheLowTwentyFourBitsOfTheIndex) {
  EXPECT_EQ(LuidWith(FakePlatform::Number(0xAB000002), FakePlatform::Number(6)), 0x0006'000002'000000u);
  EXPECT_EQ(LuidWith(FakePlatform::Number(0xFFFFFFFF), FakePlatform::Number(6)), 0x0006'FFFFFF'000000u);
}

TEST_F(DeviceInfoSet, LuidTakesTheLowSixteenBitsOfTheType) {
  EXPECT_EQ(LuidWith(FakePlatform::Number(2), FakePlatform::Number(0xABCD0035)), 0x0035'000002'000000u);
  EXPECT_EQ(LuidWith(FakePlatform::Number(2), FakePlatform::Number(0xFFFF)), 0xFFFF'000002'000000u);
}

TEST_F(DeviceInfoSet, BigEndianNumbersMakeALuidToo) {
  EXPECT_EQ(LuidWith({REG_DWORD_BIG_ENDIAN, {0, 0, 0, 2}}, {REG_DWORD_BIG_ENDIAN, {0, 0, 0, 6}}),
            0x0006'000002'000000u);
}

TEST_F(DeviceInfoSet, FailureToOpenTheSetIsAnError) {
  FakePlatform::FailCall("SetupDiGetClassDevsW", 1, ERROR_ACCESS_DENIED);
  ExpectFailure("[0x00000005] System message. (on line: 18 of SetupApi.cpp) SetupDiGetClassDevsW");
}

TEST_F(DeviceInfoSet, FailureToEnumerateIsAnError) {
  FakePlatform::FailCall("SetupDiEnumDeviceInfo", 2, ERROR_INVALID_PARAMETER);
  ExpectFailure("[0x00000057] System message. (on line: 73 of DeviceInfoSet.cpp) SetupDiEnumDeviceInfo");
}

TEST_F(DeviceInfoSet, FailureToOpenTheDriverKeyIsAnError) {
  FakePlatform::FailCall("SetupDiOpenDevRegKey", 2, ERROR_FILE_NOT_FOUND);
  ExpectFailure("[0x00000002] System message. (on line: 309 of DeviceInfoSet.cpp) SetupDiOpenDevRegKey");
}

TEST_F(DeviceInfoSet, FailureToReadAPropertyIsAnError) {
  FakePlatform::FailCall("SetupDiGetDeviceRegistryPropertyW", 2, ERROR_INVALID_DATA);
  ExpectFailure("[0x0000000D] System message. (on line: 56 of RegistryProperty.cpp) FromCallback");
}

TEST_F(DeviceInfoSet, DeviceWithoutFriendlyNameEndsTheWalk) {
  FakePlatform::Device device = Ethernet();
  device.friendlyName.reset();
  FakePlatform::ReplaceDevice(0, device);
  ExpectFailure("[0x0000000D] System message. (on line: 52 of RegistryProperty.cpp) FromCallback");
}

TEST_F(DeviceInfoSet, DeviceWithoutDescriptionEndsTheWalk) {
  FakePlatform::Device device = Ethernet();
  device.description.reset();
  FakePlatform::ReplaceDevice(0, device);
  ExpectFailure("[0x0000000D] System message. (on line: 52 of RegistryProperty.cpp) FromCallback");
}

TEST_F(DeviceInfoSet, DeviceWithoutAValueEndsTheWalk) {
  for (const wchar_t* name : {L"NetLuidIndex", L"*IfType"}) {
    FakePlatform::Device device = Ethernet();
    device.driverKey.erase(name);
    FakePlatform::ReplaceDevice(0, device);
    EXPECT_THAT([] { Walk(); }, ThrowsMessage<std::runtime_error>(testing::AllOf(
                                    testing::StartsWith("[0x00000002] System message."),
                                    testing::EndsWith(" of RegistryProperty.cpp) RegQueryValueExW"))));
    EXPECT_EQ(FakePlatform::GetOpenHandles(), FakePlatform::OpenHandles{});
  }
}

TEST_F(DeviceInfoSet, PropertyThatIsNoStringEndsTheWalk) {
  FakePlatform::Device device = Ethernet();
  device.friendlyName = FakePlatform::Number(1);
  FakePlatform::ReplaceDevice(0, device);
  ExpectFailure("SPDRP_FRIENDLYNAME has an unexpected registry type.");

  device = Ethernet();
  device.description = {REG_MULTI_SZ, {}};
  FakePlatform::ReplaceDevice(0, device);
  ExpectFailure("SPDRP_DEVICEDESC has an unexpected registry type.");
}

TEST_F(DeviceInfoSet, ValueThatIsNoNumberOfThirtyTwoBitsEndsTheWalk) {
  FakePlatform::Device device = Ethernet();
  device.driverKey.at(L"NetLuidIndex") = FakePlatform::String(L"2");
  FakePlatform::ReplaceDevice(0, device);
  ExpectFailure("NetLuidIndex has an unexpected registry type.");

  device = Ethernet();
  device.driverKey.at(L"*IfType") = {REG_QWORD, {6, 0, 0, 0, 0, 0, 0, 0}};
  FakePlatform::ReplaceDevice(0, device);
  ExpectFailure("*IfType has an unexpected registry type.");
}

TEST_F(DeviceInfoSet, ValueOfTooFewBytesEndsTheWalk) {
  FakePlatform::Device device = Ethernet();
  device.driverKey.at(L"NetLuidIndex") = {REG_DWORD, {2, 0}};
  FakePlatform::ReplaceDevice(0, device);
  ExpectFailure(
      "Failed assertion { in_prop_data.size () >= sizeof (std::uint32_t) } on line 27 of "
      "RegistryProperty.cpp "
      "(RegistryProperty)");
}

TEST_F(DeviceInfoSet, DevicesBeforeAFailureHaveBeenVisited) {
  FakePlatform::FailCall("SetupDiOpenDevRegKey", 2, ERROR_FILE_NOT_FOUND);
  std::vector<std::wstring> names;
  EXPECT_THROW(
      ForEachNetworkDevice([&names](const NetworkDevice& device) { names.push_back(device.friendlyName); }),
      std::runtime_error);
  EXPECT_THAT(names, ElementsAre(L"Ethernet"));
}

}  // namespace
}  // namespace Tarnwell
