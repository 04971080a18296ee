#include "policy/Map.h"

#include "policy/Diagram.h"
#include "unit/policy/PolicyTest.h"

namespace {

using Policy::Map;
using Promises::Features;
using testing::HasSubstr;
using testing::SizeIs;
using testing::StartsWith;

class MapTest : public PolicyTest {
 protected:
  static std::string MapText(const Policy::Labels& labels = {}, Policy::MapTextOptions options = {}) {
    const Policy::Snapshot snapshot = Read();
    return Policy::Describe(Policy::MakeMap(snapshot), labels, options);
  }
};

TEST_F(MapTest, WithoutFiltersEverySectionIsOneVerdict) {
  EXPECT_EQ(MapText(),
            "outbound IPv4: permit\noutbound IPv6: permit\ninbound IPv4: permit\ninbound IPv6: permit\n");
}

TEST_F(MapTest, ValuesThatBehaveAlikeAreOneClass) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 2 | - | IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 10.0.0.0/255.0.0.0 & IP_REMOTE_PORT NOT_EQUAL UINT16 53
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 2 | - | IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 192.168.0.0/255.255.0.0 & IP_REMOTE_PORT NOT_EQUAL UINT16 53
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -
)");
  EXPECT_EQ(MapText(), R"(outbound IPv4:
  remote port 53: block
  remote port unset:
    remote address 10.0.0.0/8, 192.168.0.0/16: depends (1)
    otherwise: block
  otherwise:
    remote address 10.0.0.0/8, 192.168.0.0/16: permit
    otherwise: block
outbound IPv6: permit
inbound IPv4: permit
inbound IPv6: permit
(1) depends on unset-fields: permit with unset-fields = match; block with unset-fields = no-match
)");
}

TEST_F(MapTest, NeighbouringNetworksOfOneVerdictAreOneInterval) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 2 | - | IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 10.0.0.0/255.128.0.0
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 10.128.0.0/255.128.0.0
)");
  EXPECT_THAT(MapText(),
              StartsWith("outbound IPv4:\n  remote address 10.0.0.0/8: block\n  otherwise: permit\n"));
}

TEST_F(MapTest, AFieldThatMakesNoDifferenceIsLeftOut) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 2 | - | IP_PROTOCOL EQUAL UINT8 6
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -
)");
  const Policy::Snapshot snapshot = Read();
  const Map map = Policy::MakeMap(snapshot);
  EXPECT_THAT(map.sections.at(0).fields, SizeIs(0));
  EXPECT_THAT(map.sections.at(0).nodes, SizeIs(0));
}

TEST_F(MapTest, ClassesAreNamedByTheShorterWay) {
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 2 | - | IP_LOCAL_INTERFACE EQUAL UINT64 7");
  const Policy::Snapshot snapshot = Read();
  const Map map = Policy::MakeMap(snapshot, {{{7, "Tunnel"}}, {}});
  ASSERT_THAT(map.sections.at(0).fields, SizeIs(1));
  std::vector<std::string> texts;
  for (const auto& values : map.sections.at(0).fields.front().classes) {
    texts.push_back(values.text);
  }
  EXPECT_THAT(texts, testing::UnorderedElementsAre("Tunnel", "other than Tunnel"));
}

TEST_F(MapTest, AClassCarriesAnExampleOfItself) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 3 | - | IP_REMOTE_PORT EQUAL UINT16 53
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 2 | - | ALE_APP_ID EQUAL BYTE_BLOB a.exe
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | IP_LOCAL_PORT EQUAL EMPTY
)");
  const Policy::Snapshot snapshot = Read();
  const Map map = Policy::MakeMap(snapshot);
  const auto& fields = map.sections.at(0).fields;
  ASSERT_THAT(fields, SizeIs(3));
  EXPECT_EQ(fields[0].classes[0].exampleApplication, Policy::ApplicationBytes("a.exe"));
  EXPECT_EQ(fields[0].classes[1].exampleApplication, Policy::ApplicationBytes("other.exe"));
  EXPECT_EQ(fields[1].classes[0].exampleNumber, Policy::Number(50000));
  EXPECT_EQ(fields[1].classes[1].exampleNumber, std::nullopt);
  EXPECT_EQ(fields[2].classes[0].exampleNumber, Policy::Number(443));
  EXPECT_EQ(fields[2].classes[1].exampleNumber, Policy::Number(53));
}

