#include "promises/Proof.h"

#include <algorithm>

#include "support/RuleSetKeys.h"
#include "unit/policy/PolicyTest.h"

namespace {

using Promises::Features;
using Promises::Keeping;
using Promises::PromiseResult;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

/// The id of a file on drive C.
std::string Application(const std::string& name) {
  return Policy::ApplicationBytes("\\device\\harddiskvolume1\\" + name);
}

Features KillSwitchOnly() {
  Features features;
  features.killSwitch.emplace();
  return features;
}

Features LeakProtectionOnly() {
  Features features;
  features.leakProtection = Features::LeakProtection{{7},
                                                     0xCB007101,
                                                     {0xCB007102, 0xCB007103},
                                                     Application("dns.exe"),
                                                     {Application("bad.exe")},
                                                     {Application("bad.exe")}};
  return features;
}

Features SkeinOnly() {
  Features features;
  features.skein = Features::Skein{{11}, {0x64400001, 0x64400002}};
  return features;
}

class ProofTest : public PolicyTest {
 protected:
  /// The promises of `features` with the filters that are installed, in the form "name: state".
  static std::vector<std::string> StatesOf(const Features& features) {
    std::vector<std::string> states;
    const Policy::Snapshot snapshot = Read();
    for (const PromiseResult& result : Promises::Prove(snapshot, features)) {
      std::string state(Promises::KeepingText(result.keeping));
      if (result.keeping == Keeping::Conditional) {
        state.clear();
        for (const auto& choices : Policy::Alternatives(result.worlds)) {
          state += (state.empty() ? "holds with " : " or ") + Policy::Describe(choices);
        }
      }
      states.push_back(result.name + ": " + state);
    }
    return states;
  }

  static PromiseResult Find(const std::vector<PromiseResult>& results, const std::string& name) {
    return *std::ranges::find(results, name, &PromiseResult::name);
  }

