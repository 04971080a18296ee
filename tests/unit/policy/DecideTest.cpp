#include "policy/Decide.h"

#include "unit/policy/PolicyTest.h"

namespace {

using Policy::Describe;
using Policy::Explanation;
using testing::HasSubstr;

constexpr const char* kHardPermit = "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 1 | CLEAR_ACTION_RIGHT | -";
constexpr const char* kSoftPermit = "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 1 | - | -";
constexpr const char* kBlock = "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -";

class DecideTest : public PolicyTest {
 protected:
  /// The verdict of filters in a heavier and in a lighter sublayer, in the world of the first readings.
  std::string Above(const char* higher, const char* lower) {
    SetUpAgain();
    if (higher != nullptr) {
      Install(2, higher);
    }
    if (lower != nullptr) {
      Install(1, lower);
    }
    const Policy::Snapshot snapshot = Read();
    const auto action = Policy::Decider(snapshot).Decide(To("198.51.100.1")).In(Policy::World());
    return std::string(Policy::ActionText(action.value()));
  }

  static std::string ExplanationOf(const Policy::Connection& connection) {
    const Policy::Snapshot snapshot = Read();
    return Describe(Policy::Decider(snapshot).Explain(connection));
  }
};

TEST_F(DecideTest, WithoutFiltersEverythingIsPermitted) {
  EXPECT_EQ(VerdictOf(To("198.51.100.1")), "permit");
  EXPECT_EQ(VerdictOf(From("2001:db8::1")), "permit");
  EXPECT_EQ(VerdictOf(Policy::Connection()), "permit");
}

TEST_F(DecideTest, SublayersCombineAsDocumented) {
  EXPECT_EQ(Above(kSoftPermit, nullptr), "permit");
  EXPECT_EQ(Above(kSoftPermit, kBlock), "block");
  EXPECT_EQ(Above(kSoftPermit, kSoftPermit), "permit");
  EXPECT_EQ(Above(kHardPermit, kBlock), "permit");
  EXPECT_EQ(Above(kBlock, kSoftPermit), "block");
  EXPECT_EQ(Above(kBlock, kHardPermit), "block");
  EXPECT_EQ(Above(nullptr, kBlock), "block");
}

TEST_F(DecideTest, WithinASublayerTheHeaviestMatchingFilterDecides) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 2 | - | IP_REMOTE_PORT EQUAL UINT16 443
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 3 | - | IP_REMOTE_PORT EQUAL UINT16 80
)");
  EXPECT_EQ(VerdictOf(To("198.51.100.1", 443)), "permit");
  EXPECT_EQ(VerdictOf(To("198.51.100.1", 80)), "block");
  EXPECT_EQ(VerdictOf(To("198.51.100.1", 22)), "block");
}

TEST_F(DecideTest, ConditionsOnOneFieldAreAlternativesWhereverTheyStand) {
  Install(1,
          "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | IP_REMOTE_PORT EQUAL UINT16 1 & IP_PROTOCOL EQUAL "
          "UINT8 6 & "
          "IP_REMOTE_PORT EQUAL UINT16 2");
  EXPECT_EQ(VerdictOf(To("198.51.100.1", 1)), "block");
  EXPECT_EQ(VerdictOf(To("198.51.100.1", 2)), "block");
  EXPECT_EQ(VerdictOf(To("198.51.100.1", 3)), "permit");
}

TEST_F(DecideTest, EachDirectionPassesItsOwnLayerAndBothTheFlow) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | IP_REMOTE_PORT EQUAL UINT16 1
ALE_AUTH_RECV_ACCEPT_V4 | BLOCK | UINT8 1 | - | IP_REMOTE_PORT EQUAL UINT16 2
ALE_FLOW_ESTABLISHED_V4 | BLOCK | UINT8 1 | - | IP_REMOTE_PORT EQUAL UINT16 3
OUTBOUND_TRANSPORT_V4 | BLOCK | UINT8 1 | - | -
)");
  const Policy::Snapshot snapshot = Read();
  const auto verdict = [&](Policy::Connection connection, UINT16 port) {
    connection.remotePort = port;
    const auto action = Policy::Decider(snapshot).Decide(connection).In(Policy::World());
    return std::string(Policy::ActionText(action.value()));
  };
  const std::vector<std::string> outbound{verdict(To("198.51.100.1"), 1), verdict(To("198.51.100.1"), 2),
                                          verdict(To("198.51.100.1"), 3)};
  const std::vector<std::string> inbound{verdict(From("198.51.100.1"), 1), verdict(From("198.51.100.1"), 2),
                                         verdict(From("198.51.100.1"), 3)};
  EXPECT_THAT(outbound, testing::ElementsAre("block", "permit", "block"));
  EXPECT_THAT(inbound, testing::ElementsAre("permit", "block", "block"));
}