TEST_F(MapTest, NodesComeAfterThoseThatTheyLeadTo) {
  Features features;
  features.killSwitch.emplace();
  Install(features);
  const Policy::Snapshot snapshot = Read();
  const Map map = Policy::MakeMap(snapshot);
  for (const Policy::MapSection& section : map.sections) {
    for (std::size_t i = 0; i < section.nodes.size(); ++i) {
      for (const Policy::MapTarget target : section.nodes[i].targets) {
        EXPECT_TRUE(target.isVerdict || target.index < i);
      }
    }
  }
}

/// For each section a text such as "remote port 3, remote address 2: 2 nodes": its fields from the root on,
/// each with its number of classes.
std::vector<std::string> SizesOf(const Map& map) {
  std::vector<std::string> sizes;
  for (const Policy::MapSection& section : map.sections) {
    std::string text;
    for (const Policy::FieldClasses& field : section.fields) {
      text.append(text.empty() ? "" : ", ").append(Policy::FieldText(field.field));
      text += ' ' + std::to_string(field.classes.size());
    }
    sizes.push_back(text + ": " + std::to_string(section.nodes.size()) + " nodes");
    if (!section.root.isVerdict) {
      EXPECT_EQ(section.nodes[section.root.index].field, 0U);
    }
  }
  return sizes;
}

/// If it split by address first, there would be four nodes, because three of the address classes differ in
/// their ports.
TEST_F(MapTest, SplitsByPortBeforeAddress) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 4 | - | IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 10.0.0.0/255.0.0.0 & IP_REMOTE_PORT EQUAL UINT16 53
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 4 | - | IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 10.0.0.0/255.0.0.0 & IP_REMOTE_PORT EQUAL UINT16 80
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 4 | - | IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 11.0.0.0/255.0.0.0 & IP_REMOTE_PORT EQUAL UINT16 53
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 4 | - | IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 12.0.0.0/255.0.0.0 & IP_REMOTE_PORT EQUAL UINT16 80
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -
)");
  const Policy::Snapshot snapshot = Read();
  EXPECT_THAT(SizesOf(Policy::MakeMap(snapshot)),
              testing::ElementsAre("remote port 3, remote address 4: 3 nodes", ": 0 nodes", ": 0 nodes",
                                   ": 0 nodes"));
}

TEST_F(MapTest, OfTheRuleSetsAreSmall) {
  Features features;
  features.killSwitch.emplace();
  features.dhcp = features.localNetworkBlock = true;
  features.skein = Features::Skein{{11}, {0x64400001}};
  Install(features);
  const Policy::Snapshot snapshot = Read();
  EXPECT_THAT(SizesOf(Policy::MakeMap(snapshot)),
              testing::ElementsAre("flags 2, remote port 3, remote address 4: 9 nodes",
                                   "flags 2, remote port 3, remote address 4: 9 nodes",
                                   "flags 2, interface 2, remote port 3, remote address 4: 15 nodes",
                                   "remote port 3, remote address 3: 4 nodes"));
}

TEST_F(MapTest, FlagsAreWordsAndPatternsOfTestedBits) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 2 | - | FLAGS EQUAL UINT32 6
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | FLAGS FLAGS_ALL_SET UINT32 2
)");
  EXPECT_THAT(MapText(), StartsWith("outbound IPv4:\n"
                                    "  flags 0x00000006, others with IS_IPSEC_SECURED: block\n"
                                    "  otherwise: permit\n"));
}

