#include "dump/ReadDump.h"

#include <gmock/gmock.h>

#include <cstring>

#include "catalog/Guid.h"
#include "unit/dump/DumpText.h"
#include "unit/dump/Hex.h"

namespace {

using Catalog::operator""_guid;
using Dump::DumpKind;
using Dump::EngineState;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

constexpr GUID kConnectV4 = "c38d57d1-05a7-4c33-904f-7fbceee60e82"_guid;
constexpr GUID kUniversal = "eebecc03-ced4-4380-819a-2734397b2b74"_guid;
constexpr GUID kRemotePort = "c35a604d-d22b-4e1a-91b4-68f674ee674b"_guid;

EngineState Read(std::string_view dump) { return Dump::ReadDump(std::string(dump), "test.xml"); }

TEST(ReadDump, GivesAFilterAsTheEnginesRecord) {
  const EngineState state = Read(kFilters);
  EXPECT_EQ(state.kind, DumpKind::Filters);
  ASSERT_THAT(state.filters, SizeIs(1));
  const FWPM_FILTER0& filter = state.filters.front();
  EXPECT_EQ(filter.filterKey, "11112222-3333-4444-5555-666677778888"_guid);
  EXPECT_STREQ(filter.displayData.name, L"Block web");
  EXPECT_EQ(filter.displayData.description, nullptr);
  EXPECT_EQ(filter.flags, 0x48U);
  EXPECT_EQ(*filter.providerKey, "aaaa0000-0000-0000-0000-000000000001"_guid);
  EXPECT_EQ(ToHex(filter.providerData), "41ff26");
  EXPECT_EQ(filter.layerKey, kConnectV4);
  EXPECT_EQ(filter.subLayerKey, kUniversal);
  EXPECT_EQ(filter.weight.type, FWP_UINT8);
  EXPECT_EQ(filter.weight.uint8, 15);
  EXPECT_EQ(filter.action.type, 0x1001U);
  EXPECT_EQ(filter.action.filterType, GUID{});
  EXPECT_EQ(filter.rawContext, 0U);
  EXPECT_EQ(filter.reserved, nullptr);
  EXPECT_EQ(filter.filterId, 70000U);
  EXPECT_EQ(filter.effectiveWeight.type, FWP_UINT64);
  EXPECT_EQ(*filter.effectiveWeight.uint64, 0xF000000000000040U);
}

TEST(ReadDump, GivesConditions) {
  const EngineState state = Read(kFilters);
  ASSERT_EQ(state.filters.front().numFilterConditions, 1U);
  const FWPM_FILTER_CONDITION0& condition = state.filters.front().filterCondition[0];
  EXPECT_EQ(condition.fieldKey, kRemotePort);
  EXPECT_EQ(condition.matchType, FWP_MATCH_EQUAL);
  EXPECT_EQ(condition.conditionValue.type, FWP_UINT16);
  EXPECT_EQ(condition.conditionValue.uint16, 443);
}

TEST(ReadDump, GivesProviders) {
  const EngineState state = Read(kFilters);
  ASSERT_THAT(state.providers, SizeIs(1));
  const FWPM_PROVIDER0& provider = state.providers.front();
  EXPECT_EQ(provider.providerKey, "aaaa0000-0000-0000-0000-000000000001"_guid);
  EXPECT_STREQ(provider.displayData.name, L"Somebody");
  EXPECT_STREQ(provider.displayData.description, L"Somebody's filters");
  EXPECT_EQ(provider.flags, 1U);
  EXPECT_EQ(provider.providerData.size, 0U);
  EXPECT_STREQ(provider.serviceName, L"svc");
}

TEST(ReadDump, GivesLayersWithTheirFields) {
  const EngineState state = Read(kState);
  EXPECT_EQ(state.kind, DumpKind::State);
  EXPECT_EQ(state.timeStamp, "2026-11-01T08:00:00.000Z");
  ASSERT_THAT(state.layers, SizeIs(2));
  const FWPM_LAYER0& layer = state.layers.front();
  EXPECT_EQ(layer.layerKey, kConnectV4);
  EXPECT_STREQ(layer.displayData.name, L"ALE Connect v4 Layer");
  EXPECT_EQ(layer.flags, 7U);
  EXPECT_EQ(layer.layerId, 48);
  EXPECT_EQ(layer.defaultSubLayerKey, kUniversal);
  ASSERT_EQ(layer.numFields, 2U);
  EXPECT_EQ(*layer.field[0].fieldKey, "b235ae9a-1d64-49b8-a44c-5ff3d9095045"_guid);
  EXPECT_EQ(layer.field[0].type, FWPM_FIELD_IP_ADDRESS);
  EXPECT_EQ(layer.field[0].dataType, FWP_UINT32);
  EXPECT_EQ(layer.field[1].type, FWPM_FIELD_FLAGS);
  EXPECT_EQ(state.layers.back().numFields, 0U);
}

TEST(ReadDump, GivesCallouts) {
  const EngineState state = Read(kState);
  ASSERT_THAT(state.callouts, SizeIs(1));
  const FWPM_CALLOUT0& callout = state.callouts.front();
  EXPECT_EQ(callout.calloutKey, "cccc0000-0000-0000-0000-000000000001"_guid);
  EXPECT_STREQ(callout.displayData.description, L"Looks at connections");
  EXPECT_EQ(callout.flags, 0x60300U);
  EXPECT_EQ(*callout.providerKey, "aaaa0000-0000-0000-0000-000000000001"_guid);
  EXPECT_EQ(callout.applicableLayer, kConnectV4);
  EXPECT_EQ(callout.calloutId, 297U);
}

TEST(ReadDump, GivesSublayersWithTheirWeights) {
  const EngineState state = Read(kState);
  ASSERT_THAT(state.subLayers, SizeIs(1));
  const FWPM_SUBLAYER0& subLayer = state.subLayers.front();
  EXPECT_EQ(subLayer.subLayerKey, "5ab10000-0000-0000-0000-000000000001"_guid);
  EXPECT_STREQ(subLayer.displayData.name, L"Inspections");
  EXPECT_EQ(subLayer.flags, 1U);
  EXPECT_EQ(*subLayer.providerKey, "aaaa0000-0000-0000-0000-000000000001"_guid);
  EXPECT_EQ(subLayer.weight, 65535);
}

TEST(ReadDump, GivesProviderContextsAndKeepsWhatOnlyTheirOwnersUnderstand) {
  const EngineState state = Read(kState);
  ASSERT_THAT(state.providerContexts, SizeIs(2));
  const FWPM_PROVIDER_CONTEXT0& origin = state.providerContexts.front();
  EXPECT_EQ(origin.providerContextKey, "c0c00000-0000-0000-0000-000000000001"_guid);
  EXPECT_EQ(origin.flags, 1U);
  EXPECT_EQ(origin.type, FWPM_GENERAL_CONTEXT);
  EXPECT_EQ(ToHex(*origin.dataBuffer), "4100");
  EXPECT_EQ(origin.providerContextId, 0x8000000000000000U);
  const FWPM_PROVIDER_CONTEXT0& options = state.providerContexts.back();
  EXPECT_EQ(options.type, FWPM_CLASSIFY_OPTIONS_CONTEXT);
  EXPECT_EQ(options.dataBuffer, nullptr);
  ASSERT_THAT(state.contextData, SizeIs(1));
  EXPECT_EQ(state.contextData.front().contextKey, options.providerContextKey);
  EXPECT_EQ(state.contextData.front().xml,
            "\t\t\t<classifyOptions>\n"
            "\t\t\t\t<options numItems=\"1\">\n"
            "\t\t\t\t\t<item>\n"
            "\t\t\t\t\t\t<type>FWP_CLASSIFY_OPTION_LOOSE_SOURCE_MAPPING</type>\n"
            "\t\t\t\t\t\t<flags/>\n"
            "\t\t\t\t\t</item>\n"
            "\t\t\t\t</options>\n"
            "\t\t\t</classifyOptions>\n");
}

TEST(ReadDump, AFilterHasAProviderContextsKeyOrANumber) {
  const EngineState state = Read(kState);
  EXPECT_EQ(state.filters.front().providerContextKey, "c0c00000-0000-0000-0000-000000000001"_guid);
  EXPECT_EQ(state.filters.front().action.calloutKey, "cccc0000-0000-0000-0000-000000000001"_guid);
  const EngineState raw = Read(Replaced(kFilters, "<rawContext>0<", "<rawContext>18446712231168109072<"));
  EXPECT_EQ(raw.filters.front().rawContext, 18446712231168109072U);
}

TEST(ReadDump, OutlivesItsText) {
  EngineState moved;
  {
    std::string text(kFilters);
    moved = Dump::ReadDump(text, "test.xml");
  }
  EXPECT_STREQ(moved.filters.front().displayData.name, L"Block web");
}

TEST(ReadDump, KnowsTheSystemsSymbols) {
  std::string dump = Replaced(kFilters, "{aaaa0000-0000-0000-0000-000000000001}", "FWPM_PROVIDER_MPSSVC_WF");
  dump = Replaced(dump, "<filterType/>", "<filterType>FWPM_CALLOUT_TEREDO_ALE_LISTEN_V6</filterType>");
  const EngineState state = Read(dump);
  EXPECT_EQ(*state.filters.front().providerKey, "decc16ca-3f33-4346-be1e-8fb4ae0f3d62"_guid);
  EXPECT_EQ(state.filters.front().action.calloutKey, "81a434e7-f60c-4378-bab8-c625a30f0197"_guid);
  EXPECT_THAT(state.unknownSymbols, IsEmpty());
}

TEST(ReadDump, KeepsUnknownSymbols) {
  const EngineState state = Read(WithValue("FWPM_CONDITION_NEW_1", "<type>FWP_UINT8</type><uint8>1</uint8>"));
  ASSERT_THAT(state.unknownSymbols, SizeIs(1));
  const auto& [key, name] = *state.unknownSymbols.begin();
  EXPECT_EQ(name, "FWPM_CONDITION_NEW_1");
  EXPECT_EQ(state.filters.front().filterCondition->fieldKey, key);
  EXPECT_EQ(key.Data3 >> 12, 8) << "a version that the platform does not use";
}

TEST(ReadDump, AnUnknownSymbolHasTheSameKeyInEveryDump) {
  const auto keyOf = [](std::string_view dump) { return Read(dump).unknownSymbols.begin()->first; };
  const GUID key = keyOf(Replaced(kFilters, "FWPM_SUBLAYER_UNIVERSAL", "FWPM_SUBLAYER_NEW"));
  EXPECT_EQ(keyOf(Replaced(kState, "FWPM_SUBLAYER_UNIVERSAL", "FWPM_SUBLAYER_NEW")), key);
  EXPECT_NE(keyOf(Replaced(kState, "FWPM_SUBLAYER_UNIVERSAL", "FWPM_SUBLAYER_NEWER")), key);
}

TEST(ReadDump, KeepsFlagsThatHaveANameOnly) {
  const EngineState state = Read(Replaced(kFilters, "FWPM_FILTER_FLAG_INDEXED", "FWPM_FILTER_FLAG_NEW"));
  EXPECT_EQ(state.filters.front().flags, 8U);
  ASSERT_THAT(state.unknownFlags, SizeIs(1));
  EXPECT_EQ(state.unknownFlags.front().objectKey, state.filters.front().filterKey);
  EXPECT_EQ(state.unknownFlags.front().name, "FWPM_FILTER_FLAG_NEW");
}

TEST(ReadDump, FlagsWithoutANameAreEightDigits) {
  const EngineState state = Read(Replaced(kFilters, "FWPM_FILTER_FLAG_INDEXED", "0000A000"));
  EXPECT_EQ(state.filters.front().flags, 0xA008U);
}

TEST(ReadDump, SkipsAndCountsWhatItDoesNotKnow) {
  std::string dump = Replaced(kState, "</wfpstate>",
                              "<news>1</news>\n<news/>\n</wfpstate>\n<firewallState>\n"
                              "<dynamicKeywordAddresses/>\n</firewallState>");
  dump = Replaced(dump, "<filterId>", "<color>red</color><filterId>");
  EXPECT_THAT(Read(dump).skippedElements,
              ElementsAre(Pair("color", 1U), Pair("firewallState", 1U), Pair("news", 2U)));
  EXPECT_THAT(Read(kState).skippedElements, IsEmpty());
  EXPECT_THAT(Read(kFilters).skippedElements, IsEmpty());
}

TEST(ReadDump, CountsSessions) {
  const EngineState state = Read(Replaced(
      kState, "<sessions/>", "<sessions numItems=\"2\"><item><sessionKey/></item><item/></sessions>"));
  EXPECT_EQ(state.sessions, 2U);
  EXPECT_THAT(state.skippedElements, IsEmpty());
}

TEST(ReadDump, NumbersWithoutANameAreKept) {
  std::string dump = Replaced(kFilters, "FWP_MATCH_EQUAL", "77");
  dump = Replaced(dump, "FWP_ACTION_BLOCK", "4294967295");
  const EngineState state = Read(dump);
  EXPECT_EQ(static_cast<UINT32>(state.filters.front().filterCondition->matchType), 77U);
  EXPECT_EQ(state.filters.front().action.type, 0xFFFFFFFFU);
}

}  // namespace
