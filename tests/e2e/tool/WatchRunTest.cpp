#include <gmock/gmock.h>

#include "EmulatedTool.h"

namespace {

TEST(Watch, EndsByItselfAfterTheSecondsGiven) {
  const ToolRun run = RunEmulated({L"watch", L"--for", L"1"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_EQ(run.errors, "");
  EXPECT_EQ(
      run.output,
      "watch\n"
      "  watching, times are in UTC; Ctrl+C ends it\n"
      "  The engine does not record, as is usual: drops of inbound multicast, drops of inbound broadcast, "
      "drops for want of a capability, permitted connections.\n"
      "  in all 0 drops and 0 repeats\n"
      "  done\n");
}

TEST(Watch, AFreshEngineRemembersNothing) {
  const ToolRun run = RunEmulated({L"--json", L"watch", L"--last"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_EQ(run.errors, "");
  EXPECT_EQ(run.output,
            "{\"engine\":\"emulated\",\"ok\":true,\"steps\":[{\"step\":\"watch\",\"ok\":true,\"log\":[],"
            "\"totals\":{\"drops\":0,\"repeats\":0,\"lost\":0,\"others\":{}}}]}\n");
  EXPECT_EQ(DocumentOf(run)["ok"], true);
}

}  // namespace