TEST_F(MapTest, APatternOfFlagsExceptsTheWordsThatHaveAClass) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 2 | - | FLAGS EQUAL UINT32 5
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 2 | - | FLAGS EQUAL UINT32 6
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | FLAGS FLAGS_ALL_SET UINT32 2
)");
  const Policy::Snapshot snapshot = Read();
  const Map map = Policy::MakeMap(snapshot);
  const auto& fields = map.sections.at(0).fields;
  ASSERT_THAT(fields, SizeIs(1));
  std::vector<Policy::ValueClass::Masked> masked;
  for (const auto& values : fields[0].classes) {
    masked.insert(masked.end(), values.masked.begin(), values.masked.end());
  }
  EXPECT_THAT(masked, testing::UnorderedElementsAre(Policy::ValueClass::Masked{2, 2, {6}},
                                                    Policy::ValueClass::Masked{2, 0, {5}}));
}

TEST_F(MapTest, TheLongestEndingOfAnApplicationNamesItsClass) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 2 | - | ALE_APP_ID PREFIX BYTE_BLOB ba.exe
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | ALE_APP_ID PREFIX BYTE_BLOB a.exe
)");
  Policy::Connection connection = To("198.51.100.1");
  connection.application = Policy::ApplicationBytes("a.exe");
  EXPECT_EQ(VerdictOf(connection), "block");
  connection.application = Policy::ApplicationBytes("cba.exe");
  EXPECT_EQ(VerdictOf(connection), "permit");
}

TEST_F(MapTest, OfTwoClassesOfOneSizeTheOrdinaryOneIsOtherwise) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | IP_PROTOCOL RANGE RANGE UINT8 5 to UINT8 100
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | IP_PROTOCOL EQUAL EMPTY
)");
  EXPECT_THAT(MapText(),
              StartsWith("outbound IPv4:\n  protocol 0 to 4, 101 to 255: permit\n  otherwise: block\n"));
  SetUpAgain();
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | IP_PROTOCOL RANGE RANGE UINT8 7 to UINT8 100
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | IP_PROTOCOL EQUAL EMPTY
)");
  EXPECT_THAT(MapText(),
              StartsWith("outbound IPv4:\n  protocol 7 to 100, unset: block\n  otherwise: permit\n"));
}

TEST_F(MapTest, EndingsOfApplicationsAreClasses) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 2 | - | ALE_APP_ID EQUAL BYTE_BLOB \x\a.exe
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | ALE_APP_ID PREFIX BYTE_BLOB a.exe
)");
  EXPECT_THAT(MapText(), StartsWith("outbound IPv4:\n"
                                    "  application others ending in a.exe: block\n"
                                    "  otherwise: permit\n"));
}

TEST_F(MapTest, LongListsCanBeCut) {
  std::string filter = "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 2 | - | IP_REMOTE_PORT EQUAL UINT16 1";
  for (const char* port : {"3", "5", "7", "9"}) {
    filter += std::string(" & IP_REMOTE_PORT EQUAL UINT16 ") + port;
  }
  Install(1, filter);
  EXPECT_THAT(MapText({}, {2}), HasSubstr("remote port 1, 3 and 3 more: block"));
  EXPECT_THAT(MapText(), HasSubstr("remote port 1, 3, 5, 7, 9: block"));
}

TEST_F(MapTest, ATreeThatIsReachedTwiceStandsOnce) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 3 | - | IP_LOCAL_INTERFACE EQUAL UINT64 7 & IP_PROTOCOL EQUAL UINT8 6
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 2 | - | IP_LOCAL_INTERFACE EQUAL UINT64 8
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 2 | - | IP_REMOTE_PORT EQUAL UINT16 53
)");
  EXPECT_THAT(MapText(), StartsWith(R"(outbound IPv4:
  interface 7:
    protocol TCP: block
    otherwise [1]:
      remote port 53: block
      otherwise: permit
  interface 8: block
  otherwise: as at [1]
)"));
}

