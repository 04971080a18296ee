#include <gmock/gmock.h>

#include <fstream>

#include "EmulatedTool.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kDecoration =
    "<flags/><providerKey/><providerData/><layerKey>FWPM_LAYER_ALE_AUTH_CONNECT_V4</layerKey>";

/// A filter at the layer of outbound IPv4 connections, as netsh writes it.
/// @param port of the other end; empty for all.
std::string FilterItem(const std::string& id, const std::string& sublayer, const std::string& port,
                       const std::string& action) {
  const std::string condition =
      "<item><fieldKey>FWPM_CONDITION_IP_REMOTE_PORT</fieldKey><matchType>FWP_MATCH_EQUAL</matchType>"
      "<conditionValue><type>FWP_UINT16</type><uint16>" +
      port + "</uint16></conditionValue></item>";
  return "<item><filterKey>{00000000-0000-0000-0000-0000000" + id +
         "}</filterKey><displayData><name>Filter " + id + "</name><description/></displayData>" +
         kDecoration + "<subLayerKey>" + sublayer +
         "</subLayerKey><weight><type>FWP_UINT64</type><uint64>7</uint64></weight>" +
         (port.empty() ? "<filterCondition/>"
                       : "<filterCondition numItems=\"1\">" + condition + "</filterCondition>") +
         "<action><type>FWP_ACTION_" + action +
         "</type><filterType/></action><rawContext>0</rawContext><reserved/><filterId>" + id +
         "</filterId><effectiveWeight><type>FWP_UINT64</type><uint64>7</uint64></effectiveWeight></item>\n";
}

constexpr const char* kOurs = "{aaaaaaaa-0000-0000-0000-000000000001}";
constexpr const char* kTheirs = "{bbbbbbbb-0000-0000-0000-000000000002}";

/// As netsh wfp show filters writes it. The sublayer whose key comes later is the heavier one.
std::string FiltersDump() {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n<wfpdiag><filters>\n" +
         FilterItem("70001", kTheirs, "443", "PERMIT") +
         FilterItem("70002", "FWPM_SUBLAYER_UNIVERSAL", "443", "BLOCK") +
         FilterItem("70003", kOurs, "25", "BLOCK") + "</filters></wfpdiag>\n";
}

std::string Sublayer(const std::string& key, const std::string& name, const std::string& weight) {
  return "<item><subLayerKey>" + key + "</subLayerKey><displayData><name>" + name +
         "</name><description/></displayData><flags/><providerKey/><providerData/><weight>" + weight +
         "</weight></item>\n";
}

/// As netsh wfp show state writes it.
std::string StateDump() {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n<wfpstate><layers><item><layer>"
         "<layerKey>FWPM_LAYER_ALE_AUTH_CONNECT_V4</layerKey><displayData><name>l</name><description/>"
         "</displayData><flags/><field/><defaultSubLayerKey>FWPM_SUBLAYER_UNIVERSAL</defaultSubLayerKey>"
         "<layerId>48</layerId></layer><callouts/><filters>\n" +
         FilterItem("70001", kTheirs, "443", "PERMIT") + FilterItem("70003", kOurs, "25", "BLOCK") +
         "</filters></item></layers><providers/><providerContexts/><subLayers>\n" +
         Sublayer(kOurs, "Ours", "9") + Sublayer(kTheirs, "Theirs", "4711") +
         "</subLayers></wfpstate>\n<firewallState/>\n";
}

class DumpSteps : public testing::Test {
 protected:
  /// Writes a file and runs the tool with it as the engine.
  [[nodiscard]] ToolRun Run(const std::string& content, std::vector<std::wstring> arguments) const {
    std::ofstream(File(), std::ios::binary) << content;
    arguments.insert(arguments.begin(), {L"--engine", File().wstring()});
    return RunTool(arguments);
  }

  [[nodiscard]] ParsedJson RunJson(const std::string& content, std::vector<std::wstring> arguments) const {
    arguments.insert(arguments.begin(), L"--json");
    return DocumentOf(Run(content, std::move(arguments)));
  }

  [[nodiscard]] std::filesystem::path File() const { return folder_.Path() / "machine.xml"; }

 private:
  const TemporaryFolder folder_;
};

TEST_F(DumpSteps, ListShowsTheStateWithItsWeights) {
  const ToolRun run = Run(StateDump(), {L"list", L"--all"});
  EXPECT_EQ(run.exitCode, 0u) << run.errors;
  EXPECT_THAT(run.output,
              HasSubstr("sublayer \"Theirs\" {bbbbbbbb-0000-0000-0000-000000000002}: ; weight 4711"));
  EXPECT_THAT(run.output, HasSubstr("sublayer \"Ours\" {aaaaaaaa-0000-0000-0000-000000000001}: ; weight 9"));
  EXPECT_THAT(run.output, HasSubstr("filter 70003 \"Filter 70003\" at ALE_AUTH_CONNECT_V4: BLOCK when "
                                    "IP_REMOTE_PORT EQUAL UINT16 25; weight UINT64 7"));
}

