#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>

#include "EmulatedTool.h"

namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// A filter for outbound IPv4 connections to port 443, as netsh writes it; all weigh the same.
std::string FilterItem(const std::string& id, const std::string& action) {
  return "<item><filterKey>{00000000-0000-0000-0000-0000000" + id +
         "}</filterKey><displayData><name>Filter " + id +
         "</name><description/></displayData><flags/><providerKey/><providerData/><layerKey>"
         "FWPM_LAYER_ALE_AUTH_CONNECT_V4</layerKey><subLayerKey>FWPM_SUBLAYER_UNIVERSAL</subLayerKey><weight>"
         "<type>FWP_UINT64</type><uint64>7</uint64></weight><filterCondition numItems=\"1\"><item><fieldKey>"
         "FWPM_CONDITION_IP_REMOTE_PORT</fieldKey><matchType>FWP_MATCH_EQUAL</"
         "matchType><conditionValue><type>"
         "FWP_UINT16</type><uint16>443</uint16></conditionValue></item></filterCondition><action><type>"
         "FWP_ACTION_" +
         action + "</type><filterType/></action><rawContext>0</rawContext><reserved/><filterId>" + id +
         "</filterId><effectiveWeight><type>FWP_UINT64</type><uint64>7</uint64></effectiveWeight></item>\n";
}

/// A permit, and a newer block of the same weight.
std::string DumpWithATie() {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n<wfpdiag><filters>\n" +
         FilterItem("70001", "PERMIT") + FilterItem("70002", "BLOCK") + "</filters></wfpdiag>\n";
}

std::string Calibration(const std::string& reading) {
  return R"({"simulated": false, "windows": "10.0.26100.1", "assumptions": [{"name": "filter-ties", "reading": )" +
         reading + R"(}, {"name": "callouts", "reading": null}]})";
}

class CalibrateStep : public testing::Test {
 protected:
  std::wstring Write(const std::wstring& name, const std::string& text) {
    const std::filesystem::path path = folder_.Path() / name;
    std::ofstream(path, std::ios::binary) << text;
    return path.wstring();
  }
  [[nodiscard]] std::wstring Path(const std::wstring& name) const {
    return (folder_.Path() / name).wstring();
  }

  /// Runs steps on the dump, with an option before them.
  ToolRun RunOnTie(std::vector<std::wstring> arguments) {
    arguments.insert(arguments.begin(), {L"--engine", Write(L"tie.xml", DumpWithATie())});
    return RunTool(arguments);
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

TEST_F(CalibrateStep, WhatIsAssumedSettlesTheVerdict) {
  EXPECT_THAT(RunOnTie({L"explain", L"--remote", L"10.0.0.1"}).output,
              HasSubstr("filter-ties = permit-first"));
  const std::wstring blocks = Write(L"blocks.json", Calibration("\"block-first\""));
  const ToolRun blocked = RunOnTie({L"--assume", blocks, L"explain", L"--remote", L"10.0.0.1"});
  EXPECT_THAT(blocked.output, HasSubstr("blocked by filter 70002"));
  EXPECT_THAT(blocked.output, Not(HasSubstr("filter-ties = permit-first")));
  const std::wstring permits = Write(L"permits.json", Calibration("\"permit-first\""));
  EXPECT_THAT(RunOnTie({L"--assume", permits, L"explain", L"--remote", L"10.0.0.1"}).output,
              HasSubstr("permitted by filter 70001"));
}

TEST_F(CalibrateStep, WhatIsAssumedSettlesTheMap) {
  EXPECT_THAT(RunOnTie({L"map"}).output, HasSubstr("remote port 443: depends (1)"));
  const std::wstring blocks = Write(L"blocks.json", Calibration("\"block-first\""));
  EXPECT_THAT(RunOnTie({L"--assume", blocks, L"map"}).output, HasSubstr("remote port 443: block"));
}

TEST_F(CalibrateStep, TheFirstStepTellsWhatIsAssumedAndFromWhere) {
  const ToolRun run = RunOnTie({L"--assume", Write(L"a.json", Calibration("\"block-first\"")), L"map"});
  EXPECT_THAT(run.output, HasSubstr("a.json: filter-ties = block-first. It is from experiments on Windows "
                                    "10.0.26100.1.\n"));
  const ToolRun nothing = RunOnTie({L"--assume", Write(L"b.json", Calibration("null")), L"map"});
  EXPECT_THAT(nothing.output, HasSubstr("b.json: nothing. It is from experiments"));
  EXPECT_THAT(nothing.output, HasSubstr("remote port 443: depends (1)"));
}

TEST_F(CalibrateStep, WhatWasSimulatedIsTakenWithANote) {
  ASSERT_EQ(RunEmulated({L"calibrate", Path(L"found.json")}).exitCode, 0u);
  const ToolRun run = RunOnTie({L"--assume", Path(L"found.json"), L"map"});
  EXPECT_THAT(run.output, HasSubstr("It is from a simulated run, which tells what is to be expected and not "
                                    "what an engine does.\n"));
  EXPECT_THAT(run.output, HasSubstr("remote port 443: block"));
}

struct BadFile {
  const char* text;
  const char* wrong;
};

constexpr BadFile kBadFiles[]{
    {"", "is not JSON"},
    {"{\"assumptions\": [", "is not JSON"},
    {"[]", "is no calibration: expected an object with assumptions, simulated and windows"},
    {"{\"assumptions\": [], \"windows\": \"x\"}", "is no calibration"},
    {"{\"assumptions\": {}, \"simulated\": true, \"windows\": \"x\"}", "is no calibration"},
    {"{\"assumptions\": [1], \"simulated\": true, \"windows\": \"x\"}",
     "has an assumption without a name, or without a reading, which is a text or null"},
    {"{\"assumptions\": [{\"name\": \"ties\", \"reading\": null}], \"simulated\": true, \"windows\": \"x\"}",
     "names an assumption \"ties\"; expected one of filter-ties, several-negations, unset-fields, "
     "static-block-below-hard-permit, loopback-bits, flow-established-blocks, callouts"},
    {"{\"assumptions\": [{\"name\": \"callouts\", \"reading\": \"maybe\"}], \"simulated\": true, "
     "\"windows\": "
     "\"x\"}",
     "gives callouts the reading \"maybe\"; expected one of pass, block"},
    {"{\"assumptions\": [{\"name\": \"callouts\", \"reading\": \"pass\"}, {\"name\": \"callouts\", "
     "\"reading\": "
     "\"block\"}], \"simulated\": true, \"windows\": \"x\"}",
     "settles callouts twice"},
};

TEST_F(CalibrateStep, FilesThatAreNoneAreRefused) {
  for (const BadFile& file : kBadFiles) {
    const ToolRun run = RunEmulated({L"--assume", Write(L"bad.json", file.text), L"map"});
    EXPECT_EQ(run.exitCode, 2u);
    EXPECT_EQ(run.output, "");
    EXPECT_THAT(run.errors, HasSubstr(std::string("bad.json ") + file.wrong));
    EXPECT_THAT(run.errors, HasSubstr("\nhint: The step calibrate FILE.json writes such a file.\n"));
  }
  EXPECT_THAT(RunEmulated({L"--assume", Path(L"none.json"), L"map"}).errors,
              HasSubstr("none.json cannot be read"));
  EXPECT_THAT(RunEmulated({L"--assume", Write(L"long.json", std::string(1'100'000, ' ')), L"map"}).errors,
              HasSubstr("long.json is longer than a calibration can be"));
}

}  // namespace