TEST_F(MapTest, TheKillSwitchReadsAsItsUserWouldSayIt) {
  Features features;
  features.killSwitch.emplace();
  Install(features);
  EXPECT_THAT(MapText(), HasSubstr(R"(  otherwise:
    remote port 53:
      remote address 127.0.0.0/8: permit
      otherwise: block
    remote port unset:
      remote address 10.0.0.0/8, 172.16.0.0/12, 192.168.0.0/16, 239.255.255.250, 255.255.255.255: depends (3)
      remote address 127.0.0.0/8: permit
      otherwise: block
    otherwise:
      remote address 10.0.0.0/8, 127.0.0.0/8, 172.16.0.0/12, 192.168.0.0/16, 239.255.255.250, 255.255.255.255: permit
      otherwise: block
)"));
}

/// The number of states that a diagram of outbound IPv4 connections is made from.
std::size_t StatesOf(const Policy::Snapshot& snapshot, Policy::Purpose purpose) {
  const Policy::Section section(snapshot, Policy::kSectionKeys[0]);
  const auto leaf = [](const Policy::BitWord*) { return std::size_t{0}; };
  for (std::size_t states = 1;; ++states) {
    try {
      Policy::MakeDiagram(section, purpose, leaf, states * section.Layout().Width());
      return states;
    } catch (const Policy::DiagramTooLarge&) {
      continue;
    }
  }
}

/// One state to begin with and one for each of two fields, unless the states of a field differ in more than
/// what can make no difference.
TEST_F(MapTest, StatesWithoutADifferenceThatCountsAreOne) {
  const auto statesOf = [this](const char* filters) {
    SetUpAgain();
    Install(1, filters);
    return StatesOf(Read(), Policy::Purpose::Verdicts);
  };
  const std::size_t softPermits = statesOf(R"(
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 3 | - | IP_REMOTE_PORT EQUAL UINT16 53
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 2 | - | IP_PROTOCOL EQUAL UINT8 6
)");
  const std::size_t belowABlock = statesOf(R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 4 | - | -
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 3 | CLEAR_ACTION_RIGHT | IP_REMOTE_PORT EQUAL UINT16 53
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 2 | CLEAR_ACTION_RIGHT | IP_PROTOCOL EQUAL UINT8 6
)");
  const std::size_t hardPermits = statesOf(R"(
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 3 | CLEAR_ACTION_RIGHT | IP_REMOTE_PORT EQUAL UINT16 53
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 2 | CLEAR_ACTION_RIGHT | IP_PROTOCOL EQUAL UINT8 6
)");
  EXPECT_EQ(softPermits, 3U);
  EXPECT_EQ(belowABlock, 3U);
  EXPECT_EQ(hardPermits, 6U);
}

TEST_F(MapTest, WhatAnotherSlotDecidesStillShowsWhichFiltersDecide) {
  Install(2, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 4 | - | -");
  Install(1, "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 3 | - | IP_REMOTE_PORT EQUAL UINT16 53");
  const Policy::Snapshot snapshot = Read();
  EXPECT_EQ(StatesOf(snapshot, Policy::Purpose::Verdicts), 2U);
  EXPECT_EQ(StatesOf(snapshot, Policy::Purpose::DecidingFilters), 3U);
}

/// One state to begin with, and two where the port has been looked at.
TEST_F(MapTest, HasALimitOfStates) {
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | IP_REMOTE_PORT EQUAL UINT16 53");
  const Policy::Snapshot snapshot = Read();
  const Policy::Section section(snapshot, Policy::kSectionKeys[0]);
  const auto leaf = [](const Policy::BitWord*) { return std::size_t{0}; };
  const std::size_t width = section.Layout().Width();
  EXPECT_NO_THROW(Policy::MakeDiagram(section, Policy::Purpose::Verdicts, leaf, 3 * width));
  EXPECT_THROW(Policy::MakeDiagram(section, Policy::Purpose::Verdicts, leaf, 3 * width - 1),
               Policy::DiagramTooLarge);
}

}  // namespace