TEST_F(DecideTest, TheFlowKnowsItsDirection) {
  Install(1, "ALE_FLOW_ESTABLISHED_V4 | BLOCK | UINT8 1 | - | DIRECTION EQUAL UINT32 1");
  EXPECT_EQ(VerdictOf(To("198.51.100.1")), "permit");
  EXPECT_THAT(VerdictOf(From("198.51.100.1")), testing::StartsWith("depends on flow-established-blocks: "));
}

TEST_F(DecideTest, TheVersionsHaveLayersOfTheirOwn) {
  Install(1, "ALE_AUTH_CONNECT_V6 | BLOCK | UINT8 1 | - | IP_REMOTE_ADDRESS EQUAL V6_ADDR_MASK fc00::/7");
  EXPECT_EQ(VerdictOf(To("fd00::1")), "block");
  EXPECT_EQ(VerdictOf(To("fe00::1")), "permit");
  EXPECT_EQ(VerdictOf(To("253.0.0.1")), "permit");
}

TEST_F(DecideTest, WhatHasNoValueMatchesEmptyOnly) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 2 | - | IP_LOCAL_ADDRESS EQUAL EMPTY
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | IP_REMOTE_PORT EQUAL UINT16 443
)");
  Policy::Connection connection = To("198.51.100.1", 80);
  EXPECT_EQ(VerdictOf(connection), "permit");
  connection.localAddress.reset();
  EXPECT_EQ(VerdictOf(connection), "block");
  connection = To("198.51.100.1", 443);
  EXPECT_EQ(VerdictOf(connection), "block");
  connection.remotePort.reset();
  EXPECT_EQ(VerdictOf(connection), "permit");
}

TEST_F(DecideTest, DisabledAndBootTimeFiltersAreNotInForce) {
  Install(1, kBlock);
  Policy::Snapshot snapshot = Read();
  for (const UINT32 flag : {0x20U, 0x2U}) {
    snapshot.filters.front().flags = flag;
    EXPECT_EQ(Describe(Policy::Decider(snapshot).Decide(To("198.51.100.1"))), "permit");
  }
}

TEST_F(DecideTest, AFilterThatCannotBeJudgedPerhapsMatches) {
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | INTERFACE_INDEX EQUAL UINT32 6");
  EXPECT_EQ(VerdictOf(To("198.51.100.1")), "depends on filters that only the engine can judge");
}

TEST_F(DecideTest, AFilterThatCannotBeJudgedNeedsItsOtherConditions) {
  Install(1,
          "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | INTERFACE_INDEX EQUAL UINT32 6 & IP_REMOTE_PORT EQUAL "
          "UINT16 1");
  EXPECT_EQ(VerdictOf(To("198.51.100.1", 2)), "permit");
}

TEST_F(DecideTest, WhatCannotBeJudgedMakesNoDifferenceBelowAHeavierFilter) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | INTERFACE_INDEX EQUAL UINT32 6
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 2 | - | -
)");
  EXPECT_EQ(VerdictOf(To("198.51.100.1")), "permit");
}

TEST_F(DecideTest, ACalloutThatOnlyLooksDecidesNothing) {
  Install(1, "ALE_AUTH_CONNECT_V4 | CALLOUT_INSPECTION | UINT8 1 | - | -");
  EXPECT_EQ(VerdictOf(To("198.51.100.1")), "permit");
}

TEST_F(DecideTest, AnApplicationIsKnownByItsBytes) {
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | ALE_APP_ID EQUAL BYTE_BLOB a.exe");
  Policy::Connection connection = To("198.51.100.1");
  connection.application = Policy::ApplicationBytes("a.exe");
  EXPECT_EQ(VerdictOf(connection), "block");
  connection.application = Policy::ApplicationBytes("A.exe");
  EXPECT_EQ(VerdictOf(connection), "permit");
  connection.application.reset();
  EXPECT_EQ(VerdictOf(connection), "permit");
}

TEST_F(DecideTest, APrefixIsReallyAnEnding) {
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | ALE_APP_ID PREFIX BYTE_BLOB a.exe");
  Policy::Connection connection = To("198.51.100.1");
  connection.application = Policy::ApplicationBytes("\\device\\a.exe");
  EXPECT_EQ(VerdictOf(connection), "block");
  connection.application = Policy::ApplicationBytes("a.exe\\device");
  EXPECT_EQ(VerdictOf(connection), "permit");
}

