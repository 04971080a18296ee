#include <gmock/gmock.h>

#include "unit/dump/Hex.h"
#include "unit/policy/AccessTokens.h"

namespace {

using namespace AccessTokens;
using Policy::AttributeOwner;
using Policy::Token;
using enum Policy::Access;

/// What a condition makes of an entry that allows, and of one that denies before another allows.
struct ConditionCase {
  const char* condition;
  Policy::Access allowed;
  Policy::Access notDenied;
};

/// True, false, the platform's unknown, and what only the engine can tell.
constexpr ConditionCase True(const char* condition) { return {condition, Granted, Denied}; }
constexpr ConditionCase False(const char* condition) { return {condition, Denied, Granted}; }
constexpr ConditionCase NoValue(const char* condition) { return {condition, Denied, Denied}; }
constexpr ConditionCase Open(const char* condition) { return {condition, Unknown, Unknown}; }

/// The operator with attributes: n is 5, t is "Text", s holds 1, 2 and 3, @User.c is 7, @Device.d is "x";
/// there is no "none".
Token Attributed() {
  Token token = Operator();
  token.attributes = {{AttributeOwner::Token, u"n", {{INT64{5}}}},
                      {AttributeOwner::Token, u"t", {{u"Text"}}},
                      {AttributeOwner::Token, u"s", {{INT64{1}, INT64{2}, INT64{3}}}},
                      {AttributeOwner::User, u"c", {{INT64{7}}}},
                      {AttributeOwner::Device, u"d", {{u"x"}}},
                      {AttributeOwner::Token, u"none", std::nullopt}};
  return token;
}

void ExpectAll(std::span<const ConditionCase> cases, const Token& token) {
  for (const auto& [condition, allowed, notDenied] : cases) {
    const std::string text = condition;
    EXPECT_EQ(CheckAccess(Dump::ParseSddl("D:(XA;;CC;;;WD;" + text + ")"), token), allowed) << text;
    EXPECT_EQ(CheckAccess(Dump::ParseSddl("D:(XD;;CC;;;WD;" + text + ")(A;;CC;;;WD)"), token), notDenied)
        << text;
  }
}

constexpr ConditionCase kComparisons[]{
    True("(n == 5)"),        False("(n == 6)"),      False("(n != 5)"),      True("(n != 6)"),
    True("(n < 6)"),         False("(n < 5)"),       True("(n <= 5)"),       False("(n <= 4)"),
    True("(n > 4)"),         False("(n > 5)"),       True("(n >= 5)"),       False("(n >= 6)"),
    True("(n > -1)"),        True("(n == 0x5)"),     True("(N == 5)"),       True("(t == \"tEXT\")"),
    False("(t == \"Txt\")"), True("(t != \"Txt\")"), True("(@User.c == 7)"), True("(@Device.d == \"X\")"),
    False("(@User.c < 7)"),
};

constexpr ConditionCase kLists[]{
    True("(s Contains 2)"),           True("(s Contains {1, 3})"),     False("(s Contains {1, 4})"),
    False("(s Contains 4)"),          True("(s Any_of {4, 3})"),       False("(s Any_of {4, 5})"),
    False("(s Not_Contains {1, 3})"), True("(s Not_Contains {1, 4})"), False("(s Not_Any_of {4, 3})"),
    True("(s Not_Any_of {4, 5})"),    True("(t Contains \"text\")"),   True("(t Any_of {\"a\", \"TEXT\"})"),
};

constexpr ConditionCase kMissing[]{
    NoValue("(none == 1)"),
    NoValue("(none != 1)"),
    NoValue("(none < 1)"),
    NoValue("(none Contains \"a\")"),
    NoValue("(none Not_Contains \"a\")"),
    NoValue("(none Not_Any_of {1})"),
    NoValue("(none == n)"),
    NoValue("(n == none)"),
    NoValue("(none)"),
    False("(exists none)"),
    True("(not_exists none)"),
    True("(exists n)"),
    False("(not_exists n)"),
};

constexpr ConditionCase kLogic[]{
    True("(n == 5 && t == \"text\")"),
    False("(n == 5 && n == 6)"),
    True("(n == 6 || n == 5)"),
    False("(n == 6 || n == 7)"),
    False("(!(n == 5))"),
    True("(!(n == 6))"),
    NoValue("(!(none == 1))"),
    False("(none == 1 && n == 6)"),
    NoValue("(none == 1 && n == 5)"),
    True("(none == 1 || n == 5)"),
    NoValue("(none == 1 || n == 6)"),
    True("(n == 5 || n == 6 && n == 7)"),
    False("((n == 5 || n == 6) && n == 7)"),
    False("(who == 1 && n == 6)"),
    True("(who == 1 || n == 5)"),
    Open("(who == 1 && n == 5)"),
};

constexpr ConditionCase kMembers[]{
    True("(Member_of {SID(BO)})"),
    True("(Member_of SID(BO))"),
    True("(Member_of {SID(BO), SID(WD)})"),
    True("(Member_of {SID(S-1-5-21-1-2-3-1002)})"),
    False("(Member_of {SID(BO), SID(BA)})"),
    True("(Member_of_Any {SID(BO), SID(BA)})"),
    False("(Member_of_Any {SID(SY), SID(BA)})"),
    False("(Not_Member_of {SID(BO)})"),
    True("(Not_Member_of {SID(BO), SID(BA)})"),
    True("(Not_Member_of_Any {SID(SY), SID(BA)})"),
    False("(Not_Member_of_Any {SID(BO), SID(BA)})"),
    // A member for denying alone is one for an entry that denies.
    {"(Member_of {SID(RE)})", Denied, Denied},
    {"(Not_Member_of {SID(RE)})", Granted, Granted},
};

constexpr ConditionCase kOpenOnes[]{
    Open("(who == 1)"),
    Open("(exists who)"),
    Open("(who Contains \"a\")"),
    Open("(@User.n == 5)"),
    Open("(@Resource.n == 5)"),
    Open("(n)"),
    Open("(n == t)"),
    // How types that differ compare, and lists, and texts by their order.
    Open("(n == \"5\")"),
    Open("(n == {5})"),
    Open("(s == 1)"),
    Open("(t < \"u\")"),
    Open("(t == #00)"),
    Open("(n Contains {})"),
    Open("(Device_Member_of {SID(BO)})"),
    Open("(Not_Device_Member_of_Any {SID(BO)})"),
};

TEST(AceCondition, ComparesNumbersAndTexts) { ExpectAll(kComparisons, Attributed()); }
TEST(AceCondition, ComparesLists) { ExpectAll(kLists, Attributed()); }
TEST(AceCondition, IsUnknownForAMissingAttributeAndThenDoesNotGrantButDenies) {
  ExpectAll(kMissing, Attributed());
}
TEST(AceCondition, JoinsByLogicOfThreeValues) { ExpectAll(kLogic, Attributed()); }
TEST(AceCondition, AsksForGroups) { ExpectAll(kMembers, Operator()); }
TEST(AceCondition, IsLeftToTheEngineWhereItIsNotKnown) { ExpectAll(kOpenOnes, Attributed()); }

constexpr ConditionCase kPackages[]{
    True("(WIN://SYSAPPID Contains \"example.app_0123456789ABC\")"),
    False("(WIN://SYSAPPID Contains \"Example.Other_0123456789abc\")"),
    True("(exists WIN://SYSAPPID)"),
    // Perhaps it is the full name or the application's id.
    Open("(WIN://SYSAPPID Contains \"Example.App_1.0.0.0_x64__0123456789abc\")"),
    Open("(WIN://SYSAPPID Contains \"App\")"),
    Open("(WIN://SYSAPPID == \"Example.App_0123456789abc\")"),
};
TEST(AceCondition, KnowsThePackageByItsFamilyName) { ExpectAll(kPackages, PackagedAlice()); }

TEST(AceCondition, TellsAnAppContainersFamilyByItsSid) {
  constexpr ConditionCase kCases[]{
      // There are app containers of programs that are not packaged.
      {"(WIN://SYSAPPID Contains \"example.app_0123456789ABC\")", Unknown, Denied},
      {"(WIN://SYSAPPID Contains \"Example.Other_0123456789abc\")", Denied, Unknown},
      Open("(WIN://SYSAPPID Contains \"\u00C4.App_0123456789abc\")"),
      Open("(WIN://SYSAPPID Contains \"App\")"),
      Open("(exists WIN://SYSAPPID)"),
  };
  Token token = Policy::AppContainerProgram({Policy::PackageSid("Example.App_0123456789abc").value(), {}});
  // So that everybody is allowed to the package as well.
  token.appContainer->capabilities.push_back(Named("S-1-1-0"));
  ExpectAll(kCases, token);
}

TEST(AceCondition, IsUnknownOfAPackageForAProgramThatIsNotPackaged) {
  constexpr ConditionCase kCases[]{
      NoValue("(WIN://SYSAPPID Contains \"Example.App_0123456789abc\")"),
      False("(exists WIN://SYSAPPID)"),
  };
  ExpectAll(kCases, Alice());
}

constexpr AccessCase kMembersInPasses[]{
    {"D:(XA;;CC;;;WD;(Member_of {SID(BU)}))(A;;CC;;;AC)", App, Granted},
    {"D:(A;;CC;;;WD)(XA;;CC;;;AC;(Member_of {SID(BU)}))", App, Unknown},
    {"D:(XA;;CC;;;WD;(Member_of {SID(AC)}))(A;;CC;;;AC)", App, Unknown},
    {"D:(A;;CC;;;WD)(XA;;CC;;;RC;(Member_of {SID(BO)}))", Restricted, Unknown},
    {"D:(XA;;CC;;;WD;(Member_of {SID(S-1-5-21-1-2-3-1001)}))", AnyUser, Unknown},
};
TEST(AceCondition, AsksForGroupsOfTheUserAlone) {
  for (const auto& [sddl, token, access] : kMembersInPasses) {
    EXPECT_EQ(CheckAccess(Dump::ParseSddl(sddl), token()), access) << sddl;
  }
}

/// An entry for everybody, and its tail.
std::vector<UINT8> Entry(const char* type, std::vector<UINT8> tail) {
  tail.resize((tail.size() + 3) / 4 * 4);  // with padding
  auto bytes = FromHex(type + std::string("00 0000 01000000 01 01 000000000001 00000000"));
  bytes[2] = static_cast<UINT8>(bytes.size() + tail.size());
  bytes.insert(bytes.end(), tail.begin(), tail.end());
  return bytes;
}

std::vector<UINT8> DescriptorOf(const std::vector<std::vector<UINT8>>& entries) {
  auto bytes = FromHex("01 00 0480 00000000 00000000 00000000 14000000 02 00 0000 0000 0000");
  for (const auto& entry : entries) {
    bytes.insert(bytes.end(), entry.begin(), entry.end());
  }
  bytes[22] = static_cast<UINT8>(bytes.size() - 20);
  bytes[24] = static_cast<UINT8>(entries.size());
  return bytes;
}

std::vector<UINT8> Allowing(const char* condition) { return DescriptorOf({Entry("09", FromHex(condition))}); }
std::vector<UINT8> Denying(const char* condition) {
  return DescriptorOf({Entry("0a", FromHex(condition)), Entry("00", {})});
}

struct MalformedCondition {
  const char* why;
  const char* bytes;
};
constexpr MalformedCondition kMalformed[]{
    {"nothing", "61727478"},
    {"padding alone", "61727478 00000000"},
    {"'and' without operands", "61727478 a0"},
    {"'not' without an operand", "61727478 a2"},
    {"no token below the operators", "61727478 7f"},
    {"no token between the operators", "61727478 94"},
    {"no token above them", "61727478 ff"},
    {"a name beyond the end", "61727478 f8 ffffffff"},
    {"half a character", "61727478 f8 03000000 6e0061 8d"},
    {"operands without an operator", "61727478 f8 02000000 6e00 04 0500000000000000 03 02"},
    {"a number alone", "61727478 04 0500000000000000 03 02"},
    {"a number compared", "61727478 04 0500000000000000 03 02 04 0500000000000000 03 02 80"},
    {"no token above the memberships", "61727478 f8 02000000 6e00 04 0500000000000000 03 02 94"},
    {"a comparison with a comparison", "61727478 f8 02000000 6e00 f8 02000000 6e00 87 80"},
    {"a list that ends within a text", "61727478 50 04000000 10000000 89"},
    {"a list within a list", "61727478 50 05000000 50 00000000 89"},
    {"a SID compared", "61727478 51 0c000000 010100000000000100000000 f8 02000000 6e00 80"},
    {"more than a SID", "61727478 51 0d000000 01010000000000010000000000 89"},
    {"a member of a text", "61727478 10 02000000 6100 89"},
    {"a member of an attribute", "61727478 f8 02000000 6e00 89"},
};

TEST(AceCondition, IsUnknownIfMalformed) {
  for (const auto& [why, bytes] : kMalformed) {
    EXPECT_EQ(CheckAccess(Allowing(bytes), Attributed()), Denied) << why;
    EXPECT_EQ(CheckAccess(Denying(bytes), Attributed()), Denied) << why;
  }
}

TEST(AceCondition, MayEndWithPadding) {
  EXPECT_EQ(CheckAccess(Allowing("61727478 f8 02000000 6e00 87 0000000000"), Attributed()), Granted);
  EXPECT_EQ(CheckAccess(Denying("61727478 f8 02000000 6e00 8d 0000000000"), Attributed()), Granted);
}

TEST(AceCondition, OfOtherDataIsLeftToTheEngine) {
  EXPECT_EQ(CheckAccess(Allowing("61727479 f8 02000000 6e00 87"), Attributed()), Unknown);
  EXPECT_EQ(CheckAccess(Denying("61727479 f8 02000000 6e00 87"), Attributed()), Unknown);
}

}  // namespace
