#include <WfpPlatform.h>
#include <gmock/gmock.h>
#include <ipifcons.h>

#include "ApiTest.h"
#include "emulator/Control.h"
#include "support/FakePlatform.h"

namespace {

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

using Names = std::vector<const wchar_t*>;

class InternetInterfaces : public InitializedModuleTest {
 protected:
  static std::uint64_t Disable(const Names& names) {
    return DisableInternet(nullptr, 0, names.data(), static_cast<std::uint32_t>(names.size()), Log);
  }

  static void AddAdapter(const std::wstring& friendlyName, const std::wstring& description,
                         std::uint64_t luid) {
    FakePlatform::AddAdapter({friendlyName, description, luid, IF_TYPE_ETHERNET_CSMACD, {}});
  }

  /// The lines that tell which adapters were found.
  static Texts FoundLines() {
    Texts lines = TakeLog();
    std::erase_if(lines, [](const std::string& line) { return line.find("found") == std::string::npos; });
    return lines;
  }
};

TEST_F(InternetInterfaces, AMatchIsExemptFromEveryFilter) {
  AddAdapter(L"Tunnel", L"Tunnel Adapter V2", 7);
  EXPECT_EQ(Disable({L"Tunnel Adapter"}), 0U);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: DisableInternet", "NATIVE: DisableInternet: Tunnel Adapter",
                                     "NATIVE: create killswitch layer", "NATIVE: get interface luids",
                                     "NATIVE: found interface: Tunnel Adapter V2:7",
                                     "NATIVE available interface : Tunnel-Tunnel Adapter V2",
                                     "NATIVE: Apply firewall."));
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmEngineOpen0", "FwpmProviderGetByKey0", "FwpmProviderAdd0",
                                       "FwpmSubLayerGetByKey0", "FwpmSubLayerAdd0", "FwpmFilterAdd0 x 51"));
  const Texts filters = FilterTexts();
  EXPECT_THAT(filters, AllOf(SizeIs(51), Each(EndsWith("IP_LOCAL_INTERFACE NOT_EQUAL UINT64 7"))));
  EXPECT_EQ(filters.front(),
            "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 14 | - | IP_LOCAL_INTERFACE NOT_EQUAL UINT64 7");
  EXPECT_EQ(filters.back(),
            "ALE_AUTH_RECV_ACCEPT_V6 | PERMIT | UINT8 14 | - | IP_REMOTE_ADDRESS EQUAL V6_ADDR_MASK "
            "ff0e::c/128 & IP_REMOTE_PORT NOT_EQUAL UINT16 53 & IP_LOCAL_INTERFACE NOT_EQUAL UINT64 7");
}

TEST_F(InternetInterfaces, TwoMatchesAreExemptInTheOrderOfTheMachinesList) {
  AddAdapter(L"first", L"Tunnel B", 9);
  AddAdapter(L"between", L"Ethernet", 8);
  AddAdapter(L"last", L"Tunnel A", 7);
  EXPECT_EQ(Disable({L"Tunnel A", L"Tunnel B"}), 0U);
  EXPECT_THAT(TakeLog(),
              ElementsAre("NATIVE: DisableInternet", "NATIVE: DisableInternet: Tunnel A,Tunnel B",
                          "NATIVE: create killswitch layer", "NATIVE: get interface luids",
                          "NATIVE: found interface: Tunnel B:9", "NATIVE: found interface: Tunnel A:7",
                          "NATIVE available interface : first-Tunnel B",
                          "NATIVE available interface : between-Ethernet",
                          "NATIVE available interface : last-Tunnel A", "NATIVE: Apply firewall."));
  const Texts filters = FilterTexts();
  EXPECT_THAT(filters,
              AllOf(SizeIs(51), Each(EndsWith("IP_LOCAL_INTERFACE NOT_EQUAL UINT64 9 & IP_LOCAL_INTERFACE "
                                              "NOT_EQUAL UINT64 7"))));
  EXPECT_EQ(filters.front(),
            "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 14 | - | IP_LOCAL_INTERFACE NOT_EQUAL UINT64 9 & "
            "IP_LOCAL_INTERFACE NOT_EQUAL UINT64 7");
}

