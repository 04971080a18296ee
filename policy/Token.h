/**
 * @file
 * Tokens: who a connection is of. The engine takes the one of the thread that creates the socket.
 */
#pragma once

#include <WfpPlatform.h>

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "policy/Sid.h"
#include "policy/Truths.h"

namespace Policy {

// Attributes of groups.
inline constexpr UINT32 kGroupEnabled = 0x4;
inline constexpr UINT32 kGroupDenyOnly = 0x10;
/// Mandatory, enabled by default, enabled.
inline constexpr UINT32 kUsualGroup = 0x7;
/// Enabled by default, enabled, and may own what its members create.
inline constexpr UINT32 kOwningGroup = 0xE;
/// Of an integrity level: a group that no entry of a descriptor matches.
inline constexpr UINT32 kIntegrityGroup = 0x60;

/// A group with its attributes. One that is neither enabled nor for denying counts for nothing.
struct TokenGroup {
  Sid sid;
  UINT32 attributes = kUsualGroup;
  bool isCertain = true;  ///< false: perhaps the token does not have it
};

/// What makes a token one of an app container.
struct AppContainer {
  Sid package;
  std::vector<Sid> capabilities;
  bool isLessPrivileged = false;  ///< what is granted to all packages is not granted to it

  /// Whether it is the package, one of its capabilities, or a group of packages that it belongs to.
  [[nodiscard]] bool Holds(const Sid& sid) const;
};

/// Whose attribute it is. Those of resources are no part of a token.
enum class AttributeOwner { Token, User, Device };

using AttributeValue = std::variant<INT64, std::u16string>;

/// What conditional entries ask for by name.
struct TokenAttribute {
  AttributeOwner owner = AttributeOwner::Token;
  std::u16string name;
  /// Nothing: the token is known not to have it.
  std::optional<std::vector<AttributeValue>> values;
  /// False: it may have more strings. Among them is no package's family name but that of the app container's.
  bool isWhole = true;
  bool isCertain = true;  ///< false: perhaps the token does not have it
};

/// A token, as far as it is known.
struct Token {
  std::optional<Sid> user;  ///< nothing: one of `open`
  std::vector<TokenGroup> groups;
  /// The token may hold any SIDs that begin like one of these, and that the user and the groups do not name.
  std::vector<Sid> open;
  std::vector<Sid> restricting;  ///< none: the token is not restricted
  std::optional<AppContainer> appContainer;
  /// Of all others it is not known whether the token has them.
  std::vector<TokenAttribute> attributes;

  /// Whether the user or a group counts for an entry that names it.
  /// @param isDenied whether the entry denies; groups that are for denying alone count then.
  [[nodiscard]] Truths Counts(const Sid& sid, bool isDenied) const;
  /// Whether it is one of an app container that belongs to the package with this family name.
  [[nodiscard]] Truths IsOfFamily(std::u16string_view familyName) const;
  /// Nothing if it is not known whether the token has it.
  [[nodiscard]] const TokenAttribute* FindAttribute(AttributeOwner owner, std::u16string_view name) const;
};

/// A program of a user who signed in at the machine; not elevated, not packaged, not in an app container.
/// @param user nothing: any.
Token UserProgram(std::optional<Sid> user = std::nullopt);

/// A program of the system itself, such as the kernel, that is no service.
Token SystemProgram();

enum class ServiceAccount { System, LocalService, NetworkService };

/// A service in a process of its own, with a SID of unrestricted type.
/// @param account nothing: any.
Token ServiceProgram(const Sid& service, std::optional<ServiceAccount> account = std::nullopt);

/// A program in an app container, of a user as above.
Token AppContainerProgram(AppContainer appContainer, std::optional<Sid> user = std::nullopt);

/// The token with the attribute that tells a packaged program from others. It holds the package's full name
/// and the application's id besides, which are not known.
/// @param familyName in ASCII.
Token WithPackageFamily(Token token, std::string_view familyName);

/// Whether a text has the form of a package's family name: a name, "_", and thirteen characters of its
/// publisher.
bool IsPackageFamilyName(std::u16string_view text);

/// Whether two texts are the same but for the case of letters. Which letters of those beyond ASCII are the
/// same, only the engine can tell.
Truths EqualTexts(std::u16string_view left, std::u16string_view right);

}  // namespace Policy
