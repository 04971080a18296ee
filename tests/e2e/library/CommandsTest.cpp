#include <WfpPlatform.h>
#include <iphlpapi.h>

#include <algorithm>
#include <array>
#include <thread>

#include "LibraryTest.h"

extern "C" std::uint32_t LinesLoggedInC(decltype(&DisableInternet) disableInternet);

namespace {

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class LibraryCommands : public LibraryTest {
 protected:
  LibraryCommands() { Initialize(); }
};

TEST_F(LibraryCommands, TellTheWholeStory) {
  EXPECT_EQ(DisableInternet(), 0U);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: DisableInternet", "NATIVE: create killswitch layer",
                                     "NATIVE: get interface luids",
                                     "NATIVE: KillSwitch without adapter filter", "NATIVE: Apply firewall."));
  EXPECT_EQ(library_->IsInternetEnabled(), 0U);
  EXPECT_THAT(engine_.Filters(), SizeIs(51));

  EXPECT_EQ(library_->EnableDhcp(Log), 0U);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: enabling dhcp", "NATIVE: dhcp enabled successfully."));
  EXPECT_EQ(library_->IsDhcpEnabled(), 1U);
  EXPECT_THAT(engine_.Filters(), SizeIs(57));

  engine_.ClearJournal();
  EXPECT_EQ(DisableInternet(), 0U);
  EXPECT_THAT(TakeLog(), Contains("NATIVE: Remove killswitch layer"));
  EXPECT_EQ(engine_.Journal().front(), "FwpmTransactionBegin0");
  EXPECT_EQ(engine_.Journal().back(), "FwpmTransactionCommit0");
  EXPECT_THAT(engine_.Filters(), SizeIs(57));

  EXPECT_EQ(library_->EnableInternet(), 0U);
  EXPECT_EQ(library_->IsInternetEnabled(), 1U);
  EXPECT_THAT(engine_.Filters(), SizeIs(6));

  EXPECT_EQ(library_->DisableDhcp(Log), 0U);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: disabling dhcp", "NATIVE: dhcp disabled successfully."));
  EXPECT_EQ(library_->IsDhcpEnabled(), 0U);
  EXPECT_THAT(engine_.Snapshot(), SizeIs(1));  // the provider
  EXPECT_STREQ(library_->GetErrorText(), "");
}

TEST_F(LibraryCommands, InstallUnderTheIdentitiesOfInitialize) {
  ASSERT_EQ(DisableInternet(), 0U);
  ASSERT_EQ(library_->EnableDhcp(Log), 0U);
  Texts objects = engine_.Snapshot();
  ASSERT_EQ(objects.size(), 60U);
  EXPECT_EQ(objects[0],
            "provider c0de0000-0001-4001-8000-000000000001 flags 0 \"provider name\" "
            "\"provider description\" service \"provider name\"");
  EXPECT_EQ(objects[1],
            "sublayer c0de0000-0002-4002-8000-000000000002 flags 0 weight 8 provider - "
            "\"kill switch name\" \"kill switch description\"");
  EXPECT_EQ(objects[2],
            "sublayer c0de0000-0004-4004-8000-000000000004 flags 0 weight 9 provider - "
            "\"dhcp name\" \"dhcp description\"");
  EXPECT_THAT(objects[3],
              HasSubstr("sublayer c0de0000-0002-4002-8000-000000000002 provider "
                        "c0de0000-0001-4001-8000-000000000001 \"kill switch name\" "
                        "\"kill switch description\" ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 14 | - | -"));
  EXPECT_THAT(objects[59],
              HasSubstr("sublayer c0de0000-0004-4004-8000-000000000004 provider "
                        "c0de0000-0001-4001-8000-000000000001 \"dhcp name\" \"dhcp description\" "
                        "ALE_FLOW_ESTABLISHED_V6 | PERMIT | UINT8 14 | - | IP_PROTOCOL EQUAL UINT8 17 & "
                        "IP_LOCAL_PORT EQUAL UINT16 547 & IP_REMOTE_PORT EQUAL UINT16 546"));
}

TEST_F(LibraryCommands, StartAfreshAfterASecondInitialize) {
  ASSERT_EQ(DisableInternet(), 0U);
  Initialize();
  EXPECT_EQ(library_->IsInternetEnabled(), 1U);
  EXPECT_EQ(engine_.CountOutstanding().sessions, 0U);
  EXPECT_THAT(engine_.Snapshot(), IsEmpty());
}

TEST_F(LibraryCommands, GiveAnEnginesCodeZeroExtendedAndLogItSigned) {
  engine_.FailCall("FwpmSubLayerAdd0", 1, 0x80320009);
  EXPECT_EQ(DisableInternet(), 2150760457U);
  EXPECT_THAT(TakeLog(),
              ElementsAre("NATIVE: DisableInternet", "NATIVE: create killswitch layer",
                          "NATIVE: get interface luids", "NATIVE: KillSwitch without adapter filter",
                          "NATIVE: Error applying firewall.", "-2144206839"));
  EXPECT_STREQ(library_->GetErrorText(), "Error creating sublayer.");
}

