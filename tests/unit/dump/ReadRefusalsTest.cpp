#include <gtest/gtest.h>

#include "dump/ReadDump.h"
#include "unit/dump/DumpText.h"

namespace {

/// A piece of kFilters or kState, what it is replaced by, and what is said then.
struct Refusal {
  std::string_view dump;
  const char* piece;
  const char* by;
  const char* message;
};

constexpr Refusal kMarkup[]{
    {kFilters, "</filters>", "", "m.xml:62: expected </filters>, since line 3 opens it, found </wfpdiag>"},
    {kFilters, "</wfpdiag>\n", "", "m.xml:62: expected </wfpdiag>, since line 2 opens it, but the file ends"},
    {kFilters, "</wfpdiag>", "</wfpdiag></x>", "m.xml:62: expected the end of the file, found </x>"},
    {kFilters, "</wfpdiag>", "</wfpdiag", "m.xml:63: expected > behind </wfpdiag, found the end of the file"},
    {kFilters, "<reserved/>", "<reserved",
     "m.xml:41: expected > behind <reserved, found \"<filterId>70000</filterId>...\""},
    {kFilters, "<reserved/>", "<reserved / >", "m.xml:40: expected > behind <reserved, found \"/ >...\""},
    {kFilters, "<reserved/>", "<1/>",
     "m.xml:40: expected the name of an element or attribute, found \"1/>...\""},
    {kFilters, "<reserved/>", "<r\"/>", "m.xml:40: expected > behind <r, found \"\"/>...\""},
    {kFilters, "<reserved/>", "<r a/>",
     "m.xml:40: expected =\"...\" behind the attribute a, found \"/>...\""},
    {kFilters, "<reserved/>", "<r a=1/>",
     "m.xml:40: expected =\"...\" behind the attribute a, found \"1/>...\""},
    {kFilters, "<reserved/>", "<r a='<'/>", "m.xml:40: expected the quote that ends the attribute a"},
    {kFilters, "<reserved/>", "<!-- ", "m.xml:40: expected --> before the file ends"},
    {kFilters, "<reserved/>", "<?x ", "m.xml:40: expected ?> before the file ends"},
    {kFilters, "<name>", "<name><![CDATA[", "m.xml:7: expected ]]> before the file ends"},
    {kFilters, "<wfpdiag>", "<!DOCTYPE wfpdiag [<!ENTITY a \"b\">]>\n<wfpdiag>",
     "m.xml:2: expected an element, found \"<!DOCTYPE\"; a dump has no document type"},
    {kFilters, "<wfpdiag>", "hello\n<wfpdiag>",
     "m.xml:2: expected an element like <wfpstate>, found \"hello...\""},
    {kFilters, "Block web", "&who;",
     "m.xml:7: expected &amp; &lt; &gt; &quot; &apos; or a number like &#38; in <name>, found \"&who;\""},
    {kFilters, "Block web", "a & b; and more",
     "m.xml:7: expected &amp; &lt; &gt; &quot; &apos; or a number like &#38; in <name>, found \"& b;\""},
    {kFilters, "Block web", "&#xD800;",
     "m.xml:7: expected &amp; &lt; &gt; &quot; &apos; or a number like &#38; in <name>, found \"&#xD800;\""},
    {kFilters, "Block web", "&#0;",
     "m.xml:7: expected &amp; &lt; &gt; &quot; &apos; or a number like &#38; in <name>, found \"&#0;\""},
    {kFilters, "Block web", "\xFF", "m.xml:7: expected text in UTF-8, or in UTF-16 with a byte order mark"},
    {kFilters, "Block web", "\xC0\x80",
     "m.xml:7: expected text in UTF-8, or in UTF-16 with a byte order mark"},
};

constexpr Refusal kStructure[]{
    {kFilters, "<wfpdiag>", "<html/><wfpdiag>", "none"},
    {kFilters, "<filters>", "<filters numItems=\"2\">",
     "m.xml:3: expected 2 items in <filters>, as numItems says, found 1"},
    {kFilters, "<flags numItems=\"2\">", "<flags numItems=\"99999999999999999999\">",
     "m.xml:10: expected 99999999999999999999 items in <flags>, as numItems says, found 2"},
    {kFilters, "<filterId>70000</filterId>", "", "m.xml:4: expected <filterId> in <item>"},
    {kFilters, "<reserved/>", "<filterId>1</filterId>",
     "m.xml:41: expected one <filterId> in <item>, found a second"},
    {kFilters, "<flags numItems=\"2\">", "<flags>FWPM_FILTER_FLAG_INDEXED",
     "m.xml:10: expected elements in <flags>, found \"FWPM_FILTER_FLAG_INDEXED...\""},
    {kFilters, "70000", "<b>7</b>", "m.xml:41: expected text in <filterId>, found <b>"},
    {kFilters, "<weight>", "<weight/><x>",
     "m.xml:24: expected </x>, since line 21 opens it, found </weight>"},
    {kState, "<subLayers numItems=\"1\">", "<sublayers>",
     "m.xml:165: expected </sublayers>, since line 151 opens it, found </subLayers>"},
    {kState, "<layers numItems=\"2\">", "<layers numItems=\"3\">",
     "m.xml:5: expected 3 items in <layers>, as numItems says, found 2"},
    {kState, "<applicableLayer>FWPM_LAYER_ALE_AUTH_CONNECT_V4", "<applicableLayer>FWPM_LAYER_IPFORWARD_V6",
     "m.xml:47: expected FWPM_LAYER_ALE_AUTH_CONNECT_V4, the layer that lists it, in <applicableLayer>, "
     "found "
     "\"FWPM_LAYER_IPFORWARD_V6\""},
    {kState, "<providerContextKey>{c0c00000-0000-0000-0000-000000000001}", "<rawContext>1</rawContext><x>",
     "m.xml:73: expected </x>, since line 73 opens it, found </providerContextKey>"},
    {kState, "<item>FWPM_FILTER_FLAG_HAS_PROVIDER_CONTEXT</item>", "<item>FWPM_FILTER_FLAG_INDEXED</item>",
     "m.xml:52: expected <providerContextKey> in a filter with the flag "
     "FWPM_FILTER_FLAG_HAS_PROVIDER_CONTEXT, "
     "<rawContext> in one without"},
    {kFilters, "<rawContext>0</rawContext>", "",
     "m.xml:4: expected <providerContextKey> in a filter with the flag "
     "FWPM_FILTER_FLAG_HAS_PROVIDER_CONTEXT, "
     "<rawContext> in one without"},
};

constexpr Refusal kMembers[]{
    {kFilters, "{11112222-3333-4444-5555-666677778888}", "abc",
     "m.xml:5: expected a GUID like {00112233-4455-6677-8899-aabbccddeeff} in <filterKey>, found \"abc\""},
    {kFilters, "{11112222-3333-4444-5555-666677778888}", "11112222-3333-4444-5555-666677778888",
     "m.xml:5: expected a GUID like {00112233-4455-6677-8899-aabbccddeeff} in <filterKey>, found "
     "\"11112222-3333-4444-5555-666677778888\""},
    {kFilters, "<filterKey>{11112222-3333-4444-5555-666677778888}</filterKey>", "<filterKey/>",
     "m.xml:5: expected a GUID like {00112233-4455-6677-8899-aabbccddeeff} in <filterKey>, found nothing"},
    {kFilters, "FWPM_LAYER_ALE_AUTH_CONNECT_V4", "FWPM_SUBLAYER_UNIVERSAL",
     "m.xml:19: expected a name like FWPM_LAYER_... or a GUID like {00112233-4455-6677-8899-aabbccddeeff} in "
     "<layerKey>, found \"FWPM_SUBLAYER_UNIVERSAL\""},
    {kFilters, "FWPM_LAYER_ALE_AUTH_CONNECT_V4", "FWPM_LAYER_",
     "m.xml:19: expected a name like FWPM_LAYER_... or a GUID like {00112233-4455-6677-8899-aabbccddeeff} in "
     "<layerKey>, found \"FWPM_LAYER_\""},
    {kFilters, "<providerKey>{aaaa0000-0000-0000-0000-000000000001}", "<providerKey>FWPM_PROVIDER_CONTEXT_X",
     "m.xml:14: expected a name like FWPM_PROVIDER_... or a GUID like {00112233-4455-6677-8899-aabbccddeeff} "
     "in "
     "<providerKey>, found \"FWPM_PROVIDER_CONTEXT_X\""},
    {kFilters, "FWPM_FILTER_FLAG_INDEXED", "FWPM_LAYER_FLAG_KERNEL",
     "m.xml:12: expected a flag like FWPM_FILTER_FLAG_INDEXED or eight hexadecimal digits in <item>, found "
     "\"FWPM_LAYER_FLAG_KERNEL\""},
    {kFilters, "FWPM_FILTER_FLAG_INDEXED", "123",
     "m.xml:12: expected a flag like FWPM_FILTER_FLAG_INDEXED or eight hexadecimal digits in <item>, found "
     "\"123\""},
    {kFilters, "41ff26", "41ff2",
     "m.xml:16: expected hexadecimal digits, two for each byte, in <data>, found \"41ff2\""},
    {kFilters, "41ff26", "4 ff26",
     "m.xml:16: expected hexadecimal digits, two for each byte, in <data>, found \"4 ff26\""},
    {kFilters, "FWP_MATCH_EQUAL", "FWP_MATCH_SIMILAR",
     "m.xml:28: expected a type of match like FWP_MATCH_EQUAL in <matchType>, found \"FWP_MATCH_SIMILAR\""},
    {kFilters, "FWP_ACTION_BLOCK", "-1",
     "m.xml:36: expected an action like FWP_ACTION_BLOCK in <type>, found \"-1\""},
    {kFilters, "<filterId>70000", "<filterId>",
     "m.xml:41: expected a number from 0 to 18446744073709551615 in <filterId>, found \"\""},
    {kFilters, "<filterId>70000", "<filterId>18446744073709551616",
     "m.xml:41: expected a number from 0 to 18446744073709551615 in <filterId>, found "
     "\"18446744073709551616\""},
    {kFilters, "<uint8>15", "<uint8>256",
     "m.xml:23: expected a number from 0 to 255 in <uint8>, found \"256\""},
    {kFilters, "<uint8>15</uint8>", "<uint16>15</uint16>", "m.xml:21: expected <uint8> in <weight>"},
    {kState, "<weight>65535", "<weight>65536",
     "m.xml:163: expected a number from 0 to 65535 in <weight>, found \"65536\""},
    {kState, "FWPM_FIELD_FLAGS", "FWPM_FIELD_MAC",
     "m.xml:26: expected a type of field like FWPM_FIELD_RAW_DATA in <type>, found \"FWPM_FIELD_MAC\""},
    {kState, "FWPM_GENERAL_CONTEXT", "FWPM_SPECIAL_CONTEXT",
     "m.xml:123: expected a type of context like FWPM_GENERAL_CONTEXT in <type>, found "
     "\"FWPM_SPECIAL_CONTEXT\""},
};

template <std::size_t kCount>
void CheckAll(const Refusal (&refusals)[kCount]) {
  for (const auto& [dump, piece, by, message] : refusals) {
    EXPECT_EQ(RefusalOf(Replaced(dump, piece, by)), message) << piece << " -> " << by;
  }
}

TEST(ReadRefusals, Markup) { CheckAll(kMarkup); }
TEST(ReadRefusals, Structure) { CheckAll(kStructure); }
TEST(ReadRefusals, Members) { CheckAll(kMembers); }

TEST(ReadRefusals, Values) {
  constexpr const char* kMessages[][2]{
      {"<type>FWP_UINT99</type>",
       "m.xml:30: expected a type of value like FWP_UINT8 in <type>, found \"FWP_UINT99\""},
      {"<type>99</type>", "m.xml:30: expected a type that a value can have here in <type>, found \"99\""},
      {"<type>FWP_TOKEN_INFORMATION_TYPE</type>",
       "m.xml:30: expected a type that a value can have here in <type>, found "
       "\"FWP_TOKEN_INFORMATION_TYPE\""},
      {"<type>FWP_UINT32</type><uint32>1.2.3</uint32>",
       "m.xml:30: expected a number from 0 to 4294967295 or an address like 10.0.0.1 in <uint32>, found "
       "\"1.2.3\""},
      {"<type>FWP_UINT32</type><uint32>-1</uint32>",
       "m.xml:30: expected a number from 0 to 4294967295 in <uint32>, found \"-1\""},
      {"<type>FWP_DOUBLE</type><double64>a</double64>",
       "m.xml:30: expected a number like 0.5 in <double64>, found \"a\""},
      {"<type>FWP_BYTE_ARRAY16_TYPE</type><byteArray16>1.2.3.4</byteArray16>",
       "m.xml:30: expected an address like fe80::1 in <byteArray16>, found \"1.2.3.4\""},
      {"<type>FWP_BYTE_ARRAY6_TYPE</type><byteArray6>00-11-22-33-44</byteArray6>",
       "m.xml:30: expected an address like 00-11-22-33-44-55 in <byteArray6>, found \"00-11-22-33-44\""},
      {"<type>FWP_BYTE_ARRAY6_TYPE</type><byteArray6>00-11-22-33-44:55</byteArray6>",
       "m.xml:30: expected an address like 00-11-22-33-44-55 in <byteArray6>, found \"00-11-22-33-44:55\""},
      {"<type>FWP_SID</type><sid>BA</sid>", "m.xml:30: expected a SID like S-1-5-18 in <sid>, found \"BA\""},
      {"<type>FWP_SECURITY_DESCRIPTOR_TYPE</type><sd>D:(A;;XX;;;WD)</sd>",
       "m.xml:30: in <sd>, expected a right like CC or a number like 0x1 at character 7, found \"XX;;;WD)\""},
      {"<type>FWP_RANGE_TYPE</type><rangeValue><valueLow><type>FWP_UINT8</type><uint8>1</uint8></valueLow>"
       "</rangeValue>",
       "m.xml:30: expected <valueHigh> in <rangeValue>"},
      {"<type>FWP_RANGE_TYPE</type><rangeValue><valueLow><type>FWP_RANGE_TYPE</type></valueLow></rangeValue>",
       "m.xml:30: expected a type that a value can have here in <type>, found \"FWP_RANGE_TYPE\""},
      {"<type>FWP_V6_ADDR_MASK</type><v6AddrMask><addr>::</addr><prefixLength>256</prefixLength></"
       "v6AddrMask>",
       "m.xml:30: expected a number from 0 to 255 in <prefixLength>, found \"256\""},
  };
  for (const auto& [value, message] : kMessages) {
    EXPECT_EQ(RefusalOf(WithValue("FWPM_CONDITION_IP_REMOTE_PORT", value)), message);
  }
}

TEST(ReadRefusals, OtherFiles) {
  const std::string expected =
      "m.xml: expected <wfpstate> or <wfpdiag>, as netsh wfp show state and netsh wfp show filters write "
      "them, ";
  EXPECT_EQ(RefusalOf(""), expected + "found nothing");
  EXPECT_EQ(RefusalOf("<html><body/></html>"), expected + "found <html>");
  EXPECT_EQ(RefusalOf("<netEvents/>"), expected + "found <netEvents>");
  EXPECT_EQ(RefusalOf("{\"a\": 1}"), "m.xml:1: expected an element like <wfpstate>, found \"{\"a\": 1}\"");
  EXPECT_EQ(RefusalOf("PK\x03\x04\xA0"),
            "m.xml:1: expected text in UTF-8, or in UTF-16 with a byte order mark");
  EXPECT_EQ(RefusalOf(std::string("<\0w\0", 4)), "m.xml:1: expected text, found a zero byte");
  EXPECT_EQ(RefusalOf("\xFF\xFE<"), "m.xml:1: expected text in UTF-16");
  EXPECT_EQ(RefusalOf(std::string("\xFF\xFE\n\0\0\xD8<\0", 8)), "m.xml:2: expected text in UTF-16");
  EXPECT_EQ(RefusalOf(std::string(kFilters) + "<wfpstate/>"), "m.xml:63: expected one dump, found a second");
  EXPECT_EQ(RefusalOf("<wfpdiag/>"), "m.xml:1: expected <filters> in <wfpdiag>");
  EXPECT_EQ(RefusalOf("<wfpstate><layers/></wfpstate>"), "m.xml:1: expected <providers> in <wfpstate>");
}

}  // namespace
