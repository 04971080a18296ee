#include "FeatureSwitches.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <set>

#include "Identities.h"
#include "PolicyReader.h"
#include "catalog/Keys.h"

namespace {

using Promises::Features;

std::vector<UINT64> Interfaces(const StepOptions& options) {
  if (!options.luid.empty()) {
    return {ParseLuid(options.luid.front()).value()};
  }
  return FindInterfaces(options.interfaces);
}

std::vector<UINT32> Addresses(const std::vector<std::string>& texts) {
  std::vector<UINT32> addresses;
  std::ranges::transform(texts, std::back_inserter(addresses),
                         [](const std::string& text) { return ParseIpV4(text).value(); });
  return addresses;
}

/// The application that a filter of another program blocks, for every destination.
std::optional<std::string> BlockedApplication(const Policy::Filter& filter) {
  const bool isOurs = filter.providerKey && *filter.providerKey == kProvider.key;
  if (isOurs || filter.action != FWP_ACTION_BLOCK || filter.conditions.size() != 1) {
    return std::nullopt;
  }
  const Policy::Condition& condition = filter.conditions.front();
  const bool isApplication = condition.field != nullptr &&
                             condition.field->key == Catalog::kAleAppIdFieldKey &&
                             condition.test.kind == Policy::Test::Kind::IsBytes && !condition.test.negated;
  return isApplication ? std::optional(condition.test.bytes) : std::nullopt;
}

std::set<std::string> ApplicationsBlockedAt(const Policy::Snapshot& snapshot, const GUID& layer) {
  std::set<std::string> applications;
  for (const Policy::Filter& filter : snapshot.filters) {
    const auto application = BlockedApplication(filter);
    if (application && filter.layerKey == layer) {
      applications.insert(*application);
    }
  }
  return applications;
}

/// The applications that are blocked over both IP versions. There is no promise about an application that is
/// blocked over one version only.
std::vector<std::string> ApplicationsBlocked(const Policy::Snapshot& snapshot, const GUID& layerV4,
                                             const GUID& layerV6) {
  std::vector<std::string> applications;
  std::ranges::set_intersection(ApplicationsBlockedAt(snapshot, layerV4),
                                ApplicationsBlockedAt(snapshot, layerV6), std::back_inserter(applications));
  return applications;
}

Features::KillSwitch KillSwitchOf(const StepOptions& options) {
  Features::KillSwitch killSwitch;
  std::ranges::transform(options.apps, std::back_inserter(killSwitch.applications), ReadApplicationId);
  if (!options.interfaces.empty()) {
    killSwitch.interfaces = FindInterfaces(options.interfaces);
  }
  return killSwitch;
}

Features::LeakProtection LeakProtectionOf(const StepOptions& options, const std::string& nameApplication,
                                          const Policy::Snapshot& snapshot) {
  Features::LeakProtection features;
  features.interfaces = Interfaces(options);
  features.serverAddress = ParseIpV4(options.server.front()).value();
  features.permittedAddresses = Addresses(options.allowed);
  features.nameApplication = nameApplication.empty() ? "" : ReadApplicationId(nameApplication);
  features.blockedOutbound =
      ApplicationsBlocked(snapshot, Catalog::kAleAuthConnectV4LayerKey, Catalog::kAleAuthConnectV6LayerKey);
  features.blockedInbound = ApplicationsBlocked(snapshot, Catalog::kAleAuthRecvAcceptV4LayerKey,
                                                Catalog::kAleAuthRecvAcceptV6LayerKey);
  return features;
}

}  // namespace

void KillSwitchOn(const StepOptions& options, const FeatureSources&, Features& features) {
  features.killSwitch = KillSwitchOf(options);
}

void KillSwitchOff(const StepOptions&, const FeatureSources&, Features& features) {
  features.killSwitch.reset();
}

void DhcpOn(const StepOptions&, const FeatureSources&, Features& features) { features.dhcp = true; }

void DhcpOff(const StepOptions&, const FeatureSources&, Features& features) { features.dhcp = false; }

void LeakProtectionOn(const StepOptions& options, const FeatureSources& sources, Features& features) {
  features.leakProtection = LeakProtectionOf(options, sources.dnsApp, sources.snapshot);
}

void LeakProtectionOff(const StepOptions&, const FeatureSources&, Features& features) {
  features.leakProtection.reset();
}

void LocalNetworkBlockOn(const StepOptions&, const FeatureSources&, Features& features) {
  features.localNetworkBlock = true;
}

void LocalNetworkBlockOff(const StepOptions&, const FeatureSources&, Features& features) {
  features.localNetworkBlock = false;
}

void SkeinOn(const StepOptions& options, const FeatureSources&, Features& features) {
  features.skein = Features::Skein{Interfaces(options), Addresses(options.peers)};
}

void SkeinOff(const StepOptions&, const FeatureSources&, Features& features) { features.skein.reset(); }
