#include "Steps.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "Adapters.h"
#include "AskedCircumstances.h"
#include "CalibrateStep.h"
#include "DumpSteps.h"
#include "FeatureSwitches.h"
#include "PolicySteps.h"
#include "Text.h"
#include "WatchStep.h"
#include "Who.h"

namespace {

/// Receives the library's log lines. It is global because the library's callback has no context argument.
Reporter* logReceiver = nullptr;

/// Sends the library's log lines to a reporter as long as this object lives.
class LogRoute {
 public:
  explicit LogRoute(Reporter& reporter) { logReceiver = &reporter; }
  ~LogRoute() { logReceiver = nullptr; }
  LogRoute(const LogRoute&) = delete;
  LogRoute& operator=(const LogRoute&) = delete;

  static std::uint64_t CORVANE_CALL Receive(const char* line) {
    logReceiver->Log(line);
    return 0;
  }
};

void DisableInternetStep(const StepContext& context, const StepOptions& options) {
  const LogRoute route(context.reporter);
  context.library->DisableInternet(ToWide(options.apps), ToWide(options.interfaces), &LogRoute::Receive);
}

void EnableInternetStep(const StepContext& context, const StepOptions&) { context.library->EnableInternet(); }

void EnableDhcpStep(const StepContext& context, const StepOptions&) {
  const LogRoute route(context.reporter);
  context.library->EnableDhcp(&LogRoute::Receive);
}

void DisableDhcpStep(const StepContext& context, const StepOptions&) {
  const LogRoute route(context.reporter);
  context.library->DisableDhcp(&LogRoute::Receive);
}

/// 0 if no LUID is given.
std::uint64_t LuidOf(const StepOptions& options) {
  return options.luid.empty() ? 0 : ParseLuid(options.luid.front()).value();
}

std::vector<std::uint32_t> ToAddresses(const std::vector<std::string>& texts) {
  std::vector<std::uint32_t> addresses;
  addresses.reserve(texts.size());
  for (const std::string& text : texts) {
    addresses.push_back(ParseIpV4(text).value());
  }
  return addresses;
}

void EnableLeakProtectionStep(const StepContext& context, const StepOptions& options) {
  const LeakProtectionRequest request{options.server.front(), ToWide(options.interfaces), LuidOf(options),
                                      ToAddresses(options.allowed)};
  const LogRoute route(context.reporter);
  context.library->EnableLeakProtection(request, &LogRoute::Receive);
}

void DisableLeakProtectionStep(const StepContext& context, const StepOptions&) {
  context.library->DisableLeakProtection();
}

void DisableLocalNetworkStep(const StepContext& context, const StepOptions&) {
  const LogRoute route(context.reporter);
  context.library->DisableLocalNetwork(&LogRoute::Receive);
}

void EnableLocalNetworkStep(const StepContext& context, const StepOptions&) {
  context.library->EnableLocalNetwork();
}

void EnableSkeinStep(const StepContext& context, const StepOptions& options) {
  const LogRoute route(context.reporter);
  context.library->EnableSkein(ToWide(options.interfaces), LuidOf(options), ToAddresses(options.peers),
                               &LogRoute::Receive);
}

void DisableSkeinStep(const StepContext& context, const StepOptions&) { context.library->DisableSkein(); }

void StatusStep(const StepContext& context, const StepOptions&) {
  const FirewallCommands& library = *context.library;
  context.reporter.ShowStatus({.internet = library.IsInternetEnabled(),
                               .dhcp = library.IsDhcpEnabled(),
                               .leakProtection = library.IsLeakProtectionEnabled(),
                               .localNetwork = library.IsLocalNetworkEnabled()});
}

void AdaptersStep(const StepContext& context, const StepOptions&) {
  context.reporter.ShowAdapters(ListAdapters());
}

void ListStep(const StepContext& context, const StepOptions& options) {
  const Policy::Snapshot snapshot = context.ReadEngine();
  context.reporter.ShowContents(ContentsOf(snapshot, options.all.empty() ? Owners::Ours : Owners::All));
}

constexpr StepOption kDisableInternetOptions[]{
    {"--app", "PATH", "Executable that stays connected", &StepOptions::apps},
    {"--interface", "TEXT",
     "Adapters whose description contains this, in its letter case, stay free; not used with --app",
     &StepOptions::interfaces},
};

constexpr StepOption kEnableLeakProtectionOptions[]{
    {"--server", "IPV4", "The VPN server, which stays reachable over any adapter", &StepOptions::server,
     Times::Once, RejectAllButIpV4},
    {"--interface", "TEXT",
     "Adapters whose description contains this, in its letter case, are allowed; not used with --luid",
     &StepOptions::interfaces},
    {"--luid", "NUMBER", "The one adapter that is allowed", &StepOptions::luid, Times::AtMostOnce,
     RejectAllButLuid},
    {"--allow", "IPV4", "Address that stays reachable over any adapter", &StepOptions::allowed, Times::Any,
     RejectAllButIpV4},
};

constexpr StepOption kEnableSkeinOptions[]{
    {"--interface", "TEXT",
     "Adapters whose description contains this, in its letter case, carry the network; not used with --luid",
     &StepOptions::interfaces},
    {"--luid", "NUMBER", "The one adapter that carries the network", &StepOptions::luid, Times::AtMostOnce,
     RejectAllButLuid},
    {"--peer", "IPV4", "Peer that may connect to this machine", &StepOptions::peers, Times::Any,
     RejectAllButIpV4},
};

constexpr StepOption kListOptions[]{
    {"--all", nullptr, "The sublayers and filters of everybody, not ours alone", &StepOptions::all},
};

/// Who connects, and where.
constexpr StepOption kWhoAndWhere[]{
    {"--as", "user|system|service NAME|package NAME|SID",
     "Whose program connects: a signed-in user's unless given", &StepOptions::who, Times::AtMostOnce,
     RejectAllButWho},
    {"--user", "SID", "The user; the one that filters name unless given, or any", &StepOptions::user,
     Times::AtMostOnce, RejectAllButSid},
    {"--account", "system|local-service|network-service",
     "What the service runs as; known for services of Windows", &StepOptions::account, Times::AtMostOnce,
     RejectAllButAccount},
    {"--capability", "NAME|SID", "Of the package's app container", &StepOptions::capabilities, Times::Any,
     RejectAllButCapability},
    {"--profile", "private|public|domain", "Of the network; any unless given", &StepOptions::profile,
     Times::AtMostOnce, RejectAllButProfile},
    {"--tunnel-type", "NAME|N", "none, 6to4, isatap, teredo ...; none unless given", &StepOptions::tunnelType,
     Times::AtMostOnce, RejectAllButTunnelType},
    {"--compartment", "N", "Routing compartment; 1 unless given", &StepOptions::compartment,
     Times::AtMostOnce, RejectAllButCompartment},
    {"--epoch", "N", "Quarantine epoch of the adapter; quarantine is over unless given", &StepOptions::epoch,
     Times::AtMostOnce, RejectAllButNumber},
    {"--reauthorized", nullptr, "The connection exists already and is judged anew, after a change of filters",
     &StepOptions::reauthorized},
};

/// The options of a step, and those of who connects and where.
template <std::size_t Count>
constexpr auto WithWhoAndWhere(const StepOption (&options)[Count]) {
  std::array<StepOption, Count + std::size(kWhoAndWhere)> all{};
  std::ranges::copy(kWhoAndWhere, std::ranges::copy(options, all.begin()).out);
  return all;
}

constexpr StepOption kConnectionOptions[]{
    {"--remote", "ADDRESS[:PORT]",
     "Other end of the connection; port 443 unless given, for protocols that have ports. Repeat it to ask "
     "more",
     &StepOptions::remotes, Times::AtLeastOnce, RejectAllButEndpoint},
    {"--local", "ADDRESS[:PORT]", "This machine's end; port 50000 unless given, likewise",
     &StepOptions::local, Times::AtMostOnce, RejectAllButEndpoint},
    {"--protocol", "tcp|udp|icmp|N", "tcp unless given", &StepOptions::protocol, Times::AtMostOnce,
     RejectAllButProtocol},
    {"--icmp-type", "N", "Of ICMP; that of an echo request unless given", &StepOptions::icmpType,
     Times::AtMostOnce, RejectAllButByte},
    {"--icmp-code", "N", "Of ICMP; 0 unless given", &StepOptions::icmpCode, Times::AtMostOnce,
     RejectAllButByte},
    {"--app", "PATH",
     "Executable, or an id such as \\device\\harddiskvolume1\\a.exe; one that no filter names "
     "unless given",
     &StepOptions::apps, Times::AtMostOnce},
    {"--interface", "NAME|LUID", "Adapter; one that no filter names unless given", &StepOptions::interfaces,
     Times::AtMostOnce},
    {"--inbound", nullptr, "The other end opens the connection", &StepOptions::inbound},
    {"--loopback", nullptr, "The connection stays on this machine, as those to 127.0.0.0/8 and ::1 do",
     &StepOptions::loopback},
    {"--interface-type", "NAME|N", "Of an adapter that no filter names: ethernet, wifi, mobile, ppp ...",
     &StepOptions::interfaceType, Times::AtMostOnce, RejectAllButInterfaceType},
    {"--trace", nullptr, "The whole way through layers and sublayers, not the answer alone",
     &StepOptions::trace},
};

constexpr auto kExplainOptions = WithWhoAndWhere(kConnectionOptions);

constexpr StepOption kProveOptions[]{
    {"--as", "user|system|service NAME|package NAME|SID",
     "Of such a program's connections; of all unless given", &StepOptions::who, Times::AtMostOnce,
     RejectAllButWho},
    {"--profile", "private|public|domain", "At such a network; at any unless given", &StepOptions::profile,
     Times::AtMostOnce, RejectAllButProfile},
};

constexpr StepOption kLintOptions[]{
    {"--all", nullptr, "Every finding with all its filters, those of the system too", &StepOptions::all},
};

constexpr StepOption kPageOptions[]{
    {"file", "FILE.html", "Where to write the page", &StepOptions::file, Times::Once},
};
constexpr auto kReportOptions = WithWhoAndWhere(kPageOptions);

constexpr StepOption kWatchOptions[]{
    {"--for", "SECONDS", "How long; until Ctrl+C unless given", &StepOptions::duration, Times::AtMostOnce,
     RejectAllButSeconds},
    {"--last", nullptr, "What the engine remembers, instead of what happens from now on", &StepOptions::last},
};

constexpr StepOption kExportOptions[]{
    {"file", "FILE.xml", "Where to write the dump", &StepOptions::file, Times::Once, RejectAllButDump},
};

constexpr StepOption kCalibrateOptions[]{
    {"file", "FILE.json", "Where to write it, for --assume; directly after the step's name",
     &StepOptions::file, Times::AtMostOnce, RejectAllButJson},
};

constexpr Step kSteps[]{
    {"disable-internet", "Install the kill switch, or replace it", kDisableInternetOptions, Effect::Installs,
     DisableInternetStep, KillSwitchOn},
    {"enable-internet", "Remove the kill switch", {}, Effect::Removes, EnableInternetStep, KillSwitchOff},
    {"enable-dhcp", "Install the rules that let DHCP through", {}, Effect::Installs, EnableDhcpStep, DhcpOn},
    {"disable-dhcp", "Remove the DHCP rules", {}, Effect::Removes, DisableDhcpStep, DhcpOff},
    {"enable-leak-protection", "Keep name look-ups and connections on the allowed adapters",
     kEnableLeakProtectionOptions, Effect::Installs, EnableLeakProtectionStep, LeakProtectionOn},
    {"disable-leak-protection",
     "Remove the leak protection",
     {},
     Effect::Removes,
     DisableLeakProtectionStep,
     LeakProtectionOff},
    {"disable-local-network",
     "Block the local networks",
     {},
     Effect::Installs,
     DisableLocalNetworkStep,
     LocalNetworkBlockOn},
    {"enable-local-network",
     "Remove the block of the local networks",
     {},
     Effect::Removes,
     EnableLocalNetworkStep,
     LocalNetworkBlockOff},
    {"enable-skein", "Install the rules of the Skein network, or replace them", kEnableSkeinOptions,
     Effect::Installs, EnableSkeinStep, SkeinOn},
    {"disable-skein",
     "Remove the rules of the Skein network",
     {},
     Effect::Removes,
     DisableSkeinStep,
     SkeinOff},
    {"status", "Tell what is switched on", {}, Effect::ReadsHost, StatusStep},
    {"adapters", "List the network adapters as the firewall sees them", {}, Effect::ReadsHost, AdaptersStep},
    {"list", "List what the engine holds of ours", kListOptions, Effect::ReadsEngine, ListStep},
    {"explain", "Tell what the engine does with a connection, and why", kExplainOptions, Effect::ReadsEngine,
     ExplainStep},
    {"map", "Tell what the engine does with every connection that can exist", kWhoAndWhere,
     Effect::ReadsEngine, MapStep},
    {"prove", "Check what the features switched on in this run promise", kProveOptions, Effect::ReadsRun,
     ProveStep},
    {"lint", "Find filters, of anybody's, that do not say what they seem to say", kLintOptions,
     Effect::ReadsEngine, LintStep},
    {"watch", "Tell of each connection that the engine drops, whose filter did it, and why", kWatchOptions,
     Effect::ReadsEvents, WatchStep},
    {"report", "Write map, promises, findings and filters as a page to look at", kReportOptions,
     Effect::ReadsEngine, ReportStep},
    {"export", "Write what the engine holds as netsh wfp show state does", kExportOptions,
     Effect::ReadsEngine, ExportStep},
    {"replay",
     "Put what the engine holds into a fresh emulated one, and tell how far the two agree",
     {},
     Effect::ReadsEngine,
     ReplayStep},
    {"calibrate",
     "Find out by experiment how the engine reads what is not documented: up to three minutes, with "
     "connections "
     "of this program to itself. Simulated with --engine emulated",
     kCalibrateOptions, Effect::Tries, CalibrateStep},
};

/// Every step that installs or removes rule sets has a switchFeature, which ActiveFeatures needs.
static_assert(std::ranges::all_of(kSteps, [](const Step& step) {
  return IsReading(step.effect) == (step.switchFeature == nullptr);
}));

}  // namespace

std::span<const Step> AllSteps() { return kSteps; }

const Step* FindStep(const std::string& name) {
  const auto* found = std::ranges::find(kSteps, name, &Step::name);
  return found == std::end(kSteps) ? nullptr : found;
}
