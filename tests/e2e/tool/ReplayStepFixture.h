#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "EmulatedTool.h"

/// Nobody but this dump has such a filter: disabled, indexed, with an id and a weight of its own.
inline constexpr const char* kDump = R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
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

/// The one filter of the dump, as the step list shows it.
inline void ExpectTheirs(const ParsedJson& filter) {
  EXPECT_EQ(filter["id"], 70001);
  EXPECT_EQ(filter["key"], "11112222-3333-4444-5555-666677778888");
  EXPECT_EQ(filter["flags"], 0x60);
  EXPECT_EQ(filter["weight"]["type"], "EMPTY");
  EXPECT_EQ(filter["effectiveWeight"]["value"], "4711");
  EXPECT_EQ(filter["conditions"][0]["text"], "IP_REMOTE_PORT EQUAL UINT16 443");
}

/// The filters of a sublayer that the step list shows.
inline ParsedJson FiltersIn(const ParsedJson& list, const std::string& sublayerKey) {
  for (const ParsedJson& sublayer : list.at("sublayers")) {
    if (sublayer["key"] == sublayerKey) {
      return sublayer["filters"];
    }
  }
  return ParsedJson::array();
}

inline constexpr const char* kTheirsKey = "bbbbbbbb-0000-0000-0000-000000000002";
