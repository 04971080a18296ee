#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "ToolProcess.h"

namespace {

using Json = nlohmann::json;

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
  broadcast.erase("id");
  EXPECT_EQ(broadcast, Json::parse(R"json({
    "name": "Corvane Kill Switch",
    "layer": "ALE_AUTH_CONNECT_V4",
    "action": "PERMIT",
    "conditions": ["IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 255.255.255.255/255.255.255.255",
                   "IP_REMOTE_PORT NOT_EQUAL UINT16 53"],
    "weight": "UINT8 14",
    "override": true
  })json"));
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
    EXPECT_TRUE(adapter["luid"].is_number_unsigned());
  }
}

}  // namespace
