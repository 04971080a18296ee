#include <iterator>
#include <random>

#include "LibraryTest.h"

namespace {

constexpr const wchar_t* kApps[]{L"C:\\a.exe"};
constexpr std::uint32_t kAddresses[]{0x64400009, 0xcb007105, 0xffffffff};
constexpr std::size_t kKibibyte = 1024;

/// The handles and the heap memory of this process.
struct Footprint {
  std::size_t handles = 0;
  std::size_t heapBytes = 0;
};

/// Tries each possible handle, because Wine does not count them.
std::size_t CountHandles() {
  constexpr std::uintptr_t kStep = 4;
  constexpr std::uintptr_t kEnd = 0x10000;
  std::size_t count = 0;
  for (std::uintptr_t value = kStep; value < kEnd; value += kStep) {
    DWORD flags = 0;
    count += GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags) != FALSE ? 1U : 0U;
  }
  return count;
}

std::size_t CountHeapBytes(HANDLE heap) {
  std::size_t bytes = 0;
  PROCESS_HEAP_ENTRY entry{};
  while (HeapWalk(heap, &entry) != FALSE) {
    bytes += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? entry.cbData : 0;
  }
  return bytes;
}

Footprint MeasureProcess() {
  HANDLE heaps[64];
  const DWORD count = GetProcessHeaps(static_cast<DWORD>(std::size(heaps)), heaps);
  EXPECT_LE(count, std::size(heaps));
  Footprint footprint{.handles = CountHandles()};
  for (DWORD i = 0; i < count && i < std::size(heaps); ++i) {
    footprint.heapBytes += CountHeapBytes(heaps[i]);
  }
  return footprint;
}

/// Calls random commands; each run calls the same ones.
class LibrarySoak : public LibraryTest {
 protected:
  LibrarySoak() {
    engine_.PretendFileExists(L"C:\\dns.exe");
    engine_.PretendFileExists(kApps[0]);
    Initialize();
  }

  void Run(int commands) {
    for (int i = 0; i < commands; ++i) {
      ASSERT_EQ(RunOne(), 0U) << "command " << i << ": " << library_->GetErrorText();
      TakeLog();
      engine_.ClearJournal();
    }
  }

  std::uint64_t SwitchAllOff() { return SwitchOthersOff() | library_->DisableLeakProtection(); }

 private:
  std::uint32_t Random(std::uint32_t below) { return random_() % below; }

  std::uint64_t SwitchOthersOff() {
    return library_->EnableInternet() | library_->DisableDhcp(Log) | library_->EnableLocalNetwork() |
           library_->DisableSkeinFirewallRules();
  }

  /// If the engine has filters when leak protection is switched on, the library keeps the list of them until
  /// the process ends, because its copies of application blocks point into it. The heap would then grow, so
  /// all other filters are removed first.
  std::uint64_t EnableLeakProtection() {
    const std::uint64_t off = library_->IsLeakProtectionEnabled() == 0 ? SwitchOthersOff() : 0;
    return off | library_->EnableLeakProtection("198.51.100.7", Log, nullptr, 0, 1 + Random(3), kAddresses,
                                                Random(4));
  }

  std::uint64_t RunOne() {
    switch (Random(13)) {
      case 0:
        return DisableInternet();
      case 1:
        return library_->DisableInternet(kApps, 1, nullptr, 0, Log);
      case 2:
        return library_->EnableInternet();
      case 3:
        return library_->EnableDhcp(Log);
      case 4:
        return library_->DisableDhcp(Log);
      case 5:
      case 6:
        return EnableLeakProtection();
      case 7:
        return library_->DisableLeakProtection();
      case 8:
        return library_->DisableLocalNetwork(Log);
      case 9:
        return library_->EnableLocalNetwork();
      case 10:
        return library_->EnableSkeinFirewallRules(Log, nullptr, 0, 1 + Random(3), kAddresses, Random(4));
      case 11:
        return library_->DisableSkeinFirewallRules();
      default:
        Initialize();
        return 0;
    }
  }

  std::minstd_rand random_;
};

TEST_F(LibrarySoak, EndsTenThousandCommandsAsItBegan) {
  Run(100);
  ASSERT_EQ(SwitchAllOff(), 0U);
  engine_.ClearJournal();
  const Footprint early = MeasureProcess();
  const EngineEmulatorOutstanding earlyOutstanding = engine_.CountOutstanding();

  Run(9'900);
  ASSERT_EQ(SwitchAllOff(), 0U);
  engine_.ClearJournal();
  const Footprint late = MeasureProcess();
  const EngineEmulatorOutstanding lateOutstanding = engine_.CountOutstanding();

  EXPECT_EQ(engine_.Filters(), Texts());
  EXPECT_EQ(lateOutstanding.sessions, earlyOutstanding.sessions);
  EXPECT_EQ(lateOutstanding.openTransactions, 0U);
  EXPECT_EQ(lateOutstanding.enumHandles, 0U);
  EXPECT_EQ(lateOutstanding.memoryBlocks, 0U);
  EXPECT_EQ(late.handles, early.handles);
  // Small enough that a command which leaks a few bytes per call fails the test.
  EXPECT_LT(late.heapBytes, early.heapBytes + 4 * kKibibyte);
}

}  // namespace
