#include "policy/PrincipalText.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include "catalog/Format.h"
#include "policy/AccessCheck.h"
#include "policy/SecurityDescriptor.h"

namespace Policy {
namespace {

constexpr auto kWellKnown = std::to_array<std::pair<std::string_view, std::string_view>>({
    {"S-1-0-0", "S-1-0-0 (no app container)"},
    {"S-1-1-0", "Everyone"},
    {"S-1-2-0", "LOCAL"},
    {"S-1-2-1", "CONSOLE LOGON"},
    {"S-1-3-4", "OWNER RIGHTS"},
    {"S-1-5-2", "NETWORK"},
    {"S-1-5-4", "INTERACTIVE"},
    {"S-1-5-6", "SERVICE"},
    {"S-1-5-7", "ANONYMOUS LOGON"},
    {"S-1-5-10", "SELF"},
    {"S-1-5-11", "Authenticated Users"},
    {"S-1-5-12", "RESTRICTED"},
    {"S-1-5-14", "REMOTE INTERACTIVE LOGON"},
    {"S-1-5-15", "This Organization"},
    {"S-1-5-18", "SYSTEM"},
    {"S-1-5-19", "LOCAL SERVICE"},
    {"S-1-5-20", "NETWORK SERVICE"},
    {"S-1-5-32-544", "Administrators"},
    {"S-1-5-32-545", "Users"},
    {"S-1-5-32-546", "Guests"},
    {"S-1-5-32-555", "Remote Desktop Users"},
    {"S-1-5-32-556", "Network Configuration Operators"},
    {"S-1-5-33", "WRITE RESTRICTED"},
    {"S-1-5-80-0", "all services"},
    {"S-1-5-83-0", "all virtual machines"},
    {"S-1-5-113", "local accounts"},
    {"S-1-5-114", "local accounts in Administrators"},
    {"S-1-15-2-1", "all app containers"},
    {"S-1-15-2-2", "all app containers, less privileged ones too"},
    {"S-1-15-3-1", "capability internetClient"},
    {"S-1-15-3-2", "capability internetClientServer"},
    {"S-1-15-3-3", "capability privateNetworkClientServer"},
    {"S-1-15-3-4", "capability picturesLibrary"},
    {"S-1-15-3-5", "capability videosLibrary"},
    {"S-1-15-3-6", "capability musicLibrary"},
    {"S-1-15-3-7", "capability documentsLibrary"},
    {"S-1-15-3-8", "capability enterpriseAuthentication"},
    {"S-1-15-3-9", "capability sharedUserCertificates"},
    {"S-1-15-3-10", "capability removableStorage"},
    {"S-1-15-3-11", "capability appointments"},
    {"S-1-15-3-12", "capability contacts"},
    {"S-1-15-3-4096", "capability internetExplorer"},
    {"S-1-15-3-4214768333-1334025770-122408079-3919188833", "capability proximity"},
});

/// The case is that of the services' own names; for their SIDs it does not count.
constexpr auto kServices = std::to_array<std::string_view>({
    "AJRouter",
    "AssignedAccessManagerSvc",
    "AudioEndpointBuilder",
    "Audiosrv",
    "AxInstSV",
    "BFE",
    "BITS",
    "CDPSvc",
    "cloudidsvc",
    "clr_optimization_v2.0.50727_32",
    "clr_optimization_v2.0.50727_64",
    "clr_optimization_v4.0.30319_32",
    "clr_optimization_v4.0.30319_64",
    "CryptSvc",
    "CscService",
    "Dhcp",
    "DisplayEnhancementService",
    "DmEnrollmentSvc",
    "Dnscache",
    "DoSvc",
    "dot3svc",
    "DPS",
    "DsmSvc",
    "EventLog",
    "fdPHost",
    "FDResPub",
    "fhsvc",
    "FrameServer",
    "hidserv",
    "IKEEXT",
    "iphlpsvc",
    "LanmanServer",
    "LanmanWorkstation",
    "lmhosts",
    "MpsSvc",
    "Netlogon",
    "Netman",
    "NlaSvc",
    "p2pimsvc",
    "p2psvc",
    "PcaSvc",
    "PeerDistSvc",
    "PerfHost",
    "PNRPAutoReg",
    "PNRPsvc",
    "PolicyAgent",
    "RpcSs",
    "SharedAccess",
    "SNMPTRAP",
    "Spooler",
    "sppextcomobj",
    "SSDPSRV",
    "SysMain",
    "TermService",
    "TextInputManagementService",
    "TrkWks",
    "TrustedInstaller",
    "UmRdpService",
    "VacSvc",
    "vds",
    "vmicguestinterface",
    "vmicheartbeat",
    "vmickvpexchange",
    "vmicrdv",
    "vmicshutdown",
    "vmictimesync",
    "vmicvmsession",
    "vmicvss",
    "W32Time",
    "wbengine",
    "Wcmsvc",
    "WdiServiceHost",
    "WdiSystemHost",
    "webthreatdefsvc",
    "WerSvc",
    "WinDefend",
    "WinHttpAutoProxySvc",
    "WinRM",
    "WlanSvc",
    "wlpasvc",
    "WMPNetworkSvc",
    "WPDBusEnum",
    "wscsvc",
    "WSearch",
    "wuauserv",
    "WwanSvc",
});

constexpr auto kNamedCapabilities = std::to_array<std::string_view>({"lpacAppExperience", "networkLoopback"});

std::map<std::string, std::string> MakeNames() {
  std::map<std::string, std::string> names(kWellKnown.begin(), kWellKnown.end());
  for (const std::string_view service : kServices) {
    names.emplace(FormatSid(ServiceSid(service).value()), "service " + std::string(service));
  }
  for (const std::string_view capability : kNamedCapabilities) {
    names.emplace(FormatSid(CapabilitySid(capability).value()), "capability " + std::string(capability));
  }
  return names;
}

/// Of longer lists the rest is counted.
constexpr std::size_t kMostPrincipals = 4;

/// Entries of one kind in a row.
struct Run {
  AccessEntry::Kind kind;
  std::vector<std::string> principals;
};

std::vector<Run> RunsOf(const std::vector<AccessEntry>& entries) {
  std::vector<Run> runs;
  for (const AccessEntry& entry : entries) {
    const bool counts = !entry.isInheritOnly &&
                        (entry.kind == AccessEntry::Kind::Other || (entry.rights & kMatchFilterRight) != 0);
    if (!counts) {
      continue;
    }
    if (runs.empty() || runs.back().kind != entry.kind) {
      runs.push_back({entry.kind, {}});
    }
    runs.back().principals.push_back(entry.kind == AccessEntry::Kind::Other
                                         ? "an entry of another kind"
                                         : PrincipalText(entry.sid) +
                                               (entry.isConditional ? " under a condition" : ""));
  }
  return runs;
}

std::string RunText(const Run& run) {
  std::string text = run.kind == AccessEntry::Kind::Deny ? "deny " : "allow ";
  if (run.kind == AccessEntry::Kind::Other) {
    text.clear();
  }
  for (std::size_t i = 0; i < std::min(run.principals.size(), kMostPrincipals); ++i) {
    text.append(i == 0 ? "" : ", ").append(run.principals[i]);
  }
  return run.principals.size() <= kMostPrincipals
             ? text
             : text + " and " + Catalog::FormatNumber(run.principals.size() - kMostPrincipals) + " more";
}

}  // namespace

std::string PrincipalText(const Sid& sid) {
  static const std::map<std::string, std::string> kNames = MakeNames();
  const std::string text = FormatSid(sid);
  const auto found = kNames.find(text);
  return found == kNames.end() ? text : found->second;
}

std::string DescriptorText(std::span<const UINT8> descriptor) {
  try {
    const auto entries = ReadSecurityDescriptor(descriptor).entries;
    if (!entries) {
      return "allow all";
    }
    std::string text;
    for (const Run& run : RunsOf(*entries)) {
      text.append(text.empty() ? "" : "; ").append(RunText(run));
    }
    return text.empty() ? "allow nobody" : text;
  } catch (const MalformedError&) {
    return "a malformed descriptor";
  }
}

}  // namespace Policy
