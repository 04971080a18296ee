#include <WfpPlatform.h>
#include <gmock/gmock.h>

#include "ApiTest.h"
#include "api/RuleSetIdentity.h"
#include "emulator/Control.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class BeforeInitialize : public ModuleTest {};
class InitializeCommand : public ModuleTest {};
class ErrorText : public InitializedModuleTest {};

TEST_F(BeforeInitialize, TheInternetIsEnabled) { EXPECT_EQ(IsInternetEnabled(), 1U); }

TEST_F(BeforeInitialize, DhcpIsNotEnabled) { EXPECT_EQ(IsDhcpEnabled(), 0U); }

TEST_F(BeforeInitialize, EnableInternetHasNothingToDo) {
  EXPECT_EQ(EnableInternet(), 0U);
  EXPECT_THAT(TakeCalls(), IsEmpty());
}

TEST_F(BeforeInitialize, DisableDhcpLogsAndHasNothingToDo) {
  EXPECT_EQ(DisableDhcp(Log), 0U);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: disabling dhcp"));
  EXPECT_THAT(TakeCalls(), IsEmpty());
}

TEST_F(BeforeInitialize, TheErrorTextIsEmpty) { EXPECT_STREQ(GetErrorText(), ""); }

TEST_F(BeforeInitialize, EveryIdentityIsEmpty) {
  const StoredIdentities& stored = Identities();
  for (const RuleSetIdentity* identity :
       {&stored.provider, &stored.killSwitch, &stored.localNetwork, &stored.dhcp, &stored.dnsLeak,
        &stored.interfaceLeak, &stored.firewallCopy, &stored.skein}) {
    EXPECT_EQ(identity->guid, GUID{});
    EXPECT_EQ(identity->name, L"");
    EXPECT_EQ(identity->description, L"");
  }
  EXPECT_EQ(stored.dnsPermittedAppPath, L"");
}

void ExpectIdentity(const RuleSetIdentity& actual, const GUID& key, const wchar_t* name,
                    const wchar_t* description) {
  EXPECT_EQ(actual.guid, key);
  EXPECT_EQ(actual.name, name);
  EXPECT_EQ(actual.description, description);
}

TEST_F(InitializeCommand, KeepsEachArgumentInItsPlace) {
  InitializeModule();
  const StoredIdentities& stored = Identities();
  ExpectIdentity(stored.provider, kProviderKey, L"provider name", L"provider description");
  ExpectIdentity(stored.killSwitch, kKillSwitchKey, L"kill switch name", L"kill switch description");
  ExpectIdentity(stored.dhcp, kDhcpKey, L"dhcp name", L"dhcp description");
  ExpectIdentity(stored.dnsLeak, kDnsLeakKey, L"dns leak name", L"dns leak description");
  ExpectIdentity(stored.interfaceLeak, kInterfaceLeakKey, L"interface leak name",
                 L"interface leak description");
  ExpectIdentity(stored.firewallCopy, kFirewallCopyKey, L"firewall copy name", L"firewall copy description");
  ExpectIdentity(stored.skein, kSkeinKey, L"skein name", L"skein description");
  EXPECT_EQ(stored.dnsPermittedAppPath, L"C:\\dns.exe");
}

TEST_F(InitializeCommand, GivesTheLocalNetworkItsDescriptionAsNameAndAnEmptyDescription) {
  InitializeModule();
  ExpectIdentity(Identities().localNetwork, kLocalNetworkKey, L"local network description", L"");
}

TEST_F(InitializeCommand, MakesNoEngineCall) {
  InitializeModule();
  EXPECT_THAT(TakeCalls(), IsEmpty());
}

TEST_F(InitializeCommand, LeavesEverythingSwitchedOff) {
  InitializeModule();
  EXPECT_EQ(IsInternetEnabled(), 1U);
  EXPECT_EQ(IsDhcpEnabled(), 0U);
}

