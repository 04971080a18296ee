#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "policy/Sid.h"
#include "policy/Token.h"

/// What the option --as names.
struct Who {
  enum class Kind { User, System, Service, Package };
  Kind kind = Kind::User;
  std::string name;  ///< of the service or package; a package's may be its SID
};

/// "user", "system", "service NAME", "package NAME"; empty for any other text.
std::optional<Who> ParseWho(std::string_view text);
/// A capability by its name or SID; empty for any other text.
std::optional<Policy::Sid> ParseCapability(const std::string& text);
/// "system", "local-service", "network-service"; empty for any other text.
std::optional<Policy::ServiceAccount> ParseAccount(std::string_view text);

/// The account that Windows runs a service of its own as; empty if that is not known.
std::optional<Policy::ServiceAccount> UsualAccount(std::string_view service);
/// "LOCAL SERVICE"
std::string_view AccountText(Policy::ServiceAccount account);

// What is wrong with an option's value; empty when nothing is.
std::string RejectAllButWho(const std::string& value);
std::string RejectAllButSid(const std::string& value);
std::string RejectAllButCapability(const std::string& value);
std::string RejectAllButAccount(const std::string& value);
