#include "ApiTest.h"

#include <utility>

#include "api/ModuleState.h"
#include "emulator/Control.h"
#include "support/FakePlatform.h"

namespace {

Texts& LogLines() {
  static Texts lines;
  return lines;
}

}  // namespace

void ModuleTest::SetUp() {
  EngineTest::SetUp();
  FakePlatform::Reset();
  LogLines().clear();
}

void ModuleTest::TearDown() {
  Module() = {};
  EngineTest::TearDown();
}

void ModuleTest::InitializeModule() {
  Initialize(&kProviderKey, L"provider name", L"provider description",                   //
             &kKillSwitchKey, L"kill switch name", L"kill switch description",           //
             &kLocalNetworkKey, L"local network name", L"local network description",     //
             &kDhcpKey, L"dhcp name", L"dhcp description",                               //
             &kDnsLeakKey, L"dns leak name", L"dns leak description",                    //
             &kInterfaceLeakKey, L"interface leak name", L"interface leak description",  //
             &kFirewallCopyKey, L"firewall copy name", L"firewall copy description",     //
             &kSkeinKey, L"skein name", L"skein description",                            //
             L"C:\\dns.exe");
}

std::uint64_t CORVANE_CALL ModuleTest::Log(const char* line) {
  LogLines().emplace_back(line);
  return 0xffffffffffffffff;  // ignored by every command
}

Texts ModuleTest::TakeLog() { return std::exchange(LogLines(), {}); }

Texts ModuleTest::TakeCalls() {
  Texts runs;
  std::string function;
  std::size_t count = 0;
  const auto endRun = [&] {
    if (count > 0) {
      runs.push_back(count == 1 ? function : function + " x " + std::to_string(count));
    }
  };
  for (const EngineEmulator::Call& call : EngineEmulator::Journal()) {
    if (call.function != function) {
      endRun();
      function = call.function;
      count = 0;
    }
    ++count;
  }
  endRun();
  EngineEmulator::ClearJournal();
  return runs;
}

void InitializedModuleTest::SetUp() {
  ModuleTest::SetUp();
  InitializeModule();
}
