/**
 * @file
 * What one run of a command must do, by the matrix's rules.
 */
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Commands.h"
#include "Rules.h"
#include "StartingStates.h"

/// A call during a command: the nth call of a function, from 1.
struct Occurrence {
  std::string function;
  std::size_t nth;
};

struct Expectation {
  std::uint64_t result;
  Texts log;
  Facts facts;
  bool leaksSession;
  bool leaksReadingSession;
};

/// A command in a starting state, with the rules for that pair.
class Expectations {
 public:
  Expectations(const Command& command, const StartingState& state);

  /// If there is not exactly one rule without a fault, fails the test and gives nothing.
  [[nodiscard]] std::optional<Expectation> WithoutFault() const;
  /// The same for a call that fails.
  [[nodiscard]] std::optional<Expectation> WithFault(const Occurrence& call, const Code& code) const;
  /// Fails the test for each rule about a call that the command does not make.
  void ExpectCallsOfEveryRule(const std::vector<Occurrence>& calls) const;

 private:
  [[nodiscard]] Texts LogOfSuccess() const;
  [[nodiscard]] Texts Log(const Outcome& outcome, const char* loggedCode) const;
  [[nodiscard]] RuleSetFacts Change(RuleSetFacts facts, const RuleSetChange& change,
                                    std::size_t callsBefore) const;
  [[nodiscard]] Expectation Expect(const Outcome& outcome, std::size_t callsBefore, const Code& code) const;

  const Command& command_;
  const StartingState& state_;
  std::vector<Rule> rules_;
};