TEST_F(InternetInterfaces, DevicesComeBeforeAdapters) {
  AddAdapter(L"adapter", L"Tunnel adapter", 7);
  FakePlatform::AddDevice(FakePlatform::NetworkDevice(L"device", L"Tunnel device", 5));
  EXPECT_EQ(Disable({L"Tunnel"}), 0U);
  EXPECT_THAT(FoundLines(), ElementsAre("NATIVE: found interface: Tunnel device:1688849944150016",
                                        "NATIVE: found interface: Tunnel adapter:7"));
}

TEST_F(InternetInterfaces, NamesMatchAnywhereInADescription) {
  AddAdapter(L"a", L"Tunnel at the start", 1);
  AddAdapter(L"b", L"in the Tunnel middle", 2);
  AddAdapter(L"c", L"at the end a Tunnel", 3);
  EXPECT_EQ(Disable({L"Tunnel"}), 0U);
  EXPECT_THAT(FoundLines(), ElementsAre("NATIVE: found interface: Tunnel at the start:1",
                                        "NATIVE: found interface: in the Tunnel middle:2",
                                        "NATIVE: found interface: at the end a Tunnel:3"));
}

TEST_F(InternetInterfaces, AnotherLetterCaseDoesNotMatch) {
  AddAdapter(L"a", L"Tunnel", 1);
  EXPECT_EQ(Disable({L"tunnel", L"TUNNEL"}), 0U);
  EXPECT_THAT(FoundLines(), ElementsAre("NATIVE: No adapters found."));
}

TEST_F(InternetInterfaces, ADescriptionInsideANameDoesNotMatch) {
  AddAdapter(L"a", L"Tunnel", 1);
  EXPECT_EQ(Disable({L"Tunnel adapter"}), 0U);
  EXPECT_THAT(FoundLines(), ElementsAre("NATIVE: No adapters found."));
}

TEST_F(InternetInterfaces, TheFriendlyNameDoesNotMatch) {
  AddAdapter(L"Tunnel", L"Ethernet", 1);
  EXPECT_EQ(Disable({L"Tunnel"}), 0U);
  EXPECT_THAT(FoundLines(), ElementsAre("NATIVE: No adapters found."));
}

TEST_F(InternetInterfaces, TheEmptyNameMatchesEveryDescription) {
  AddAdapter(L"a", L"Tunnel", 1);
  AddAdapter(L"b", L"", 2);
  EXPECT_EQ(Disable({L""}), 0U);
  EXPECT_THAT(FoundLines(), ElementsAre("NATIVE: found interface: Tunnel:1", "NATIVE: found interface: :2"));
}

TEST_F(InternetInterfaces, AnAdapterThatTwoNamesMatchIsExemptOnce) {
  AddAdapter(L"a", L"Tunnel Adapter", 1);
  EXPECT_EQ(Disable({L"Tunnel", L"Adapter"}), 0U);
  EXPECT_THAT(FoundLines(), ElementsAre("NATIVE: found interface: Tunnel Adapter:1"));
  EXPECT_EQ(FilterTexts().front(),
            "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 14 | - | IP_LOCAL_INTERFACE NOT_EQUAL UINT64 1");
}

TEST_F(InternetInterfaces, OnlyTheCountedNamesAreRead) {
  AddAdapter(L"a", L"Tunnel", 1);
  AddAdapter(L"b", L"Ethernet", 2);
  const Names names{L"Tunnel", L"Ethernet"};
  EXPECT_EQ(DisableInternet(nullptr, 0, names.data(), 1, Log), 0U);
  EXPECT_THAT(FoundLines(), ElementsAre("NATIVE: found interface: Tunnel:1"));
}

TEST_F(InternetInterfaces, LuidsAreLoggedUnsigned) {
  AddAdapter(L"a", L"Tunnel", 0xffffffffffffffff);
  EXPECT_EQ(Disable({L"Tunnel"}), 0U);
  EXPECT_THAT(FoundLines(), ElementsAre("NATIVE: found interface: Tunnel:18446744073709551615"));
}

