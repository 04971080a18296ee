#include "dump/WriteDump.h"

#include <gmock/gmock.h>

#include "dump/ReadDump.h"
#include "unit/dump/DumpText.h"

namespace {

using Dump::DumpKind;
using Dump::EngineState;
using testing::HasSubstr;

constexpr std::string_view kMark = "\xEF\xBB\xBF";

EngineState Read(std::string_view dump) { return Dump::ReadDump(std::string(dump), "test.xml"); }

/// A dump written anew, less its mark.
std::string Rewritten(std::string_view dump) { return Dump::WriteDump(Read(dump)).substr(kMark.size()); }

TEST(WriteDump, IsWhatNetshWrites) {
  EXPECT_EQ(Dump::WriteDump(Read(kFilters)), std::string(kMark).append(kFilters));
  EXPECT_EQ(Dump::WriteDump(Read(kState)), std::string(kMark).append(kState));
}

TEST(WriteDump, KeepsEveryKindOfValue) {
  constexpr const char* kValues[]{
      "<type>FWP_EMPTY</type>",
      "<type>FWP_UINT8</type>\n\t\t\t\t\t\t<uint8>255</uint8>",
      "<type>FWP_UINT32</type>\n\t\t\t\t\t\t<uint32>10.0.0.255</uint32>",
      "<type>FWP_UINT64</type>\n\t\t\t\t\t\t<uint64>18446744073709551615</uint64>",
      "<type>FWP_UINT64</type>\n\t\t\t\t\t\t<uint64/>",
      "<type>FWP_INT8</type>\n\t\t\t\t\t\t<int8>-128</int8>",
      "<type>FWP_INT16</type>\n\t\t\t\t\t\t<int16>-1</int16>",
      "<type>FWP_INT32</type>\n\t\t\t\t\t\t<int32>-1</int32>",
      "<type>FWP_INT64</type>\n\t\t\t\t\t\t<int64>-1</int64>",
      "<type>FWP_FLOAT</type>\n\t\t\t\t\t\t<float32>0.1</float32>",
      "<type>FWP_DOUBLE</type>\n\t\t\t\t\t\t<double64>0.1</double64>",
      "<type>FWP_BITMAP_INDEX_TYPE</type>\n\t\t\t\t\t\t<bitmapIndex>3</bitmapIndex>",
      "<type>FWP_BYTE_ARRAY16_TYPE</type>\n\t\t\t\t\t\t<byteArray16>fe80::1</byteArray16>",
      "<type>FWP_BYTE_ARRAY6_TYPE</type>\n\t\t\t\t\t\t<byteArray6>00-11-22-33-44-ff</byteArray6>",
      "<type>FWP_BYTE_BLOB_TYPE</type>\n\t\t\t\t\t\t<byteBlob>\n\t\t\t\t\t\t\t<data>5c0061000000</data>\n"
      "\t\t\t\t\t\t\t<asString>\\a</asString>\n\t\t\t\t\t\t</byteBlob>",
      "<type>FWP_BYTE_BLOB_TYPE</type>\n\t\t\t\t\t\t<byteBlob/>",
      "<type>FWP_SID</type>\n\t\t\t\t\t\t<sid>S-1-0-0</sid>",
      "<type>FWP_SECURITY_DESCRIPTOR_TYPE</type>\n\t\t\t\t\t\t"
      "<sd>O:SYG:SYD:(XA;;CC;;;WD;(WIN://SYSAPPID Contains \"a_b\"))(A;;CC;;;S-1-15-3-1)</sd>",
      "<type>FWP_SECURITY_DESCRIPTOR_TYPE</type>\n\t\t\t\t\t\t<sd><![CDATA[D:(XA;;CC;;;WD;(a && b))]]></sd>",
      "<type>FWP_SECURITY_DESCRIPTOR_TYPE</type>\n\t\t\t\t\t\t<sd>D:(A;;CC;;;DU)</sd>",
      "<type>FWP_SECURITY_DESCRIPTOR_TYPE</type>\n\t\t\t\t\t\t<sd></sd>",
      "<type>FWP_UNICODE_STRING_TYPE</type>\n\t\t\t\t\t\t<unicodeString>a</unicodeString>",
      "<type>FWP_V4_ADDR_MASK</type>\n\t\t\t\t\t\t<v4AddrMask>\n\t\t\t\t\t\t\t<addr>10.0.0.0</addr>\n"
      "\t\t\t\t\t\t\t<mask>255.0.0.0</mask>\n\t\t\t\t\t\t</v4AddrMask>",
      "<type>FWP_V6_ADDR_MASK</type>\n\t\t\t\t\t\t<v6AddrMask>\n\t\t\t\t\t\t\t<addr>fe80::</addr>\n"
      "\t\t\t\t\t\t\t<prefixLength>10</prefixLength>\n\t\t\t\t\t\t</v6AddrMask>",
      "<type>FWP_RANGE_TYPE</type>\n\t\t\t\t\t\t<rangeValue>\n"
      "\t\t\t\t\t\t\t<valueLow>\n\t\t\t\t\t\t\t\t<type>FWP_UINT32</type>\n"
      "\t\t\t\t\t\t\t\t<uint32>10.0.0.0</uint32>\n\t\t\t\t\t\t\t</valueLow>\n"
      "\t\t\t\t\t\t\t<valueHigh>\n\t\t\t\t\t\t\t\t<type>FWP_UINT32</type>\n"
      "\t\t\t\t\t\t\t\t<uint32>10.0.0.9</uint32>\n\t\t\t\t\t\t\t</valueHigh>\n\t\t\t\t\t\t</rangeValue>",
  };
  for (const char* value : kValues) {
    const std::string dump = WithValue("FWPM_CONDITION_IP_REMOTE_ADDRESS", value);
    EXPECT_EQ(Rewritten(dump), dump);
  }
}

TEST(WriteDump, NumbersThatAreNoAddressesAreNotDotted) {
  const std::string dump =
      WithValue("FWPM_CONDITION_FLAGS", "<type>FWP_UINT32</type>\n\t\t\t\t\t\t<uint32>1</uint32>");
  EXPECT_EQ(Rewritten(dump), dump);
}

TEST(WriteDump, KeepsEveryName) {
  constexpr const char* kNames[]{
      "<name/>",
      "<name></name>",
      "<name> a\tb\nc </name>",
      "<name><![CDATA[Chess & <Go>]]></name>",
      "<name><![CDATA[ ]]></name>",
      "<name>a&#32;]]&#62;&#38;&#13;</name>",
      "<name>\"it's\" > \xF0\x9F\x94\x92</name>",
      "<name>&#1;</name>",
  };
  for (const char* name : kNames) {
    const std::string dump = Replaced(kFilters, "<name>Block web</name>", name);
    EXPECT_EQ(Rewritten(dump), dump);
  }
}

TEST(WriteDump, NamesWhatNetshNames) {
  std::string dump = Replaced(kFilters, "{aaaa0000-0000-0000-0000-000000000001}", "FWPM_PROVIDER_MPSSVC_WF");
  dump = Replaced(dump, "FWPM_LAYER_ALE_AUTH_CONNECT_V4", "{29243af8-ecaf-4436-a44e-f9fb7070aa04}");
  dump = Replaced(dump, "<filterType/>",
                  "<filterType>FWPM_CALLOUT_WFP_TRANSPORT_LAYER_V4_SILENT_DROP</filterType>");
  dump = Replaced(dump, "FWPM_FILTER_FLAG_INDEXED", "00002000");
  EXPECT_EQ(Rewritten(dump), dump);
}

TEST(WriteDump, KeepsWhatTheCatalogueDoesNotKnow) {
  std::string dump = Replaced(kFilters, "FWPM_LAYER_ALE_AUTH_CONNECT_V4", "FWPM_LAYER_NEW_V4");
  dump = Replaced(dump, "FWPM_SUBLAYER_UNIVERSAL", "FWPM_SUBLAYER_NEW");
  dump = Replaced(dump, "FWPM_CONDITION_IP_REMOTE_PORT", "FWPM_CONDITION_NEW");
  dump = Replaced(dump, "{aaaa0000-0000-0000-0000-000000000001}", "FWPM_PROVIDER_NEW");
  dump = Replaced(dump, "FWPM_FILTER_FLAG_INDEXED", "FWPM_FILTER_FLAG_NEW");
  dump = Replaced(dump, "FWPM_PROVIDER_FLAG_PERSISTENT", "00000A00");
  dump = Replaced(dump, "FWP_MATCH_EQUAL", "77");
  EXPECT_EQ(Rewritten(dump), dump);
}

TEST(WriteDump, NoBytesAreNotNone) {
  constexpr std::string_view kBytes = "<data>4100</data>\n\t\t\t\t<asString>A.</asString>";
  const std::string none = Replaced(kState, kBytes, "<data></data>\n\t\t\t\t<asString></asString>");
  EXPECT_EQ(Rewritten(none), none);
  EXPECT_EQ(Read(none).providerContexts.front().dataBuffer->size, 0U);
}

TEST(WriteDump, KeepsAContextsKeyThatLooksLikeANumber) {
  const std::string dump = Replaced(
      kState,
      "<providerContextKey>{c0c00000-0000-0000-0000-000000000001}</providerContextKey>\n\t\t\t\t\t<res",
      "<providerContextKey>{00000005-0000-0000-0000-000000000000}</providerContextKey>\n\t\t\t\t\t<res");
  EXPECT_EQ(Rewritten(dump), dump);
}

TEST(WriteDump, KeepsNumbersOfFiltersOfASecurityRealm) {
  for (const char* context :
       {"<rawContext>5</rawContext>",
        "<providerContextKey>{c0c00000-0000-0000-0000-000000000001}</providerContextKey>"}) {
    std::string dump = Replaced(kFilters, "FWPM_FILTER_FLAG_INDEXED",
                                "FWPM_FILTER_FLAG_HAS_SECURITY_REALM_PROVIDER_CONTEXT");
    dump = Replaced(dump, "<rawContext>0</rawContext>", context);
    EXPECT_EQ(Rewritten(dump), dump);
  }
}

TEST(WriteDump, AFlagThatHasANameOnlyIsOneOfItsObjectsKind) {
  EngineState state = Read(kState);
  state.unknownFlags.push_back({state.subLayers.front().subLayerKey, "FWPM_SUBLAYER_FLAG_NEW"});
  state.providers.front().providerKey = state.subLayers.front().subLayerKey;
  const std::string dump = Dump::WriteDump(state);
  EXPECT_THAT(dump, HasSubstr("<flags numItems=\"2\">\n\t\t\t\t<item>FWPM_SUBLAYER_FLAG_PERSISTENT</item>\n"
                              "\t\t\t\t<item>FWPM_SUBLAYER_FLAG_NEW</item>"));
  EXPECT_EQ(dump.find("FWPM_SUBLAYER_FLAG_NEW"), dump.rfind("FWPM_SUBLAYER_FLAG_NEW"));
}

/// Ids in the order written.
std::vector<UINT64> FilterIds(const EngineState& state, DumpKind kind) {
  std::vector<UINT64> ids;
  const EngineState again = Read(Dump::WriteDump(state, kind));
  for (const FWPM_FILTER0& filter : again.filters) {
    ids.push_back(filter.filterId);
  }
  return ids;
}

/// kState with filters more: by layer, sublayer's weight, effective weight and id.
EngineState WithFilters() {
  EngineState state = Read(kState);
  FWPM_SUBLAYER0 light = state.subLayers.front();
  light.subLayerKey.Data1 = 1;
  light.weight = 1;
  state.subLayers.push_back(light);
  const FWPM_FILTER0 model = state.filters.front();
  state.filters.clear();
  const auto add = [&](UINT64 id, const GUID& layerKey, const GUID& subLayerKey, UINT64 weight) {
    FWPM_FILTER0 filter = model;
    filter.filterId = id;
    filter.layerKey = layerKey;
    filter.subLayerKey = subLayerKey;
    filter.effectiveWeight.uint64 = state.memory.Make(weight);
    state.filters.push_back(filter);
  };
  const GUID connect = state.layers[0].layerKey;
  const GUID forward = state.layers[1].layerKey;
  const GUID heavy = model.subLayerKey;
  add(5, connect, light.subLayerKey, 9);
  add(4, connect, heavy, 1);
  add(3, connect, heavy, 2);
  add(7, connect, heavy, 1);
  add(9, forward, heavy, 1);
  return state;
}

TEST(WriteDump, AStateListsFiltersByLayerAndId) {
  EXPECT_THAT(FilterIds(WithFilters(), DumpKind::State), testing::ElementsAre(3, 4, 5, 7, 9));
}

TEST(WriteDump, FiltersAreSortedByLayerSublayerWeightAndTheNewestFirst) {
  EXPECT_THAT(FilterIds(WithFilters(), DumpKind::Filters), testing::ElementsAre(9, 3, 7, 4, 5));
}

TEST(WriteDump, FiltersWithoutLayersStayAsTheyAre) {
  EngineState state = WithFilters();
  state.layers.clear();
  EXPECT_THAT(FilterIds(state, DumpKind::Filters), testing::ElementsAre(5, 4, 3, 7, 9));
}

std::string MessageOf(const EngineState& state, DumpKind kind = DumpKind::Filters) {
  try {
    Dump::WriteDump(state, kind);
  } catch (const Dump::DumpError& error) {
    return error.what();
  }
  return "none";
}

TEST(WriteDump, AStateNeedsTheLayersOfItsFilters) {
  EXPECT_EQ(
      MessageOf(Read(kFilters), DumpKind::State),
      "expected the layer FWPM_LAYER_ALE_AUTH_CONNECT_V4 among those of the dump, since it has filters or "
      "callouts");
}

TEST(WriteDump, SaysWhichFilterHasNoText) {
  EngineState state = Read(kFilters);
  FWP_CONDITION_VALUE0& value = state.filters.front().filterCondition->conditionValue;
  value.type = FWP_TOKEN_INFORMATION_TYPE;
  EXPECT_EQ(MessageOf(state),
            "filter {11112222-3333-4444-5555-666677778888}: expected a value that a dump can hold, found one "
            "of type "
            "TOKEN_INFORMATION");
  UINT8 byte = 1;
  FWP_BYTE_BLOB descriptor{1, &byte};
  value.type = FWP_SECURITY_DESCRIPTOR_TYPE;
  value.sd = &descriptor;
  EXPECT_EQ(
      MessageOf(state),
      "filter {11112222-3333-4444-5555-666677778888}: expected a security descriptor that has a text: a "
      "security descriptor is cut off");
  SID sid{1, 16, {}, {}};
  value.type = FWP_SID;
  value.sid = &sid;
  EXPECT_EQ(MessageOf(state), "filter {11112222-3333-4444-5555-666677778888}: expected a well-formed SID");
}

}  // namespace
