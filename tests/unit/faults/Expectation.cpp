#include "Expectation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

namespace {

bool IsFor(const Rule& rule, const Occurrence& call, const Code& code) {
  return rule.function != nullptr && rule.function == call.function && rule.calls.first <= call.nth &&
         call.nth <= rule.calls.last && (rule.onlyCode == 0 || rule.onlyCode == code.value);
}

/// The rule, if there is one; of several, the one for a certain code.
std::optional<Rule> OnlyRule(std::vector<Rule> rules) {
  if (rules.size() > 1) {
    std::erase_if(rules, [](const Rule& rule) { return rule.onlyCode == 0; });
  }
  EXPECT_EQ(rules.size(), 1U) << "rules for this case";
  return rules.size() == 1 ? std::optional(rules.front()) : std::nullopt;
}

}  // namespace

Expectations::Expectations(const Command& command, const StartingState& state)
    : command_(command), state_(state) {
  for (const auto& table :
       {ModuleRules(), InternetRules(), DhcpRules(), LeakProtectionRules(), LocalNetworkAndSkeinRules()}) {
    std::copy_if(table.begin(), table.end(), std::back_inserter(rules_), [&](const Rule& rule) {
      return (rule.commands & command.bit) != 0 && (rule.states & state.bit) != 0;
    });
  }
}

std::optional<Expectation> Expectations::WithoutFault() const {
  std::vector<Rule> found;
  std::copy_if(rules_.begin(), rules_.end(), std::back_inserter(found),
               [](const Rule& rule) { return rule.function == nullptr; });
  const std::optional<Rule> rule = OnlyRule(found);
  return rule ? std::optional(Expect(rule->outcome, 0, {0, ""})) : std::nullopt;
}

std::optional<Expectation> Expectations::WithFault(const Occurrence& call, const Code& code) const {
  std::vector<Rule> found;
  std::copy_if(rules_.begin(), rules_.end(), std::back_inserter(found),
               [&](const Rule& rule) { return IsFor(rule, call, code); });
  const std::optional<Rule> rule = OnlyRule(found);
  if (!rule) {
    return std::nullopt;
  }
  if (!rule->outcome.asWithoutFault) {
    return Expect(rule->outcome, call.nth - rule->calls.first, code);
  }
  std::optional<Expectation> expected = WithoutFault();
  if (expected) {
    expected->leaksReadingSession = rule->outcome.leaksReadingSession;
  }
  return expected;
}

void Expectations::ExpectCallsOfEveryRule(const std::vector<Occurrence>& calls) const {
  for (const Rule& rule : rules_) {
    if (rule.function == nullptr) {
      continue;
    }
    const auto made = std::count_if(calls.begin(), calls.end(),
                                    [&](const Occurrence& call) { return call.function == rule.function; });
    const std::size_t wanted = rule.calls.last == kLast ? rule.calls.first : rule.calls.last;
    EXPECT_GE(static_cast<std::size_t>(made), wanted) << "calls of " << rule.function << ", which has a rule";
  }
}

Texts Expectations::LogOfSuccess() const {
  Texts lines;
  for (const LogLine& line : command_.log) {
    const When now = (state_.facts.*command_.ruleSet).registered ? When::Registered : When::NotRegistered;
    if (line.when == When::Always || line.when == now) {
      lines.emplace_back(line.text);
    }
  }
  return lines;
}

Texts Expectations::Log(const Outcome& outcome, const char* loggedCode) const {
  Texts lines = LogOfSuccess();
  if (outcome.log.line != nullptr) {
    const auto line = std::find(lines.begin(), lines.end(), outcome.log.line);
    lines.insert(outcome.log.stays ? line + 1 : lines.erase(line), outcome.log.added);
  }
  if (outcome.message == nullptr) {
    return lines;
  }
  if (outcome.lastLine != nullptr) {
    lines.erase(std::find(lines.begin(), lines.end(), outcome.lastLine) + 1, lines.end());
  } else if (!lines.empty() && !command_.logsBeforeWork) {
    lines.pop_back();
  }
  for (const std::string& line : command_.failureLog) {
    if (line == kCodeLine) {
      lines.emplace_back(loggedCode);
    } else {
      lines.push_back(line == kMessageLine ? outcome.message : line);
    }
  }
  return lines;
}

RuleSetFacts Expectations::Change(RuleSetFacts facts, const RuleSetChange& change,
                                  std::size_t callsBefore) const {
  facts.registered = change.registered.value_or(facts.registered);
  facts.filters = change.filters.value_or(facts.filters);
  if (facts.filters == kAllOfCommand) {
    facts.filters = command_.filters;
  } else if (facts.filters == kAddedSoFar) {
    facts.filters = static_cast<int>(callsBefore);
  }
  return facts;
}

Expectation Expectations::Expect(const Outcome& outcome, std::size_t callsBefore, const Code& code) const {
  const Code& carried = outcome.code == nullptr ? code : *outcome.code;
  const Facts& before = state_.facts;
  Facts after{.session = outcome.session.value_or(before.session),
              .provider = outcome.provider.value_or(before.provider),
              .transaction = outcome.transaction.value_or(before.transaction),
              .errorText = before.errorText,
              .killSwitch = Change(before.killSwitch, outcome.killSwitch, callsBefore),
              .dhcp = Change(before.dhcp, outcome.dhcp, callsBefore),
              .dnsLeak = Change(before.dnsLeak, outcome.dnsLeak, callsBefore),
              .firewallCopy = Change(before.firewallCopy, outcome.firewallCopy, callsBefore),
              .interfaceLeak = Change(before.interfaceLeak, outcome.interfaceLeak, callsBefore),
              .localNetwork = Change(before.localNetwork, outcome.localNetwork, callsBefore),
              .skein = Change(before.skein, outcome.skein, callsBefore)};
  if (command_.ruleSet != nullptr) {
    after.*command_.ruleSet = Change(after.*command_.ruleSet, outcome.own, callsBefore);
  }
  const char* text = outcome.message == nullptr ? outcome.leavesText : outcome.message;
  if (text != nullptr && !command_.keepsErrorText) {
    after.errorText = text;
  }
  return {outcome.message == nullptr ? 0 : carried.value, Log(outcome, carried.logged), after,
          outcome.leaksSession, outcome.leaksReadingSession};
}
