#include <gmock/gmock.h>

#include "dump/ReadDump.h"
#include "unit/dump/DumpText.h"

namespace {

using Dump::EngineState;

EngineState Read(const std::string& dump) { return Dump::ReadDump(dump, "test.xml"); }

/// A dump whose filter has that name.
std::string Named(std::string_view name) { return Replaced(kFilters, "Block web", name); }

std::wstring NameIn(const std::string& dump) { return Read(dump).filters.front().displayData.name; }

/// The text in UTF-16 with its mark, in one of the two orders of bytes.
std::string InUtf16(std::u16string_view text, bool isBigEndian) {
  std::u16string units(1, u'\xFEFF');
  units += text;
  std::string bytes;
  for (const char16_t unit : units) {
    const char low = static_cast<char>(unit & 0xFF);
    const char high = static_cast<char>(unit >> 8);
    bytes += isBigEndian ? high : low;
    bytes += isBigEndian ? low : high;
  }
  return bytes;
}

std::u16string Widened(std::string_view text) { return {text.begin(), text.end()}; }

TEST(XmlForm, Utf8WithAndWithoutMark) {
  EXPECT_EQ(NameIn(Named("Sperre \xC3\xBC\xE2\x82\xAC")), L"Sperre \u00fc\u20ac");
  EXPECT_EQ(NameIn("\xEF\xBB\xBF" + Named("a")), L"a");
}

TEST(XmlForm, CharactersBeyondTheFirstPlane) { EXPECT_EQ(NameIn(Named("\xF0\x9F\x94\x92")), L"\U0001F512"); }

TEST(XmlForm, Utf16OfBothOrders) {
  std::u16string dump = Widened(kFilters);
  dump.replace(dump.find(u"Block web"), 9, u"\u00fc\u20ac\U0001F512");
  EXPECT_EQ(NameIn(InUtf16(dump, false)), L"\u00fc\u20ac\U0001F512");
  EXPECT_EQ(NameIn(InUtf16(dump, true)), L"\u00fc\u20ac\U0001F512");
}

TEST(XmlForm, LinesMayEndWithCarriageReturns) {
  std::string dump = Named("a\nb");
  for (std::size_t i = dump.find('\n'); i != std::string::npos; i = dump.find('\n', i + 2)) {
    dump.insert(i, "\r");
  }
  EXPECT_EQ(NameIn(dump), L"a\nb");
}

TEST(XmlForm, TwoDocumentElements) {
  EXPECT_EQ(NameIn(std::string(kFilters) + "<firewallState>\n\t<x/>\n</firewallState>\n"), L"Block web");
  EXPECT_EQ(NameIn("<firewallState/>" + std::string(kFilters)), L"Block web");
}

TEST(XmlForm, MarkupInTextIsInCdata) {
  EXPECT_EQ(NameIn(Named("<![CDATA[Chess & <Go>]]>")), L"Chess & <Go>");
  EXPECT_EQ(NameIn(Named("a<![CDATA[ & ]]>b<![CDATA[]]]]><![CDATA[>]]>&amp;")), L"a & b]]>&");
}

TEST(XmlForm, Entities) {
  EXPECT_EQ(NameIn(Named("&amp;&lt;&gt;&quot;&apos;&#65;&#x42;&#x1F512;&#13;")), L"&<>\"'AB\U0001F512\r");
}

TEST(XmlForm, AnEmptyTextIsNotNone) {
  EXPECT_EQ(NameIn(Named("")), L"");
  const EngineState state = Read(Replaced(kFilters, "<name>Block web</name>", "<name/>"));
  EXPECT_EQ(state.filters.front().displayData.name, nullptr);
  const EngineState spaced = Read(Replaced(kFilters, "<name>Block web</name>", "<name a = '>' />"));
  EXPECT_EQ(spaced.filters.front().displayData.name, nullptr);
}

TEST(XmlForm, BlanksCountInTextsOnly) {
  EXPECT_EQ(NameIn(Named(" a b ")), L" a b ");
  EXPECT_EQ(NameIn(Named("<![CDATA[  ]]>")), L"  ");
  const EngineState state = Read(Replaced(kFilters, "<filterId>70000<", "<filterId>\n 70000 \t<"));
  EXPECT_EQ(state.filters.front().filterId, 70000U);
}

TEST(XmlForm, CommentsAndInstructionsAreNothing) {
  EXPECT_EQ(NameIn(Replaced(kFilters, "<filters>", "<!-- </wfpdiag> --><?x <a> ?><filters>")), L"Block web");
}

TEST(XmlForm, AListNeedNotCountItsItems) {
  EXPECT_EQ(Read(Replaced(kFilters, "<filterCondition numItems=\"1\">", "<filterCondition>"))
                .filters.front()
                .numFilterConditions,
            1U);
  EXPECT_EQ(Read(Replaced(kFilters, "<filters>", "<filters numItems='1'>")).filters.size(), 1U);
}

TEST(XmlForm, MembersMayStandInAnyOrder) {
  const std::string id = "<filterId>70000</filterId>";
  const std::string dump = Replaced(Replaced(kFilters, id, ""), "<filterKey>", id + "<filterKey>");
  EXPECT_EQ(Read(dump).filters.front().filterId, 70000U);
}

}  // namespace
