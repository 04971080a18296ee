#include <gmock/gmock.h>

#include <algorithm>
#include <iostream>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "Commands.h"
#include "Expectation.h"
#include "ExportedFunctions.h"
#include "Facts.h"
#include "Rules.h"
#include "StartingStates.h"
#include "api/ModuleState.h"
#include "emulator/Control.h"

namespace {

using CommandAndState = std::tuple<std::size_t, std::size_t>;

const std::vector<CommandAndState>& Pairs() {
  static const std::vector<CommandAndState> pairs = [] {
    std::vector<CommandAndState> kept;
    for (std::size_t command = 0; command < Commands().size(); ++command) {
      for (std::size_t state = 0; state < StartingStates().size(); ++state) {
        if ((StartingStates()[state].commands & Commands()[command].bit) != 0) {
          kept.emplace_back(command, state);
        }
      }
    }
    return kept;
  }();
  return pairs;
}

/// The calls that can fail, numbered for each function. FwpmFreeMemory0 is left out, because it has no
/// result.
std::vector<Occurrence> Count(const std::vector<EngineEmulator::Call>& calls) {
  std::map<std::string, std::size_t> counts;
  std::vector<Occurrence> occurrences;
  for (const EngineEmulator::Call& call : calls) {
    if (call.function != "FwpmFreeMemory0") {
      occurrences.push_back({call.function, ++counts[call.function]});
    }
  }
  return occurrences;
}

void ExpectInEngine(const Facts& facts) {
  const EngineEmulator::Snapshot engine = EngineEmulator::TakeSnapshot();
  EXPECT_EQ(engine.providers.size(), facts.provider ? 1U : 0U);
  std::size_t sublayers = 0;
  std::size_t filters = 0;
  for (const RuleSet& ruleSet : kRuleSets) {
    const int expected = (facts.*ruleSet.facts).filters;
    const auto isIts = [&](const auto& sublayer) { return sublayer.key == ruleSet.key; };
    const auto isInIt = [&](const auto& filter) { return filter.subLayerKey == ruleSet.key; };
    const bool present = std::any_of(engine.sublayers.begin(), engine.sublayers.end(), isIts);
    const auto count = std::count_if(engine.filters.begin(), engine.filters.end(), isInIt);
    EXPECT_EQ(present ? count : kAbsent, expected) << "filters of the " << ruleSet.name;
    sublayers += present ? 1 : 0;
    filters += static_cast<std::size_t>(count);
  }
  EXPECT_EQ(engine.sublayers.size(), sublayers);
  EXPECT_EQ(engine.filters.size(), filters + kForeignBlocks);
}

class FaultMatrix : public ModuleTest, public testing::WithParamInterface<CommandAndState> {
 public:
  static void TearDownTestSuite();

 protected:
  void TearDown() override;

  /// @returns the calls that the command makes.
  std::vector<Occurrence> RunWithoutFault();
  void RunWithFault(const Occurrence& call, const Code& code);

  const Command& command_ = Commands()[std::get<0>(GetParam())];
  const StartingState& state_ = StartingStates()[std::get<1>(GetParam())];
  const Expectations expectations_{command_, state_};

  inline static std::size_t pairs_ = 0;
  inline static std::size_t cases_ = 0;

