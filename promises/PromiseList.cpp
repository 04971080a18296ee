#include "promises/PromiseList.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>

namespace Promises {
namespace {

using Policy::Action;
using Policy::Address;
using Policy::Direction;
using Policy::Field;
using Policy::IpVersion;
using Policy::Mark;
using Policy::Number;
using Policy::ParseAddress;
using Policy::Test;
using FieldTests = Mark::FieldTests;

constexpr UINT16 kNamePort = 53;

/// The engine lets these in without asking filters of inbound connections.
constexpr std::string_view kAnswersComeIn =
    " For a few seconds, answers to a multicast or broadcast of this machine come in from any address.";

constexpr std::string_view kLoopbackNetworks[]{"127.0.0.0/8", "::1/128"};
/// Where the kill switch and leak protection let connections go on any interface.
constexpr std::string_view kLocalDestinations[]{
    "192.168.0.0/16", "172.16.0.0/12", "10.0.0.0/8",  "239.255.255.250/32", "255.255.255.255/32", "fe80::/10",
    "fc00::/7",       "ff02::c/128",   "ff05::c/128", "ff08::c/128",        "ff0e::c/128"};
constexpr std::string_view kSkeinNetwork = "100.64.0.0/10";
constexpr std::string_view kLocalNetworks[]{"192.168.0.0/16", "172.16.0.0/12", "10.0.0.0/8", "fe80::/10",
                                            "fc00::/7"};

Test Is(Number number) { return {Test::Kind::InInterval, false, {number, number}, {}}; }

/// The addresses of a network.
Test In(std::string_view network) {
  const std::size_t slash = network.find('/');
  const Address address = ParseAddress(network.substr(0, slash)).value();
  const auto prefixLength = static_cast<unsigned>(std::stoul(std::string(network.substr(slash + 1))));
  const unsigned hostBits = Policy::AddressBits(address.ipVersion) - prefixLength;
  return {Test::Kind::InInterval, false, Policy::NetworkOf(address.number, hostBits), {}};
}

template <class Numbers>
std::vector<Test> AnyOf(const Numbers& numbers) {
  std::vector<Test> tests;
  std::ranges::transform(numbers, std::back_inserter(tests), Is);
  return tests;
}

std::vector<Test> AnyOf(const std::vector<std::string>& applications) {
  std::vector<Test> tests;
  std::ranges::transform(applications, std::back_inserter(tests), [](const std::string& application) {
    return Test{Test::Kind::IsBytes, false, {}, application};
  });
  return tests;
}

FieldTests Either(Field field, std::vector<Test> tests) { return {field, std::move(tests), false}; }
FieldTests Neither(Field field, std::vector<Test> tests) { return {field, std::move(tests), true}; }

const FieldTests kLookUp = Either(Field::RemotePort, {Is(kNamePort)});
const FieldTests kNoLookUp = Neither(Field::RemotePort, {Is(kNamePort)});
/// Connections that stay on the machine, when they begin and when a change of filters has them judged anew.
/// They are judged at both ends, so promises speak of both directions.
const FieldTests kLoopback =
    Either(Field::Flags, {Is(FWP_CONDITION_FLAG_IS_LOOPBACK),
                          Is(FWP_CONDITION_FLAG_IS_LOOPBACK | FWP_CONDITION_FLAG_IS_REAUTHORIZE)});
const FieldTests kNoLoopback =
    Neither(Field::Flags, {{Test::Kind::AllSet, false, {FWP_CONDITION_FLAG_IS_LOOPBACK, 1}, {}}});

/// The tests of remote addresses for one IP version. Networks of the other version are left out.
class Networks {
 public:
  explicit Networks(IpVersion ipVersion) : ipVersion_(ipVersion) {}

  template <class Texts>
  Networks& Add(const Texts& networks) {
    for (const std::string_view network : networks) {
      const bool isV6 = network.find(':') != std::string_view::npos;
      if (isV6 == (ipVersion_ == IpVersion::V6)) {
        tests_.push_back(In(network));
      }
    }
    return *this;
  }

  Networks& AddAddresses(const std::vector<UINT32>& addresses) {
    for (const UINT32 address : addresses) {
      if (ipVersion_ == IpVersion::V4) {
        tests_.push_back(Is(address));
      }
    }
    return *this;
  }

