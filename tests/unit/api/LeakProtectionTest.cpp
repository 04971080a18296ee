#include "LeakProtectionTest.h"

#include <algorithm>

#include "api/ModuleState.h"
#include "emulator/Control.h"
#include "support/AppBlock.h"

namespace {

struct RuleSetName {
  GUID key;
  const char* name;
};

const RuleSetName kRuleSetNames[]{
    {kDnsLeakKey, "dns"}, {kFirewallCopyKey, "copy"}, {kInterfaceLeakKey, "interface"}};

}  // namespace

void LeakProtectionTest::SetUp() {
  InitializedModuleTest::SetUp();
  EngineEmulator::PretendFileExists(L"C:\\dns.exe");
  AppBlock(L"C:\\blocked.exe").Add();
  EngineEmulator::ClearJournal();
}

void LeakProtectionTest::TearDown() {
  const Texts memory = EngineEmulator::OutstandingMemory();
  ExpectOutstandingMemory(
      static_cast<std::size_t>(std::count(memory.begin(), memory.end(), "FwpmFilterEnum0")));
  InitializedModuleTest::TearDown();
}

std::uint64_t LeakProtectionTest::Enable() {
  return EnableLeakProtection("198.51.100.7", Log, nullptr, 0, kTunnelLuid, nullptr, 0);
}

std::uint64_t LeakProtectionTest::Enable(const std::vector<std::uint32_t>& permittedAddresses) {
  return EnableLeakProtection("198.51.100.7", Log, nullptr, 0, kTunnelLuid, permittedAddresses.data(),
                              permittedAddresses.size());
}

void LeakProtectionTest::TurnOn() {
  ASSERT_EQ(Enable(), 0U);
  ASSERT_EQ(IsLeakProtectionEnabled(), 1U);
  TakeLog();
  TakeCalls();
}

void LeakProtectionTest::TurnOnWithoutCopy() {
  EngineEmulator::FailCall("FwpmEngineOpen0", 1, 5);
  ASSERT_EQ(Enable(), 0U);
  ASSERT_EQ(Registered(), "dns interface");
  TakeLog();
  TakeCalls();
}

void LeakProtectionTest::LeaveOnly(std::size_t nth) {
  TurnOn();
  EngineEmulator::FailCall("FwpmSubLayerDeleteByKey0", nth, 5);
  ASSERT_EQ(DisableLeakProtection(), 0U);
  TakeCalls();
}

std::string LeakProtectionTest::Registered() {
  std::string names;
  for (const RuleSetName& ruleSet : kRuleSetNames) {
    if (IsRegistered(ruleSet.key)) {
      names += (names.empty() ? "" : " ") + std::string(ruleSet.name);
    }
  }
  return names;
}

std::string LeakProtectionTest::Installed() {
  const EngineEmulator::Snapshot engine = EngineEmulator::TakeSnapshot();
  std::string text;
  for (const RuleSetName& ruleSet : kRuleSetNames) {
    const auto is = [&](const auto& sublayer) { return sublayer.key == ruleSet.key; };
    const auto isIn = [&](const auto& filter) { return filter.subLayerKey == ruleSet.key; };
    if (std::any_of(engine.sublayers.begin(), engine.sublayers.end(), is)) {
      text += (text.empty() ? "" : ", ") + std::string(ruleSet.name) + " " +
              std::to_string(std::count_if(engine.filters.begin(), engine.filters.end(), isIn));
    }
  }
  return text;
}

bool LeakProtectionTest::TransactionIsOpen() {
  return EngineEmulator::CountOutstanding().openTransactions == 1;
}
