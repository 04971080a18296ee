#include <gtest/gtest.h>

#include "dump/Sddl.h"
#include "unit/dump/Hex.h"

namespace {

using Dump::FormatSddl;
using Dump::ParseSddl;
using Dump::SddlError;

std::string InDescriptor(const std::string& condition) { return "D:(XA;;CC;;;WD;" + condition + ")"; }

/// The bytes behind the entry's SID.
std::vector<UINT8> BytesOf(const std::string& condition) {
  constexpr std::ptrdiff_t kConditionAt = 48;
  const std::vector<UINT8> descriptor = ParseSddl(InDescriptor(condition));
  return {descriptor.begin() + kConditionAt, descriptor.end()};
}

struct Condition {
  const char* text;
  const char* bytes;  ///< less the mark and the zeros that fill the entry up
};

constexpr Condition kConditions[]{
    {"(exists a)", "f8 02000000 6100 87"},
    {"(not_exists @User.a)", "f9 02000000 6100 8d"},
    {"(@Device.Bitlocker)", "fb 12000000 4200 6900 7400 6c00 6f00 6300 6b00 6500 7200"},
    {"(a == \"b\")", "f8 02000000 6100 10 02000000 6200 80"},
    {"(a != -1)", "f8 02000000 6100 04 ffffffffffffffff 02 02 81"},
    {"(a < +017)", "f8 02000000 6100 04 0f00000000000000 01 01 82"},
    {"(a <= 0x10)", "f8 02000000 6100 04 1000000000000000 03 03 83"},
    {"(a > #00ff)", "f8 02000000 6100 18 02000000 00ff 84"},
    {"(a >= @Resource.b)", "f8 02000000 6100 fa 02000000 6200 85"},
    {"(a Contains {1, \"x\"})", "f8 02000000 6100 50 12000000 04 0100000000000000 03 02 10 02000000 7800 86"},
    {"(a Any_of {})", "f8 02000000 6100 50 00000000 88"},
    {"(a Not_Contains SID(SY))", "f8 02000000 6100 51 0c000000 01 01 000000000005 12000000 8e"},
    {"(a Not_Any_of b)", "f8 02000000 6100 f8 02000000 6200 8f"},
    {"(Member_of {SID(BA), SID(WD)})",
     "50 26000000 51 10000000 01 02 000000000005 20000000 20020000 51 0c000000 01 01 000000000001 00000000 "
     "89"},
    {"(Device_Member_of SID(WD))", "51 0c000000 01 01 000000000001 00000000 8a"},
    {"(Member_of_Any SID(WD))", "51 0c000000 01 01 000000000001 00000000 8b"},
    {"(Device_Member_of_Any SID(WD))", "51 0c000000 01 01 000000000001 00000000 8c"},
    {"(Not_Member_of SID(WD))", "51 0c000000 01 01 000000000001 00000000 90"},
    {"(Not_Device_Member_of SID(WD))", "51 0c000000 01 01 000000000001 00000000 91"},
    {"(Not_Member_of_Any SID(WD))", "51 0c000000 01 01 000000000001 00000000 92"},
    {"(Not_Device_Member_of_Any SID(WD))", "51 0c000000 01 01 000000000001 00000000 93"},
    {"(a && b || !(c))", "f8 02000000 6100 f8 02000000 6200 a0 f8 02000000 6300 a2 a1"},
    {"(a && (b || c))", "f8 02000000 6100 f8 02000000 6200 f8 02000000 6300 a1 a0"},
    {"(a && (b && c))", "f8 02000000 6100 f8 02000000 6200 f8 02000000 6300 a0 a0"},
    {"(a || b || c)", "f8 02000000 6100 f8 02000000 6200 a1 f8 02000000 6300 a1"},
};

TEST(SddlCondition, IsPostfix) {
  for (const auto& [text, bytes] : kConditions) {
    std::string expected = ToHex(FromHex(std::string("61727478") + bytes));
    expected.resize((expected.size() + 7) / 8 * 8, '0');
    EXPECT_EQ(ToHex(BytesOf(text)), expected) << text;
  }
}

TEST(SddlCondition, TextsComeBackAsTheyAre) {
  for (const Condition& condition : kConditions) {
    const std::string sddl = InDescriptor(condition.text);
    EXPECT_EQ(FormatSddl(ParseSddl(sddl)), sddl);
  }
}

TEST(SddlCondition, TestsAPackageAsTheSystemsOwnFiltersDo) {
  EXPECT_EQ(ToHex(BytesOf("(WIN://SYSAPPID Contains \"A_1\")")),
            ToHex(FromHex(
                "61727478 f8 1c000000 5700 4900 4e00 3a00 2f00 2f00 5300 5900 5300 4100 5000 5000 4900 4400 "
                "10 06000000 4100 5f00 3100 86 000000")));
}

TEST(SddlCondition, StandsInEveryConditionalEntry) {
  const std::string sddl =
      "D:(XD;;CC;;;WD;(exists a))(ZA;;CC;00112233-4455-6677-8899-aabbccddeeff;;WD;(exists a))"
      "S:(XU;;CC;;;WD;(exists a))(FL;;CC;;;WD;(exists a))(XA;;CC;;;WD)";
  EXPECT_EQ(FormatSddl(ParseSddl(sddl)), sddl);
}

TEST(SddlCondition, OtherWaysToWriteItGiveTheSame) {
  constexpr const char* kSame[][2]{
      {"(a==\"b\"&&c)", "(a == \"b\" && c)"},
      {"( ( a )\t||(b ) )", "(a || b)"},
      {"(!a == 1)", "(!(a == 1))"},
      {"(!!a)", "(!(!(a)))"},
      {"((a && b) && c)", "(a && b && c)"},
      {"((a && b) || (c && d))", "(a && b || c && d)"},
      {"((a || b) && c)", "((a || b) && c)"},
      {"(EXISTS @USER.a)", "(exists @User.a)"},
      {"(a cONTAINS {1,2 , 3})", "(a Contains {1, 2, 3})"},
      {"(member_of{SID(S-1-1-0)})", "(Member_of {SID(WD)})"},
      {"(a == 0X1F)", "(a == 0x1f)"},
      {"(%0061 == \"%0062\")", "(a == \"b\")"},
      {"(a == \"50%\")", "(a == \"50%0025\")"},
  };
  for (const auto& [text, canonical] : kSame) {
    EXPECT_EQ(FormatSddl(ParseSddl(InDescriptor(text))), InDescriptor(canonical));
  }
}

TEST(SddlCondition, NamesAndTextsKeepEveryCharacter) {
  constexpr const char* kTexts[]{
      "(a%0020b%0040 == \"%0022%0025%000a\")",
      "(@User.%0040 == \"\xF0\x9F\x94\x92\")",
      "(\xC3\xA9 == \"%d800\")",
      "(%0065xists)",
      "(%0031 == 1)",
      "(a == %0031)",
  };
  for (const char* text : kTexts) {
    EXPECT_EQ(FormatSddl(ParseSddl(InDescriptor(text))), InDescriptor(text));
  }
}

std::string ConditionRefusalOf(const std::string& condition) {
  try {
    ParseSddl(InDescriptor(condition));
  } catch (const SddlError& error) {
    return error.what();
  }
  return "none";
}

TEST(SddlCondition, SaysWhatItExpectedAndWhere) {
  constexpr const char* kMessages[][2]{
      {"a", "expected \"(\" at character 16, found \"a)\""},
      {"()", "expected the name of an attribute at character 17, found \"))\""},
      {"(a", "expected \")\" at character 19, found the end"},
      {"(a b)", "expected \")\" at character 19, found \"b))\""},
      {"(a ==)", "expected the name of an attribute at character 21, found \"))\""},
      {"(a == \"b)", "expected \"\"\" at character 26, found the end"},
      {"(a == 1x)", "expected \")\" at character 23, found \"x))\""},
      {"(a == 9223372036854775808)",
       "expected an integer of 64 bits at character 22, found \"9223372036854775808))\""},
      {"(a == 08)", "expected an integer of 64 bits at character 22, found \"08))\""},
      {"(a == {1 2})", "expected \",\" at character 25, found \"2}))\""},
      {"(a == {b})", "expected a value at character 23, found \"b}))\""},
      {"(a && )", "expected the name of an attribute at character 22, found \"))\""},
      {"(Member_of a)", "expected SID(...) at character 27, found \"a))\""},
      {"(Member_of {1})", "expected SID(...) at character 28, found \"1}))\""},
      {"(\"a\" == b)", "expected the name of an attribute at character 17, found \"\"a\" == b))\""},
      {"(a == #1)", "expected an even number of hexadecimal digits at character 24, found \"))\""},
  };
  for (const auto& [text, message] : kMessages) {
    EXPECT_EQ(ConditionRefusalOf(text), message) << text;
  }
}

std::string Nested(int depth) {
  return std::string(static_cast<std::size_t>(depth), '(') + "a" +
         std::string(static_cast<std::size_t>(depth), ')');
}

TEST(SddlCondition, NestsSixtyFourDeep) {
  EXPECT_EQ(FormatSddl(ParseSddl(InDescriptor(Nested(64)))), InDescriptor("(a)"));
  EXPECT_EQ(ConditionRefusalOf(Nested(65)),
            "expected at most 64 parentheses in each other at character 81, found "
            "\"a)))))))))))))))))))))))))))))))))))))))...\"");
  EXPECT_EQ(ConditionRefusalOf(Nested(100000)).substr(0, 56),
            "expected at most 64 parentheses in each other at charact");
}

std::string ConditionRefusalOfBytes(const std::string& condition) {
  std::vector<UINT8> bytes = FromHex(condition);
  bytes.resize((bytes.size() + 3) / 4 * 4);
  std::vector<UINT8> descriptor = FromHex(
      "01 00 0480 00000000 00000000 00000000 14000000 02 00 0000 0100 0000 09 00 0000 01000000 "
      "01 01 000000000001 00000000");
  descriptor[22] = static_cast<UINT8>(28 + bytes.size());
  descriptor[30] = static_cast<UINT8>(20 + bytes.size());
  descriptor.insert(descriptor.end(), bytes.begin(), bytes.end());
  try {
    return FormatSddl(descriptor);
  } catch (const SddlError& error) {
    return error.what();
  }
}

TEST(SddlCondition, SaysWhatIsWrongWithBytes) {
  constexpr const char* kMessages[][2]{
      {"61727479", "a condition is malformed"},                                    // another mark
      {"61727478", "a condition is malformed"},                                    // nothing
      {"61727478 f8 02000000 6100 f8 02000000 6100", "a condition is malformed"},  // two results
      {"61727478 f8 00000000", "a condition names an attribute without a name"},
      {"61727478 f8 01000000 61", "a text in UTF-16 has an odd number of bytes"},
      {"61727478 f8 ffffffff 6100", "a condition is cut off"},
      {"61727478 10 02000000 6100", "a condition is malformed"},                 // a value alone
      {"61727478 f8 02000000 6100 80", "a condition is malformed"},              // no value
      {"61727478 a0", "a condition is malformed"},                               // no operands
      {"61727478 c0", "a condition is malformed"},                               // no such token
      {"61727478 f8 02000000 6100 89", "a condition is malformed"},              // no SIDs
      {"61727478 50 07000000 10 02000000 6100 89", "a condition is malformed"},  // no SIDs in the list
      {"61727478 51 04000000 01 01 0000 89", "a condition is malformed"},        // half a SID
      {"61727478 50 05000000 50 00000000 89", "a condition is malformed"},       // a list in a list
      {"61727478 f8 02000000 6100 04 0100000000000000 03 04 80",
       "a condition has an integer of unknown base"},
  };
  for (const auto& [bytes, message] : kMessages) {
    EXPECT_EQ(ConditionRefusalOfBytes(bytes), message) << bytes;
  }
}

TEST(SddlCondition, NumbersOfEveryWidthAreRead) {
  for (const char* token : {"01", "02", "03", "04"}) {
    EXPECT_EQ(ConditionRefusalOfBytes(std::string("61727478 f8 02000000 6100 ") + token +
                                      " fbffffffffffffff 03 02 80"),
              "D:(XA;;CC;;;WD;(a == -5))");
  }
}

TEST(SddlCondition, BytesNestSixtyFourDeep) {
  std::string bytes = "61727478 f8 02000000 6100";
  for (int i = 0; i < 63; ++i) {
    bytes += "a2";
  }
  EXPECT_EQ(ConditionRefusalOfBytes(bytes).substr(0, 20), "D:(XA;;CC;;;WD;(!(!(");
  EXPECT_EQ(ConditionRefusalOfBytes(bytes + "a2"), "a condition is nested too deeply");
}

}  // namespace