TEST_F(InitializeCommand, CopiesItsArguments) {
  GUID key = kKillSwitchKey;
  std::wstring text = L"text";
  Initialize(&key, text.c_str(), text.c_str(), &key, text.c_str(), text.c_str(), &key, text.c_str(),
             text.c_str(), &key, text.c_str(), text.c_str(), &key, text.c_str(), text.c_str(), &key,
             text.c_str(), text.c_str(), &key, text.c_str(), text.c_str(), &key, text.c_str(), text.c_str(),
             text.c_str());
  key = {};
  text.assign(4, L'x');
  ExpectIdentity(Identities().provider, kKillSwitchKey, L"text", L"text");
  ExpectIdentity(Identities().skein, kKillSwitchKey, L"text", L"text");
  EXPECT_EQ(Identities().dnsPermittedAppPath, L"text");
}

TEST_F(InitializeCommand, NamesTheProviderInTheEngineByItsNameTwiceAndItsDescription) {
  InitializeModule();
  ASSERT_EQ(EnableDhcp(Log), 0U);
  const auto providers = EngineEmulator::TakeSnapshot().providers;
  ASSERT_EQ(providers.size(), 1U);
  EXPECT_EQ(providers[0].key, kProviderKey);
  EXPECT_EQ(providers[0].name, L"provider name");
  EXPECT_EQ(providers[0].serviceName, L"provider name");
  EXPECT_EQ(providers[0].description, L"provider description");
  EXPECT_EQ(providers[0].flags, 0U);
}

TEST_F(InitializeCommand, OnceMoreClosesTheSessionAndLeavesTheEngineEmpty) {
  InitializeModule();
  ASSERT_EQ(DisableInternet(nullptr, 0, nullptr, 0, Log), 0U);
  ASSERT_EQ(EnableDhcp(Log), 0U);
  TakeCalls();
  TakeLog();

  InitializeModule();

  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmEngineClose0"));
  EXPECT_THAT(TakeLog(), IsEmpty());
  EXPECT_EQ(EngineEmulator::CountOutstanding().sessions, 0U);
  const EngineEmulator::Snapshot engine = EngineEmulator::TakeSnapshot();
  EXPECT_TRUE(engine.providers.empty());
  EXPECT_TRUE(engine.sublayers.empty());
  EXPECT_TRUE(engine.filters.empty());
  EXPECT_EQ(IsInternetEnabled(), 1U);
  EXPECT_EQ(IsDhcpEnabled(), 0U);
}

TEST_F(InitializeCommand, OnceMoreSwitchesEveryFeatureOff) {
  InitializeModule();
  EngineEmulator::PretendFileExists(L"C:\\dns.exe");
  ASSERT_EQ(DisableInternet(nullptr, 0, nullptr, 0, Log), 0U);
  ASSERT_EQ(EnableDhcp(Log), 0U);
  ASSERT_EQ(EnableLeakProtection("198.51.100.7", Log, nullptr, 0, 7, nullptr, 0), 0U);
  ASSERT_EQ(IsLeakProtectionEnabled(), 1U);
  ASSERT_EQ(DisableLocalNetwork(Log), 0U);
  ASSERT_EQ(EnableSkeinFirewallRules(Log, nullptr, 0, 7, nullptr, 0), 0U);
  ExpectOutstandingMemory(1);  // the list that leak protection's copies point into

  InitializeModule();

  EXPECT_EQ(IsInternetEnabled(), 1U);
  EXPECT_EQ(IsDhcpEnabled(), 0U);
  EXPECT_EQ(IsLeakProtectionEnabled(), 0U);
  EXPECT_EQ(IsLocalNetworkEnabled(), 1U);
  TakeCalls();
  EXPECT_EQ(DisableSkeinFirewallRules(), 0U);  // Skein has no query
  EXPECT_THAT(TakeCalls(), IsEmpty());
}

