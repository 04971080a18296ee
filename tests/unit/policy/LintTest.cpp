#include "policy/Lint.h"

#include "unit/policy/PolicyTest.h"

namespace {

using Policy::Finding;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// The tests name filters by their number in the table, from 1.
class LintTest : public PolicyTest {
 protected:
  /// The findings as texts: "never-decides 2 1" is about the second filter and the first.
  static std::vector<std::string> Findings() {
    const Policy::Snapshot snapshot = Read();
    const auto place = [&](const Policy::Filter* filter) {
      return std::to_string(1 + (filter - snapshot.filters.data()));
    };
    std::vector<std::string> texts;
    for (const Finding& finding : Policy::Lint(snapshot)) {
      texts.push_back(std::string(Policy::FindingName(finding.kind)) + ' ' + place(finding.filter) +
                      (finding.other == nullptr ? "" : ' ' + place(finding.other)));
    }
    return texts;
  }

  std::vector<std::string> FindingsOf(const std::string& filters) {
    SetUpAgain();
    Install(1, filters);
    return Findings();
  }
};

TEST_F(LintTest, SaysNothingAboutFiltersThatSayWhatTheyMean) {
  EXPECT_THAT(FindingsOf(R"(
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 2 | - | IP_REMOTE_PORT EQUAL UINT16 443 & IP_PROTOCOL EQUAL UINT8 6
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -
)"),
              IsEmpty());
}

TEST_F(LintTest, ConditionsThatAlwaysHold) {
  EXPECT_THAT(FindingsOf("ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK "
                         "10.0.0.0/0.0.0.0"),
              ElementsAre("always-true 1"));
  EXPECT_THAT(FindingsOf("ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | FLAGS FLAGS_ALL_SET UINT32 0"),
              ElementsAre("always-true 1"));
  EXPECT_THAT(
      FindingsOf("ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | IP_REMOTE_PORT LESS_OR_EQUAL UINT16 80 & "
                 "IP_REMOTE_PORT GREATER UINT16 80"),
      ElementsAre("always-true 1"));
  EXPECT_THAT(FindingsOf("ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | IP_REMOTE_PORT LESS UINT16 80 & "
                         "IP_REMOTE_PORT GREATER UINT16 80"),
              IsEmpty());
}

TEST_F(LintTest, ConditionsThatNeverHold) {
  EXPECT_THAT(FindingsOf("ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | IP_REMOTE_PORT LESS UINT16 0"),
              ElementsAre("never-true 1"));
  EXPECT_THAT(FindingsOf("ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | FLAGS FLAGS_ANY_SET UINT32 0"),
              ElementsAre("never-true 1"));
  EXPECT_THAT(FindingsOf("ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | IP_REMOTE_PORT LESS UINT16 1"),
              IsEmpty());
}

TEST_F(LintTest, ADirectionThatThereIsNot) {
  EXPECT_THAT(FindingsOf("ALE_FLOW_ESTABLISHED_V4 | BLOCK | UINT8 1 | - | DIRECTION EQUAL UINT32 2"),
              Contains("never-true 1"));
}

TEST_F(LintTest, FiltersThatNeverDecide) {
  EXPECT_THAT(FindingsOf(R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 2 | - | -
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 1 | - | IP_REMOTE_PORT EQUAL UINT16 443
)"),
              ElementsAre("never-decides 2 1"));
  EXPECT_THAT(FindingsOf(R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | IP_REMOTE_PORT EQUAL UINT16 443
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | IP_REMOTE_PORT EQUAL UINT16 443
)"),
              ElementsAre("never-decides 1 2"));
  EXPECT_THAT(FindingsOf(R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 2 | - | IP_PROTOCOL EQUAL UINT8 6
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 1 | - | IP_REMOTE_PORT EQUAL UINT16 443
)"),
              IsEmpty());
}

TEST_F(LintTest, FiltersThatDecideInOneReadingOnly) {
  EXPECT_THAT(FindingsOf(R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 2 | - | IP_REMOTE_PORT NOT_EQUAL UINT16 80 & IP_REMOTE_PORT NOT_EQUAL UINT16 443
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 1 | - | IP_REMOTE_PORT EQUAL UINT16 443
)"),
              Not(Contains(HasSubstr("never-decides"))));
}

TEST_F(LintTest, FiltersInDoubtThatNeverDecideAreNotCalledNeverTrue) {
  const std::string block = "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 2 | - | -\n";
  EXPECT_THAT(
      FindingsOf(block + "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 1 | - | INTERFACE_TYPE EQUAL UINT32 6"),
      ElementsAre("never-decides 2 1"));
  EXPECT_THAT(FindingsOf(block + "ALE_AUTH_CONNECT_V4 | CALLOUT_TERMINATING | UINT8 1 | - | -"),
              ElementsAre("never-decides 2 1"));
}

TEST_F(LintTest, FiltersInDoubtThatMayDecideAreNotIdle) {
  EXPECT_THAT(FindingsOf(R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 2 | - | IP_REMOTE_PORT EQUAL UINT16 443
ALE_AUTH_CONNECT_V4 | CALLOUT_TERMINATING | UINT8 1 | - | -
)"),
              IsEmpty());
}

TEST_F(LintTest, FiltersThatSeveralOthersHideTogether) {
  EXPECT_THAT(FindingsOf(R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 2 | - | IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 10.0.0.0/255.128.0.0
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 2 | - | IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 10.128.0.0/255.128.0.0
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 1 | - | IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 10.0.0.0/255.0.0.0
)"),
              ElementsAre("never-decides 3 1"));
}

TEST_F(LintTest, TiesThatDifferInAction) {
  const std::string block = "ALE_AUTH_CONNECT_V4 | BLOCK | UINT64 7 | - | IP_PROTOCOL EQUAL UINT8 6\n";
  EXPECT_THAT(
      FindingsOf(block + "ALE_AUTH_CONNECT_V4 | PERMIT | UINT64 7 | - | IP_REMOTE_PORT EQUAL UINT16 1"),
      ElementsAre("tie-of-actions 1 2"));
  EXPECT_THAT(
      FindingsOf(block + "ALE_AUTH_CONNECT_V4 | BLOCK | UINT64 7 | - | IP_REMOTE_PORT EQUAL UINT16 1"),
      IsEmpty());
  EXPECT_THAT(FindingsOf(block + "ALE_AUTH_CONNECT_V4 | PERMIT | UINT64 7 | - | IP_PROTOCOL EQUAL UINT8 17"),
              IsEmpty());
}

TEST_F(LintTest, EqualityOnAWordOfFlags) {
  EXPECT_THAT(FindingsOf("ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | FLAGS EQUAL UINT32 1"),
              ElementsAre("flags-equality 1"));
  EXPECT_THAT(FindingsOf("ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | FLAGS FLAGS_ALL_SET UINT32 1"),
              IsEmpty());
}

TEST_F(LintTest, PermitsThatALowerSublayerTakesBack) {
  Install(2, "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 1 | - | IP_PROTOCOL EQUAL UINT8 6");
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -");
  EXPECT_THAT(Findings(), ElementsAre("overridden-permit 1 2"));
  SetUpAgain();
  Install(2, "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 1 | CLEAR_ACTION_RIGHT | IP_PROTOCOL EQUAL UINT8 6");
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -");
  EXPECT_THAT(Findings(), IsEmpty());
}

TEST_F(LintTest, APermitThatIsTakenBackIsToldInFull) {
  Install(2, "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 1 | - | IP_PROTOCOL EQUAL UINT8 6");
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -");
  const Policy::Snapshot snapshot = Read();
  const std::vector<Finding> findings = Policy::Lint(snapshot);
  ASSERT_EQ(findings.size(), 1U);
  EXPECT_EQ(findings[0].reason,
            "The permit of the first is soft: the block of the second, in another sublayer, takes it back.");
  EXPECT_EQ(findings[0].advice, "give the permit the flag CLEAR_ACTION_RIGHT, or the block an exception");
}

TEST_F(LintTest, VerdictsAtFlowEstablished) {
  EXPECT_THAT(FindingsOf("ALE_FLOW_ESTABLISHED_V6 | PERMIT | UINT8 1 | - | -"),
              ElementsAre("flow-established 1"));
  EXPECT_THAT(FindingsOf("ALE_FLOW_ESTABLISHED_V6 | CALLOUT_INSPECTION | UINT8 1 | - | -"), IsEmpty());
}

TEST_F(LintTest, SeveralNegationsOnOneField) {
  EXPECT_THAT(FindingsOf("ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | IP_REMOTE_PORT NOT_EQUAL UINT16 1 & "
                         "IP_REMOTE_PORT NOT_EQUAL UINT16 2"),
              testing::UnorderedElementsAre("several-negations 1", "always-true 1"));
  EXPECT_THAT(FindingsOf("ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | IP_REMOTE_PORT NOT_EQUAL UINT16 1 & "
                         "IP_LOCAL_PORT NOT_EQUAL UINT16 2"),
              IsEmpty());
}

TEST_F(LintTest, ConditionsOnOneFieldApart) {
  EXPECT_THAT(
      FindingsOf("ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | IP_REMOTE_PORT EQUAL UINT16 1 & IP_PROTOCOL "
                 "EQUAL UINT8 6 & IP_REMOTE_PORT EQUAL UINT16 2"),
      ElementsAre("interleaved-fields 1"));
  EXPECT_THAT(FindingsOf("ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | IP_REMOTE_PORT EQUAL UINT16 1 & "
                         "IP_REMOTE_PORT EQUAL UINT16 2 & IP_PROTOCOL EQUAL UINT8 6"),
              IsEmpty());
}

TEST_F(LintTest, WhatAStrictEngineRefusesIsFoundAndReallyRefused) {
  const char* const refused[]{
      "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | IP_REMOTE_ADDRESS NOT_EQUAL V4_ADDR_MASK "
      "10.0.0.0/255.0.0.0",
      "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 10.0.0.0/255.0.255.0",
  };
  for (const char* filter : refused) {
    EXPECT_THAT(FindingsOf(filter), Contains("refusable 1")) << filter;
    EngineEmulator::SetSwitches(EngineEmulator::Switches());
    EXPECT_THROW(Install(1, filter), std::runtime_error) << filter;
  }
}

TEST_F(LintTest, WhatNoEngineTakesIsFoundInForeignRecords) {
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -");
  Policy::Snapshot snapshot = Read();
  FilterText wrongType("ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | IP_REMOTE_PORT EQUAL UINT8 1");
  FilterText wrongLayer("ALE_AUTH_LISTEN_V4 | BLOCK | UINT8 1 | - | IP_PROTOCOL EQUAL UINT8 1");
  FilterText wrongMatch(
      "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | ALE_USER_ID NOT_EQUAL SECURITY_DESCRIPTOR a");
  for (FilterText* text : {&wrongType, &wrongLayer, &wrongMatch}) {
    text->Record().subLayerKey = snapshot.filters.front().sublayerKey;
    snapshot.filters.push_back(Policy::Decode(text->Record()));
  }
  snapshot.filters.front().flags = 0x100000;
  std::size_t refusable = 0;
  for (const Finding& finding : Policy::Lint(snapshot)) {
    refusable += finding.kind == Policy::FindingKind::Refusable ? 1 : 0;
  }
  EXPECT_EQ(refusable, 4U);
}

TEST_F(LintTest, VerdictsInTheSublayerForInspection) {
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -");
  Policy::Snapshot snapshot = Read();
  snapshot.filters.front().sublayerKey = {
      0x877519e1, 0xe6a9, 0x41a5, {0x81, 0xb4, 0x8c, 0x4f, 0x11, 0x8e, 0x4a, 0x60}};
  const auto findings = Policy::Lint(snapshot);
  ASSERT_THAT(findings, testing::SizeIs(1));
  EXPECT_EQ(findings.front().kind, Policy::FindingKind::Refusable);
}

TEST_F(LintTest, ConditionsThatCannotBeJudged) {
  EXPECT_THAT(FindingsOf("ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | ALE_APP_ID GREATER BYTE_BLOB a"),
              ElementsAre("unreadable 1"));
}

TEST_F(LintTest, AFindingSaysWhatAndWhyAndWhatWouldBeClearer) {
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | FLAGS EQUAL UINT32 1");
  const Policy::Snapshot snapshot = Read();
  const std::string text = Policy::Describe(Policy::Lint(snapshot).at(0));
  EXPECT_EQ(
      text,
      "flags-equality: " + Policy::Describe(snapshot.filters.at(0)) +
          ": FLAGS EQUAL IS_LOOPBACK compares the whole word: it fails as soon as another flag is set "
          "beside those named. Clearer: test the bits that matter, with FLAGS_ALL_SET or FLAGS_NONE_SET.");
}

}  // namespace