  void BlockEverything() {
    std::string filters;
    for (const char* layer : {"ALE_AUTH_CONNECT_V4", "ALE_AUTH_CONNECT_V6", "ALE_AUTH_RECV_ACCEPT_V4",
                              "ALE_AUTH_RECV_ACCEPT_V6"}) {
      filters += std::string(layer) + " | BLOCK | UINT8 1 | - | -\n";
    }
    Install(1, filters);
  }
};

/// A promise, features that make it, and whether it says that something is blocked.
struct Case {
  const char* name;
  Features features;
  bool blocks;
};

std::vector<Case> Cases() {
  Features exemptApplications = KillSwitchOnly();
  exemptApplications.killSwitch->applications = {Application("a.exe")};
  Features exemptInterfaces = KillSwitchOnly();
  exemptInterfaces.killSwitch->interfaces = {5};
  Features dhcp;
  dhcp.dhcp = true;
  Features localNetwork;
  localNetwork.localNetworkBlock = true;
  return {{"kill-switch-closes-outbound", KillSwitchOnly(), true},
          {"kill-switch-closes-inbound", KillSwitchOnly(), true},
          {"kill-switch-no-look-ups", KillSwitchOnly(), true},
          {"kill-switch-loopback", KillSwitchOnly(), false},
          {"kill-switch-local-network", KillSwitchOnly(), false},
          {"kill-switch-exempt", exemptApplications, false},
          {"kill-switch-exempt", exemptInterfaces, false},
          {"dhcp-client", dhcp, false},
          {"local-network-closed", localNetwork, true},
          {"local-network-loopback", localNetwork, false},
          {"local-network-look-ups", localNetwork, false},
          {"leak-no-look-ups", LeakProtectionOnly(), true},
          {"leak-name-application", LeakProtectionOnly(), false},
          {"leak-closes", LeakProtectionOnly(), true},
          {"leak-tunnel-open", LeakProtectionOnly(), false},
          {"leak-permitted-addresses", LeakProtectionOnly(), false},
          {"leak-server", LeakProtectionOnly(), false},
          {"leak-local-network", LeakProtectionOnly(), false},
          {"leak-loopback", LeakProtectionOnly(), false},
          {"leak-blocked-applications", LeakProtectionOnly(), true},
          {"skein-peers", SkeinOnly(), false},
          {"skein-closed", SkeinOnly(), true}};
}

TEST_F(ProofTest, AnOpenEngineKeepsWhatIsPromisedToPass) {
  const Policy::Snapshot snapshot = Read();
  for (const auto& [name, features, blocks] : Cases()) {
    const PromiseResult result = Find(Promises::Prove(snapshot, features), name);
    EXPECT_EQ(result.keeping, blocks ? Keeping::Broken : Keeping::Holds) << name;
    EXPECT_EQ(result.counterexample.has_value(), blocks) << name;
  }
}

TEST_F(ProofTest, AClosedEngineKeepsWhatIsPromisedToBeBlocked) {
  BlockEverything();
  const Policy::Snapshot snapshot = Read();
  for (const auto& [name, features, blocks] : Cases()) {
    const PromiseResult result = Find(Promises::Prove(snapshot, features), name);
    EXPECT_EQ(result.keeping, blocks ? Keeping::Holds : Keeping::Broken) << name;
    EXPECT_EQ(result.counterexample.has_value(), !blocks) << name;
  }
}

TEST_F(ProofTest, NoFeatureNoPromise) { EXPECT_THAT(StatesOf({}), ElementsAre()); }

TEST_F(ProofTest, TheCounterexampleIsTheOrdinaryConnectionWithOnlyTheValuesThatItTakes) {
  const Policy::Snapshot snapshot = Read();
  const auto results = Promises::Prove(snapshot, LeakProtectionOnly());
  const PromiseResult result = Find(results, "leak-no-look-ups");
  EXPECT_EQ(result.promised, Policy::Action::Block);
  EXPECT_EQ(result.counterexample.value().connection, To("198.51.100.1", 53));
  EXPECT_THAT(Promises::Describe(result),
              HasSubstr("promised block, but:\n  outbound IPv4, protocol 6 (TCP)"));
}

TEST_F(ProofTest, InCompanyTellsWhoseFilterBreaksAPromise) {
  Install(KillSwitchOnly());
  const auto resultOf = [] {
    static std::optional<Policy::Snapshot> snapshot;
    snapshot = Read();
    return Find(Promises::ProveInCompany(*snapshot, KillSwitchOnly(), kProviderKey),
                "kill-switch-closes-outbound");
  };
  const PromiseResult before = resultOf();
  EXPECT_EQ(before.keeping, Keeping::Holds);
  EXPECT_EQ(before.alone, std::nullopt);
  EXPECT_THAT(before.breaks, testing::IsEmpty());

  Install(60000,
          "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 1 | CLEAR_ACTION_RIGHT | IP_REMOTE_PORT EQUAL UINT16 22");
  Policy::Snapshot snapshot = Read();
  snapshot.providers = {{kProviderKey, "Corvane", ""}};
  Policy::Filter& foreign = *std::ranges::find_if(
      snapshot.filters, [](const Policy::Filter& filter) { return !filter.providerKey; });
  foreign.id = 7;
  foreign.name = "SSH";
  const PromiseResult result =
      Find(Promises::ProveInCompany(snapshot, KillSwitchOnly(), kProviderKey), "kill-switch-closes-outbound");
  EXPECT_NE(result.keeping, Keeping::Holds);
  EXPECT_EQ(result.alone, Keeping::Holds);
  ASSERT_THAT(result.breaks, testing::SizeIs(1));
  EXPECT_EQ(result.breaks[0].filter, &foreign);
  EXPECT_TRUE(result.breaks[0].isCertain);
  EXPECT_EQ(result.breaks[0].connection.remotePort, 22);
  EXPECT_THAT(Promises::DescribeInCompany(result, Policy::Owners(snapshot, kProviderKey)),
              AllOf(testing::StartsWith("kill-switch-closes-outbound (kill switch): "),
                    HasSubstr(" on this machine\n"),
                    HasSubstr("  broken by filter 7 \"SSH\" of no provider: outbound IPv4, protocol 6 (TCP)"),
                    testing::EndsWith("  of this product's filters alone it holds\n")));
}

TEST_F(ProofTest, AResultSaysWhereItHoldsAndWhatBreaksIt) {
  Features dhcp;
  dhcp.dhcp = true;
  const auto textOf = [&](const std::string& filters) {
    SetUpAgain();
    Install(1, filters);
    const Policy::Snapshot snapshot = Read();
    const PromiseResult result = Promises::Prove(snapshot, dhcp).at(0);
    const std::string text = Promises::Describe(result);
    const std::string trace = result.counterexample ? Policy::Describe(*result.counterexample) : "";
    EXPECT_THAT(text, testing::EndsWith(trace));
    return text.substr(0, text.size() - trace.size());
  };
  EXPECT_EQ(textOf("ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 1 | - | -"),
            "dhcp-client (DHCP): holds\n"
            "  This machine can ask for an address, and renew it.\n");
  EXPECT_EQ(textOf("ALE_AUTH_CONNECT_V4 | PERMIT | UINT64 5 | - | -\n"
                   "ALE_AUTH_CONNECT_V4 | BLOCK | UINT64 5 | - | -"),
            "dhcp-client (DHCP): holds only under a reading\n"
            "  This machine can ask for an address, and renew it.\n"
            "  holds with filter-ties = permit-first\n"
            "  promised permit, but:\n"
            "  ");
  EXPECT_EQ(textOf("ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -"),
            "dhcp-client (DHCP): broken\n"
            "  This machine can ask for an address, and renew it.\n"
            "  promised permit, but:\n"
            "  ");
}

TEST_F(ProofTest, TheCounterexampleBreaksThePromise) {
  Install(KillSwitchOnly());
  const Policy::Snapshot snapshot = Read();
  const Policy::Decider decider(snapshot);
  for (const PromiseResult& result : Promises::Prove(snapshot, KillSwitchOnly())) {
    if (result.counterexample) {
      const auto action = decider.Decide(result.counterexample->connection).In(result.counterexample->world);
      EXPECT_NE(action, result.promised) << result.name;
    }
  }
}

TEST_F(ProofTest, ALoopbackPermitMustHoldAtBothEndsAndWhenJudgedAnew) {
  const std::string closed = R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -
ALE_AUTH_RECV_ACCEPT_V4 | BLOCK | UINT8 1 | - | -
)";
  const std::string outbound = "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 2 | - | FLAGS FLAGS_ALL_SET UINT32 1\n";
  const std::string inbound =
      "ALE_AUTH_RECV_ACCEPT_V4 | PERMIT | UINT8 2 | - | FLAGS FLAGS_ALL_SET UINT32 1\n";
  const auto stateOf = [this](const std::string& filters) {
    SetUpAgain();
    PolicyTest::Install(1, filters);
    return StatesOf(KillSwitchOnly()).at(3);
  };
  EXPECT_EQ(stateOf(closed + outbound + inbound), "kill-switch-loopback: holds");
  EXPECT_EQ(stateOf(closed + outbound), "kill-switch-loopback: broken");
  EXPECT_EQ(stateOf(closed + inbound +
                    "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 2 | - | FLAGS EQUAL UINT32 1\n"
                    "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 2 | - | FLAGS EQUAL UINT32 0x800001\n"),
            "kill-switch-loopback: broken");
}