TEST_F(DumpSteps, FiltersHaveTheSystemsWeightsAndTheOrderOfTheOthers) {
  const ParsedJson document = RunJson(FiltersDump(), {L"list", L"--all"});
  EXPECT_EQ(document["engine"], "dump");
  const ParsedJson& sublayers = document.at("steps").at(0).at("sublayers");
  ASSERT_EQ(sublayers.size(), 3u);
  EXPECT_EQ(sublayers[0]["weight"], 32768);
  EXPECT_EQ(sublayers[1]["key"], "bbbbbbbb-0000-0000-0000-000000000002");
  EXPECT_TRUE(sublayers[1]["weight"].is_null());
  EXPECT_EQ(sublayers[2]["key"], "aaaaaaaa-0000-0000-0000-000000000001");
}

TEST_F(DumpSteps, ExplainAsksTheSublayersInTheOrderOfTheFilters) {
  const ToolRun run = Run(FiltersDump(), {L"explain", L"--remote", L"10.0.0.1:443", L"--trace"});
  EXPECT_EQ(run.exitCode, 0u) << run.errors;
  const std::size_t permit = run.output.find("filter 70001");
  const std::size_t block = run.output.find("filter 70002");
  ASSERT_NE(permit, std::string::npos);
  ASSERT_NE(block, std::string::npos);
  EXPECT_LT(permit, block);
}

TEST_F(DumpSteps, ExplainAnswersInShort) {
  EXPECT_EQ(Run(StateDump(), {L"explain", L"--remote", L"10.0.0.1:25"}).output,
            "explain\n"
            "  outbound IPv4, protocol 6 (TCP), local 192.0.2.1:50000, remote 10.0.0.1:25, application "
            "other.exe, interface 999, flags 0x00000000\n"
            "    blocked by filter 70003 \"Filter 70003\" of no provider\n"
            "    at ALE_AUTH_CONNECT_V4, which matches IP_REMOTE_PORT EQUAL UINT16 25\n"
            "    asked as a program of a signed-in user; user any; profile not given\n"
            "  done\n");
  const ParsedJson explanation =
      RunJson(StateDump(), {L"explain", L"--remote", L"10.0.0.1:25"})["steps"][0]["explanations"][0];
  EXPECT_EQ(explanation["endings"], ParsedJson::parse(R"([{
    "readings": {}, "verdict": "block", "filter": {"id": 70003, "name": "Filter 70003"},
    "owner": "no provider", "ours": false
  }])"));
}

TEST_F(DumpSteps, SaysThatTheSublayersAreInferred) {
  constexpr const char* kNote =
      "The dump lacks the sublayers; their order is inferred from that of the filters.";
  EXPECT_THAT(Run(FiltersDump(), {L"map"}).output, HasSubstr(kNote));
  EXPECT_THAT(Run(StateDump(), {L"map"}).output, testing::Not(HasSubstr(kNote)));
}

TEST_F(DumpSteps, EveryStepThatReadsTheEngineReadsADump) {
  const std::wstring page = (File().parent_path() / "page.html").wstring();
  const ParsedJson document =
      RunJson(StateDump(), {L"list", L"explain", L"--remote", L"10.0.0.1", L"map", L"lint", L"report", page});
  EXPECT_EQ(document["ok"], true);
  EXPECT_EQ(document["steps"].size(), 5u);
  std::ifstream file{std::filesystem::path(page)};
  const std::string text(std::istreambuf_iterator<char>(file), {});
  EXPECT_THAT(text, HasSubstr(R"("engine":"dump","isOrderInferred":false)"));
}

TEST_F(DumpSteps, LintTellsWhoseFiltersItIsAbout) {
  std::string dump = StateDump();
  dump.replace(dump.find("<providerKey/>", dump.find("{00000000-0000-0000-0000-000000070001}")), 14,
               "<providerKey>FWPM_PROVIDER_MPSSVC_WF</providerKey>");
  dump.replace(dump.find("<uint16>443"), 11, "<uint16>25");
  EXPECT_EQ(Run(dump, {L"lint"}).output,
            "lint\n  Windows Firewall: 1 filter permits what a block takes back\n  done\n");
  EXPECT_THAT(Run(dump, {L"lint", L"--all"}).output,
              HasSubstr("  filters of Windows Firewall, which come with the system:\n"
                        "    overridden-permit: The permit of the first is soft: "));
  const ParsedJson findings = RunJson(dump, {L"lint"})["steps"][0]["findings"];
  ASSERT_EQ(findings.size(), 1u);
  EXPECT_EQ(findings[0]["owner"], "Windows Firewall");
  EXPECT_EQ(findings[0]["ours"], false);
  EXPECT_EQ(findings[0]["platform"], true);
}