TEST_F(InternetInterfaces, NamesWithoutAMatchGiveThePlainKillSwitch) {
  AddAdapter(L"Ethernet", L"Ethernet adapter", 7);
  EXPECT_EQ(Disable({L"Tunnel"}), 0U);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: DisableInternet", "NATIVE: DisableInternet: Tunnel",
                                     "NATIVE: create killswitch layer", "NATIVE: get interface luids",
                                     "NATIVE available interface : Ethernet-Ethernet adapter",
                                     "NATIVE: No adapters found.", "NATIVE: Apply firewall."));
  EXPECT_THAT(FilterTexts(), AllOf(SizeIs(51), Each(Not(HasSubstr("IP_LOCAL_INTERFACE")))));
}

TEST_F(InternetInterfaces, AMachineWithLoopbackOnlyGivesThePlainKillSwitch) {
  EXPECT_EQ(Disable({L"Tunnel"}), 0U);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: DisableInternet", "NATIVE: DisableInternet: Tunnel",
                                     "NATIVE: create killswitch layer", "NATIVE: get interface luids",
                                     "NATIVE: No adapters found.", "NATIVE: Apply firewall."));
  EXPECT_EQ(FilterTexts().size(), 51U);
}

TEST_F(InternetInterfaces, AnArrayOfNoNamesIsLoggedAndMatchesNothing) {
  AddAdapter(L"Ethernet", L"Ethernet adapter", 7);
  constexpr const wchar_t* kUncounted[]{L"Ethernet"};
  EXPECT_EQ(DisableInternet(nullptr, 0, kUncounted, 0, Log), 0U);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: DisableInternet", "NATIVE: DisableInternet: ",
                                     "NATIVE: create killswitch layer", "NATIVE: get interface luids",
                                     "NATIVE available interface : Ethernet-Ethernet adapter",
                                     "NATIVE: No adapters found.", "NATIVE: Apply firewall."));
  EXPECT_EQ(FilterTexts().size(), 51U);
}

TEST_F(InternetInterfaces, ACountWithoutAnArrayIsNoNames) {
  EXPECT_EQ(DisableInternet(nullptr, 0, nullptr, 3, Log), 0U);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: DisableInternet", "NATIVE: create killswitch layer",
                                     "NATIVE: get interface luids",
                                     "NATIVE: KillSwitch without adapter filter", "NATIVE: Apply firewall."));
}

TEST_F(InternetInterfaces, WithAppsTheNamesAreLoggedButNotUsed) {
  AddAdapter(L"Tunnel", L"Tunnel", 7);
  EngineEmulator::PretendFileExists(L"C:\\a.exe");
  constexpr const wchar_t* kApp[]{L"C:\\a.exe"};
  constexpr const wchar_t* kNames[]{L"Tunnel"};
  EXPECT_EQ(DisableInternet(kApp, 1, kNames, 1, Log), 0U);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: DisableInternet", "NATIVE: DisableInternet: Tunnel",
                                     "NATIVE: create killswitch layer", "NATIVE: Apply firewall."));
  EXPECT_THAT(FilterTexts(), AllOf(SizeIs(57), Each(Not(HasSubstr("IP_LOCAL_INTERFACE")))));
  EXPECT_THAT(FakePlatform::GetCalls(), testing::IsEmpty());
}

TEST_F(InternetInterfaces, AReplacementFindsThemAnew) {
  AddAdapter(L"Tunnel", L"Tunnel", 7);
  ASSERT_EQ(Disable({L"Tunnel"}), 0U);
  FakePlatform::Reset();
  AddAdapter(L"Tunnel", L"Tunnel", 8);
  TakeLog();
  EXPECT_EQ(Disable({L"Tunnel"}), 0U);
  EXPECT_THAT(TakeLog(),
              ElementsAre("NATIVE: DisableInternet", "NATIVE: DisableInternet: Tunnel",
                          "NATIVE: Remove killswitch layer", "NATIVE: create killswitch layer",
                          "NATIVE: get interface luids", "NATIVE: found interface: Tunnel:8",
                          "NATIVE available interface : Tunnel-Tunnel", "NATIVE: Apply firewall."));
  EXPECT_EQ(FilterTexts().front(),
            "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 14 | - | IP_LOCAL_INTERFACE NOT_EQUAL UINT64 8");
}