TEST_F(ProofTest, KillSwitchWithOneExemptInterface) {
  Features features = KillSwitchOnly();
  features.killSwitch->interfaces = {5};
  Install(features);
  EXPECT_THAT(
      StatesOf(features),
      ElementsAre("kill-switch-closes-outbound: holds with unset-fields = match",
                  "kill-switch-closes-inbound: holds with unset-fields = match",
                  "kill-switch-no-look-ups: holds with unset-fields = match", "kill-switch-loopback: broken",
                  "kill-switch-local-network: holds with unset-fields = match", "kill-switch-exempt: holds"));
}

TEST_F(ProofTest, KillSwitchWithTwoExemptInterfaces) {
  Features features = KillSwitchOnly();
  features.killSwitch->interfaces = {5, 6};
  Install(features);
  EXPECT_THAT(StatesOf(features), ElementsAre("kill-switch-closes-outbound: holds with unset-fields = match",
                                              "kill-switch-closes-inbound: holds with unset-fields = match",
                                              "kill-switch-no-look-ups: holds with unset-fields = match",
                                              "kill-switch-loopback: broken",
                                              "kill-switch-local-network: holds with unset-fields = match",
                                              "kill-switch-exempt: holds with several-negations = all-hold"));
}

TEST_F(ProofTest, KillSwitchWithExemptApplications) {
  Features features = KillSwitchOnly();
  features.killSwitch->applications = {Application("a.exe"), Application("b.exe")};
  Install(features);
  EXPECT_THAT(
      StatesOf(features),
      ElementsAre("kill-switch-closes-outbound: holds", "kill-switch-closes-inbound: holds",
                  "kill-switch-no-look-ups: holds", "kill-switch-loopback: broken",
                  "kill-switch-local-network: holds with unset-fields = match", "kill-switch-exempt: holds"));
}

TEST_F(ProofTest, WhatOtherFeaturesBlockIsNoBreachOfTheExemption) {
  Features features = KillSwitchOnly();
  features.killSwitch->applications = {Application("a.exe")};
  features.localNetworkBlock = true;
  features.leakProtection = LeakProtectionOnly().leakProtection;
  features.skein = SkeinOnly().skein;
  Install(features);
  EXPECT_THAT(StatesOf(features), Contains("kill-switch-exempt: holds"));
}

TEST_F(ProofTest, LeakProtectionOfTwoInterfaces) {
  Features features = LeakProtectionOnly();
  features.leakProtection->interfaces = {7, 8};
  Install(features);
  EXPECT_THAT(
      StatesOf(features),
      ElementsAre(
          "leak-no-look-ups: holds", "leak-name-application: broken",
          "leak-closes: holds with unset-fields = match",
          // For each interface, the permit weighs as much as the block that comes from the other interface.
          "leak-tunnel-open: holds with filter-ties = permit-first", "leak-permitted-addresses: holds",
          "leak-server: holds", "leak-local-network: holds", "leak-loopback: broken",
          "leak-blocked-applications: holds"));
}

TEST_F(ProofTest, LeakProtectionOfNoInterface) {
  Features features = LeakProtectionOnly();
  features.leakProtection->interfaces.clear();
  Install(features);
  EXPECT_THAT(
      StatesOf(features),
      ElementsAre("leak-no-look-ups: holds", "leak-name-application: holds", "leak-closes: broken",
                  "leak-tunnel-open: holds", "leak-permitted-addresses: holds", "leak-server: holds",
                  "leak-local-network: holds", "leak-loopback: broken", "leak-blocked-applications: holds"));
}

}  // namespace
