#include "LibraryTest.h"

#include <utility>

namespace {

Texts loggedLines;
std::set<DWORD> loggingThreads;

}  // namespace

LibraryTest::LibraryTest() : engine_(EmulatedEngine::Get()) {
  engine_.Reset();
  library_.emplace();
  loggedLines.clear();
  loggingThreads.clear();
}

void LibraryTest::TearDown() {
  library_.reset();
  const EngineEmulatorOutstanding outstanding = engine_.CountOutstanding();
  EXPECT_EQ(outstanding.sessions, 0U);
  EXPECT_EQ(outstanding.openTransactions, 0U);
  EXPECT_EQ(outstanding.memoryBlocks, memoryBlocks_);
}

void LibraryTest::Initialize() const {
  library_->Initialize(&kProviderKey, L"provider name", L"provider description",                   //
                       &kKillSwitchKey, L"kill switch name", L"kill switch description",           //
                       &kLocalNetworkKey, L"local network name", L"local network description",     //
                       &kDhcpKey, L"dhcp name", L"dhcp description",                               //
                       &kDnsLeakKey, L"dns leak name", L"dns leak description",                    //
                       &kInterfaceLeakKey, L"interface leak name", L"interface leak description",  //
                       &kFirewallCopyKey, L"firewall copy name", L"firewall copy description",     //
                       &kSkeinKey, L"skein name", L"skein description", L"C:\\dns.exe");
}

std::uint64_t LibraryTest::DisableInternet() const {
  return library_->DisableInternet(nullptr, 0, nullptr, 0, Log);
}

std::uint64_t CORVANE_CALL LibraryTest::Log(const char* line) {
  loggedLines.emplace_back(line);
  loggingThreads.insert(GetCurrentThreadId());
  return 0xffffffffffffffff;  // ignored by every command
}

Texts LibraryTest::TakeLog() { return std::exchange(loggedLines, {}); }

std::set<DWORD> LibraryTest::LoggingThreads() { return loggingThreads; }
