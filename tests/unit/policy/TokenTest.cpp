#include "policy/Token.h"

#include <gmock/gmock.h>

namespace {

using Policy::AttributeOwner;
using Policy::EqualTexts;
using Policy::kTrueOrFalse;
using Policy::ParseSid;
using Policy::Sid;
using Policy::Token;
using Policy::Truths;

constexpr const char* kAlice = "S-1-5-21-1-2-3-1001";
constexpr const char* kEveryone = "S-1-1-0";
constexpr const char* kInteractive = "S-1-5-4";
constexpr const char* kSystem = "S-1-5-18";
constexpr const char* kNetworkService = "S-1-5-20";
constexpr const char* kAdministrators = "S-1-5-32-544";
constexpr const char* kUsers = "S-1-5-32-545";
constexpr const char* kMpsSvc = "S-1-5-80-3088073201-1464728630-1879813800-1107566885-823218052";

Sid Named(const char* text) { return ParseSid(text).value(); }

Truths CountsAllowed(const Token& token, const char* sid) { return token.Counts(Named(sid), false); }
Truths CountsDenied(const Token& token, const char* sid) { return token.Counts(Named(sid), true); }

TEST(TokenOfAUser, HoldsTheGroupsOfEverybodyWhoSignsIn) {
  const Token token = Policy::UserProgram();
  EXPECT_EQ(CountsAllowed(token, kEveryone), true);
  EXPECT_EQ(CountsAllowed(token, kInteractive), true);
  EXPECT_EQ(CountsAllowed(token, kUsers), true);
}

TEST(TokenOfAUser, HoldsNoServiceNorSystem) {
  const Token token = Policy::UserProgram();
  EXPECT_EQ(CountsAllowed(token, kSystem), false);
  EXPECT_EQ(CountsAllowed(token, kMpsSvc), false);
  EXPECT_EQ(CountsAllowed(token, "S-1-5-7"), false);
  EXPECT_EQ(CountsAllowed(token, "S-1-15-2-1"), false);
}

TEST(TokenOfAUser, IsOpenForAccountsOfDomains) {
  EXPECT_EQ(CountsAllowed(Policy::UserProgram(), kAlice), kTrueOrFalse);
  EXPECT_EQ(CountsAllowed(Policy::UserProgram(Named(kAlice)), kAlice), true);
  EXPECT_EQ(CountsAllowed(Policy::UserProgram(Named(kAlice)), "S-1-5-21-1-2-3-1002"), kTrueOrFalse);
}

TEST(TokenOfAUser, IsAdministratorForDenyingAtMost) {
  const Token token = Policy::UserProgram();
  EXPECT_EQ(CountsAllowed(token, kAdministrators), false);
  EXPECT_EQ(CountsDenied(token, kAdministrators), kTrueOrFalse);
}

TEST(TokenOfTheSystem, IsAnAdministratorAndNotAnotherAccount) {
  const Token token = Policy::SystemProgram();
  EXPECT_EQ(CountsAllowed(token, kSystem), true);
  EXPECT_EQ(CountsAllowed(token, kAdministrators), true);
  EXPECT_EQ(CountsAllowed(token, kNetworkService), false);
  EXPECT_EQ(CountsAllowed(token, kInteractive), false);
  EXPECT_EQ(CountsAllowed(token, kMpsSvc), false);
  EXPECT_EQ(CountsAllowed(token, kAlice), false);
}

TEST(TokenOfAService, HoldsItsSidAndNoOthers) {
  const Token token = Policy::ServiceProgram(Named(kMpsSvc));
  EXPECT_EQ(CountsAllowed(token, kMpsSvc), true);
  EXPECT_EQ(CountsAllowed(token, "S-1-5-80-0"), true);
  EXPECT_EQ(CountsAllowed(token, "S-1-5-80-859482183-879914841-863379149-1145462774-2388618682"), false);
  EXPECT_EQ(CountsAllowed(token, kInteractive), false);
}

TEST(TokenOfAService, IsOpenForItsAccountUnlessGiven) {
  const Token any = Policy::ServiceProgram(Named(kMpsSvc));
  EXPECT_EQ(CountsAllowed(any, kSystem), kTrueOrFalse);
  EXPECT_EQ(CountsAllowed(any, kNetworkService), kTrueOrFalse);
  EXPECT_EQ(CountsAllowed(any, kAdministrators), kTrueOrFalse);
  const Token network = Policy::ServiceProgram(Named(kMpsSvc), Policy::ServiceAccount::NetworkService);
  EXPECT_EQ(CountsAllowed(network, kNetworkService), true);
  EXPECT_EQ(CountsAllowed(network, kSystem), false);
  EXPECT_EQ(CountsAllowed(network, kAdministrators), false);
  EXPECT_EQ(CountsAllowed(network, kUsers), true);
  const Token system = Policy::ServiceProgram(Named(kMpsSvc), Policy::ServiceAccount::System);
  EXPECT_EQ(CountsAllowed(system, kSystem), true);
  EXPECT_EQ(CountsAllowed(system, kAdministrators), true);
  const Token local = Policy::ServiceProgram(Named(kMpsSvc), Policy::ServiceAccount::LocalService);
  EXPECT_EQ(CountsAllowed(local, "S-1-5-19"), true);
  EXPECT_EQ(CountsAllowed(local, kNetworkService), false);
}

TEST(TokenOfAnAppContainer, HoldsPackageAndCapabilitiesApartFromTheUsersGroups) {
  const Sid package = Named("S-1-15-2-1-2-3-4-5-6-7");
  const Token token = Policy::AppContainerProgram({package, {Named("S-1-15-3-1")}});
  EXPECT_TRUE(token.appContainer->Holds(package));
  EXPECT_TRUE(token.appContainer->Holds(Named("S-1-15-3-1")));
  EXPECT_TRUE(token.appContainer->Holds(Named("S-1-15-2-1")));
  EXPECT_TRUE(token.appContainer->Holds(Named("S-1-15-2-2")));
  EXPECT_FALSE(token.appContainer->Holds(Named("S-1-15-3-2")));
  EXPECT_FALSE(token.appContainer->Holds(Named("S-1-15-2-1-2-3-4-5-6-8")));
  EXPECT_FALSE(token.appContainer->Holds(Named(kEveryone)));
  EXPECT_EQ(token.Counts(package, false), false);
  EXPECT_EQ(CountsAllowed(token, kUsers), true);
}

TEST(TokenOfAnAppContainer, OfLessPrivilegeIsNotAmongAllPackages) {
  const Token token = Policy::AppContainerProgram({Named("S-1-15-2-1-2-3-4-5-6-7"), {}, true});
  EXPECT_FALSE(token.appContainer->Holds(Named("S-1-15-2-1")));
  EXPECT_TRUE(token.appContainer->Holds(Named("S-1-15-2-2")));
}

TEST(Token, CountsAGroupByItsAttributes) {
  Token token;
  token.groups = {{Named("S-1-5-32-1"), 0x7},
                  {Named("S-1-5-32-2"), 0x10},
                  {Named("S-1-5-32-3"), 0x3},
                  {Named("S-1-16-8192"), 0x60}};
  EXPECT_EQ(CountsAllowed(token, "S-1-5-32-1"), true);
  EXPECT_EQ(CountsDenied(token, "S-1-5-32-1"), true);
  EXPECT_EQ(CountsAllowed(token, "S-1-5-32-2"), false);
  EXPECT_EQ(CountsDenied(token, "S-1-5-32-2"), true);
  EXPECT_EQ(CountsAllowed(token, "S-1-5-32-3"), false);
  EXPECT_EQ(CountsDenied(token, "S-1-5-32-3"), false);
  EXPECT_EQ(CountsDenied(token, "S-1-16-8192"), false);
}

TEST(Token, OfAProgramThatIsNotPackagedHasNoPackageAttribute) {
  for (const Token& token :
       {Policy::UserProgram(), Policy::SystemProgram(), Policy::ServiceProgram(Named(kMpsSvc))}) {
    const auto* attribute = token.FindAttribute(AttributeOwner::Token, u"win://sysappid");
    ASSERT_NE(attribute, nullptr);
    EXPECT_EQ(attribute->values, std::nullopt);
    EXPECT_EQ(token.FindAttribute(AttributeOwner::User, u"WIN://SYSAPPID"), nullptr);
  }
}

TEST(Token, OfAPackageHasItsFamilyName) {
  const Token token = Policy::WithPackageFamily(Policy::UserProgram(), "Example.App_0123456789abc");
  const auto* attribute = token.FindAttribute(AttributeOwner::Token, u"WIN://SYSAPPID");
  ASSERT_NE(attribute, nullptr);
  EXPECT_THAT(attribute->values, testing::Optional(testing::ElementsAre(u"Example.App_0123456789abc")));
  EXPECT_FALSE(attribute->isWhole);
}

TEST(PackageFamilyName, IsANameAndThirteenCharactersOfThePublisher) {
  EXPECT_TRUE(Policy::IsPackageFamilyName(u"Example.App_0123456789abc"));
  EXPECT_FALSE(Policy::IsPackageFamilyName(u"Example.App"));
  EXPECT_FALSE(Policy::IsPackageFamilyName(u"_0123456789abc"));
  EXPECT_FALSE(Policy::IsPackageFamilyName(u"Example.App_0123456789ab"));
  EXPECT_FALSE(Policy::IsPackageFamilyName(u"Example.App_1.0.0.0_x64__0123456789abc"));
}

TEST(Texts, AreEqualWhateverTheCaseOfAsciiLetters) {
  EXPECT_EQ(EqualTexts(u"aBc", u"AbC"), true);
  EXPECT_EQ(EqualTexts(u"abc", u"abd"), false);
  EXPECT_EQ(EqualTexts(u"abc", u"abcd"), false);
  EXPECT_EQ(EqualTexts(u"\u00E4", u"\u00E4"), true);
  EXPECT_EQ(EqualTexts(u"\u00E4", u"\u00C4"), kTrueOrFalse);
}

}  // namespace
