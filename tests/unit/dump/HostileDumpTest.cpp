#include <gmock/gmock.h>

#include "dump/ReadDump.h"
#include "unit/dump/DumpText.h"

namespace {

using testing::HasSubstr;

std::string Repeated(std::string_view text, std::size_t count) {
  std::string repeated;
  repeated.reserve(text.size() * count);
  for (std::size_t i = 0; i < count; ++i) {
    repeated += text;
  }
  return repeated;
}

TEST(HostileDump, NestsTooDeep) {
  EXPECT_EQ(RefusalOf(Repeated("<a>", 64) + Repeated("</a>", 64)),
            "m.xml: expected <wfpstate> or <wfpdiag>, as netsh wfp show state and netsh wfp show filters "
            "write them, "
            "found <a>");
  EXPECT_EQ(RefusalOf(Repeated("<a>", 65)), "m.xml:1: expected at most 64 elements in each other");
  EXPECT_EQ(RefusalOf(Repeated("<a>", 1'000'000)), "m.xml:1: expected at most 64 elements in each other");
}

TEST(HostileDump, HidesDepthWhereAParserMightNotLook) {
  for (const char* open :
       {"<a b='/>'>", "<a><!--</a>-->", "<a><![CDATA[</a>]]>", "<a><?b </a>?>", "<a\n/ >"}) {
    const std::string message = RefusalOf(Repeated(open, 100'000));
    EXPECT_THAT(message, testing::AnyOf(HasSubstr("expected at most 64 elements in each other"),
                                        HasSubstr("expected > behind <a")))
        << open;
  }
}

TEST(HostileDump, IsLarge) {
  EXPECT_EQ(RefusalOf(std::string(64 * 1024 * 1024 + 1, ' ')), "m.xml: expected a dump of at most 64 MB");
}

TEST(HostileDump, HasOneHugeText) {
  const std::string huge(1024 * 1024, 'a');
  EXPECT_EQ(Dump::ReadDump(Replaced(kFilters, "Block web", huge), "m.xml").filters.size(), 1U);
  EXPECT_THAT(RefusalOf(Replaced(kFilters, "70000", huge)),
              testing::EndsWith("in <filterId>, found \"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa...\""));
  EXPECT_EQ(
      RefusalOf('<' + huge + "/>"),
      "m.xml:1: expected names of at most 100 bytes, found \"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa...\"");
}

TEST(HostileDump, HasTooManyElements) {
  EXPECT_EQ(RefusalOf("<a>" + Repeated("<b/>", 2'000'000)),
            "m.xml:1: expected at most 2,000,000 elements and attributes");
  EXPECT_EQ(RefusalOf("<a" + Repeated(" b=''", 2'000'000) + "/>"),
            "m.xml:1: expected at most 2,000,000 elements and attributes");
}

TEST(HostileDump, MakesUpManySymbols) {
  std::string items;
  for (int i = 0; i < 50'000; ++i) {
    items += "<item>FWPM_FILTER_FLAG_" + std::to_string(i) + "</item>\n";
  }
  const Dump::EngineState state =
      Dump::ReadDump(Replaced(kFilters, "<flags numItems=\"2\">", "<flags>\n" + items), "m.xml");
  EXPECT_EQ(state.unknownFlags.size(), 50'000U);
}

TEST(HostileDump, IsCutOffAnywhere) {
  for (const std::string_view dump : {kFilters, kState}) {
    for (std::size_t size = 0; size + 1 < dump.size(); ++size) {
      EXPECT_NE(RefusalOf(std::string(dump.substr(0, size))), "none") << size;
    }
  }
}

/// Whatever the change, the dump is read or refused. Every third place, so that the test stays quick.
TEST(HostileDump, IsMangledInManyPlaces) {
  constexpr std::string_view kBy("</\"\0009", 5);
  for (const std::string_view dump : {kFilters, kState}) {
    for (std::size_t i = 0; i < dump.size(); i += 3) {
      std::string mangled(dump);
      mangled[i] = kBy[i % kBy.size()];
      RefusalOf(mangled);
    }
  }
}

}  // namespace