TEST_F(DecideTest, TestsOfMoreThanEightFlagsCannotBeJudged) {
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | FLAGS FLAGS_ANY_SET UINT32 0x0001FF00");
  EXPECT_EQ(VerdictOf(To("198.51.100.1")), "depends on filters that only the engine can judge");
}

TEST_F(DecideTest, AnExplanationNamesWhoDecidesAndWhoCameTooLate) {
  Install(2, R"(
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 1 | - | -
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 0 | - | -
)");
  Install(1, kBlock);
  const std::string text = ExplanationOf(To("198.51.100.1"));
  EXPECT_THAT(
      text,
      HasSubstr("remote 198.51.100.1:443, application other.exe, interface 999, flags 0x00000000: block"));
  EXPECT_THAT(text, HasSubstr("sublayer \"Sublayer\" (weight 2): soft permit of filter"));
  EXPECT_THAT(text, HasSubstr("overridden by the block of \"Sublayer\" (weight 1)"));
  EXPECT_THAT(text, HasSubstr("matches every connection"));
  EXPECT_THAT(text, HasSubstr("outranks the hard block of filter"));
  EXPECT_THAT(text, HasSubstr("ALE_FLOW_ESTABLISHED_V4: permit\n    no filter matches for certain"));
}

TEST_F(DecideTest, AnExplanationSaysWhatAHardPermitMadeBeIgnored) {
  Install(2, kHardPermit);
  Install(1, kBlock);
  EXPECT_THAT(ExplanationOf(To("198.51.100.1")),
              HasSubstr("ignored: \"Sublayer\" (weight 2) had decided for good"));
}

TEST_F(DecideTest, AnExplanationInAnotherWorldTellsItsStory) {
  Install(2, kHardPermit);
  Install(1, kBlock);
  const Policy::Snapshot snapshot = Read();
  const Policy::World world =
      Policy::World().With(Policy::Assumption::StaticBlocks, Policy::StaticBlockReading::BlockOverrides);
  const Explanation explanation = Policy::Decider(snapshot).Explain(To("198.51.100.1"), world);
  EXPECT_EQ(explanation.layers.at(0).action, Policy::Action::Block);
  EXPECT_EQ(explanation.layers.at(0).sublayers.at(0).effect, Policy::SublayerTrace::Effect::Overridden);
  EXPECT_EQ(explanation.layers.at(0).sublayers.at(1).effect, Policy::SublayerTrace::Effect::Stands);
}

TEST_F(DecideTest, AnExplanationNamesWhatCannotBeJudged) {
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | INTERFACE_INDEX EQUAL UINT32 6");
  EXPECT_THAT(ExplanationOf(To("198.51.100.1")), HasSubstr("with INTERFACE_INDEX EQUAL UINT32 6"));
}

TEST_F(DecideTest, AnExplanationNamesCallouts) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | CALLOUT_UNKNOWN | UINT8 2 | - | -
ALE_AUTH_CONNECT_V4 | CALLOUT_TERMINATING | UINT8 1 | - | -
)");
  const std::string text = ExplanationOf(To("198.51.100.1"));
  EXPECT_THAT(text, HasSubstr("soft permit by the callout of filter"));
  EXPECT_THAT(text, HasSubstr("lets the next filter decide"));
  const Policy::Snapshot snapshot = Read();
  const Policy::World world =
      Policy::World().With(Policy::Assumption::Callouts, Policy::CalloutReading::Block);
  EXPECT_THAT(Describe(Policy::Decider(snapshot).Explain(To("198.51.100.1"), world)),
              HasSubstr("hard block by the callout of filter"));
}

TEST_F(DecideTest, LabelsStandForNumbersAndIds) {
  Policy::Connection connection = To("fe80::1");
  connection.protocol = 17;
  connection.application = Policy::ApplicationBytes("a.exe");
  connection.localPort.reset();
  const Policy::Labels labels{{{999, "Tunnel"}}, {{Policy::ApplicationBytes("a.exe"), "the browser"}}};
  EXPECT_EQ(
      Describe(connection, labels),
      "outbound IPv6, protocol 17 (UDP), local [2001:db8::1]:unset, remote [fe80::1]:443, application the "
      "browser, interface Tunnel, flags 0x00000000");
}

}  // namespace
