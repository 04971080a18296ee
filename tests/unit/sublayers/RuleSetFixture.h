#pragma once

#include <WfpPlatform.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "emulator/Control.h"
#include "engine/Firewall.h"
#include "support/EngineTest.h"
#include "support/RuleSetKeys.h"

/// The lines of a table of filters. Empty lines only separate groups.
inline std::vector<std::string> Lines(const std::string& table) {
  std::istringstream stream(table);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) {
    if (!line.empty()) {
      lines.push_back(line);
    }
  }
  return lines;
}

/// Installs rule sets and reads what reaches the engine.
class RuleSetFixture : public EngineTest {
 protected:
  /// The engine shows the weights of sublayers as they were asked for.
  void SetUp() override {
    EngineTest::SetUp();
    EngineEmulator::Switches switches;
    switches.keepAsGiven = 1;
    EngineEmulator::SetSwitches(switches);
  }

  /// Applies a rule set and gives the content of the engine.
  static EngineEmulator::Snapshot InstallAndLook(WfpFirewall::Sublayer ruleSet) {
    WfpFirewall::Firewall firewall(
        WfpFirewall::Provider(kProviderKey, L"CorvaneService", L"Corvane", L"Corvane firewall"));
    firewall.AddSublayer(ruleSet).Apply();
    return EngineEmulator::TakeSnapshot();
  }

  /// Applies a rule set and gives the filters in the engine as texts.
  static std::vector<std::string> Install(const WfpFirewall::Sublayer& ruleSet) {
    std::vector<std::string> texts;
    for (const auto& filter : InstallAndLook(ruleSet).filters) {
      texts.push_back(filter.text);
    }
    return texts;
  }

  /// Whether a rule set installs the filters of a table. If not, the message has the first that differs.
  static testing::AssertionResult Installs(const WfpFirewall::Sublayer& ruleSet, const std::string& table) {
    const std::vector<std::string> installed = Install(ruleSet);
    const std::vector<std::string> expected = Lines(table);
    const auto [is, shouldBe] = std::ranges::mismatch(installed, expected);
    if (is == installed.end() && shouldBe == expected.end()) {
      return testing::AssertionSuccess();
    }
    return testing::AssertionFailure()
           << "filter " << is - installed.begin() + 1 << " differs\n"
           << "  expected:  " << (shouldBe == expected.end() ? "none" : *shouldBe) << "\n"
           << "  installed: " << (is == installed.end() ? "none" : *is) << "\n"
           << "of " << expected.size() << " expected and " << installed.size() << " installed";
  }
};
