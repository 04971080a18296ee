#include <gmock/gmock.h>

#include "ToolProcess.h"

namespace {

using testing::HasSubstr;

constexpr const char* kHolds = "press Enter or Ctrl+C";

/// The tool in a folder with the emulator, which it loads as if it were the system's own engine.
class Hold : public testing::Test {
 protected:
  Hold() {
    folder_.Copy("corvane-firewall.exe", "corvane-firewall.exe");
    folder_.Copy("Corvane.Native.Firewall.dll", "Corvane.Native.Firewall.dll");
    folder_.Copy("emulator/fwpuclnt.dll", "fwpuclnt.dll");
  }

  TemporaryFolder folder_;
};

TEST_F(Hold, KeepsWhatIsInstalledUntilEnter) {
  const ToolProcess process({L"enable-dhcp"}, folder_.Path());
  EXPECT_THAT(process.ReadErrorsUpTo(kHolds), HasSubstr(kHolds));
  EXPECT_TRUE(process.IsRunning());
  process.PressEnter();
  EXPECT_EQ(process.Wait(), 0u);
}

TEST_F(Hold, DocumentIsWholeBeforeItHolds) {
  const ToolProcess process({L"--json", L"enable-dhcp"}, folder_.Path());
  EXPECT_THAT(process.ReadErrorsUpTo(kHolds), HasSubstr(kHolds));
  process.PressEnter();
  EXPECT_THAT(process.ReadOutput(), testing::EndsWith("}\n"));
  EXPECT_EQ(process.Wait(), 0u);
}

TEST_F(Hold, IsLeftOutOnRequest) {
  const ToolRun run = RunTool({L"--no-hold", L"enable-dhcp"}, folder_.Path());
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_EQ(run.errors, "");
}

TEST_F(Hold, IsLeftOutWhenNothingWasToBeInstalled) {
  const ToolRun run = RunTool({L"status", L"list"}, folder_.Path());
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_EQ(run.errors, "");
}

TEST(HoldWithTheEmulatedEngine, IsLeftOut) {
  const ToolRun run = RunTool({L"--engine", L"emulated", L"enable-dhcp"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_EQ(run.errors, "");
}

}  // namespace