TEST_F(LibraryCommands, CatchTheirExceptionsInsideTheLibrary) {
  constexpr const wchar_t* kMissing[]{L"C:\\windows\\no such program.exe"};
  EXPECT_EQ(library_->DisableInternet(kMissing, 1, nullptr, 0, Log), 2U);
  EXPECT_STREQ(library_->GetErrorText(), "Failed to retrieve app blob");
  EXPECT_EQ(library_->IsInternetEnabled(), 1U);
}

TEST_F(LibraryCommands, LogOnTheCallersThread) {
  DWORD caller = 0;
  std::thread([&] {
    caller = GetCurrentThreadId();
    EXPECT_EQ(DisableInternet(), 0U);
    library_->EnableDhcp(Log);
    library_->DisableDhcp(Log);
  }).join();
  EXPECT_NE(caller, GetCurrentThreadId());
  EXPECT_THAT(LoggingThreads(), ElementsAre(caller));
}

TEST_F(LibraryCommands, FollowAnInitializeThatKeptNoPointerToItsArguments) {
  GUID key = kKillSwitchKey;
  std::wstring text = L"handed over";
  const wchar_t* const t = text.c_str();
  library_->Initialize(&key, t, t, &key, t, t, &key, t, t, &key, t, t, &key, t, t, &key, t, t, &key, t, t,
                       &key, t, t, t);
  key = {};
  std::fill(text.begin(), text.end(), L'x');
  ASSERT_EQ(DisableInternet(), 0U);
  EXPECT_EQ(engine_.Snapshot().at(0),
            "provider c0de0000-0002-4002-8000-000000000002 flags 0 \"handed over\" \"handed over\" service "
            "\"handed over\"");
  EXPECT_EQ(engine_.Snapshot().at(1),
            "sublayer c0de0000-0002-4002-8000-000000000002 flags 0 weight 8 provider - \"handed over\" "
            "\"handed over\"");
}

TEST_F(LibraryCommands, KeepNoPointerToTheirArguments) {
  std::wstring app = L"C:\\windows\\system32\\kernel32.dll";
  std::array<const wchar_t*, 1> apps{app.c_str()};
  engine_.FailCall("FwpmEngineOpen0", 1, 5);
  ASSERT_EQ(library_->DisableInternet(apps.data(), 1, nullptr, 0, Log), 5U);
  apps = {};
  std::fill(app.begin(), app.end(), L'x');

  ASSERT_EQ(library_->EnableDhcp(Log), 0U);  // also installs the kill switch, which is registered
  EXPECT_THAT(engine_.Filters(), SizeIs(63));
  EXPECT_EQ(
      std::ranges::count_if(
          engine_.Filters(),
          [](const std::string& filter) {
            return filter.find("BYTE_BLOB \\device\\harddiskvolume1\\windows\\system32\\kernel32.dll") !=
                   std::string::npos;
          }),
      6);
}

TEST_F(LibraryCommands, ServeAHostInC) { EXPECT_EQ(LinesLoggedInC(library_->DisableInternet), 5U); }

struct RealAdapter {
  std::wstring description;
  std::uint64_t luid;
};

/// An adapter of this machine, other than loopback.
std::optional<RealAdapter> FindRealAdapter() {
  std::vector<IP_ADAPTER_ADDRESSES> buffer(100);
  auto size = static_cast<ULONG>(buffer.size() * sizeof(IP_ADAPTER_ADDRESSES));
  if (GetAdaptersAddresses(AF_UNSPEC, 0, nullptr, buffer.data(), &size) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  for (const IP_ADAPTER_ADDRESSES* adapter = buffer.data(); adapter != nullptr; adapter = adapter->Next) {
    if (adapter->IfType != IF_TYPE_SOFTWARE_LOOPBACK) {
      return RealAdapter{adapter->Description, adapter->Luid.Value};
    }
  }
  return std::nullopt;
}

TEST_F(LibraryCommands, ExemptAnAdapterOfThisMachine) {
  const std::optional<RealAdapter> adapter = FindRealAdapter();
  if (!adapter) {
    GTEST_SKIP() << "this machine has no adapter but loopback";
  }
  const std::array<const wchar_t*, 1> names{adapter->description.c_str()};
  EXPECT_EQ(library_->DisableInternet(nullptr, 0, names.data(), 1, Log), 0U);
  const std::string luid = std::to_string(adapter->luid);
  const Texts log = TakeLog();
  EXPECT_THAT(log, Contains(testing::AllOf(testing::StartsWith("NATIVE: found interface: "),
                                           testing::EndsWith(":" + luid))));
  EXPECT_EQ(log.back(), "NATIVE: Apply firewall.");
  EXPECT_THAT(engine_.Filters(), Each(HasSubstr("IP_LOCAL_INTERFACE NOT_EQUAL UINT64 " + luid)));
  EXPECT_THAT(engine_.Filters(), SizeIs(51));
}

TEST_F(LibraryCommands, FindNoAdapterByANameThatNoneHas) {
  constexpr const wchar_t* kNames[]{L"no adapter has this name"};
  EXPECT_EQ(library_->DisableInternet(nullptr, 0, kNames, 1, Log), 0U);
  EXPECT_THAT(TakeLog(), Contains("NATIVE: No adapters found."));
  EXPECT_THAT(engine_.Filters(), SizeIs(51));
}

}  // namespace
