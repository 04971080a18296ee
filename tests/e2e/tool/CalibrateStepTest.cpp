#include <gmock/gmock.h>

#include <fstream>

#include "EmulatedTool.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

class CalibrateStep : public testing::Test {
 protected:
  [[nodiscard]] std::wstring Path(const std::wstring& name) const {
    return (folder_.Path() / name).wstring();
  }

 private:
  TemporaryFolder folder_;
};

TEST_F(CalibrateStep, SaysThatItIsSimulated) {
  const ToolRun run = RunEmulated({L"calibrate"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_THAT(
      run.output,
      StartsWith("calibrate\n"
                 "  SIMULATED: connections were made in thought, with the readings to expect. It shows "
                 "that the experiments work, and nothing about an engine.\n"
                 "  filter-ties = newest-first: the filter with the highest id decides\n"
                 "    no filter: passed 8 times\n"));
  EXPECT_THAT(run.output, HasSubstr("\n  callouts: could not be settled: it needs a driver\n"));
}

TEST_F(CalibrateStep, IsTheSameDataOnStdoutAndInTheFile) {
  const ParsedJson step = LastStep({L"calibrate", Path(L"found.json")});
  std::ifstream file(std::filesystem::path(Path(L"found.json")), std::ios::binary);
  EXPECT_EQ(ParsedJson::parse(file), step["calibration"]);
  EXPECT_EQ(step["calibration"]["simulated"], true);
  EXPECT_EQ(step["calibration"]["windows"], "emulated");
  EXPECT_EQ(step["calibration"]["assumptions"][0]["reading"], "newest-first");
  EXPECT_EQ(step["calibration"]["assumptions"][0]["why"], nullptr);
  EXPECT_EQ(step["calibration"]["assumptions"][6]["reading"], nullptr);
  EXPECT_EQ(step["calibration"]["assumptions"][6]["why"], "it needs a driver");
  EXPECT_EQ(step["calibration"]["findings"][1]["name"], "re-authorisation");
}

TEST_F(CalibrateStep, NeedsNoFile) {
  const ToolRun run = RunEmulated({L"calibrate", L"list"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_THAT(run.output, HasSubstr("\nlist\n  no provider of this tool\n  no sublayers, no filters\n"));
}

}  // namespace