TEST_F(InitializeCommand, OnceMoreTakesTheNewIdentities) {
  InitializeModule();
  ASSERT_EQ(EnableDhcp(Log), 0U);
  const wchar_t* const text = L"other";
  Initialize(&kSkeinKey, text, text, &kProviderKey, text, text, &kProviderKey, text, text, &kKillSwitchKey,
             L"second name", L"second description", &kProviderKey, text, text, &kProviderKey, text, text,
             &kProviderKey, text, text, &kProviderKey, text, text, text);
  ASSERT_EQ(EnableDhcp(Log), 0U);

  const EngineEmulator::Snapshot engine = EngineEmulator::TakeSnapshot();
  ASSERT_EQ(engine.providers.size(), 1U);
  EXPECT_EQ(engine.providers[0].key, kSkeinKey);
  ASSERT_EQ(engine.sublayers.size(), 1U);
  EXPECT_EQ(engine.sublayers[0].key, kKillSwitchKey);
  EXPECT_EQ(engine.sublayers[0].name, L"second name");
  EXPECT_EQ(engine.sublayers[0].description, L"second description");
}

TEST_F(InitializeCommand, OnceMoreEndsATransactionThatAFailureLeftOpen) {
  InitializeModule();
  ASSERT_EQ(DisableInternet(nullptr, 0, nullptr, 0, Log), 0U);
  EngineEmulator::FailCall("FwpmFilterAdd0", 51, 5);
  ASSERT_EQ(DisableInternet(nullptr, 0, nullptr, 0, Log), 5U);
  ASSERT_EQ(EngineEmulator::CountOutstanding().openTransactions, 1U);

  InitializeModule();

  EXPECT_EQ(EngineEmulator::CountOutstanding().openTransactions, 0U);
  EXPECT_EQ(DisableInternet(nullptr, 0, nullptr, 0, Log), 0U);
}

TEST_F(InitializeCommand, OnceMoreIgnoresASessionThatDoesNotClose) {
  InitializeModule();
  ASSERT_EQ(EnableDhcp(Log), 0U);
  EngineEmulator::FailCall("FwpmEngineClose0", 1, 1753);
  InitializeModule();
  EXPECT_EQ(IsDhcpEnabled(), 0U);
  EXPECT_STREQ(GetErrorText(), "");
  ExpectOpenSessions(1);
}

TEST_F(ErrorText, IsThatOfTheLatestFailure) {
  EngineEmulator::FailCall("FwpmEngineOpen0", 1, 5);
  ASSERT_EQ(EnableDhcp(Log), 5U);
  EXPECT_STREQ(GetErrorText(), "Error opening engine.");
  EngineEmulator::FailCall("FwpmSubLayerAdd0", 1, 5);
  ASSERT_EQ(DisableInternet(nullptr, 0, nullptr, 0, Log), 5U);
  EXPECT_STREQ(GetErrorText(), "Error creating sublayer.");
}

TEST_F(ErrorText, OutlivesSuccess) {
  EngineEmulator::FailCall("FwpmEngineOpen0", 1, 5);
  ASSERT_EQ(EnableDhcp(Log), 5U);
  const char* const text = GetErrorText();
  ASSERT_EQ(DisableDhcp(Log), 0U);
  ASSERT_EQ(EnableDhcp(Log), 0U);
  EXPECT_STREQ(text, "Error opening engine.");
  EXPECT_EQ(GetErrorText(), text);
}

TEST_F(ErrorText, OutlivesInitialize) {
  EngineEmulator::FailCall("FwpmEngineOpen0", 1, 5);
  ASSERT_EQ(EnableDhcp(Log), 5U);
  InitializeModule();
  EXPECT_STREQ(GetErrorText(), "Error opening engine.");
}

TEST_F(ErrorText, BelongsToAFailureOfCodeOne) {
  EngineEmulator::FailCall("FwpmProviderAdd0", 1, 0x80320009);
  EXPECT_EQ(EnableDhcp(Log), 1U);
  EXPECT_STREQ(GetErrorText(), "Failed to add provider");
}

}  // namespace