 private:
  void Enter();
  std::vector<EngineEmulator::Call> RunAndExpect(const Expectation& expected);
  void Expect(const Facts& facts, bool leaksReadingSession = false) const;
  void CloseAndExpectNothingLeft(const Expectation& expected) const;
};

void FaultMatrix::TearDown() {
  EngineEmulator::Reset();
  ModuleTest::TearDown();
}

/// Initialises the library afresh and brings it into the starting state.
void FaultMatrix::Enter() {
  Module() = {};
  ModuleTest::SetUp();
  PrepareMachine();
  InitializeModule();
  state_.enter(Log);
  TakeLog();
  const testing::ScopedTrace trace(__FILE__, __LINE__, "the starting state");
  Expect(state_.facts);
}

void FaultMatrix::Expect(const Facts& facts, bool leaksReadingSession) const {
  EXPECT_STREQ(GetErrorText(), facts.errorText);
  for (const RuleSet& ruleSet : kRuleSets) {
    EXPECT_EQ(IsRegistered(ruleSet.key), (facts.*ruleSet.facts).registered) << "registry: " << ruleSet.name;
  }
  EXPECT_EQ(IsInternetEnabled(), facts.killSwitch.registered ? 0U : 1U);
  EXPECT_EQ(IsDhcpEnabled(), facts.dhcp.registered ? 1U : 0U);
  const bool leakProtection =
      facts.dnsLeak.registered && facts.firewallCopy.registered && facts.interfaceLeak.registered;
  EXPECT_EQ(IsLeakProtectionEnabled(), leakProtection ? 1U : 0U);
  EXPECT_EQ(IsLocalNetworkEnabled(), facts.localNetwork.registered ? 0U : 1U);
  ExpectInEngine(facts);
  const EngineEmulator::Outstanding outstanding = EngineEmulator::CountOutstanding();
  EXPECT_EQ(outstanding.sessions, (facts.session ? 1U : 0U) + (leaksReadingSession ? 1U : 0U));
  EXPECT_EQ(outstanding.openTransactions, facts.transaction ? 1U : 0U);
  EXPECT_EQ(outstanding.enumHandles, 0U);
}

/// @returns the calls that the command made.
std::vector<EngineEmulator::Call> FaultMatrix::RunAndExpect(const Expectation& expected) {
  const auto callsBefore = static_cast<std::ptrdiff_t>(EngineEmulator::Journal().size());
  EXPECT_EQ(command_.run(Log), expected.result);
  EXPECT_EQ(TakeLog(), expected.log);
  Expect(expected.facts, expected.leaksReadingSession);
  const std::vector<EngineEmulator::Call> journal = EngineEmulator::Journal();
  CloseAndExpectNothingLeft(expected);
  return {journal.begin() + callsBefore, journal.end()};
}

/// A new Initialize closes the session. Only the records of providers that were found and the lists of
/// enumerated filters are never freed.
void FaultMatrix::CloseAndExpectNothingLeft(const Expectation& expected) const {
  InitializeModule();
  const testing::ScopedTrace trace(__FILE__, __LINE__, "after closing");
  const EngineEmulator::Outstanding outstanding = EngineEmulator::CountOutstanding();
  EXPECT_EQ(outstanding.sessions, expected.leaksSession || expected.leaksReadingSession ? 1U : 0U);
  EXPECT_EQ(outstanding.enumHandles, 0U);
  const std::vector<EngineEmulator::Call> journal = EngineEmulator::Journal();
  const auto kept = std::count_if(journal.begin(), journal.end(), [](const EngineEmulator::Call& call) {
    return (call.function == "FwpmProviderGetByKey0" || call.function == "FwpmFilterEnum0") &&
           call.result == ERROR_SUCCESS;
  });
  EXPECT_EQ(outstanding.memoryBlocks, static_cast<std::size_t>(kept));
  if (!expected.leaksSession) {
    EXPECT_EQ(outstanding.openTransactions, 0U);
    ExpectInEngine({.provider = state_.besideProvider});
  }
}

std::vector<Occurrence> FaultMatrix::RunWithoutFault() {
  const testing::ScopedTrace trace(__FILE__, __LINE__, "without a fault");
  const std::optional<Expectation> expected = expectations_.WithoutFault();
  if (!expected) {
    return {};
  }
  Enter();
  return Count(RunAndExpect(*expected));
}

void FaultMatrix::RunWithFault(const Occurrence& call, const Code& code) {
  std::ostringstream fault;
  fault << call.function << " number " << call.nth << " gives " << code.value;
  const testing::ScopedTrace trace(__FILE__, __LINE__, fault.str());
  const std::optional<Expectation> expected = expectations_.WithFault(call, code);
  if (!expected) {
    return;
  }
  Enter();
  EngineEmulator::FailCall(call.function, call.nth, code.value);
  std::vector<EngineEmulator::Call> calls = RunAndExpect(*expected);
  std::erase_if(calls, [&](const EngineEmulator::Call& made) { return made.function != call.function; });
  ASSERT_GE(calls.size(), call.nth);
  EXPECT_EQ(calls[call.nth - 1].result, code.value);
  ++cases_;
}

void FaultMatrix::TearDownTestSuite() {
  RecordProperty("cases", std::to_string(cases_));
  std::cout << "Fault matrix: " << cases_ << " cases of command, state, call and code; " << pairs_
            << " pairs of command and state\n";
  // A shard has at least fifty cases for each of its pairs. A run of a few chosen pairs may have fewer.
  constexpr std::size_t kShards = 4;
  if (pairs_ >= Pairs().size() / kShards) {
    EXPECT_GE(cases_, 50 * pairs_);
  }
}

TEST_P(FaultMatrix, FollowsTheRulesWhicheverCallFails) {
  const std::vector<Occurrence> calls = RunWithoutFault();
  expectations_.ExpectCallsOfEveryRule(calls);
  for (const Occurrence& call : calls) {
    for (const Code& code : kCodes) {
      RunWithFault(call, code);
      if (HasFailure()) {
        return;  // The next cases would probably fail in the same way, with hundreds of messages.
      }
    }
  }
  ++pairs_;
}

INSTANTIATE_TEST_SUITE_P(EveryCommandFromItsStates, FaultMatrix, testing::ValuesIn(Pairs()),
                         [](const testing::TestParamInfo<CommandAndState>& pair) {
                           return std::string(Commands()[std::get<0>(pair.param)].name) + "From" +
                                  StartingStates()[std::get<1>(pair.param)].name;
                         });

TEST(FaultMatrixTable, HasEachExportedFunction) {
  std::set<std::string> functions;
  for (const Command& command : Commands()) {
    functions.insert(command.function);
  }
  EXPECT_THAT(functions, testing::UnorderedElementsAreArray(kExportedFunctions));
}

}  // namespace
