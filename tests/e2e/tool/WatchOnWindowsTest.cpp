// The step watch in the process of the test, on the emulator's library.
#include <gmock/gmock.h>

#include <iostream>
#include <thread>

#include "Program.h"
#include "ToolRun.h"
#include "WatchedOutput.h"
#include "emulator/ControlExports.h"
#include "support/NetEventRecord.h"
#include "windows/LoadedModule.h"

namespace {

TEST(WatchOnWindows, TellsADropThatTheEmulatorsLibraryRaises) {
  const ModuleHandle emulator = LoadModule(ProgramFolder() / "emulator" / "fwpuclnt.dll");
  const auto raiseEvent =
      FindFunction<decltype(&::EngineEmulatorRaiseEvent)>(emulator.get(), "EngineEmulatorRaiseEvent");
  std::ios::sync_with_stdio(false);
  WatchedOutput output(std::cout);
  int exitCode = -1;
  std::thread tool([&] {
    exitCode = RunProgram(
        {"--engine", "emulated", "--block-app", "C:\\bad.exe", "watch", "--for", "2", "watch", "--last"});
  });
  EXPECT_TRUE(output.WaitFor("watching"));
  NetEventRecord drop = NetEventRecord::Drop(4294967297, 48);
  drop.Protocol(6).Local(0xC0000201, 50000).Remote(0xC6336407, 443);
  drop.App("\\device\\harddiskvolume1\\bad.exe");
  EXPECT_EQ(raiseEvent(&drop.Native()), DWORD{ERROR_SUCCESS});
  const std::string sentence = "    blocked by filter 4294967297 \"Block of another owner\" of no provider\n";
  EXPECT_TRUE(output.WaitFor(sentence));
  tool.join();
  EXPECT_EQ(exitCode, 0);
  EXPECT_TRUE(output.WaitFor("watch\n  #1 "));
  const auto reset = FindFunction<decltype(&::EngineEmulatorReset)>(emulator.get(), "EngineEmulatorReset");
  const auto countOutstanding = FindFunction<decltype(&::EngineEmulatorCountOutstanding)>(
      emulator.get(), "EngineEmulatorCountOutstanding");
  EngineEmulatorOutstanding outstanding{};
  countOutstanding(&outstanding);
  EXPECT_EQ(outstanding.sessions, 0u);
  EXPECT_EQ(outstanding.subscriptions, 0u);
  EXPECT_EQ(outstanding.enumHandles, 0u);
  EXPECT_EQ(outstanding.memoryBlocks, 0u);
  reset();
}

}  // namespace