  [[nodiscard]] FieldTests Inside() const { return Either(Field::RemoteAddress, tests_); }
  [[nodiscard]] FieldTests Outside() const { return Neither(Field::RemoteAddress, tests_); }

 private:
  IpVersion ipVersion_;
  std::vector<Test> tests_;
};

constexpr std::array kVersions{IpVersion::V4, IpVersion::V6};

/// Collects the promises of the features that are on.
class PromiseList {
 public:
  explicit PromiseList(const Features& features) : features_(features) {}

  std::vector<Promise> Make() {
    if (features_.killSwitch) {
      AddKillSwitch(*features_.killSwitch);
    }
    if (features_.dhcp) {
      AddDhcp();
    }
    if (features_.localNetworkBlock) {
      AddLocalNetworkBlock();
    }
    if (features_.leakProtection) {
      AddLookUps(*features_.leakProtection);
      AddTunnel(*features_.leakProtection);
      AddBlockedApplications(*features_.leakProtection);
    }
    if (features_.skein) {
      AddSkein(*features_.skein);
    }
    return std::move(promises_);
  }

 private:
  void Begin(std::string feature, std::string name, std::string sentence) {
    promises_.push_back({std::move(feature), std::move(name), std::move(sentence), {}});
  }

  void Add(Action action, std::optional<Direction> direction, std::optional<IpVersion> ipVersion,
           std::vector<FieldTests> fields, std::vector<Mark> exceptions = {}) {
    if (action == Action::Permit && features_.leakProtection) {
      // An application that Windows Firewall blocks stays blocked, so no other feature promises to let it
      // pass.
      exceptions.push_back({{Either(Field::Application, AnyOf(features_.leakProtection->blockedOutbound))}});
      exceptions.push_back({{Either(Field::Application, AnyOf(features_.leakProtection->blockedInbound))}});
    }
    promises_.back().clauses.push_back(
        {action, direction, ipVersion, {std::move(fields)}, std::move(exceptions)});
  }

  static Mark Exchange(UINT16 localPort, UINT16 remotePort) {
    return {{Either(Field::Protocol, {Is(Policy::kUdp)}), Either(Field::LocalPort, {Is(localPort)}),
             Either(Field::RemotePort, {Is(remotePort)})}};
  }

  /// A client's exchange with the server that gives addresses.
  static Mark DhcpExchange(IpVersion ipVersion) {
    return ipVersion == IpVersion::V4 ? Exchange(68, 67) : Exchange(546, 547);
  }

  /// With DHCP on, these exchanges are meant to pass: they break no promise that connections are closed.
  [[nodiscard]] std::vector<Mark> AllowedExchanges(IpVersion ipVersion) const {
    if (!features_.dhcp) {
      return {};
    }
    const Mark asServer = ipVersion == IpVersion::V4 ? Exchange(67, 68) : Exchange(547, 546);
    return {DhcpExchange(ipVersion), asServer};
  }

  /// What the local network block takes away again.
  [[nodiscard]] std::vector<Mark> TakenByLocalBlock(IpVersion ipVersion) const {
    if (!features_.localNetworkBlock) {
      return {};
    }
    return {{{Networks(ipVersion).Add(kLocalNetworks).Inside(), kNoLookUp}}};
  }

  /// Connections that the other features decide about, whether the kill switch is on or not.
  [[nodiscard]] std::vector<Mark> LeftToOthers(IpVersion ipVersion) const {
    std::vector<Mark> marks = TakenByLocalBlock(ipVersion);
    if (features_.leakProtection) {
      marks.push_back({{kLookUp}});
      marks.push_back({{Neither(Field::LocalInterface, AnyOf(features_.leakProtection->interfaces))}});
    }
    if (features_.skein && ipVersion == IpVersion::V4) {
      marks.push_back({{Either(Field::LocalInterface, AnyOf(features_.skein->interfaces)),
                        Either(Field::RemoteAddress, {In(kSkeinNetwork)})}});
    }
    return marks;
  }

  static FieldTests Exempt(const Features::KillSwitch& killSwitch, bool isExempt) {
    const bool byApplication = !killSwitch.applications.empty();
    return {byApplication ? Field::Application : Field::LocalInterface,
            byApplication ? AnyOf(killSwitch.applications) : AnyOf(killSwitch.interfaces), !isExempt};
  }

