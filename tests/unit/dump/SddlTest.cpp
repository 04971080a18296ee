#include "dump/Sddl.h"

#include <gtest/gtest.h>

#include "unit/dump/Hex.h"

namespace {

using Dump::DomainSids;
using Dump::FormatSddl;
using Dump::ParseSddl;
using Dump::SddlError;

struct Descriptor {
  const char* name;
  const char* sddl;
  const char* bytes;
};

/// As the platform lays them out: head, SACL, DACL, owner, group.
constexpr Descriptor kDescriptors[]{
    {"OwnerGroupAndOneEntry", "O:SYG:BAD:(A;;CC;;;WD)",
     "01 00 0480 30000000 3c000000 00000000 14000000 "
     "02 00 1c00 0100 0000 "
     "00 00 1400 01000000 01 01 000000000001 00000000 "
     "01 01 000000000005 12000000 "
     "01 02 000000000005 20000000 20020000"},
    {"NoList", "O:SY", "01 00 0080 14000000 00000000 00000000 00000000 01 01 000000000005 12000000"},
    {"NullList", "D:NO_ACCESS_CONTROL", "01 00 0480 00000000 00000000 00000000 00000000"},
    {"EmptyList", "D:", "01 00 0480 00000000 00000000 00000000 14000000 02 00 0800 0000 0000"},
    {"NullAuditList", "D:(A;NP;CC;;;S-1-5-80-1-2)S:NO_ACCESS_CONTROL",
     "01 00 1480 00000000 00000000 00000000 14000000 "
     "02 00 2400 0100 0000 "
     "00 04 1c00 01000000 01 03 000000000005 50000000 01000000 02000000"},
    {"FlagsOfLists", "D:PARAIS:PARAI",
     "01 00 14bf 00000000 00000000 14000000 1c000000 02 00 0800 0000 0000 02 00 0800 0000 0000"},
    {"FlagsOfEntries", "S:(AU;OICINPIOIDSAFA;GA;;;AN)",
     "01 00 1080 00000000 00000000 14000000 00000000 "
     "02 00 1c00 0100 0000 "
     "02 df 1400 00000010 01 01 000000000005 07000000"},
    {"Label", "S:(ML;;NWNRNX;;;ME)",
     "01 00 1080 00000000 00000000 14000000 00000000 "
     "02 00 1c00 0100 0000 "
     "11 00 1400 07000000 01 01 000000000010 00200000"},
    {"ObjectEntry", "D:(OA;;CR;00112233-4455-6677-8899-aabbccddeeff;ffeeddcc-bbaa-9988-7766-554433221100;PS)",
     "01 00 0480 00000000 00000000 00000000 14000000 "
     "04 00 4000 0100 0000 "
     "05 00 3800 00010000 03000000 33221100 5544 7766 8899aabbccddeeff ccddeeff aabb 8899 7766554433221100 "
     "01 01 000000000005 0a000000"},
    {"ResourceAttribute", "S:(RA;;;;;WD;(\"Ab\",TS,0x10,\"x\",\"y\"))",
     "01 00 1080 00000000 00000000 14000000 00000000 "
     "02 00 4400 0100 0000 "
     "12 00 3c00 00000000 01 01 000000000001 00000000 "
     "18000000 0300 0000 10000000 02000000 20000000 24000000 410062000000 0000 78000000 79000000"},
    {"LongAuthority", "O:S-1-0x123456789abc-4294967295",
     "01 00 0080 14000000 00000000 00000000 00000000 01 01 123456789abc ffffffff"},
};

class SddlDescriptor : public testing::TestWithParam<Descriptor> {};

TEST_P(SddlDescriptor, IsLaidOutAsThePlatformDoes) {
  EXPECT_EQ(ToHex(ParseSddl(GetParam().sddl)), ToHex(FromHex(GetParam().bytes)));
}

TEST_P(SddlDescriptor, HasItsText) { EXPECT_EQ(FormatSddl(FromHex(GetParam().bytes)), GetParam().sddl); }

INSTANTIATE_TEST_SUITE_P(Sddl, SddlDescriptor, testing::ValuesIn(kDescriptors),
                         [](const auto& descriptor) { return descriptor.param.name; });

/// Texts that come back as they are.
constexpr const char* kTexts[]{
    "",
    "G:S-1-5-21-1-2-3-1001",
    "O:LSD:(A;;CC;;;S-1-15-3-1)(A;;CC;;;WD)(A;;CC;;;AN)",
    "D:(D;;;;;WD)(A;;CCDCLCSWRPWPDTLOCRSDRCWDWO;;;BA)(A;;GXGWGR;;;BA)",
    "D:(A;;FA;;;CO)(A;;FR;;;CG)(A;;FW;;;SU)(A;;FX;;;IU)(A;;KA;;;NU)(A;;KR;;;NS)(A;;KW;;;LS)",
    "D:(A;;0x1200a9;;;BU)(A;;0x1fffff;;;BU)",
    "D:(OD;OI;CC;;ffeeddcc-bbaa-9988-7766-554433221100;WD)(OA;;CC;;;WD)",
    "S:(AL;;CC;;;WD)(OU;;CC;00112233-4455-6677-8899-aabbccddeeff;;WD)(OL;;CC;;;WD)",
    "S:(SP;;;;;S-1-17-1)(TL;;0x1fffff;;;S-1-19-512-8192)(FL;TP;CC;;;WD)(A;SA;CC;;;WD)(A;CR;CC;;;WD)",
    "S:(RA;CI;;;;WD;(\"n\",TI,0x0,-5,9223372036854775807))",
    "S:(RA;;;;;WD;(\"n\",TU,0x0,18446744073709551615))",
    "S:(RA;;;;;WD;(\"n\",TB,0x2,1,0))",
    "S:(RA;;;;;WD;(\"n\",TD,0x0,SID(BA),SID(S-1-5-21-1-2-3-4)))",
    "S:(RA;;;;;WD;(\"n\",TX,0x0,#,#00ff))",
    "S:(RA;;;;;WD;(\"quote %0022 and \xC3\xA9\",TS,0x0))",
    "O:S-1-5-1-2-3-4-5-6-7-8-9-10-11-12-13-14-15",
    "O:S-1-9",
};

TEST(Sddl, TextsComeBackAsTheyAre) {
  for (const char* text : kTexts) {
    EXPECT_EQ(FormatSddl(ParseSddl(text)), text);
  }
}

constexpr const char* kSids[][2]{
    {"AA", "S-1-5-32-579"},
    {"AC", "S-1-15-2-1"},
    {"AN", "S-1-5-7"},
    {"AO", "S-1-5-32-548"},
    {"AS", "S-1-18-1"},
    {"AU", "S-1-5-11"},
    {"BA", "S-1-5-32-544"},
    {"BG", "S-1-5-32-546"},
    {"BO", "S-1-5-32-551"},
    {"BU", "S-1-5-32-545"},
    {"CD", "S-1-5-32-574"},
    {"CG", "S-1-3-1"},
    {"CO", "S-1-3-0"},
    {"CY", "S-1-5-32-569"},
    {"ED", "S-1-5-9"},
    {"ER", "S-1-5-32-573"},
    {"ES", "S-1-5-32-576"},
    {"HA", "S-1-5-32-578"},
    {"HI", "S-1-16-12288"},
    {"HO", "S-1-5-32-584"},
    {"IS", "S-1-5-32-568"},
    {"IU", "S-1-5-4"},
    {"LS", "S-1-5-19"},
    {"LU", "S-1-5-32-559"},
    {"LW", "S-1-16-4096"},
    {"ME", "S-1-16-8192"},
    {"MP", "S-1-16-8448"},
    {"MS", "S-1-5-32-577"},
    {"MU", "S-1-5-32-558"},
    {"NO", "S-1-5-32-556"},
    {"NS", "S-1-5-20"},
    {"NU", "S-1-5-2"},
    {"OW", "S-1-3-4"},
    {"PO", "S-1-5-32-550"},
    {"PS", "S-1-5-10"},
    {"PU", "S-1-5-32-547"},
    {"RA", "S-1-5-32-575"},
    {"RC", "S-1-5-12"},
    {"RD", "S-1-5-32-555"},
    {"RE", "S-1-5-32-552"},
    {"RM", "S-1-5-32-580"},
    {"RU", "S-1-5-32-554"},
    {"SH", "S-1-5-32-585"},
    {"SI", "S-1-16-16384"},
    {"SO", "S-1-5-32-549"},
    {"SS", "S-1-18-2"},
    {"SU", "S-1-5-6"},
    {"SY", "S-1-5-18"},
    {"UD", "S-1-5-84-0-0-0-0-0"},
    {"WD", "S-1-1-0"},
    {"WR", "S-1-5-33"},
};

TEST(Sddl, AbbreviationsStandForTheirSids) {
  for (const auto& [name, sid] : kSids) {
    EXPECT_EQ(ParseSddl(std::string("O:") + name), ParseSddl(std::string("O:") + sid)) << name;
    EXPECT_EQ(FormatSddl(ParseSddl(std::string("O:") + sid)), std::string("O:") + name);
  }
}

TEST(Sddl, OtherWaysToWriteItGiveTheSame) {
  constexpr const char* kSame[][2]{
      {"S:(ML;;NW;;;ME)D:(A;;CC;;;WD)G:BAO:SY", "O:SYG:BAD:(A;;CC;;;WD)S:(ML;;NW;;;ME)"},
      {"D:(A;;1;;;WD)", "D:(A;;CC;;;WD)"},
      {"D:(A;;0X00000001;;;s-1-1-0)", "D:(A;;CC;;;WD)"},
      {"D:(A;;RCCC;;;WD)", "D:(A;;CCRC;;;WD)"},
      {"D:(A;;KX;;;WD)", "D:(A;;KR;;;WD)"},
      {"D:AIP", "D:PAI"},
      {"S:(RA;;;;;WD;( \"n\" , TD , 16 , BA ))", "S:(RA;;;;;WD;(\"n\",TD,0x10,SID(BA)))"},
  };
  for (const auto& [text, canonical] : kSame) {
    EXPECT_EQ(FormatSddl(ParseSddl(text)), canonical);
  }
}

TEST(Sddl, ADomainsAbbreviationIsMarkedWhereAskedFor) {
  const auto descriptor = ParseSddl("D:(A;;CC;;;DU)", DomainSids::Mark);
  EXPECT_EQ(ToHex(descriptor),
            ToHex(FromHex("01 00 0480 00000000 00000000 00000000 14000000 "
                          "02 00 2c00 0100 0000 "
                          "00 00 2400 01000000 "
                          "01 05 000000000005 15000000 ffffffff ffffffff ffffffff 01020000")));
  EXPECT_TRUE(Dump::NamesUnknownDomain(descriptor));
  EXPECT_EQ(FormatSddl(descriptor), "D:(A;;CC;;;DU)");
  EXPECT_FALSE(Dump::NamesUnknownDomain(ParseSddl("D:(A;;CC;;;S-1-5-21-1-2-3-513)")));
}

TEST(Sddl, EveryAbbreviationOfADomainNeedsIt) {
  for (const char* name : {"AP", "CA", "CN", "DA", "DC", "DD", "DG", "DU", "EA", "EK", "KA", "LA", "LG", "PA",
                           "RO", "RS", "SA"}) {
    EXPECT_THROW(ParseSddl(std::string("O:") + name), SddlError) << name;
    EXPECT_EQ(FormatSddl(ParseSddl(std::string("O:") + name, DomainSids::Mark)), std::string("O:") + name);
  }
}

std::string SddlRefusalOf(const std::string& sddl) {
  try {
    ParseSddl(sddl);
  } catch (const SddlError& error) {
    return error.what();
  }
  return "none";
}

TEST(Sddl, SaysWhatItExpectedAndWhere) {
  constexpr const char* kMessages[][2]{
      {"abc", "expected O:, G:, D: or S: at character 1, found \"abc\""},
      {"O:SYO:BA", "expected each part once at character 5, found \"O:BA\""},
      {"O:ZZ", "expected a SID like S-1-5-18 or its abbreviation like SY at character 3, found \"ZZ\""},
      {"O:DA", "expected a SID of a domain in full at character 3, found \"DA\""},
      {"O:S-1-x", "expected a SID's authority below 2^48 at character 7, found \"x\""},
      {"O:S-1-0x1000000000000-1", "expected O:, G:, D: or S: at character 21, found \"0-1\""},
      {"O:S-1-281474976710656",
       "expected a SID's authority below 2^48 at character 7, found \"281474976710656\""},
      {"O:S-1-5-4294967296", "expected a SID's number below 2^32 at character 9, found \"4294967296\""},
      {"O:S-1-5-1-2-3-4-5-6-7-8-9-10-11-12-13-14-15-16",
       "expected a SID of at most 15 numbers behind its authority at character 7, found "
       "\"5-1-2-3-4-5-6-7-8-9-10-11-12-13-14-15-16\""},
      {"D:(A;;CC;;;WD", "expected \")\" at character 14, found the end"},
      {"D:(Q;;CC;;;WD)", "expected a type of entry like A, D or XA at character 4, found \"Q;;CC;;;WD)\""},
      {"D:(A;XX;CC;;;WD)", "expected an entry's flag like OI at character 6, found \"XX;CC;;;WD)\""},
      {"D:(A;;NW;;;WD)", "expected a right like CC or a number like 0x1 at character 7, found \"NW;;;WD)\""},
      {"S:(ML;;CC;;;ME)", "expected a label's right: NW, NR or NX at character 8, found \"CC;;;ME)\""},
      {"D:(A;;0x100000000;;;WD)", "expected rights of 32 bits at character 7, found \"0x100000000;;;WD)\""},
      {"D:(A;;CC;00112233-4455-6677-8899-aabbccddeeff;;WD)",
       "expected no GUID in an entry of this type at character 10, found "
       "\"00112233-4455-6677-8899-aabbccddeeff;;WD...\""},
      {"D:(OA;;CC;1;;WD)",
       "expected a GUID like 00112233-4455-6677-8899-aabbccddeeff at character 11, found \"1;;WD)\""},
      {"S:(RA;;;;;WD)", "expected \";\" at character 13, found \")\""},
      {"S:(RA;;;;;WD;(\"n%0000\",TB,0))",
       "expected a text without zeros at character 15, found \"\"n%0000\",TB,0))\""},
      {"S:(RA;;;;;WD;(\"n\",TQ,0))", "expected TI, TU, TS, TD, TB or TX at character 19, found \"TQ,0))\""},
      {"S:(RA;;;;;WD;(\"n\",TB,0,2))", "expected \"0\" at character 24, found \"2))\""},
      {"S:(RA;;;;;WD;(\"n\",TX,0,#1))",
       "expected an even number of hexadecimal digits at character 26, found \"))\""},
      {"S:(RA;;;;;WD;(\"n\",TI,9999999999))",
       "expected a number of 32 bits at character 22, found \"9999999999))\""},
      {"D:NO_ACCESS_CONTROL(A;;CC;;;WD)",
       "expected O:, G:, D: or S: at character 20, found \"(A;;CC;;;WD)\""},
  };
  for (const auto& [sddl, message] : kMessages) {
    EXPECT_EQ(SddlRefusalOf(sddl), message);
  }
}

TEST(Sddl, AListOf64KilobytesIsTooLong) {
  std::string sddl = "D:";
  for (int i = 0; i < 3300; ++i) {
    sddl += "(A;;CC;;;WD)";
  }
  EXPECT_EQ(SddlRefusalOf(sddl),
            "expected a list of less than 64 KB at character 3, found "
            "\"(A;;CC;;;WD)(A;;CC;;;WD)(A;;CC;;;WD)(A;;...\"");
}

std::string MessageOfBytes(std::string_view hex) {
  try {
    return FormatSddl(FromHex(hex));
  } catch (const SddlError& error) {
    return error.what();
  }
}

TEST(Sddl, SaysWhatIsWrongWithBytes) {
  constexpr const char* kMessages[][2]{
      {"", "a security descriptor is cut off"},
      {"01 00 0480 00000000 00000000 00000000 000000", "a security descriptor is cut off"},
      {"02 00 0480 00000000 00000000 00000000 00000000", "not a self-relative security descriptor"},
      {"01 00 0400 00000000 00000000 00000000 00000000", "not a self-relative security descriptor"},
      {"01 00 0080 ffffffff 00000000 00000000 00000000", "a security descriptor is cut off"},
      {"01 00 0080 14000000 00000000 00000000 00000000 01 02 000000000005 20000000", "a SID is malformed"},
      {"01 00 0480 00000000 00000000 00000000 14000000 02 00 0700 0000 0000",
       "an access control list's size is wrong"},
      {"01 00 0480 00000000 00000000 00000000 14000000 02 00 0900 0000 0000",
       "a security descriptor is cut off"},
      {"01 00 0480 00000000 00000000 00000000 14000000 02 00 0800 0100 0000",
       "an access control list is cut off"},
      {"01 00 0480 00000000 00000000 00000000 14000000 02 00 0c00 0100 0000 00 00 0300",
       "an entry's size is wrong"},
      {"01 00 0480 00000000 00000000 00000000 14000000 02 00 1000 0100 0000 00 00 0800 01000000",
       "a SID is malformed"},
      {"01 00 0480 00000000 00000000 00000000 14000000 02 00 1000 0100 0000 04 00 0800 01000000",
       "SDDL has no text for an entry of type 0x4"},
      {"01 00 1080 00000000 00000000 14000000 00000000 02 00 1c00 0100 0000 "
       "12 00 1400 00000000 01 01 000000000001 00000000",
       "a resource attribute is cut off"},
  };
  for (const auto& [bytes, message] : kMessages) {
    EXPECT_EQ(MessageOfBytes(bytes), message) << bytes;
  }
}

TEST(Sid, HasATextAndBytes) {
  EXPECT_EQ(ToHex(Dump::ParseSid("S-1-5-32-544")), "01020000000000052000000020020000");
  EXPECT_EQ(Dump::FormatSid(FromHex("01 00 000000000000")), "S-1-0");
  for (const char* text : {"", "S-1-", "S-2-5", "SY", "S-1-5-18 ", "S-1-5-"}) {
    EXPECT_TRUE(Dump::ParseSid(text).empty()) << text;
  }
  for (const char* bytes : {"", "01 01 000000000005", "02 00 000000000005", "01 00 000000000005 00000000"}) {
    EXPECT_EQ(Dump::FormatSid(FromHex(bytes)), "") << bytes;
  }
}

}  // namespace
