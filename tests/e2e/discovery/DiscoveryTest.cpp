// clang-format off: iphlpapi.h needs winsock2.h before it.
#include <WfpPlatform.h>
#include <iphlpapi.h>
// clang-format on

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

#include "e2e/discovery/TestDevice.h"
#include "helpers/NetworkInfo.h"

namespace {

using testing::IsEmpty;
using WfpFirewall::Helpers::NetworkInfo;
using WfpFirewall::Helpers::NetworkInterface;

std::vector<NetworkInterface> FindByDescription(const std::wstring& description) {
  return NetworkInfo::Filter(NetworkInfo::GetInterfaces(), [&description](const NetworkInterface& candidate) {
    return candidate.GetDescription() == description;
  });
}

std::vector<NetworkInterface> FindByLuid(std::uint64_t luid) {
  return NetworkInfo::Filter(NetworkInfo::GetInterfaces(), [luid](const NetworkInterface& candidate) {
    return candidate.GetLuid() == luid;
  });
}

struct Adapter {
  std::wstring friendlyName;
  std::wstring description;
  NET_LUID luid;
  DWORD ifType;
};

/// The system's adapters, read without NetworkInfo.
std::vector<Adapter> GetAdapters() {
  std::vector<IP_ADAPTER_ADDRESSES> buffer(256);
  auto size = static_cast<ULONG>(buffer.size() * sizeof(IP_ADAPTER_ADDRESSES));
  std::vector<Adapter> adapters;
  if (GetAdaptersAddresses(AF_UNSPEC, 0, nullptr, buffer.data(), &size) == NO_ERROR) {
    for (const auto* record = buffer.data(); record != nullptr; record = record->Next) {
      adapters.push_back({record->FriendlyName, record->Description, record->Luid, record->IfType});
    }
  }
  return adapters;
}

std::vector<Adapter> GetOutwardAdapters() {
  std::vector<Adapter> adapters = GetAdapters();
  std::erase_if(adapters, [](const Adapter& adapter) { return adapter.ifType == IF_TYPE_SOFTWARE_LOOPBACK; });
  return adapters;
}

TEST(Discovery, FindsADeviceOfTheDeviceInstaller) {
  const TestDevice device(L"ROOT\\CORVANE_TEST\\0000",
                          {L"Corvane test tunnel", L"Corvane Test Tunnel Adapter", 0x00ABCDEF, 53});
  const auto found = FindByDescription(L"Corvane Test Tunnel Adapter");
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].GetName(), L"Corvane test tunnel");
  EXPECT_EQ(found[0].GetLuid(), 0x0035'ABCDEF'000000u);
  EXPECT_THAT(found[0].GetIpV4Addresses(), IsEmpty());
  EXPECT_THAT(found[0].GetIpV6Addresses(), IsEmpty());
}

TEST(Discovery, FindsSeveralDevices) {
  const TestDevice first(L"ROOT\\CORVANE_TEST\\0001",
                         {L"Corvane one", L"Corvane Device One", 0x00FFFF01, 53});
  const TestDevice second(L"ROOT\\CORVANE_TEST\\0002",
                          {L"Corvane two", L"Corvane Device Two", 0x00FFFF02, 6});
  const auto one = FindByDescription(L"Corvane Device One");
  const auto two = FindByDescription(L"Corvane Device Two");
  ASSERT_EQ(one.size(), 1u);
  ASSERT_EQ(two.size(), 1u);
  EXPECT_EQ(one[0].GetLuid(), 0x0035'FFFF01'000000u);
  EXPECT_EQ(two[0].GetLuid(), 0x0006'FFFF02'000000u);
}

TEST(Discovery, ForgetsADeviceThatIsGone) {
  {
    const TestDevice device(L"ROOT\\CORVANE_TEST\\0003",
                            {L"Corvane gone", L"Corvane Gone Device", 0x00FFFF03, 53});
    ASSERT_EQ(FindByDescription(L"Corvane Gone Device").size(), 1u);
  }
  EXPECT_THAT(FindByDescription(L"Corvane Gone Device"), IsEmpty());
}

TEST(Discovery, FindsTheSystemsAdaptersOnceEach) {
  // A machine may have no adapter but loopback. With this device there is always one to find.
  const TestDevice device(L"ROOT\\CORVANE_TEST\\0005", {L"Corvane", L"Corvane Device", 0x00FFFF05, 53});
  std::vector<Adapter> adapters = GetOutwardAdapters();
  adapters.push_back({L"Corvane", L"Corvane Device", {0x0035'FFFF05'000000}, 53});
  for (const Adapter& adapter : adapters) {
    const auto found = FindByLuid(adapter.luid.Value);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].GetName(), adapter.friendlyName);
    EXPECT_EQ(found[0].GetDescription(), adapter.description);
  }
}

TEST(Discovery, LeavesLoopbackOut) {
  const std::vector<Adapter> adapters = GetAdapters();
  const auto loopback = std::find_if(adapters.begin(), adapters.end(), [](const Adapter& adapter) {
    return adapter.ifType == IF_TYPE_SOFTWARE_LOOPBACK;
  });
  ASSERT_NE(loopback, adapters.end());
  EXPECT_THAT(FindByLuid(loopback->luid.Value), IsEmpty());
}

TEST(Discovery, DeviceThatIsAlsoAnAdapterAppearsOnceAsTheDevice) {
  const std::vector<Adapter> adapters = GetOutwardAdapters();
  if (adapters.empty()) {
    GTEST_SKIP() << "no adapter besides loopback on this machine";
  }
  const NET_LUID luid = adapters.front().luid;
  const TestDevice device(L"ROOT\\CORVANE_TEST\\0004", {L"Corvane twin", L"Corvane Twin Device",
                                                        static_cast<std::uint32_t>(luid.Info.NetLuidIndex),
                                                        static_cast<std::uint32_t>(luid.Info.IfType)});
  const auto found = FindByLuid(luid.Value);
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].GetName(), L"Corvane twin");
}

}  // namespace
