#include "Who.h"

#include <algorithm>
#include <iterator>

#include "policy/Ascii.h"

namespace {

using Policy::ServiceAccount;

struct NamedAccount {
  std::string_view name;
  ServiceAccount account;
  std::string_view text;
};
constexpr NamedAccount kAccounts[]{{"system", ServiceAccount::System, "SYSTEM"},
                                   {"local-service", ServiceAccount::LocalService, "LOCAL SERVICE"},
                                   {"network-service", ServiceAccount::NetworkService, "NETWORK SERVICE"}};

struct Service {
  std::string_view name;
  ServiceAccount account;
};
/// Services that Windows comes with and that use the network.
constexpr Service kServices[]{
    {"BFE", ServiceAccount::LocalService},
    {"BITS", ServiceAccount::System},
    {"CDPSvc", ServiceAccount::LocalService},
    {"CryptSvc", ServiceAccount::NetworkService},
    {"DPS", ServiceAccount::LocalService},
    {"Dhcp", ServiceAccount::LocalService},
    {"Dnscache", ServiceAccount::NetworkService},
    {"DoSvc", ServiceAccount::NetworkService},
    {"EventLog", ServiceAccount::LocalService},
    {"FDResPub", ServiceAccount::LocalService},
    {"IKEEXT", ServiceAccount::System},
    {"LanmanServer", ServiceAccount::System},
    {"LanmanWorkstation", ServiceAccount::NetworkService},
    {"MpsSvc", ServiceAccount::LocalService},
    {"NlaSvc", ServiceAccount::NetworkService},
    {"PolicyAgent", ServiceAccount::NetworkService},
    {"RpcSs", ServiceAccount::NetworkService},
    {"SSDPSRV", ServiceAccount::LocalService},
    {"Schedule", ServiceAccount::System},
    {"Spooler", ServiceAccount::System},
    {"TermService", ServiceAccount::NetworkService},
    {"W32Time", ServiceAccount::LocalService},
    {"WSearch", ServiceAccount::System},
    {"WinDefend", ServiceAccount::System},
    {"WinHttpAutoProxySvc", ServiceAccount::LocalService},
    {"iphlpsvc", ServiceAccount::System},
    {"lmhosts", ServiceAccount::LocalService},
    {"wuauserv", ServiceAccount::System},
};

constexpr std::string_view kService = "service ";
constexpr std::string_view kPackage = "package ";

}  // namespace

std::optional<Who> ParseWho(std::string_view text) {
  if (text == "user") {
    return Who{Who::Kind::User, ""};
  }
  if (text == "system") {
    return Who{Who::Kind::System, ""};
  }
  if (text.starts_with(kService)) {
    const std::string name(text.substr(kService.size()));
    return Policy::ServiceSid(name) ? std::optional(Who{Who::Kind::Service, name}) : std::nullopt;
  }
  if (text.starts_with(kPackage)) {
    const std::string name(text.substr(kPackage.size()));
    return Policy::PackageSid(name) ? std::optional(Who{Who::Kind::Package, name}) : std::nullopt;
  }
  return std::nullopt;
}

std::optional<Policy::Sid> ParseCapability(const std::string& text) {
  return text.starts_with("S-") ? Policy::ParseSid(text) : Policy::CapabilitySid(text);
}

std::optional<ServiceAccount> ParseAccount(std::string_view text) {
  const auto* found = std::ranges::find(kAccounts, text, &NamedAccount::name);
  return found == std::end(kAccounts) ? std::nullopt : std::optional(found->account);
}

std::optional<ServiceAccount> UsualAccount(std::string_view service) {
  const auto* found = std::ranges::find_if(kServices, [service](const Service& known) {
    return std::ranges::equal(known.name, service, {}, Policy::ToLower, Policy::ToLower);
  });
  return found == std::end(kServices) ? std::nullopt : std::optional(found->account);
}

std::string_view AccountText(ServiceAccount account) {
  return std::ranges::find(kAccounts, account, &NamedAccount::account)->text;
}

std::string RejectAllButWho(const std::string& value) {
  return ParseWho(value) ? "" : value + " is none of user, system, service NAME and package NAME";
}

std::string RejectAllButSid(const std::string& value) {
  return Policy::ParseSid(value) ? "" : value + " is no SID such as S-1-5-18";
}

std::string RejectAllButCapability(const std::string& value) {
  return ParseCapability(value) ? "" : value + " is neither a capability's name nor its SID";
}

std::string RejectAllButAccount(const std::string& value) {
  return ParseAccount(value) ? "" : value + " is none of system, local-service and network-service";
}
