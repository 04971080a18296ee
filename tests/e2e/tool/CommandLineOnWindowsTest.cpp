#include <gmock/gmock.h>

#include "EmulatedTool.h"
#include "WrongUsage.h"

namespace {

using testing::HasSubstr;

const WrongUse kWrongOnWindows[]{
    {{L"--block-app", L"C:\\bad.exe", L"status"},
     "--block-app is for the emulated engine",
     "it goes with --engine emulated"},
    {{L"--engine", L"machine.xml", L"list", L"enable-dhcp"},
     "The step enable-dhcp changes the engine, and a dump cannot be changed",
     "--engine emulated --start machine.xml begins with what the dump holds"},
    {{L"--engine", L"machine.xml", L"--dns-app", L"C:\\a.exe", L"list"},
     "--dns-app is for steps that change the engine, and a dump cannot be changed",
     "it goes with --engine system or emulated"},
    {{L"--start", L"machine.xml", L"list"},
     "--start is for the emulated engine",
     "it goes with --engine emulated"},
};

INSTANTIATE_TEST_SUITE_P(OnWindows, WrongUsage, testing::ValuesIn(kWrongOnWindows));

TEST(CommandLine, ValueThatIsTheNameOfAStepIsAValue) {
  const ToolRun run =
      RunTool({L"--engine", L"emulated", L"disable-internet", L"--interface", L"list", L"status"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_THAT(run.output, HasSubstr("  NATIVE: DisableInternet: list\n"));
  EXPECT_THAT(run.output, Not(HasSubstr("\nlist\n")));
  EXPECT_THAT(run.output, testing::EndsWith("status\n"
                                            "  internet: off\n"
                                            "  dhcp rules: off\n"
                                            "  leak protection: off\n"
                                            "  local network: on\n"
                                            "  done\n"));
}

TEST(CommandLine, ValuesKeepTheirOrderAndBrackets) {
  const ToolRun run = RunTool({L"--engine", L"emulated", L"disable-internet", L"--interface", L"[b,a]",
                               L"--interface=c d", L"--interface", L"B"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_THAT(run.output, HasSubstr("  NATIVE: DisableInternet: [b,a],c d,B\n"));
}

TEST(CommandLine, ArgumentsOutsideTheCodePageArriveWhole) {
  const ToolRun run =
      RunTool({L"--engine", L"emulated", L"disable-internet", L"--interface", L"T\u00fcnnel \u65e5\u672c"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_THAT(run.output, HasSubstr("  NATIVE: DisableInternet: T\xc3\xbcnnel \xe6\x97\xa5\xe6\x9c\xac\n"));
}

}  // namespace
