#include "policy/PrincipalText.h"

#include <gtest/gtest.h>

#include "catalog/Fields.h"
#include "catalog/Keys.h"
#include "dump/Sddl.h"
#include "policy/ConditionText.h"

namespace {

/// ALE_PACKAGE_ID
const GUID kPackageId = Catalog::FindField("ALE_PACKAGE_ID")->key;

std::string TextOf(const char* sid) { return Policy::PrincipalText(Policy::ParseSid(sid).value()); }

std::string TextOfSddl(const char* sddl) { return Policy::DescriptorText(Dump::ParseSddl(sddl)); }

TEST(PrincipalText, NamesThoseThatAreTheSameEverywhere) {
  EXPECT_EQ(TextOf("S-1-1-0"), "Everyone");
  EXPECT_EQ(TextOf("S-1-5-18"), "SYSTEM");
  EXPECT_EQ(TextOf("S-1-15-2-1"), "all app containers");
  EXPECT_EQ(TextOf("S-1-15-3-1"), "capability internetClient");
}

TEST(PrincipalText, NamesServicesByTheSidsOfTheirNames) {
  EXPECT_EQ(TextOf("S-1-5-80-859482183-879914841-863379149-1145462774-2388618682"), "service Dnscache");
  EXPECT_EQ(TextOf("S-1-5-80-3088073201-1464728630-1879813800-1107566885-823218052"), "service MpsSvc");
  EXPECT_EQ(TextOf("S-1-5-80-956008885-3418522649-1831038044-1853292631-2271478464"),
            "service TrustedInstaller");
  EXPECT_EQ(TextOf("S-1-15-3-1024-820624432-2503302554-1536879699-4049119443-112573677-3799174643-950279649-"
                   "4267032225"),
            "capability networkLoopback");
}

TEST(PrincipalText, GivesOthersAsTheyAre) {
  EXPECT_EQ(TextOf("S-1-5-21-1-2-3-1001"), "S-1-5-21-1-2-3-1001");
  EXPECT_EQ(TextOf("S-1-5-80-1-2-3-4-5"), "S-1-5-80-1-2-3-4-5");
}

TEST(DescriptorText, TellsEntriesThatGrantOrDenyTheMatch) {
  EXPECT_EQ(TextOfSddl("O:SYG:SYD:(A;;CCRC;;;SY)"), "allow SYSTEM");
  EXPECT_EQ(TextOfSddl("D:(D;;CC;;;SY)(A;;CC;;;WD)(A;;CC;;;AN)"),
            "deny SYSTEM; allow Everyone, ANONYMOUS LOGON");
  EXPECT_EQ(TextOfSddl("D:(A;;RC;;;SY)(A;IO;CC;;;WD)"), "allow nobody");
  EXPECT_EQ(TextOfSddl("D:"), "allow nobody");
  EXPECT_EQ(TextOfSddl("D:NO_ACCESS_CONTROL"), "allow all");
  EXPECT_EQ(TextOfSddl("D:(XA;;CC;;;WD;(WIN://SYSAPPID Contains \"a_b\"))(A;;CC;;;S-1-15-3-1)"),
            "allow Everyone under a condition, capability internetClient");
}

TEST(DescriptorText, CountsTheRestOfAnEntrysLikes) {
  EXPECT_EQ(TextOfSddl("D:(A;;CC;;;SY)(A;;CC;;;LS)(A;;CC;;;NS)(A;;CC;;;WD)(A;;CC;;;AN)(A;;CC;;;BA)"),
            "allow SYSTEM, LOCAL SERVICE, NETWORK SERVICE, Everyone and 2 more");
}

TEST(DescriptorText, SaysWhatIsMalformed) {
  const UINT8 bytes[]{1, 0, 4, 0x80};
  EXPECT_EQ(Policy::DescriptorText(bytes), "a malformed descriptor");
}

Policy::Condition ConditionOn(const GUID& key, FWP_MATCH_TYPE match, Policy::Value value) {
  return {key, nullptr, match, std::move(value), {}, "the engine's words"};
}

TEST(ConditionText, NamesFlags) {
  EXPECT_EQ(Policy::ConditionText(ConditionOn(Catalog::kFlagsFieldKey, FWP_MATCH_FLAGS_ALL_SET,
                                              {FWP_UINT32, UINT64{0x800001}})),
            "FLAGS FLAGS_ALL_SET IS_NON_APPCONTAINER_LOOPBACK|IS_LOOPBACK");
}

TEST(ConditionText, NamesSids) {
  const std::string nobody("\1\1\0\0\0\0\0\0\0\0\0\0", 12);
  EXPECT_EQ(Policy::ConditionText(ConditionOn(kPackageId, FWP_MATCH_NOT_EQUAL, {FWP_SID, nobody})),
            "ALE_PACKAGE_ID NOT_EQUAL S-1-0-0 (no app container)");
  EXPECT_EQ(Policy::ConditionText(ConditionOn(kPackageId, FWP_MATCH_EQUAL, {FWP_SID, std::string("\1\1")})),
            "ALE_PACKAGE_ID EQUAL a malformed SID");
}

TEST(ConditionText, NamesProfiles) {
  const GUID key = Catalog::FindField("ORIGINAL_PROFILE_ID")->key;
  EXPECT_EQ(Policy::ConditionText(ConditionOn(key, FWP_MATCH_EQUAL, {FWP_UINT32, UINT64{1}})),
            "ORIGINAL_PROFILE_ID EQUAL public");
  EXPECT_EQ(Policy::ConditionText(ConditionOn(key, FWP_MATCH_EQUAL, {FWP_UINT32, UINT64{3}})),
            "ORIGINAL_PROFILE_ID EQUAL domain");
  EXPECT_EQ(Policy::ConditionText(ConditionOn(key, FWP_MATCH_EQUAL, {FWP_UINT32, UINT64{4}})),
            "the engine's words");
}

TEST(ConditionText, LeavesOthersInTheEnginesWords) {
  EXPECT_EQ(Policy::ConditionText(
                ConditionOn(Catalog::kIpRemotePortFieldKey, FWP_MATCH_EQUAL, {FWP_UINT16, UINT64{53}})),
            "the engine's words");
}

TEST(ConditionsText, CountsTheRestOfAFieldsConditions) {
  const auto port = ConditionOn(Catalog::kIpRemotePortFieldKey, FWP_MATCH_EQUAL, {});
  Policy::Filter filter{};
  EXPECT_EQ(Policy::ConditionsText(filter), "every connection");
  filter.conditions = {
      port, port, port,
      port, port, ConditionOn(Catalog::kFlagsFieldKey, FWP_MATCH_FLAGS_NONE_SET, {FWP_UINT32, UINT64{1}})};
  EXPECT_EQ(Policy::ConditionsText(filter),
            "the engine's words & the engine's words & the engine's words & 2 more on IP_REMOTE_PORT & FLAGS "
            "FLAGS_NONE_SET IS_LOOPBACK");
}

}  // namespace
