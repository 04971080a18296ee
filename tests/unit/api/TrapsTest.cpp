// Ways to be unprotected that no result shows. Those after a failure of the engine are in other files.
#include <WfpPlatform.h>
#include <gmock/gmock.h>

#include <string>

#include "LeakProtectionTest.h"
#include "emulator/Control.h"
#include "support/FakePlatform.h"

namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;

class LeakProtectionTraps : public LeakProtectionTest {};

TEST_F(LeakProtectionTraps, AServerTextThatDoesNotParseIsZeroWithoutALineInTheLog) {
  for (const char* server : {"", "vpn.example.com", "203.0.113", "2001:db8::1", "203.0.113.9 "}) {
    EXPECT_EQ(EnableLeakProtection(server, Log, nullptr, 0, 7, nullptr, 0), 0U);
    EXPECT_THAT(
        TakeLog(),
        ElementsAre(
            "NATIVE: Enabling leak protection v3",
            "NATIVE: Enabling leak protection. Allowed interface: ", "NATIVE: Allowing interface by LUID 7",
            "NATIVE: LeakProtection dnsLeakSublayer set weight", "NATIVE: LeakProtection - apply firewall.",
            "NATIVE: LeakProtection - transaction commit.", "NATIVE: LeakProtection applying finished."));
    EXPECT_EQ(IsLeakProtectionEnabled(), 1U);
    EXPECT_THAT(FilterTexts(), Contains(HasSubstr("IP_REMOTE_ADDRESS EQUAL UINT32 0.0.0.0")));
    ASSERT_EQ(DisableLeakProtection(), 0U);
  }
}

TEST_F(LeakProtectionTraps, AnEmptyInterfaceTextAllowsEveryAdapter) {
  FakePlatform::AddAdapter({L"vpn", L"Tunnel", 7, 6, {}});
  FakePlatform::AddAdapter({L"lan", L"Ethernet", 8, 6, {}});
  constexpr const wchar_t* kNames[]{L""};
  EXPECT_EQ(EnableLeakProtection("203.0.113.9", Log, kNames, 1, 0, nullptr, 0), 0U);
  EXPECT_THAT(TakeLog(),
              IsSupersetOf({"NATIVE: found interface: Tunnel:7", "NATIVE: found interface: Ethernet:8"}));
  EXPECT_EQ(IsLeakProtectionEnabled(), 1U);
  EXPECT_THAT(FilterTexts(),
              IsSupersetOf({"ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 14 | CLEAR_ACTION_RIGHT | "
                            "IP_LOCAL_INTERFACE EQUAL UINT64 8",
                            "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 15 | - | "
                            "IP_REMOTE_PORT EQUAL UINT16 53 & IP_LOCAL_INTERFACE EQUAL UINT64 8"}));
}

/// Another process with the same keys, which has its kill switch on.
class OtherProcess {
 public:
  OtherProcess() {
    FWPM_SESSION0 session{};
    session.flags = FWPM_SESSION_FLAG_DYNAMIC;
    EXPECT_EQ(FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, &session, &engine_), 0U);
    std::wstring name = L"older release";
    FWPM_PROVIDER0 provider{};
    provider.providerKey = kProviderKey;
    provider.displayData.name = name.data();
    EXPECT_EQ(FwpmProviderAdd0(engine_, &provider, nullptr), 0U);
    FWPM_SUBLAYER0 killSwitch{};
    killSwitch.subLayerKey = kKillSwitchKey;
    killSwitch.displayData.name = name.data();
    EXPECT_EQ(FwpmSubLayerAdd0(engine_, &killSwitch, nullptr), 0U);
  }
  OtherProcess(const OtherProcess&) = delete;
  OtherProcess& operator=(const OtherProcess&) = delete;
  ~OtherProcess() { FwpmEngineClose0(engine_); }

 private:
  HANDLE engine_ = nullptr;
};

class Traps : public InitializedModuleTest {};

TEST_F(Traps, AKillSwitchOfAnotherProcessIsTakenForTheLibrarysOwn) {
  const OtherProcess process;
  EXPECT_EQ(DisableInternet(nullptr, 0, nullptr, 0, Log), 0U);
  EXPECT_EQ(TakeLog().back(), "NATIVE: Apply firewall.");
  EXPECT_EQ(IsInternetEnabled(), 0U);
  EXPECT_THAT(FilterTexts(), IsEmpty());
  EXPECT_EQ(EnableInternet(), 0x8032000cU);                                          // FWP_E_WRONG_SESSION
  EXPECT_EQ(EnableSkeinFirewallRules(Log, nullptr, 0, 7, nullptr, 0), 0x80320016U);  // LIFETIME_MISMATCH
  ExpectOutstandingMemory(1);
}

TEST_F(Traps, AnEngineThatHasForgottenEverythingLeavesTheQueriesAsTheyWere) {
  ASSERT_EQ(DisableInternet(nullptr, 0, nullptr, 0, Log), 0U);
  EngineEmulator::Reset();
  EXPECT_EQ(IsInternetEnabled(), 0U);
  EXPECT_THAT(FilterTexts(), IsEmpty());
  EXPECT_EQ(EnableInternet(), 0U);
  EXPECT_EQ(IsInternetEnabled(), 1U);
}

}  // namespace