  void AddKillSwitch(const Features::KillSwitch& killSwitch) {
    const FieldTests notExempt = Exempt(killSwitch, false);
    Begin("kill switch", "kill-switch-closes-outbound",
          "No connection leaves but over loopback, to the local network, and by what is exempt.");
    PromiseOutside(Direction::Outbound, notExempt);
    Begin("kill switch", "kill-switch-closes-inbound",
          "No connection comes in but over loopback, from the local network, and to what is exempt." +
              std::string(kAnswersComeIn));
    PromiseOutside(Direction::Inbound, notExempt);
    Begin("kill switch", "kill-switch-no-look-ups", "No name look-up leaves to the local network either.");
    for (const IpVersion version : kVersions) {
      Add(Action::Block, Direction::Outbound, version,
          {kNoLoopback, notExempt, kLookUp, Networks(version).Add(kLocalDestinations).Inside()});
    }
    Begin("kill switch", "kill-switch-loopback", "This machine can still reach itself.");
    Add(Action::Permit, std::nullopt, std::nullopt, {kLoopback});
    if (!features_.localNetworkBlock) {
      Begin("kill switch", "kill-switch-local-network",
            "The local network stays reachable, but for name look-ups.");
      for (const IpVersion version : kVersions) {
        Add(Action::Permit, std::nullopt, version,
            {kNoLookUp, Networks(version).Add(kLocalDestinations).Inside()});
      }
    }
    if (!killSwitch.applications.empty() || !killSwitch.interfaces.empty()) {
      Begin("kill switch", "kill-switch-exempt",
            killSwitch.applications.empty() ? "Connections over the exempt interfaces pass as if it were off."
                                            : "The exempt applications' connections pass as if it were off.");
      for (const IpVersion version : kVersions) {
        Add(Action::Permit, std::nullopt, version, {Exempt(killSwitch, true)}, LeftToOthers(version));
      }
    }
  }

  void PromiseOutside(Direction direction, const FieldTests& notExempt) {
    for (const IpVersion version : kVersions) {
      Add(Action::Block, direction, version,
          {kNoLoopback, notExempt,
           Networks(version).Add(kLoopbackNetworks).Add(kLocalDestinations).Outside()},
          direction == Direction::Outbound ? AllowedExchanges(version) : std::vector<Mark>());
    }
  }

  void AddDhcp() {
    Begin("DHCP", "dhcp-client", "This machine can ask for an address, and renew it.");
    for (const IpVersion version : kVersions) {
      Add(Action::Permit, Direction::Outbound, version, DhcpExchange(version).fields);
    }
  }

  void AddLocalNetworkBlock() {
    Begin("local network block", "local-network-closed",
          "No connection goes to the local network or comes from it, but for name look-ups." +
              std::string(kAnswersComeIn));
    for (const IpVersion version : kVersions) {
      Add(Action::Block, std::nullopt, version,
          {kNoLoopback, kNoLookUp, Networks(version).Add(kLocalNetworks).Inside()});
    }
    Begin("local network block", "local-network-loopback",
          "This machine can still reach itself, by its own address too.");
    Add(Action::Permit, std::nullopt, std::nullopt, {kLoopback});
    if (!features_.killSwitch && !features_.leakProtection) {
      Begin("local network block", "local-network-look-ups",
            "Name servers of the local network still answer.");
      for (const IpVersion version : kVersions) {
        Add(Action::Permit, Direction::Outbound, version,
            {kLookUp, Networks(version).Add(kLocalNetworks).Inside()});
      }
    }
  }

  void AddLookUps(const Features::LeakProtection& protection) {
    const FieldTests outsideTunnel = Neither(Field::LocalInterface, AnyOf(protection.interfaces));
    const std::vector<std::string> named{protection.nameApplication};
    Begin("leak protection", "leak-no-look-ups",
          "No name look-up leaves outside the permitted interfaces but the permitted application's.");
    for (const IpVersion version : kVersions) {
      Add(Action::Block, Direction::Outbound, version,
          {kNoLoopback, kLookUp, outsideTunnel, Neither(Field::Application, AnyOf(named)),
           Networks(version).Add(kLoopbackNetworks).Outside()});
    }
    if (!features_.killSwitch) {
      Begin("leak protection", "leak-name-application",
            "The permitted application's name look-ups leave over any interface.");
      Add(Action::Permit, Direction::Outbound, std::nullopt,
          {kLookUp, Either(Field::Application, AnyOf(named))});
    }
  }