TEST_F(DumpSteps, PageSaysThatTheSublayersAreInferred) {
  const std::wstring page = (File().parent_path() / "page.html").wstring();
  EXPECT_EQ(Run(FiltersDump(), {L"report", page}).exitCode, 0u);
  std::ifstream file{std::filesystem::path(page)};
  const std::string text(std::istreambuf_iterator<char>(file), {});
  EXPECT_THAT(text, HasSubstr(R"("isOrderInferred":true)"));
}

TEST_F(DumpSteps, AskForNamesThatADumpHasNot) {
  const ToolRun adapter = Run(StateDump(), {L"explain", L"--remote", L"::1", L"--interface", L"Tunnel"});
  EXPECT_EQ(adapter.exitCode, 1u);
  EXPECT_THAT(adapter.errors,
              HasSubstr("A dump does not have the names of adapters\nhint: Give --interface a LUID."));
  const ToolRun application = Run(StateDump(), {L"explain", L"--remote", L"::1", L"--app", L"C:\\a.exe"});
  EXPECT_EQ(application.exitCode, 1u);
  EXPECT_THAT(application.errors,
              HasSubstr("A dump does not tell which volume the path of an application is on\n"
                        "hint: Give --app an id such as \\device\\harddiskvolume1\\a.exe"));
}

TEST_F(DumpSteps, RefuseAFileThatIsNoDump) {
  constexpr const char* kBad[][2]{
      {"<wfpdiag>\n<filters>\n<item>\n", "machine.xml:"},
      {"<html/>", "machine.xml: expected <wfpstate> or <wfpdiag>"},
      {"", "machine.xml: expected <wfpstate> or <wfpdiag>"},
  };
  for (const auto& [content, message] : kBad) {
    const ToolRun run = Run(content, {L"list"});
    EXPECT_EQ(run.exitCode, 2u) << content;
    EXPECT_EQ(run.output, "") << content;
    EXPECT_THAT(run.errors, StartsWith("error: ")) << content;
    EXPECT_THAT(run.errors, HasSubstr(message)) << content;
    EXPECT_THAT(run.errors, HasSubstr("\nhint: netsh wfp show state file=FILE.xml writes a dump."))
        << content;
  }
}

TEST_F(DumpSteps, RefusalIsJsonToo) {
  const ToolRun run = Run("<html/>", {L"--json", L"list"});
  EXPECT_EQ(run.exitCode, 2u);
  EXPECT_EQ(run.errors, "");
  const ParsedJson document = DocumentOf(run);
  EXPECT_EQ(document["engine"], "dump");
  EXPECT_EQ(document["ok"], false);
  EXPECT_TRUE(document["steps"].empty());
  EXPECT_THAT(document["error"]["text"], HasSubstr("found <html>"));
}

TEST_F(DumpSteps, NameTheLineOfAMistake) {
  std::string dump = FiltersDump();
  dump.replace(dump.find("<filterId>70002"), 15, "<filterId>7000x");
  const ToolRun run = Run(dump, {L"list"});
  EXPECT_EQ(run.exitCode, 2u);
  EXPECT_THAT(run.errors, HasSubstr("machine.xml:4: expected "));
  EXPECT_THAT(run.errors, HasSubstr("in <filterId>, found \"7000x\""));
}

TEST_F(DumpSteps, RefuseFiltersInAnOrderThatNoEngineHas) {
  std::string dump = FiltersDump();
  dump.insert(dump.find("</filters>"), FilterItem("70004", kTheirs, "", "BLOCK"));
  const ToolRun run = Run(dump, {L"list"});
  EXPECT_EQ(run.exitCode, 2u);
  EXPECT_THAT(run.errors, HasSubstr("machine.xml: expected filters sorted by layer"));
}

TEST_F(DumpSteps, ThatJudgeConnectionsRefuseTooManyFilters) {
  std::string dump = "<wfpdiag><filters>";
  for (int id = 90001; id > 80000; --id) {
    dump += FilterItem(std::to_string(id), kOurs, "", "BLOCK");
  }
  dump += "</filters></wfpdiag>";
  const ToolRun run = Run(dump, {L"explain", L"--remote", L"10.0.0.1"});
  EXPECT_EQ(run.exitCode, 1u);
  EXPECT_EQ(run.errors,
            "explain failed: More than 10000 filters are at ALE_AUTH_CONNECT_V4\n"
            "hint: The steps list, export and replay take any number.\n");
  EXPECT_EQ(Run(dump, {L"list"}).exitCode, 0u);
}

TEST(Dump, MayNotExist) {
  const ToolRun run = RunTool({L"--engine", L"no-such-file.xml", L"list"});
  EXPECT_EQ(run.exitCode, 2u);
  EXPECT_THAT(run.errors, StartsWith("error: no-such-file.xml: no such file\nhint: "));
}

}  // namespace