TEST_F(InternetInterfaces, TextsReachTheLogAsUtf8) {
  AddAdapter(L"\u0141\u0105cze", L"T\u00fcnnel \u96a7\u9053 \U0001f310", 7);
  EXPECT_EQ(Disable({L"T\u00fcnnel \u96a7\u9053"}), 0U);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: DisableInternet",
                                     "NATIVE: DisableInternet: T\xc3\xbcnnel \xe9\x9a\xa7\xe9\x81\x93",
                                     "NATIVE: create killswitch layer", "NATIVE: get interface luids",
                                     "NATIVE: found interface: T\xc3\xbcnnel \xe9\x9a\xa7\xe9\x81\x93 "
                                     "\xf0\x9f\x8c\x90:7",
                                     "NATIVE available interface : \xc5\x81\xc4\x85"
                                     "cze-T\xc3\xbcnnel \xe9\x9a\xa7\xe9\x81\x93 \xf0\x9f\x8c\x90",
                                     "NATIVE: Apply firewall."));
}

TEST_F(InternetInterfaces, LoneSurrogatesMatchThemselvesAndAreLoggedAsReplacementCharacters) {
  AddAdapter(L"a\xdc00", L"Tunnel\xd800", 7);
  EXPECT_EQ(Disable({L"nnel\xd800"}), 0U);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: DisableInternet", "NATIVE: DisableInternet: nnel\xef\xbf\xbd",
                                     "NATIVE: create killswitch layer", "NATIVE: get interface luids",
                                     "NATIVE: found interface: Tunnel\xef\xbf\xbd:7",
                                     "NATIVE available interface : a\xef\xbf\xbd-Tunnel\xef\xbf\xbd",
                                     "NATIVE: Apply firewall."));
}

TEST_F(InternetInterfaces, ThatCannotBeFetchedGiveThePlainKillSwitch) {
  AddAdapter(L"Tunnel", L"Tunnel", 7);
  FakePlatform::FailCall("GetAdaptersAddresses", FakePlatform::kEveryCall, 8);
  EXPECT_EQ(Disable({L"Tunnel"}), 0U);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: DisableInternet", "NATIVE: DisableInternet: Tunnel",
                                     "NATIVE: create killswitch layer", "NATIVE: get interface luids",
                                     "NATIVE: Cant fetch interfaces.", "NATIVE: Apply firewall."));
  EXPECT_THAT(FilterTexts(), AllOf(SizeIs(51), Each(Not(HasSubstr("IP_LOCAL_INTERFACE")))));
  EXPECT_STREQ(GetErrorText(), "");
}

TEST_F(InternetInterfaces, ThatCannotBeFetchedStillReplaceTheKillSwitch) {
  ASSERT_EQ(Disable({L"Tunnel"}), 0U);
  TakeCalls();
  FakePlatform::FailCall("GetAdaptersAddresses", FakePlatform::kEveryCall, 8);
  EXPECT_EQ(Disable({L"Tunnel"}), 0U);
  EXPECT_THAT(TakeCalls(),
              ElementsAre("FwpmTransactionBegin0", "FwpmSubLayerGetByKey0", "FwpmFreeMemory0",
                          "FwpmFilterDeleteById0 x 51", "FwpmSubLayerDeleteByKey0", "FwpmSubLayerGetByKey0",
                          "FwpmSubLayerAdd0", "FwpmFilterAdd0 x 51", "FwpmTransactionCommit0"));
}

TEST_F(InternetInterfaces, OfTheDeviceInstallerAreEnoughWhenIpHelperFails) {
  FakePlatform::AddDevice(FakePlatform::NetworkDevice(L"device", L"Tunnel", 5));
  FakePlatform::FailCall("GetAdaptersAddresses", FakePlatform::kEveryCall, 8);
  EXPECT_EQ(Disable({L"Tunnel"}), 0U);
  EXPECT_THAT(FoundLines(), ElementsAre("NATIVE: found interface: Tunnel:1688849944150016"));
}

TEST_F(InternetInterfaces, OfIpHelperAreEnoughWhenTheDeviceInstallerFails) {
  AddAdapter(L"Tunnel", L"Tunnel", 7);
  FakePlatform::FailCall("SetupDiGetClassDevsW", 1, 5);
  EXPECT_EQ(Disable({L"Tunnel"}), 0U);
  EXPECT_THAT(FoundLines(), ElementsAre("NATIVE: found interface: Tunnel:7"));
}

}  // namespace
