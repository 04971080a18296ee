#include "PageSnapshot.h"

#include <gtest/gtest.h>

#include "catalog/Names.h"

namespace {

Policy::Condition On(const char* field, UINT64 first, UINT64 last) {
  for (const Catalog::Field& known : Catalog::kFields) {
    if (known.name == field) {
      return {
          known.key, &known, FWP_MATCH_EQUAL, {}, {Policy::Test::Kind::InInterval, false, {first, last}, {}},
          field};
    }
  }
  throw std::invalid_argument(field);
}

/// A filter of inbound IPv4 connections as the page has it, for a program at a settled network.
Json PageOf(std::vector<Policy::Condition> conditions, std::optional<GUID> callout = std::nullopt) {
  Policy::Filter filter{};
  filter.layerKey = Catalog::FindLayer("ALE_AUTH_RECV_ACCEPT_V4")->key;
  filter.action = callout ? FWP_ACTION_CALLOUT_TERMINATING : FWP_ACTION_BLOCK;
  filter.calloutKey = callout;
  filter.conditions = std::move(conditions);
  const Policy::Snapshot snapshot = Policy::MakeSnapshot({}, {filter});
  SharedTexts texts;
  return PageSnapshot(snapshot, Policy::UsualCircumstances(Policy::UserProgram()), texts);
}

TEST(PageSnapshot, TellsWhatAConditionAsksOfAnotherField) {
  const Json type = PageOf({On("ARRIVAL_INTERFACE_TYPE", 71, 71)})["conditions"][0];
  EXPECT_EQ(type["field"], "ARRIVAL_INTERFACE_TYPE");
  EXPECT_EQ(type["asksOf"], "arrival interface");
  EXPECT_EQ(type["tests"], Json::parse(R"([{"test": "in-interval", "first": "0x47000000000000",
                                            "last": "0x47ffffffffffff"}])"));
  const Json kind = PageOf({On("IP_LOCAL_ADDRESS_TYPE", 3, 4)})["conditions"][0];
  EXPECT_EQ(kind["asksOf"], "local address");
  EXPECT_EQ(kind["tests"].size(), 2u);
  EXPECT_FALSE(PageOf({On("IP_LOCAL_PORT", 3, 4)})["conditions"][0].contains("asksOf"));
}

TEST(PageSnapshot, TakesQuarantineAsOver) {
  const Json conditions = PageOf({On("INTERFACE_QUARANTINE_EPOCH", 5, 5), On("IP_ARRIVAL_INTERFACE", 7, 7),
                                  On("IP_PROTOCOL", 6, 6)})["conditions"];
  EXPECT_EQ(conditions[0]["holds"], true);
  EXPECT_EQ(conditions[1]["holds"], true);
  EXPECT_FALSE(conditions[2].contains("holds"));
  EXPECT_FALSE(PageOf({On("IP_ARRIVAL_INTERFACE", 7, 7)})["conditions"][0].contains("holds"));
}

TEST(PageSnapshot, MarksCalloutsThatNeverDecide) {
  constexpr GUID kOptions{0x2d55f008, 0x0c01, 0x4f92, {0xb2, 0x6e, 0xa0, 0x8a, 0x94, 0x56, 0x9b, 0x8d}};
  EXPECT_EQ(PageOf({}, kOptions)["filters"][0]["passive"], true);
  EXPECT_FALSE(PageOf({}, GUID{1, 2, 3, {}})["filters"][0].contains("passive"));
  EXPECT_FALSE(PageOf({})["filters"][0].contains("passive"));
}

}  // namespace
