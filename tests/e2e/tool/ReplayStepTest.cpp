#include <gmock/gmock.h>

#include <fstream>

#include "EmulatedTool.h"

namespace {

using testing::HasSubstr;

/// Nobody but this file's dump has such a filter: disabled, indexed, with an id and a weight of its own.
constexpr const char* kDump = R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<wfpdiag><filters>
<item><filterKey>{11112222-3333-4444-5555-666677778888}</filterKey>
<displayData><name>Theirs</name><description/></displayData>
<flags numItems="2"><item>FWPM_FILTER_FLAG_DISABLED</item><item>FWPM_FILTER_FLAG_INDEXED</item></flags>
<providerKey/><providerData/><layerKey>FWPM_LAYER_ALE_AUTH_CONNECT_V4</layerKey>
<subLayerKey>{bbbbbbbb-0000-0000-0000-000000000002}</subLayerKey><weight><type>FWP_EMPTY</type></weight>
<filterCondition numItems="1"><item><fieldKey>FWPM_CONDITION_IP_REMOTE_PORT</fieldKey>
<matchType>FWP_MATCH_EQUAL</matchType><conditionValue><type>FWP_UINT16</type><uint16>443</uint16></conditionValue>
</item></filterCondition><action><type>FWP_ACTION_BLOCK</type><filterType/></action><rawContext>0</rawContext>
<reserved/><filterId>70001</filterId>
<effectiveWeight><type>FWP_UINT64</type><uint64>4711</uint64></effectiveWeight></item>
</filters></wfpdiag>
)";

class ReplayStep : public testing::Test {
 protected:
  ReplayStep() { std::ofstream(File(), std::ios::binary) << kDump; }

  [[nodiscard]] std::filesystem::path File() const { return folder_.Path() / "machine.xml"; }
  [[nodiscard]] std::filesystem::path Exported() const { return folder_.Path() / "exported.xml"; }

  [[nodiscard]] ParsedJson LastStepOf(const std::vector<std::wstring>& engine,
                                      std::vector<std::wstring> steps) const {
    steps.insert(steps.begin(), engine.begin(), engine.end());
    steps.insert(steps.begin(), L"--json");
    const ParsedJson document = DocumentOf(RunTool(steps));
    EXPECT_EQ(document["ok"], true);
    return document.at("steps").back();
  }

  [[nodiscard]] std::vector<std::wstring> Dump() const { return {L"--engine", File().wstring()}; }
  [[nodiscard]] std::vector<std::wstring> Started() const {
    return {L"--engine", L"emulated", L"--start", File().wstring()};
  }

 private:
  const TemporaryFolder folder_;
};

TEST_F(ReplayStep, TellsHowFarTheEmulatorAgreesWithADump) {
  const ParsedJson step = LastStepOf(Dump(), {L"replay"});
  EXPECT_EQ(step, ParsedJson::parse(R"({
    "step": "replay", "ok": true, "log": [
      "The dump lacks the sublayers; their order is inferred from that of the filters."],
    "filters": 1, "accepted": 1, "refusals": [], "automaticWeights": 1, "equalWeights": 0,
    "orderedPairs": 0, "sameOrder": 0, "sublayers": 0, "equalSublayers": 0, "windows": "Windows 11 24H2"})"));
}

TEST_F(ReplayStep, AgreesWithTheEmulatedEngineItself) {
  const ToolRun run = RunEmulated({L"disable-internet", L"enable-dhcp", L"replay"});
  EXPECT_EQ(run.exitCode, 0u) << run.errors;
  EXPECT_THAT(run.output, HasSubstr("replay\n"
                                    "  emulated: Windows 11 24H2\n"
                                    "  filters: 57, accepted 57\n"
                                    "  weights that the engine chose: 57, equal 57\n"));
  EXPECT_THAT(run.output, HasSubstr("  sublayers: 20, of equal weight 20\n  done\n"));
}

TEST_F(ReplayStep, LeavesTheEngineOfTheRunAsItIs) {
  const ParsedJson step = LastStepOf({L"--engine", L"emulated"}, {L"disable-internet", L"replay", L"list"});
  EXPECT_EQ(step.at("sublayers").at(0).at("filters").size(), 51u);
}

TEST_F(ReplayStep, ShowsAnExampleOfEachRefusal) {
  std::string dump = kDump;
  dump.replace(dump.find("ALE_AUTH_CONNECT_V4"), 19, "NOT_YET_INVENTED_V4");
  std::ofstream(File(), std::ios::binary) << dump;
  const ToolRun run = RunTool({L"--engine", File().wstring(), L"replay"});
  EXPECT_EQ(run.exitCode, 0u) << run.errors;
  EXPECT_THAT(run.output,
              HasSubstr("  refused: 1, FWP_E_LAYER_NOT_FOUND (0x80320004)\n"
                        "    such as filter {11112222-3333-4444-5555-666677778888} \"Theirs\": "));
}

