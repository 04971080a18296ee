#include "policy/AccessCheck.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>

#include "unit/dump/Hex.h"
#include "unit/policy/AccessTokens.h"

namespace {

using namespace AccessTokens;
using Policy::CheckAccess;
using enum Policy::Access;

constexpr AccessCase kLists[]{
    {"O:SYG:SY", Alice, Granted},
    {"D:NO_ACCESS_CONTROL", Alice, Granted},
    {"D:NO_ACCESS_CONTROL", Restricted, Granted},
    {"D:NO_ACCESS_CONTROL", App, Unknown},
    {"O:SYG:SY", App, Unknown},
    {"D:", Alice, Denied},
    {"D:", System, Denied},
    {"D:", App, Denied},
    {"O:SYG:SYD:", System, Denied},
    {"D:S:NO_ACCESS_CONTROL", System, Denied},
    {"D:(A;;CC;;;WD)S:NO_ACCESS_CONTROL", Alice, Granted},
    {"D:PAI(A;;CC;;;WD)S:(AU;SAFA;CC;;;WD)(ML;;NW;;;HI)", Alice, Granted},
};

constexpr AccessCase kOrders[]{
    {"D:(A;;CC;;;WD)", Alice, Granted},
    {"D:(D;;CC;;;WD)", Alice, Denied},
    {"D:(D;;CC;;;WD)(A;;CC;;;WD)", Alice, Denied},
    {"D:(A;;CC;;;WD)(D;;CC;;;WD)", Alice, Granted},
    {"D:(A;;CC;;;BU)(D;;CC;;;AU)", Alice, Granted},
    {"D:(D;;CC;;;SY)(A;;CC;;;WD)", Alice, Granted},
    {"D:(D;;CC;;;SY)(A;;CC;;;WD)", System, Denied},
    {"D:(A;;CC;;;SY)(D;;CC;;;WD)", System, Granted},
    {"D:(A;;CC;;;SY)(A;;CC;;;LS)", Alice, Denied},
    {"D:(A;;CC;;;S-1-5-21-1-2-3-1001)", Alice, Granted},
    {"D:(D;;CC;;;S-1-5-21-1-2-3-1001)(A;;CC;;;WD)", Alice, Denied},
};

constexpr AccessCase kRights[]{
    {"D:(A;;CCRC;;;WD)", Alice, Granted},
    {"D:(A;;RCWDWO;;;WD)", Alice, Denied},
    {"D:(D;;RC;;;WD)(A;;CC;;;WD)", Alice, Granted},
    {"D:(A;;0x1;;;WD)", Alice, Granted},
    {"D:(A;;0xfffe;;;WD)", Alice, Denied},
    {"D:(A;;FR;;;WD)", Alice, Granted},
    {"D:(A;;FW;;;WD)", Alice, Denied},
    {"D:(A;;KX;;;WD)", Alice, Granted},
    {"D:(A;;GA;;;WD)", Alice, Granted},
    {"D:(D;;GA;;;WD)(A;;CC;;;WD)", Alice, Denied},
    {"D:(A;;GRGWGX;;;WD)", Alice, Denied},
    {"D:(A;IO;CC;;;WD)", Alice, Denied},
    {"D:(D;IO;CC;;;WD)(A;;CC;;;WD)", Alice, Granted},
    {"D:(A;OICIIO;CC;;;WD)", Alice, Denied},
    {"D:(A;NP;CC;;;WD)", Alice, Granted},
    {"D:(A;OICINPID;CC;;;WD)", Alice, Granted},
};

constexpr AccessCase kOwners[]{
    {"O:SYD:(A;;RCWD;;;SY)", System, Denied},
    {"O:SYD:", System, Denied},
    {"O:SYD:(A;;CC;;;OW)", System, Unknown},
    {"O:SYD:(A;;CC;;;OW)", Alice, Denied},
    {"D:(A;;CC;;;OW)", System, Denied},
    {"O:SYD:(D;;CC;;;OW)(A;;CC;;;SY)", System, Unknown},
    {"O:SYD:(A;;CC;;;OW)(A;;CC;;;SY)", System, Granted},
    {"O:SYD:(A;;CC;;;CO)(A;;CC;;;PS)", System, Denied},
};

constexpr AccessCase kGroups[]{
    {"D:(A;;CC;;;BO)", Operator, Granted},
    {"D:(D;;CC;;;BO)(A;;CC;;;WD)", Operator, Denied},
    {"D:(A;;CC;;;RE)", Operator, Denied},
    {"D:(D;;CC;;;RE)(A;;CC;;;WD)", Operator, Denied},
    {"D:(A;;CC;;;PO)", Operator, Denied},
    {"D:(D;;CC;;;PO)(A;;CC;;;WD)", Operator, Granted},
    {"D:(A;;CC;;;BA)", Alice, Denied},
    {"D:(A;;CC;;;BA)", ElevatedAlice, Granted},
    {"D:(D;;CC;;;BA)(A;;CC;;;WD)", Alice, Unknown},
    {"D:(D;;CC;;;BA)", Alice, Denied},
    {"D:(A;;CC;;;ME)(A;;CC;;;LW)", Alice, Denied},
    {"D:(A;;CC;;;BA)", System, Granted},
    {"D:(A;;CC;;;LS)(A;;CC;;;NS)", System, Denied},
    {"D:(A;;CC;;;NU)(A;;CC;;;AN)", Alice, Denied},
    {"D:(A;;CC;;;SU)", Alice, Denied},
    {"D:(A;;CC;;;SU)", Service, Granted},
};

constexpr AccessCase kOpenOnes[]{
    {"D:(A;;CC;;;S-1-5-21-1-2-3-1001)", AnyUser, Unknown},
    {"D:(A;;CC;;;S-1-5-21-1-2-3-1001)(A;;CC;;;WD)", AnyUser, Granted},
    {"D:(D;;CC;;;S-1-5-21-1-2-3-1001)(A;;CC;;;WD)", AnyUser, Unknown},
    {"D:(D;;CC;;;S-1-5-21-1-2-3-1001)(D;;CC;;;WD)", AnyUser, Denied},
    {"D:(D;;CC;;;WD)(A;;CC;;;S-1-5-21-1-2-3-1001)", AnyUser, Denied},
    {"D:(A;;CC;;;S-1-5-21-1-2-3-1001)(A;;CC;;;S-1-5-21-1-2-3-1002)", AnyUser, Unknown},
    {"D:(A;;CC;;;RD)", Alice, Unknown},
    {"D:(A;;CC;;;SY)", Service, Unknown},
    {"D:(A;;CC;;;SY)", SystemService, Granted},
    {"D:(A;;CC;;;NS)", SystemService, Denied},
    {"D:(A;;CC;;;S-1-5-80-1-2-3-4-5)", Service, Granted},
    {"D:(A;;CC;;;S-1-5-80-1-2-3-4-6)", Service, Denied},
};

constexpr AccessCase kRestrictedOnes[]{
    {"D:(A;;CC;;;WD)", Restricted, Denied},
    {"D:(A;;CC;;;WD)(A;;CC;;;RC)", Restricted, Granted},
    {"D:(A;;CC;;;RC)", Restricted, Denied},
    {"D:(A;;CC;;;BO)", Restricted, Granted},
    {"D:(D;;CC;;;RC)(A;;CC;;;BO)", Restricted, Denied},
    {"D:(A;;CC;;;WD)(D;;CC;;;RC)(A;;CC;;;BO)", Restricted, Denied},
    {"D:(A;;CC;;;WD)", WriteRestricted, Unknown},
    {"D:(A;;CC;;;WD)(A;;CC;;;S-1-5-80-1-2-3-4-5)", WriteRestricted, Granted},
    {"D:(A;;CC;;;S-1-5-80-1-2-3-4-5)", WriteRestricted, Denied},
};

constexpr AccessCase kAppContainers[]{
    {"D:(A;;CC;;;WD)", App, Denied},
    {"D:(A;;CC;;;AC)", App, Denied},
    {"D:(A;;CC;;;WD)(A;;CC;;;AC)", App, Granted},
    {"D:(A;;CC;;;WD)(A;;CC;;;AC)", LessPrivilegedApp, Denied},
    {"D:(A;;CC;;;WD)(A;;CC;;;S-1-15-2-2)", LessPrivilegedApp, Granted},
    {"D:(A;;CC;;;WD)(A;;CC;;;S-1-15-2-1-2-3-4-5-6-7)", LessPrivilegedApp, Granted},
    {"D:(A;;CC;;;WD)(A;;CC;;;S-1-15-2-1-2-3-4-5-6-8)", App, Denied},
    {"D:(A;;CC;;;WD)(A;;CC;;;S-1-15-3-1)", InternetApp, Granted},
    {"D:(A;;CC;;;WD)(A;;CC;;;S-1-15-3-1)", App, Denied},
    {"D:(A;;CC;;;WD)(A;;CC;;;S-1-15-3-2)", InternetApp, Denied},
    {"D:(D;;CC;;;WD)(A;;CC;;;AC)", App, Denied},
    {"D:(A;;CC;;;WD)(D;;CC;;;AC)(A;;CC;;;S-1-15-3-1)", InternetApp, Unknown},
    {"D:(A;;CC;;;WD)(D;;CC;;;AC)", App, Denied},
    {"D:(A;;CC;;;AC)(A;;CC;;;S-1-15-3-1)", Alice, Denied},
};

/// The shapes that Windows' own filters have.
constexpr const char* kServiceShape = "O:SYG:SYD:(A;;CCRC;;;S-1-5-80-1-2-3-4-5)";
constexpr const char* kFamilyShape =
    "O:SYG:SYD:(XA;;CC;;;WD;(WIN://SYSAPPID Contains \"Example.App_0123456789abc\"))"
    "(A;;CC;;;S-1-15-3-1)(A;;CC;;;S-1-15-3-2)(A;;CC;;;S-1-15-3-3)";
constexpr const char* kUserShape =
    "O:SYG:SYD:(A;;CCRC;;;S-1-5-21-1-2-3-1001)(A;;CCRC;;;AC)(A;;CCRC;;;S-1-15-3-1)(A;;CCRC;;;S-1-15-3-2)";
constexpr const char* kSystemShape = "O:SYG:SYD:(A;;CCRC;;;SY)(A;;CCRC;;;AC)(A;;CCRC;;;S-1-15-3-1)";
constexpr const char* kLoopbackShape =
    "O:LSD:(A;;CC;;;AC)(A;;CC;;;S-1-15-3-1)(A;;CC;;;S-1-15-3-2)(A;;CC;;;WD)(A;;CC;;;AN)";
constexpr const char* kCapabilityShape = "O:LSD:(A;;CC;;;S-1-15-3-1)(A;;CC;;;WD)(A;;CC;;;AN)";
constexpr const char* kHardeningShape =
    "D:(A;NP;CC;;;S-1-5-80-1-1-1-1-1)(A;NP;CC;;;S-1-5-80-1-2-3-4-5)S:NO_ACCESS_CONTROL";
constexpr const char* kNetworkLoopbackShape =
    "D:(A;;CC;;;WD)(A;;CC;;;AN)(A;;CC;;;S-1-15-3-1024-820624432-2503302554-1536879699-4049119443-"
    "112573677-3799174643-950279649-4267032225)S:NO_ACCESS_CONTROL";

constexpr AccessCase kShapes[]{
    {kServiceShape, Alice, Denied},
    {kServiceShape, System, Denied},
    {kServiceShape, Service, Granted},
    {kServiceShape, App, Denied},
    {kFamilyShape, Alice, Denied},
    {kFamilyShape, PackagedAlice, Granted},
    {kFamilyShape, System, Denied},
    {kFamilyShape, InternetApp, Granted},
    {kFamilyShape, App, Denied},
    {kUserShape, Alice, Granted},
    {kUserShape, ElevatedAlice, Granted},
    {kUserShape, System, Denied},
    {kUserShape, InternetApp, Granted},
    {kUserShape, App, Granted},
    {kUserShape, LessPrivilegedApp, Denied},
    {kUserShape, AnyUser, Unknown},
    {kSystemShape, Alice, Denied},
    {kSystemShape, System, Granted},
    {kSystemShape, SystemService, Granted},
    {kSystemShape, InternetApp, Denied},
    {kLoopbackShape, Alice, Granted},
    {kLoopbackShape, System, Granted},
    {kLoopbackShape, InternetApp, Granted},
    {kLoopbackShape, App, Granted},
    {kLoopbackShape, Service, Granted},
    {kLoopbackShape, LessPrivilegedApp, Denied},
    {kCapabilityShape, Alice, Granted},
    {kCapabilityShape, InternetApp, Granted},
    {kCapabilityShape, App, Denied},
    {kHardeningShape, Alice, Denied},
    {kHardeningShape, System, Denied},
    {kHardeningShape, SystemService, Granted},
    {kHardeningShape, InternetApp, Denied},
    {kNetworkLoopbackShape, Alice, Granted},
    {kNetworkLoopbackShape, App, Denied},
    {kNetworkLoopbackShape, LoopbackApp, Granted},
};

constexpr AccessCase kOtherTypes[]{
    {"D:(OA;;CC;00112233-4455-6677-8899-aabbccddeeff;;WD)", Alice, Unknown},
    {"D:(OD;;CC;00112233-4455-6677-8899-aabbccddeeff;;WD)(A;;CC;;;WD)", Alice, Unknown},
    {"D:(A;;CC;;;WD)(OD;;CC;00112233-4455-6677-8899-aabbccddeeff;;WD)", Alice, Granted},
    {"D:(D;;CC;;;WD)(OA;;CC;00112233-4455-6677-8899-aabbccddeeff;;WD)", Alice, Denied},
    {"D:(OA;IO;CC;00112233-4455-6677-8899-aabbccddeeff;;WD)", Alice, Denied},
    // A conditional entry without a condition.
    {"D:(XA;;CC;;;WD)", Alice, Unknown},
    {"D:(XA;;CC;;;SY)", Alice, Denied},
    {"D:(XD;;CC;;;WD)(A;;CC;;;WD)", Alice, Unknown},
};

void ExpectAll(std::span<const AccessCase> cases) {
  for (std::size_t i = 0; i < cases.size(); ++i) {
    EXPECT_EQ(CheckAccess(Dump::ParseSddl(cases[i].sddl), cases[i].token()), cases[i].access)
        << "case " << i << ": " << cases[i].sddl;
  }
}

TEST(AccessCheck, OfNoListGrantsToAllAndOfAnEmptyOneToNobody) { ExpectAll(kLists); }
TEST(AccessCheck, EndsAtTheFirstEntryThatDecides) { ExpectAll(kOrders); }
TEST(AccessCheck, AsksForOneRight) { ExpectAll(kRights); }
TEST(AccessCheck, GivesTheOwnerNothingByItself) { ExpectAll(kOwners); }
TEST(AccessCheck, CountsGroupsByTheirAttributes) { ExpectAll(kGroups); }
TEST(AccessCheck, IsUnknownWhereWhatIsNotKnownOfTheTokenDecides) { ExpectAll(kOpenOnes); }
TEST(AccessCheck, AsksTheRestrictingSidsToo) { ExpectAll(kRestrictedOnes); }
TEST(AccessCheck, AsksPackageAndCapabilitiesOfAppContainersToo) { ExpectAll(kAppContainers); }
TEST(AccessCheck, JudgesWhatWindowsOwnFiltersAsk) { ExpectAll(kShapes); }
TEST(AccessCheck, IsUnknownBehindEntriesOfOtherTypes) { ExpectAll(kOtherTypes); }

/// D:(A;;CC;;;WD)
constexpr const char* kGrantsToAll =
    "01 00 0480 00000000 00000000 00000000 14000000 "
    "02 00 1c00 0100 0000 "
    "00 00 1400 01000000 01 01 000000000001 00000000";

/// What is written over it from a byte on, which may make it longer.
struct Damage {
  const char* what;
  std::size_t at;
  const char* bytes;
};
constexpr Damage kDamages[]{
    {"another revision", 0, "02"},
    {"not self-relative", 2, "0400"},
    {"an owner beyond the end", 4, "31000000"},
    {"an owner at the end", 4, "30000000"},
    {"a group beyond the end", 8, "ffffffff"},
    {"a SACL at the end", 2, "1480 00000000 00000000 30000000"},
    {"a DACL beyond the end", 16, "ffffff7f"},
    {"a list of an older revision", 20, "01"},
    {"a list of a newer revision", 20, "05"},
    {"a list too short for its head", 22, "0700"},
    {"a list longer than the bytes", 22, "2000"},
    {"an entry less than the list says", 24, "0200"},
    {"many entries less", 24, "ffff"},
    {"an entry without a size", 30, "0000"},
    {"an entry of an odd size", 22, "1d00 0100 0000 00 00 1500 01000000 01 01 000000000001 00000000 00"},
    {"an entry too short for its SID", 30, "1000"},
    {"an entry longer than its list", 30, "1800"},
    {"a SID of another revision", 36, "02"},
    {"a SID of more numbers than there are", 37, "02"},
    {"a SID of more numbers than one can have", 37, "10"},
};

TEST(AccessCheck, IsUnknownForMalformedDescriptors) {
  const auto sound = FromHex(kGrantsToAll);
  ASSERT_EQ(CheckAccess(sound, Alice()), Granted);
  for (const auto& [what, at, bytes] : kDamages) {
    const auto damage = FromHex(bytes);
    auto damaged = sound;
    damaged.resize(std::max(damaged.size(), at + damage.size()));
    std::ranges::copy(damage, damaged.begin() + static_cast<std::ptrdiff_t>(at));
    EXPECT_EQ(CheckAccess(damaged, Alice()), Unknown) << what;
  }
}

TEST(AccessCheck, IsUnknownForAListWithinTheHead) {
  const std::string zeros(256, '0');
  EXPECT_EQ(CheckAccess(FromHex("01 02 0480 00000000 00000000 00000000 01000000" + zeros), Alice()), Unknown);
}

TEST(AccessCheck, TakesNoNoticeOfListsThatAreNotPresent) {
  EXPECT_EQ(
      CheckAccess(FromHex("01 00 0080 00000000 00000000 00000000 14000000 02 00 0800 0000 0000"), Alice()),
      Granted);
  EXPECT_EQ(
      CheckAccess(FromHex("01 00 0480 00000000 00000000 ffffffff 14000000 02 00 0800 0000 0000"), Alice()),
      Denied);
}

TEST(AccessCheck, IsUnknownForADescriptorThatIsCutOff) {
  const auto bytes = Dump::ParseSddl(kFamilyShape);
  for (std::size_t size = 0; size < bytes.size(); ++size) {
    EXPECT_EQ(CheckAccess(std::span(bytes).first(size), PackagedAlice()), Unknown) << size;
  }
}

TEST(AccessCheck, TakesAnyBytes) {
  const auto original = Dump::ParseSddl("O:SYD:(XD;;CC;;;WD;(Member_of {SID(BA)} || a <= 1))(A;;CC;;;WD)");
  const Policy::Token token = InternetApp();
  for (std::size_t at = 0; at < original.size(); ++at) {
    auto bytes = original;
    for (unsigned value = 0; value < 256; ++value) {
      bytes[at] = static_cast<UINT8>(value);
      EXPECT_LE(CheckAccess(bytes, token), Granted);
    }
  }
}

}  // namespace
