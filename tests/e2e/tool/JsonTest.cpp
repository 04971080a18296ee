#include <gmock/gmock.h>

#include <algorithm>

#include "EmulatedTool.h"

namespace {

Json RunForJson(std::vector<std::wstring> arguments, DWORD exitCode) {
  arguments.insert(arguments.begin(), {L"--engine", L"emulated", L"--json"});
  const ToolRun run = RunTool(arguments);
  EXPECT_EQ(run.exitCode, exitCode);
  EXPECT_EQ(run.errors, "");
  return Json::parse(run.output);
}

TEST(JsonOutput, HasEveryStepWithItsLogLines) {
  EXPECT_EQ(RunForJson({L"enable-dhcp", L"status", L"enable-dhcp"}, 0), Json::parse(R"json({
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
  const Json document = RunForJson({L"disable-internet", L"list"}, 0);
  const Json& list = document["steps"][1];
  EXPECT_EQ(list["provider"], Json::parse(R"json({"key": "b2574836-bff5-4a6e-9bc2-db92f1632330",
                                              "name": "Corvane Firewall Tool",
                                              "description": "Rules installed by corvane-firewall"})json"));
  ASSERT_EQ(list["sublayers"].size(), 1u);
  const Json& sublayer = list["sublayers"][0];
  EXPECT_EQ(sublayer["key"], "d1afa5f6-6c35-4ca2-b760-1643d9dbc916");
  EXPECT_EQ(sublayer["name"], "Corvane Kill Switch");
  EXPECT_EQ(sublayer["description"], "Blocks traffic outside the tunnel");
  EXPECT_EQ(sublayer["weight"], 0);
  ASSERT_EQ(sublayer["filters"].size(), 51u);
  Json broadcast = sublayer["filters"][7];
  EXPECT_GT(broadcast["id"], 0);
  EXPECT_EQ(broadcast["key"].get<std::string>().size(), 36u);
  EXPECT_EQ(broadcast["effectiveWeight"]["type"], "UINT64");
  for (const char* member : {"id", "key", "effectiveWeight"}) {
    broadcast.erase(member);
  }
  EXPECT_EQ(broadcast, Json::parse(R"json({
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
  const Json document = RunForJson({L"--block-app", L"C:\\bad.exe", L"list", L"list", L"--all"}, 0);
  EXPECT_EQ(document["steps"][0]["sublayers"], Json::array());
  const Json& all = document["steps"][1]["sublayers"];
  EXPECT_EQ(all.size(), 18u);
  const auto universal =
      std::ranges::find_if(all, [](const Json& one) { return one["name"] == "UNIVERSAL"; });
  ASSERT_NE(universal, all.end());
  ASSERT_EQ((*universal)["filters"].size(), 2u);
  EXPECT_EQ((*universal)["filters"][0]["name"], "Block of another owner");
  EXPECT_TRUE((*universal)["filters"][0]["provider"].is_null());
}

TEST(JsonOutput, LuidsAreDecimalTextsEverywhere) {
  const Json document =
      RunForJson({L"enable-skein", L"--luid", L"18446744073709551615", L"list", L"explain", L"--inbound",
                  L"--remote", L"100.64.0.1", L"--interface", L"18446744073709551615", L"map", L"prove"},
                 0);
  const std::string luid = "18446744073709551615";
  EXPECT_EQ(document["steps"][1]["sublayers"][0]["filters"][0]["conditions"][0]["value"], luid);
  const Json& connection = document["steps"][2]["explanations"][0]["connection"];
  EXPECT_EQ(connection["interface"], luid);
  EXPECT_EQ(connection["arrivalInterface"], luid);
  EXPECT_TRUE(connection["nextHopInterface"].is_null());
  const Json& interfaces = document["steps"][3]["map"]["sections"][2]["fields"][0];
  EXPECT_EQ(interfaces["field"], "interface");
  EXPECT_EQ(interfaces["classes"][0]["intervals"], Json::parse(R"([["0", "18446744073709551614"]])"));
  EXPECT_EQ(interfaces["classes"][0]["example"], "999");
  EXPECT_EQ(interfaces["classes"][1]["intervals"],
            Json::parse(R"([["18446744073709551615", "18446744073709551615"]])"));
  EXPECT_EQ(interfaces["classes"][1]["example"], luid);
}

TEST(JsonOutput, ListOfAnEmptyEngineHasNoProvider) {
  const Json list = RunForJson({L"list"}, 0)["steps"][0];
  EXPECT_TRUE(list["provider"].is_null());
  EXPECT_EQ(list["sublayers"], Json::array());
}

TEST(JsonOutput, FailureEndsTheDocumentWithItsCode) {
  const Json document = RunForJson(
      {L"status", L"disable-internet", L"--app", (ProgramFolder() / L"no such file.exe").native(), L"list"},
      1);
  EXPECT_EQ(document["ok"], false);
  ASSERT_EQ(document["steps"].size(), 2u);
  EXPECT_EQ(document["steps"][1]["ok"], false);
  EXPECT_EQ(document["error"], Json::parse(R"json({"text": "Failed to retrieve app blob",
                                               "code": 2,
                                               "name": "ERROR_FILE_NOT_FOUND (0x00000002)"
})json"));
}

TEST(JsonOutput, AdaptersHaveNameDescriptionAndLuid) {
  const Json adapters = RunForJson({L"adapters"}, 0)["steps"][0]["adapters"];
  ASSERT_FALSE(adapters.empty());
  for (const Json& adapter : adapters) {
    EXPECT_TRUE(adapter["name"].is_string());
    EXPECT_TRUE(adapter["description"].is_string());
    EXPECT_THAT(adapter["luid"].get<std::string>(), testing::MatchesRegex("\\d+"));
  }
}

}  // namespace
