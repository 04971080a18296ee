#include <gmock/gmock.h>

#include <fstream>

#include "ReplayStepFixture.h"

namespace {

using testing::HasSubstr;

TEST_F(ReplayStep, TellsHowFarTheEmulatorAgreesWithADump) {
  const ParsedJson step = LastStepOf(Dump(), {L"replay"});
  EXPECT_EQ(step, ParsedJson::parse(R"({
    "step": "replay", "ok": true, "log": [
      "The dump lacks the sublayers; their order is inferred from that of the filters."],
    "filters": 1, "accepted": 1, "refusals": [], "automaticWeights": 1, "equalWeights": 0,
    "orderedPairs": 0, "sameOrder": 0, "sublayers": 0, "equalSublayers": 0, "windows": "Windows 11 24H2"})"));
}

TEST_F(ReplayStep, LeavesTheEngineThatBeganWithADumpAsItIs) {
  const ParsedJson list = LastStepOf(Started(), {L"replay", L"list", L"--all"});
  ASSERT_EQ(FiltersIn(list, kTheirsKey).size(), 1u);
  ExpectTheirs(FiltersIn(list, kTheirsKey)[0]);
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

TEST_F(ReplayStep, ExportWritesTheSameDump) {
  EXPECT_EQ(LastStepOf(Dump(), {L"export", Exported().wstring()})["file"], Exported().u8string().c_str());
  const ParsedJson list = LastStepOf({L"--engine", Exported().wstring()}, {L"list", L"--all"});
  ASSERT_EQ(FiltersIn(list, kTheirsKey).size(), 1u);
  ExpectTheirs(FiltersIn(list, kTheirsKey)[0]);
}

TEST_F(ReplayStep, TheEmulatedEngineStartsWithAllThatADumpHolds) {
  const ParsedJson list = LastStepOf(Started(), {L"list", L"--all"});
  ASSERT_EQ(FiltersIn(list, kTheirsKey).size(), 1u);
  ExpectTheirs(FiltersIn(list, kTheirsKey)[0]);
  EXPECT_EQ(list["sublayers"].size(), 19u);
}

TEST_F(ReplayStep, PageOfTheEmulatedEngineSaysThatTheSublayersAreInferred) {
  const std::filesystem::path page = File().parent_path() / "page.html";
  EXPECT_EQ(LastStepOf(Started(), {L"report", page.wstring()})["ok"], true);
  std::ifstream file(page);
  const std::string text(std::istreambuf_iterator<char>(file), {});
  EXPECT_THAT(text, HasSubstr(R"("engine":"emulated","isOrderInferred":true)"));
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

TEST(Start, TakesAFileThatIsThere) {
  const ToolRun run = RunEmulated({L"--start", L"no-such-file.xml", L"list"});
  EXPECT_EQ(run.exitCode, 2u);
  EXPECT_THAT(run.errors, testing::StartsWith("error: no-such-file.xml: no such file\nhint: "));
}

}  // namespace
