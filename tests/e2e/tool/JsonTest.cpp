#include <WfpPlatform.h>
#include <gmock/gmock.h>

#include <algorithm>

#include "EmulatedTool.h"
#include "JsonSchema.h"

namespace {

ParsedJson RunForJson(std::vector<std::wstring> arguments, DWORD exitCode) {
  arguments.insert(arguments.begin(), {L"--engine", L"emulated", L"--json"});
  const ToolRun run = RunTool(arguments);
  EXPECT_EQ(run.exitCode, exitCode);
  EXPECT_EQ(run.errors, "");
  return DocumentOf(run);
}

TEST(JsonOutput, HasEveryStepWithItsLogLines) {
  EXPECT_EQ(RunForJson({L"enable-dhcp", L"status", L"enable-dhcp"}, 0), ParsedJson::parse(R"json({
    "engine": "emulated",
    "ok": true,
    "steps": [
      {"step": "enable-dhcp", "ok": true,
       "log": ["NATIVE: enabling dhcp", "NATIVE: dhcp enabled successfully."]},
      {"step": "status", "ok": true, "log": [],
       "status": {"internet": true, "dhcp": true, "leakProtection": false, "localNetwork": true}},
      {"step": "enable-dhcp", "ok": true, "log": ["NATIVE: enabling dhcp"]}
    ]
  })json"));
}

TEST(JsonOutput, ListsProviderSublayersAndFilters) {
  const ParsedJson document = RunForJson({L"disable-internet", L"list"}, 0);
  const ParsedJson& list = document["steps"][1];
  EXPECT_EQ(list["provider"], ParsedJson::parse(R"json({"key": "b2574836-bff5-4a6e-9bc2-db92f1632330",
                                              "name": "Corvane Firewall Tool",
                                              "description": "Rules installed by corvane-firewall"})json"));
  ASSERT_EQ(list["sublayers"].size(), 1u);
  const ParsedJson& sublayer = list["sublayers"][0];
  EXPECT_EQ(sublayer["key"], "d1afa5f6-6c35-4ca2-b760-1643d9dbc916");
  EXPECT_EQ(sublayer["name"], "Corvane Kill Switch");
  EXPECT_EQ(sublayer["description"], "Blocks traffic outside the tunnel");
  EXPECT_EQ(sublayer["weight"], 8);
  ASSERT_EQ(sublayer["filters"].size(), 51u);
  ParsedJson broadcast = sublayer["filters"][7];
  EXPECT_GT(broadcast["id"], 0);
  EXPECT_EQ(broadcast["key"].get<std::string>().size(), 36u);
  EXPECT_EQ(broadcast["effectiveWeight"]["type"], "UINT64");
  for (const char* member : {"id", "key", "effectiveWeight"}) {
    broadcast.erase(member);
  }
  EXPECT_EQ(broadcast, ParsedJson::parse(R"json({
    "name": "Corvane Kill Switch",
    "provider": "b2574836-bff5-4a6e-9bc2-db92f1632330",
    "layer": "ALE_AUTH_CONNECT_V4",
    "layerKey": "c38d57d1-05a7-4c33-904f-7fbceee60e82",
    "sublayer": "d1afa5f6-6c35-4ca2-b760-1643d9dbc916",
    "action": "PERMIT",
    "callout": null,
    "flags": 8,
    "override": true,
    "weight": {"type": "UINT8", "value": 14},
    "conditions": [
      {"field": "IP_REMOTE_ADDRESS", "fieldKey": "b235ae9a-1d64-49b8-a44c-5ff3d9095045", "match": "EQUAL",
       "type": "V4_ADDR_MASK", "value": {"address": "255.255.255.255", "mask": "255.255.255.255"},
       "text": "IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 255.255.255.255/255.255.255.255"},
      {"field": "IP_REMOTE_PORT", "fieldKey": "c35a604d-d22b-4e1a-91b4-68f674ee674b", "match": "NOT_EQUAL",
       "type": "UINT16", "value": 53, "text": "IP_REMOTE_PORT NOT_EQUAL UINT16 53"}]
  })json"));
}

TEST(JsonOutput, ListOfAllHasEverySublayer) {
  const ParsedJson document = RunForJson({L"--block-app", L"C:\\bad.exe", L"list", L"list", L"--all"}, 0);
  EXPECT_EQ(document["steps"][0]["sublayers"], ParsedJson::array());
  const ParsedJson& all = document["steps"][1]["sublayers"];
  EXPECT_EQ(all.size(), 18u);
  const auto universal =
      std::ranges::find_if(all, [](const ParsedJson& one) { return one["name"] == "UNIVERSAL"; });
  ASSERT_NE(universal, all.end());
  ASSERT_EQ((*universal)["filters"].size(), 2u);
  EXPECT_EQ((*universal)["filters"][0]["name"], "Block of another owner");
  EXPECT_TRUE((*universal)["filters"][0]["provider"].is_null());
}

TEST(JsonOutput, LuidsAreDecimalTextsEverywhere) {
  const ParsedJson document =
      RunForJson({L"enable-skein", L"--luid", L"18446744073709551615", L"list", L"explain", L"--inbound",
                  L"--remote", L"100.64.0.1", L"--interface", L"18446744073709551615", L"map", L"prove"},
                 0);
  const std::string luid = "18446744073709551615";
  EXPECT_EQ(document["steps"][1]["sublayers"][0]["filters"][0]["conditions"][0]["value"], luid);
  const ParsedJson& connection = document["steps"][2]["explanations"][0]["connection"];
  EXPECT_EQ(connection["interface"], luid);
  EXPECT_EQ(connection["arrivalInterface"], luid);
  EXPECT_TRUE(connection["nextHopInterface"].is_null());
  const ParsedJson& interfaces = document["steps"][3]["map"]["sections"][2]["fields"][0];
  EXPECT_EQ(interfaces["field"], "interface");
  EXPECT_EQ(interfaces["classes"][0]["intervals"], ParsedJson::parse(R"([["0", "18446744073709551614"]])"));
  EXPECT_EQ(interfaces["classes"][0]["example"], "999");
  EXPECT_EQ(interfaces["classes"][1]["intervals"],
            ParsedJson::parse(R"([["18446744073709551615", "18446744073709551615"]])"));
  EXPECT_EQ(interfaces["classes"][1]["example"], luid);
}

TEST(JsonOutput, ListOfAnEmptyEngineHasNoProvider) {
  const ParsedJson list = RunForJson({L"list"}, 0)["steps"][0];
  EXPECT_TRUE(list["provider"].is_null());
  EXPECT_EQ(list["sublayers"], ParsedJson::array());
}

TEST(JsonOutput, FailureEndsTheDocumentWithItsCode) {
  const ParsedJson document = RunForJson(
      {L"status", L"disable-internet", L"--app", (ProgramFolder() / L"no such file.exe").native(), L"list"},
      1);
  EXPECT_EQ(document["ok"], false);
  ASSERT_EQ(document["steps"].size(), 2u);
  EXPECT_EQ(document["steps"][1]["ok"], false);
  EXPECT_EQ(document["error"], ParsedJson::parse(R"json({"text": "Failed to retrieve app blob",
                                               "code": 2,
                                               "name": "ERROR_FILE_NOT_FOUND (0x00000002)"
})json"));
}

TEST(JsonOutput, AdaptersHaveNameDescriptionAndLuid) {
  const ParsedJson adapters = RunForJson({L"adapters"}, 0)["steps"][0]["adapters"];
  ASSERT_FALSE(adapters.empty());
  for (const ParsedJson& adapter : adapters) {
    EXPECT_TRUE(adapter["name"].is_string());
    EXPECT_TRUE(adapter["description"].is_string());
    EXPECT_THAT(adapter["luid"].get<std::string>(), testing::MatchesRegex("\\d+"));
  }
}

TEST(JsonSchema, HasAPlaceForWhatEveryStepWrites) {
  const TemporaryFolder folder;
  const std::wstring app = (ProgramFolder() / L"corvane-firewall.exe").native();
  const ParsedJson document = RunForJson({L"--dns-app",
                                          app,
                                          L"--block-app",
                                          L"C:\\bad.exe",
                                          L"disable-internet",
                                          L"--app",
                                          app,
                                          L"enable-dhcp",
                                          L"enable-leak-protection",
                                          L"--server",
                                          L"198.51.100.7",
                                          L"--luid",
                                          L"7",
                                          L"disable-local-network",
                                          L"enable-skein",
                                          L"--luid",
                                          L"9",
                                          L"status",
                                          L"adapters",
                                          L"list",
                                          L"--all",
                                          L"explain",
                                          L"--remote",
                                          L"fe80::1",
                                          L"--protocol",
                                          L"47",
                                          L"map",
                                          L"prove",
                                          L"lint",
                                          L"report",
                                          (folder.Path() / L"page.html").native(),
                                          L"export",
                                          (folder.Path() / L"machine.xml").native(),
                                          L"replay",
                                          L"calibrate",
                                          (folder.Path() / L"found.json").native(),
                                          L"enable-internet",
                                          L"disable-dhcp",
                                          L"disable-leak-protection",
                                          L"enable-local-network",
                                          L"disable-skein"},
                                         0);
  EXPECT_EQ(document["steps"].size(), 21u);
}

TEST(JsonSchema, TakesNoDocumentWithoutItsParts) {
  const ParsedJson whole = RunForJson({L"enable-skein", L"--luid", L"7", L"list", L"explain", L"--inbound",
                                       L"--remote", L"100.64.0.1", L"map"},
                                      0);
  const ParsedJson::json_pointer parts[]{
      "/engine"_json_pointer,
      "/steps/0/log"_json_pointer,
      "/steps/1/provider"_json_pointer,
      "/steps/1/sublayers/0/filters/0/key"_json_pointer,
      "/steps/1/sublayers/0/filters/0/weight/value"_json_pointer,
      "/steps/1/sublayers/0/filters/0/conditions/0/type"_json_pointer,
      "/steps/2/explanations/0/connection/interface"_json_pointer,
      "/steps/2/explanations/0/layers/0/sublayers/0/nearMisses"_json_pointer,
      "/steps/3/map"_json_pointer,
      "/steps/3/map/sections/2/fields/0/classes/0/example"_json_pointer,
  };
  for (const ParsedJson::json_pointer& part : parts) {
    ParsedJson document = whole;
    ASSERT_EQ(document.at(part.parent_pointer()).erase(part.back()), 1u) << part;
    EXPECT_NE(FaultsOf(document), "") << part;
  }
}

TEST(JsonSchema, TakesNoDocumentWithOtherValues) {
  const ParsedJson whole = RunForJson({L"enable-skein", L"--luid", L"7", L"list", L"explain", L"--inbound",
                                       L"--remote", L"100.64.0.1", L"map"},
                                      0);
  const std::pair<ParsedJson::json_pointer, ParsedJson> values[]{
      {"/engine"_json_pointer, "pretended"},
      {"/error"_json_pointer, {{"text", "of a run that went well"}}},
      {"/steps/0/step"_json_pointer, "enable-skeins"},
      {"/steps/0/luid"_json_pointer, "7"},
      {"/steps/1/sublayers/0/key"_json_pointer, "{c38d57d1}"},
      {"/steps/1/sublayers/0/filters/0/conditions/0/value"_json_pointer, 7},
      {"/steps/1/sublayers/0/filters/0/conditions/1/value/mask"_json_pointer, 255},
      {"/steps/2/explanations/0/connection/interface"_json_pointer, 7},
      {"/steps/2/explanations/0/verdict/verdict"_json_pointer, "depends"},
      {"/steps/3/map/sections/2/fields/0/classes/0/intervals/0/0"_json_pointer, "0x0"},
      {"/steps/3/map/sections/2/fields/1/classes/0/intervals/0/0"_json_pointer, "0"},
      {"/steps/3/map/sections/2/root"_json_pointer, {{"node", 0}, {"verdict", 0}}},
  };
  for (const auto& [place, value] : values) {
    ParsedJson document = whole;
    ASSERT_NE(document[place], value) << place;
    document[place] = value;
    EXPECT_NE(FaultsOf(document), "") << place;
  }
}

}  // namespace