/// The one filter of the dump, as the step list shows it.
void ExpectTheirs(const ParsedJson& filter) {
  EXPECT_EQ(filter["id"], 70001);
  EXPECT_EQ(filter["key"], "11112222-3333-4444-5555-666677778888");
  EXPECT_EQ(filter["flags"], 0x60);
  EXPECT_EQ(filter["weight"]["type"], "EMPTY");
  EXPECT_EQ(filter["effectiveWeight"]["value"], "4711");
  EXPECT_EQ(filter["conditions"][0]["text"], "IP_REMOTE_PORT EQUAL UINT16 443");
}

/// The filters of a sublayer that the step list shows.
ParsedJson FiltersIn(const ParsedJson& list, const std::string& sublayerKey) {
  for (const ParsedJson& sublayer : list.at("sublayers")) {
    if (sublayer["key"] == sublayerKey) {
      return sublayer["filters"];
    }
  }
  return ParsedJson::array();
}

constexpr const char* kTheirs = "bbbbbbbb-0000-0000-0000-000000000002";

TEST_F(ReplayStep, ExportWritesTheSameDump) {
  EXPECT_EQ(LastStepOf(Dump(), {L"export", Exported().wstring()})["file"], Exported().u8string().c_str());
  const ParsedJson list = LastStepOf({L"--engine", Exported().wstring()}, {L"list", L"--all"});
  ASSERT_EQ(FiltersIn(list, kTheirs).size(), 1u);
  ExpectTheirs(FiltersIn(list, kTheirs)[0]);
}

TEST_F(ReplayStep, TheEmulatedEngineStartsWithAllThatADumpHolds) {
  const ParsedJson list = LastStepOf(Started(), {L"disable-internet", L"list", L"--all"});
  ASSERT_EQ(FiltersIn(list, kTheirs).size(), 1u);
  ExpectTheirs(FiltersIn(list, kTheirs)[0]);
  EXPECT_EQ(list["sublayers"].size(), 20u);
}

TEST_F(ReplayStep, PageOfTheEmulatedEngineSaysThatTheSublayersAreInferred) {
  const std::filesystem::path page = File().parent_path() / "page.html";
  EXPECT_EQ(LastStepOf(Started(), {L"report", page.wstring()})["ok"], true);
  std::ifstream file(page);
  const std::string text(std::istreambuf_iterator<char>(file), {});
  EXPECT_THAT(text, HasSubstr(R"("engine":"emulated","isOrderInferred":true)"));
}

TEST_F(ReplayStep, LaterFiltersWeighAsInTheDumpsVersionOfWindows) {
  std::string dump = kDump;
  dump.replace(dump.find("4711"), 4, "1924145348608");  // 0x1c000000000: Windows 11 before 24H2
  std::ofstream(File(), std::ios::binary) << dump;
  EXPECT_EQ(LastStepOf(Started(), {L"disable-internet", L"replay"})["windows"], "Windows 11 before 24H2");
}

TEST_F(ReplayStep, ExportsWhatStepsHaveAddedToADump) {
  ASSERT_EQ(LastStepOf(Started(), {L"enable-dhcp", L"export", Exported().wstring()})["ok"], true);
  const ParsedJson list = LastStepOf({L"--engine", Exported().wstring()}, {L"list", L"--all"});
  EXPECT_EQ(list.at("log").size(), 0u);
  ASSERT_EQ(FiltersIn(list, kTheirs).size(), 1u);
  ExpectTheirs(FiltersIn(list, kTheirs)[0]);
  EXPECT_EQ(list["sublayers"].size(), 20u);
}

TEST_F(ReplayStep, SaysWhatOfADumpTheEmulatedEngineDoesNotHold) {
  std::string dump = kDump;
  dump.replace(dump.find("ALE_AUTH_CONNECT_V4"), 19, "NOT_YET_INVENTED_V4");
  std::ofstream(File(), std::ios::binary) << dump;
  const ParsedJson step = LastStepOf(Started(), {L"list"});
  EXPECT_THAT(step.at("log").at(1).get<std::string>(),
              HasSubstr("The emulated engine does not hold 1 of the dump's objects: FWP_E_LAYER_NOT_FOUND "
                        "(0x80320004), as for filter {11112222-"));
}

TEST_F(ReplayStep, ExportNamesAFileThatCannotBeWritten) {
  const ToolRun run = RunEmulated({L"export", (File().parent_path() / "missing" / "a.xml").wstring()});
  EXPECT_EQ(run.exitCode, 1u);
  EXPECT_THAT(run.errors, HasSubstr("export failed: Cannot write "));
}

TEST(Start, IsForTheEmulatedEngine) {
  const ToolRun run = RunTool({L"--start", L"machine.xml", L"list"});
  EXPECT_EQ(run.exitCode, 2u);
  EXPECT_THAT(run.errors,
              HasSubstr("--start is for the emulated engine\nhint: it goes with --engine emulated"));
}

TEST(Start, TakesAFileThatIsThere) {
  const ToolRun run = RunEmulated({L"--start", L"no-such-file.xml", L"list"});
  EXPECT_EQ(run.exitCode, 2u);
  EXPECT_THAT(run.errors, testing::StartsWith("error: no-such-file.xml: no such file\nhint: "));
}

}  // namespace
