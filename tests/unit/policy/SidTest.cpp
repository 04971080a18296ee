#include "policy/Sid.h"

#include <gmock/gmock.h>

#include <array>
#include <string>

#include "policy/Sha.h"
#include "unit/dump/Hex.h"

namespace {

using Policy::FormatSid;
using Policy::ParseSid;
using Policy::Sid;
using testing::Eq;
using testing::Optional;

std::span<const UINT8> BytesOf(std::string_view text) {
  return {reinterpret_cast<const UINT8*>(text.data()), text.size()};
}

struct DigestOf {
  const char* text;
  const char* sha1;
  const char* sha256;
};

/// The standard's examples; the second one's padding needs a block of its own.
constexpr DigestOf kDigests[]{
    {"", "da39a3ee5e6b4b0d3255bfef95601890afd80709",
     "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
    {"abc", "a9993e364706816aba3e25717850c26c9cd0d89d",
     "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
    {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq", "84983e441c3bd26ebaae4aa1f95129e5e54670f1",
     "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"},
};

TEST(Sha, IsThatOfTheStandardsExamples) {
  for (const DigestOf& digest : kDigests) {
    EXPECT_EQ(ToHex(Policy::Sha1(BytesOf(digest.text))), digest.sha1) << digest.text;
    EXPECT_EQ(ToHex(Policy::Sha256(BytesOf(digest.text))), digest.sha256) << digest.text;
  }
}

TEST(Sha, IsThatOfAMillionLetters) {
  const std::string letters(1'000'000, 'a');
  EXPECT_EQ(ToHex(Policy::Sha1(BytesOf(letters))), "34aa973cd4c4daa4f61eeb2bdbad27316534016f");
  EXPECT_EQ(ToHex(Policy::Sha256(BytesOf(letters))),
            "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(Sid, OfATextHasItsNumbers) {
  EXPECT_THAT(ParseSid("S-1-5-32-544"), Optional(Eq(Sid{5, {32, 544}})));
  EXPECT_THAT(ParseSid("S-1-5-21-4294967295"), Optional(Eq(Sid{5, {21, 4294967295}})));
  EXPECT_THAT(ParseSid("S-1-0x123456789abc-1"), Optional(Eq(Sid{0x123456789ABC, {1}})));
  EXPECT_THAT(ParseSid("S-1-5"), Optional(Eq(Sid{5, {}})));
}

TEST(Sid, IsNoOtherText) {
  for (const char* text : {"", "S-1-", "S-1-5-", "S-1--5", "S-1-5--18", "S-2-5-18", "s-1-5-18", "SY",
                           "S-1-5-18 ", "S-1-5-x", "S-1-5-+1", "S-1-5-4294967296", "S-1-281474976710656",
                           "S-1-0x1000000000000", "S-1-0x", "S-1-5-1-2-3-4-5-6-7-8-9-10-11-12-13-14-15-16"}) {
    EXPECT_EQ(ParseSid(text), std::nullopt) << text;
  }
}

TEST(Sid, IsWrittenAsThePlatformDoes) {
  EXPECT_EQ(FormatSid({5, {32, 544}}), "S-1-5-32-544");
  EXPECT_EQ(FormatSid({0xFFFFFFFF, {0}}), "S-1-4294967295-0");
  EXPECT_EQ(FormatSid({0x100000000, {4294967295}}), "S-1-0x000100000000-4294967295");
}

TEST(Sid, BeginsWithItsAuthorityAndNumbers) {
  const Sid sid{5, {32, 544}};
  EXPECT_TRUE(sid.BeginsWith({5, {}}));
  EXPECT_TRUE(sid.BeginsWith({5, {32}}));
  EXPECT_TRUE(sid.BeginsWith({5, {32, 544}}));
  EXPECT_FALSE(sid.BeginsWith({5, {32, 544, 1}}));
  EXPECT_FALSE(sid.BeginsWith({5, {3}}));
  EXPECT_FALSE(sid.BeginsWith({15, {32}}));
}

struct NamedSid {
  const char* name;
  const char* sid;
};

// As the documentation and public listings have them.
constexpr NamedSid kServices[]{
    {"TrustedInstaller", "S-1-5-80-956008885-3418522649-1831038044-1853292631-2271478464"},
    {"WdiServiceHost", "S-1-5-80-3139157870-2983391045-3678747466-658725712-1809340420"},
    {"MSSQLSERVER", "S-1-5-80-3880718306-3832830129-1677859214-2598158968-1052248003"},
    {"MpsSvc", "S-1-5-80-3088073201-1464728630-1879813800-1107566885-823218052"},
    {"mpssvc", "S-1-5-80-3088073201-1464728630-1879813800-1107566885-823218052"},
    {"Dnscache", "S-1-5-80-859482183-879914841-863379149-1145462774-2388618682"},
    {"clr_optimization_v4.0.30319_64", "S-1-5-80-2839768381-3691089589-2614646340-3191585287-3380622033"},
};
constexpr NamedSid kPackages[]{
    {"af692bff-6779-424f-870e-f6e59c502349_5c037jar5839r",
     "S-1-15-2-4163697451-3176919390-1155390458-2883473650-3020241727-522149888-4067122936"},
    {"Microsoft.MicrosoftEdge_8wekyb3d8bbwe",
     "S-1-15-2-3624051433-2125758914-1423191267-1740899205-1073925389-3782572162-737981194"},
    {"MICROSOFT.microsoftedge_8wekyb3d8bbwe",
     "S-1-15-2-3624051433-2125758914-1423191267-1740899205-1073925389-3782572162-737981194"},
};
constexpr NamedSid kCapabilities[]{
    {"internetClient", "S-1-15-3-1"},
    {"INTERNETCLIENTSERVER", "S-1-15-3-2"},
    {"privateNetworkClientServer", "S-1-15-3-3"},
    {"internetExplorer", "S-1-15-3-4096"},
    {"networkLoopback",
     "S-1-15-3-1024-820624432-2503302554-1536879699-4049119443-112573677-3799174643-950279649-4267032225"},
    {"lpacAppExperience",
     "S-1-15-3-1024-1502825166-1963708345-2616377461-2562897074-4192028372-3968301570-1997628692-"
     "1435953622"},
};

TEST(Sid, OfAServiceFollowsFromItsName) {
  for (const auto& [name, sid] : kServices) {
    EXPECT_EQ(FormatSid(Policy::ServiceSid(name).value()), sid) << name;
  }
}

TEST(Sid, OfAPackageFollowsFromItsName) {
  for (const auto& [name, sid] : kPackages) {
    EXPECT_EQ(FormatSid(Policy::PackageSid(name).value()), sid) << name;
  }
}

TEST(Sid, OfACapabilityFollowsFromItsName) {
  for (const auto& [name, sid] : kCapabilities) {
    EXPECT_EQ(FormatSid(Policy::CapabilitySid(name).value()), sid) << name;
  }
}

TEST(Sid, OfANameThatIsEmptyOrNotAsciiIsNotKnown) {
  for (const char* name : {"", "Dienst\xC3\xBC"}) {
    EXPECT_EQ(Policy::ServiceSid(name), std::nullopt) << name;
    EXPECT_EQ(Policy::PackageSid(name), std::nullopt) << name;
    EXPECT_EQ(Policy::CapabilitySid(name), std::nullopt) << name;
  }
}

}  // namespace
