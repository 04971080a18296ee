#include "policy/Token.h"

#include <algorithm>
#include <span>
#include <utility>

#include "policy/Ascii.h"

namespace Policy {
namespace {

constexpr std::u16string_view kPackageAttribute = u"WIN://SYSAPPID";

constexpr std::string_view kEveryone = "S-1-1-0";
constexpr std::string_view kAuthenticatedUsers = "S-1-5-11";
constexpr std::string_view kSystem = "S-1-5-18";
constexpr std::string_view kLocalService = "S-1-5-19";
constexpr std::string_view kNetworkService = "S-1-5-20";
constexpr std::string_view kAdministrators = "S-1-5-32-544";
constexpr std::string_view kUsers = "S-1-5-32-545";
constexpr std::string_view kLowIntegrity = "S-1-16-4096";
constexpr std::string_view kMediumIntegrity = "S-1-16-8192";
constexpr std::string_view kSystemIntegrity = "S-1-16-16384";

/// Groups of everybody who signed in: interactive, and those above.
constexpr std::string_view kUserGroups[]{kEveryone, "S-1-5-4", kAuthenticatedUsers, kUsers};
/// What depends on the machine, its domain and the way in which the user signed in.
constexpr std::string_view kOpenToUsers[]{
    "S-1-2",     // local and console logon
    "S-1-5-5",   // the logon's own
    "S-1-5-14",  // remote desktop
    "S-1-5-15",  // this organization
    "S-1-5-21",  // accounts and groups of machines and domains
    "S-1-5-32",  // other built-in groups
    "S-1-5-64",  // kind of authentication
    "S-1-5-65", "S-1-5-113",
    "S-1-11",  // Microsoft accounts
    "S-1-12",  // accounts and groups of Microsoft Entra
    "S-1-18",  // who asserted the identity
};
/// What only an elevated administrator has in full: of others it serves to deny, or they do not have it.
constexpr std::string_view kFilteredGroups[]{kAdministrators, "S-1-5-114"};

/// Services, and all services that have a SID.
constexpr std::string_view kServiceGroups[]{kEveryone, kAuthenticatedUsers, "S-1-5-6", "S-1-5-80-0"};
constexpr std::string_view kOpenToServices[]{"S-1-2", "S-1-5-5", "S-1-5-15"};
/// What depends on the account that a service runs as.
constexpr std::string_view kOpenToAccounts[]{kSystem,    kLocalService, kNetworkService, "S-1-5-21",
                                             "S-1-5-32", "S-1-5-113",   "S-1-5-114",     "S-1-12"};

Sid Known(std::string_view text) { return ParseSid(text).value(); }

void AddGroups(Token& token, std::span<const std::string_view> texts) {
  for (const std::string_view text : texts) {
    token.groups.push_back({Known(text)});
  }
}

void AddOpen(Token& token, std::span<const std::string_view> texts) {
  for (const std::string_view text : texts) {
    token.open.push_back(Known(text));
  }
}

TokenAttribute NotPackaged() {
  return {AttributeOwner::Token, std::u16string(kPackageAttribute), std::nullopt};
}

TokenAttribute PerhapsPackaged() {
  return {AttributeOwner::Token, std::u16string(kPackageAttribute), std::vector<AttributeValue>(), false,
          false};
}

bool IsAttribute(const TokenAttribute& attribute, AttributeOwner owner, std::u16string_view name) {
  return attribute.owner == owner && EqualTexts(attribute.name, name) == true;
}

Token TokenOfUser(std::optional<Sid> user, std::string_view integrity) {
  Token token;
  token.user = std::move(user);
  AddGroups(token, kUserGroups);
  for (const std::string_view text : kFilteredGroups) {
    token.groups.push_back({Known(text), kGroupDenyOnly, false});
  }
  token.groups.push_back({Known(integrity), kIntegrityGroup});
  AddOpen(token, kOpenToUsers);
  return token;
}

void SetAccount(Token& token, ServiceAccount account) {
  switch (account) {
    case ServiceAccount::System:
      token.user = Known(kSystem);
      token.groups.push_back({Known(kAdministrators), kOwningGroup});
      return;
    case ServiceAccount::LocalService:
      token.user = Known(kLocalService);
      break;
    case ServiceAccount::NetworkService:
      token.user = Known(kNetworkService);
      break;
  }
  token.groups.push_back({Known(kUsers)});
}

Truths CountsAs(const TokenGroup& group, bool isDenied) {
  const UINT32 counting = isDenied ? kGroupEnabled | kGroupDenyOnly : kGroupEnabled;
  if ((group.attributes & counting) == 0) {
    return false;
  }
  return group.isCertain ? Truths(true) : kTrueOrFalse;
}

char16_t LowerUnit(char16_t unit) {
  return unit < 0x80 ? static_cast<char16_t>(ToLower(static_cast<char>(unit))) : unit;
}

}  // namespace

bool AppContainer::Holds(const Sid& sid) const {
  const Sid allPackages{15, {2, 1}};
  const Sid allRestrictedPackages{15, {2, 2}};
  return sid == package || sid == allRestrictedPackages || (sid == allPackages && !isLessPrivileged) ||
         std::ranges::find(capabilities, sid) != capabilities.end();
}

Truths Token::Counts(const Sid& sid, bool isDenied) const {
  if (sid == user) {
    return true;
  }
  const auto group = std::ranges::find(groups, sid, &TokenGroup::sid);
  if (group != groups.end()) {
    return CountsAs(*group, isDenied);
  }
  const bool isOpen = std::ranges::any_of(open, [&](const Sid& start) { return sid.BeginsWith(start); });
  return isOpen ? kTrueOrFalse : Truths(false);
}

Truths Token::IsOfFamily(std::u16string_view familyName) const {
  if (!appContainer) {
    return false;
  }
  std::string name;
  for (const char16_t unit : familyName) {
    if (unit >= 0x80) {
      return kTrueOrFalse;
    }
    name += static_cast<char>(unit);
  }
  return PackageSid(name) == appContainer->package;
}

const TokenAttribute* Token::FindAttribute(AttributeOwner owner, std::u16string_view name) const {
  const auto found = std::ranges::find_if(
      attributes, [&](const TokenAttribute& attribute) { return IsAttribute(attribute, owner, name); });
  return found == attributes.end() ? nullptr : &*found;
}

Token UserProgram(std::optional<Sid> user) {
  Token token = TokenOfUser(std::move(user), kMediumIntegrity);
  token.attributes.push_back(NotPackaged());
  return token;
}

Token SystemProgram() {
  Token token;
  SetAccount(token, ServiceAccount::System);
  AddGroups(token, {{kEveryone, kAuthenticatedUsers}});
  token.groups.push_back({Known(kSystemIntegrity), kIntegrityGroup});
  token.attributes.push_back(NotPackaged());
  return token;
}

Token ServiceProgram(const Sid& service, std::optional<ServiceAccount> account) {
  Token token;
  AddGroups(token, kServiceGroups);
  token.groups.push_back({service, kOwningGroup});
  token.groups.push_back({Known(kSystemIntegrity), kIntegrityGroup});
  AddOpen(token, kOpenToServices);
  if (account) {
    SetAccount(token, *account);
  } else {
    AddOpen(token, kOpenToAccounts);
  }
  token.attributes.push_back(NotPackaged());
  return token;
}

Token AppContainerProgram(AppContainer appContainer, std::optional<Sid> user) {
  Token token = TokenOfUser(std::move(user), kLowIntegrity);
  token.appContainer = std::move(appContainer);
  token.attributes.push_back(PerhapsPackaged());
  return token;
}

Token WithPackageFamily(Token token, std::string_view familyName) {
  std::erase_if(token.attributes, [](const TokenAttribute& attribute) {
    return IsAttribute(attribute, AttributeOwner::Token, kPackageAttribute);
  });
  const std::u16string name(familyName.begin(), familyName.end());
  token.attributes.push_back(
      {AttributeOwner::Token, std::u16string(kPackageAttribute), std::vector<AttributeValue>{name}, false});
  return token;
}

bool IsPackageFamilyName(std::u16string_view text) {
  constexpr std::size_t kPublisherLength = 13;
  const std::size_t separator = text.find(u'_');
  return separator != 0 && separator != std::u16string_view::npos &&
         text.size() - separator - 1 == kPublisherLength &&
         text.find(u'_', separator + 1) == std::u16string_view::npos;
}

Truths EqualTexts(std::u16string_view left, std::u16string_view right) {
  if (std::ranges::equal(left, right, {}, LowerUnit, LowerUnit)) {
    return true;
  }
  const auto isAscii = [](char16_t unit) { return unit < 0x80; };
  const bool areAscii = std::ranges::all_of(left, isAscii) && std::ranges::all_of(right, isAscii);
  return areAscii ? Truths(false) : kTrueOrFalse;
}

}  // namespace Policy
