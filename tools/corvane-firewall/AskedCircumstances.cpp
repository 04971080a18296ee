#include "AskedCircumstances.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <utility>

#include "Failure.h"
#include "Who.h"
#include "policy/Connection.h"
#include "policy/NamedInSnapshot.h"

namespace {

using Policy::Circumstances;
using Policy::Sid;

struct NamedNumber {
  std::string_view name;
  UINT32 number;
};
constexpr NamedNumber kProfiles[]{{"public", 1}, {"private", 2}, {"domain", 3}};
constexpr NamedNumber kInterfaceTypes[]{{"ethernet", 6}, {"ppp", 23},     {"loopback", 24}, {"virtual", 53},
                                        {"wifi", 71},    {"tunnel", 131}, {"mobile", 243}};
constexpr NamedNumber kTunnelTypes[]{{"none", 0},    {"other", 1},   {"direct", 2},   {"6to4", 11},
                                     {"isatap", 13}, {"teredo", 14}, {"ip-https", 15}};

constexpr UINT32 kPolicyChange = 0x1;

std::optional<UINT64> ParseNumber(std::string_view text) {
  UINT64 number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

/// The number of a name; empty if it is none of the names.
template <std::size_t Count>
std::optional<UINT32> NumberNamed(const NamedNumber (&names)[Count], std::string_view text) {
  const auto* found = std::ranges::find(names, text, &NamedNumber::name);
  return found == std::end(names) ? std::nullopt : std::optional(found->number);
}

const std::string* Only(const std::vector<std::string>& values) {
  return values.empty() ? nullptr : &values.front();
}

/// @throws Failure for an option that does not go with who connects.
void CheckGoesWith(const Who& who, const StepOptions& options) {
  if (!options.account.empty() && who.kind != Who::Kind::Service) {
    throw Failure("Only a service has an account of its own", "Give --account with --as service NAME.");
  }
  if (!options.capabilities.empty() && who.kind != Who::Kind::Package) {
    throw Failure("Only an app container has capabilities", "Give --capability with --as package NAME.");
  }
  if (!options.user.empty() && (who.kind == Who::Kind::System || who.kind == Who::Kind::Service)) {
    throw Failure("Neither the system nor a service is a user",
                  "Give --user with --as user or --as package NAME.");
  }
}

/// Builds the answer piece by piece.
class Asking {
 public:
  Asking(const StepOptions& options, const Policy::Snapshot& snapshot)
      : options_(options), snapshot_(snapshot) {}

  AskedCircumstances Ask() {
    const Who who = options_.who.empty() ? Who() : ParseWho(options_.who.front()).value();
    CheckGoesWith(who, options_);
    asked_.circumstances = Policy::UsualCircumstances(TokenOf(who));
    SetPlace();
    return std::move(asked_);
  }

 private:
  void Tell(std::string name, std::string text) { asked_.told.push_back({std::move(name), std::move(text)}); }

  Policy::Token TokenOf(const Who& who) {
    switch (who.kind) {
      case Who::Kind::System:
        Tell("as", "the system itself");
        asked_.application = Policy::ApplicationBytes("System");
        return Policy::SystemProgram();
      case Who::Kind::Service:
        return ServiceToken(who.name);
      case Who::Kind::Package:
        return PackageToken(who.name);
      default:
        Tell("as", "a program of a signed-in user");
        return Policy::UserProgram(User());
    }
  }

  std::optional<Sid> User() {
    if (const std::string* given = Only(options_.user)) {
      Tell("user", *given);
      return Policy::ParseSid(*given);
    }
    std::optional<Sid> only = Policy::OnlyAccount(snapshot_);
    Tell("user", only ? Policy::FormatSid(*only) + ", the one that filters name" : "any");
    return only;
  }

  Policy::Token ServiceToken(const std::string& name) {
    const std::string* given = Only(options_.account);
    const auto account = given != nullptr ? ParseAccount(*given) : UsualAccount(name);
    Tell("as", "the service " + name);
    Tell("account", account ? std::string(AccountText(*account)) : "any");
    asked_.application = Policy::OnlyApplication("\\windows\\system32\\svchost.exe", snapshot_);
    return Policy::ServiceProgram(Policy::ServiceSid(name).value(), account);
  }

  Policy::Token PackageToken(const std::string& name) {
    const std::optional<Sid> given = Policy::ParseSid(name);
    Policy::AppContainer container{given ? *given : Policy::PackageSid(name).value(), {}};
    std::string capabilities;
    for (const std::string& capability : options_.capabilities) {
      container.capabilities.push_back(ParseCapability(capability).value());
      capabilities.append(capabilities.empty() ? "" : ", ").append(capability);
    }
    Tell("as", "a program in the app container of " + name);
    Tell("capabilities", capabilities.empty() ? "none" : capabilities);
    Policy::Token token = Policy::AppContainerProgram(std::move(container), User());
    return given ? token : Policy::WithPackageFamily(std::move(token), name);
  }

  void SetPlace() {
    Circumstances& where = asked_.circumstances;
    if (const std::string* profile = Only(options_.profile)) {
      where.profile = ParseProfile(*profile);
    }
    Tell("profile", where.profile ? options_.profile.front() : "not given");
    if (const std::string* tunnel = Only(options_.tunnelType)) {
      where.tunnelType = ParseTunnelType(*tunnel);
      Tell("tunnel type", *tunnel);
    }
    if (const std::string* compartment = Only(options_.compartment)) {
      where.compartment = static_cast<UINT32>(ParseNumber(*compartment).value());
      Tell("compartment", *compartment);
    }
    if (const std::string* epoch = Only(options_.epoch)) {
      where.quarantine = Circumstances::Quarantine::Epoch;
      where.epoch = ParseNumber(*epoch).value();
      Tell("quarantine epoch", *epoch);
    }
    if (!options_.reauthorized.empty()) {
      where.reauthorizeReason = kPolicyChange;
      Tell("judged", "anew, after a change of filters");
    }
  }

  const StepOptions& options_;
  const Policy::Snapshot& snapshot_;
  AskedCircumstances asked_;
};

}  // namespace

AskedCircumstances AskCircumstances(const StepOptions& options, const Policy::Snapshot& snapshot) {
  return Asking(options, snapshot).Ask();
}

std::optional<UINT32> ParseProfile(std::string_view text) { return NumberNamed(kProfiles, text); }

std::optional<UINT64> ParseInterfaceType(const std::string& text) {
  if (const auto named = NumberNamed(kInterfaceTypes, text)) {
    return *named;
  }
  const auto number = ParseNumber(text);
  return number && *number <= 0xFFFF ? number : std::nullopt;
}

std::optional<UINT32> ParseTunnelType(const std::string& text) {
  if (const auto named = NumberNamed(kTunnelTypes, text)) {
    return named;
  }
  const auto number = ParseNumber(text);
  return number && *number <= 0xFFFFFFFF ? std::optional(static_cast<UINT32>(*number)) : std::nullopt;
}

std::string RejectAllButProfile(const std::string& value) {
  return ParseProfile(value) ? "" : value + " is none of private, public and domain";
}

std::string RejectAllButInterfaceType(const std::string& value) {
  return ParseInterfaceType(value) ? ""
                                   : value +
                                         " is none of ethernet, wifi, mobile, ppp, tunnel, virtual, loopback "
                                         "and 0 to 65535";
}

std::string RejectAllButTunnelType(const std::string& value) {
  return ParseTunnelType(value)
             ? ""
             : value + " is none of none, other, direct, 6to4, isatap, teredo, ip-https and a number";
}

std::string RejectAllButNumber(const std::string& value) {
  return ParseNumber(value) ? "" : value + " is no number";
}

std::string RejectAllButCompartment(const std::string& value) {
  const auto number = ParseNumber(value);
  return number && *number <= 0xFFFFFFFF ? "" : value + " is no number up to 4294967295";
}