  void AddTunnel(const Features::LeakProtection& protection) {
    const FieldTests outside = Neither(Field::LocalInterface, AnyOf(protection.interfaces));
    const Mark itsLookUps{
        {kLookUp, Either(Field::Application, AnyOf(std::vector{protection.nameApplication}))}};
    std::vector<UINT32> reachable = protection.permittedAddresses;
    reachable.push_back(protection.serverAddress);
    Begin("leak protection", "leak-closes",
          "No connection leaves outside the permitted interfaces but over loopback, to the local network, to "
          "the permitted addresses and to the VPN server.");
    for (const IpVersion version : kVersions) {
      std::vector<Mark> exceptions = AllowedExchanges(version);
      exceptions.push_back(itsLookUps);
      Add(Action::Block, Direction::Outbound, version,
          {kNoLoopback, outside,
           Networks(version)
               .Add(kLoopbackNetworks)
               .Add(kLocalDestinations)
               .AddAddresses(reachable)
               .Outside()},
          exceptions);
    }
    if (features_.killSwitch) {
      return;
    }
    Begin("leak protection", "leak-tunnel-open", "Connections over the permitted interfaces pass.");
    for (const IpVersion version : kVersions) {
      Add(Action::Permit, Direction::Outbound, version,
          {Either(Field::LocalInterface, AnyOf(protection.interfaces))}, TakenByLocalBlock(version));
    }
    AddReachable("leak-permitted-addresses", "The permitted addresses are reachable over any interface.",
                 protection.permittedAddresses);
    AddReachable("leak-server", "The VPN server is reachable over any interface.",
                 {protection.serverAddress});
    AddWhatStays();
  }

  void AddReachable(std::string name, std::string sentence, const std::vector<UINT32>& addresses) {
    Begin("leak protection", std::move(name), std::move(sentence));
    Add(Action::Permit, Direction::Outbound, IpVersion::V4,
        {kNoLookUp, Networks(IpVersion::V4).AddAddresses(addresses).Inside()},
        TakenByLocalBlock(IpVersion::V4));
  }

  void AddWhatStays() {
    if (features_.localNetworkBlock) {
      return;
    }
    Begin("leak protection", "leak-local-network",
          "The local network stays reachable over any interface, but for name look-ups.");
    for (const IpVersion version : kVersions) {
      Add(Action::Permit, Direction::Outbound, version,
          {kNoLookUp, Networks(version).Add(kLocalDestinations).Inside()});
    }
    Begin("leak protection", "leak-loopback", "This machine can still reach itself.");
    Add(Action::Permit, std::nullopt, std::nullopt, {kLoopback});
  }

  void AddBlockedApplications(const Features::LeakProtection& protection) {
    Begin("leak protection", "leak-blocked-applications",
          "Applications that Windows Firewall blocks stay blocked.");
    Add(Action::Block, Direction::Outbound, std::nullopt,
        {Either(Field::Application, AnyOf(protection.blockedOutbound))});
    Add(Action::Block, Direction::Inbound, std::nullopt,
        {Either(Field::Application, AnyOf(protection.blockedInbound))});
  }

  void AddSkein(const Features::Skein& skein) {
    const FieldTests onSkein = Either(Field::LocalInterface, AnyOf(skein.interfaces));
    const FieldTests fromPeer = Networks(IpVersion::V4).AddAddresses(skein.peers).Inside();
    Begin("Skein", "skein-peers", "A listed peer can reach us on the Skein interface.");
    Add(Action::Permit, Direction::Inbound, IpVersion::V4, {onSkein, fromPeer});
    Begin("Skein", "skein-closed",
          "Nobody else of 100.64.0.0/10 can reach us on the Skein interface." + std::string(kAnswersComeIn));
    Add(Action::Block, Direction::Inbound, IpVersion::V4,
        {onSkein, Either(Field::RemoteAddress, {In(kSkeinNetwork)})}, {{{fromPeer}}});
  }

  const Features& features_;
  std::vector<Promise> promises_;
};

}  // namespace

std::vector<Promise> PromisesOf(const Features& features) { return PromiseList(features).Make(); }

}  // namespace Promises
