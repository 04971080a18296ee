#include "sublayers/KillSwitch.h"

#include <cstdint>
#include <utility>

#include "filtering/FilterBuilder.h"
#include "filtering/Values.h"
#include "sublayers/KillSwitchLayers.h"

namespace WfpFirewall::Sublayers {
namespace {

using Filtering::ConditionEqual;
using Filtering::ConditionNotEqual;
using Filtering::LayerType;
using Filtering::Values::LoopbackFlag;
using Filtering::Values::RemoteIpAddressAndMaskV4;
using Filtering::Values::RemoteIpAddressAndMaskV6;
using Filtering::Values::RemotePort;

// Deliberate: the block has the weight of the permits. All of them are measured against one another by
// the weights that the engine derives from their conditions, where the block, having none, is lightest.
constexpr std::int16_t kWeight = 14;
constexpr std::uint16_t kDnsPort = 53;

struct NetworkV4 {
  const char* address;
  const char* mask;
  bool overridesOtherSublayers = false;
};

struct NetworkV6 {
  const char* address;
  int prefixLength;
};

constexpr NetworkV4 kLoopbackV4{"127.0.0.0", "255.0.0.0"};
constexpr NetworkV6 kLoopbackV6{"::1", 128};

/// Destinations that stay reachable, except for name look-ups.
constexpr NetworkV4 kLocalNetworksV4[]{
    {"192.168.0.0", "255.255.0.0"},
    {"172.16.0.0", "255.240.0.0"},
    {"10.0.0.0", "255.0.0.0"},
    {"239.255.255.250", "255.255.255.255"},
    // Deliberate: limited broadcast is the one permit that other sublayers cannot take back. Address
    // configuration relies on it.
    {"255.255.255.255", "255.255.255.255", true},
};

constexpr NetworkV6 kLocalNetworksV6[]{
    {"fe80::", 10}, {"fc00::", 7}, {"ff02::c", 128}, {"ff05::c", 128}, {"ff08::c", 128}, {"ff0e::c", 128},
};

FilterBuilder Begin(Action action, LayerType layer) {
  return FilterBuilder().CreateFilter(action).InLayer(layer).SetWeight(kWeight);
}

Filter Block(LayerType layer) { return Begin(Action::Block, layer).Get(); }

Filter PermitLoopbackFlag(LayerType layer) {
  return Begin(Action::Permit, layer).WithCondition(ConditionEqual(new LoopbackFlag())).Get();
}

FilterBuilder PermitTo(LayerType layer, const NetworkV4& network) {
  return Begin(Action::Permit, layer)
      .WithCondition(ConditionEqual(new RemoteIpAddressAndMaskV4(network.address, network.mask)));
}

FilterBuilder PermitTo(LayerType layer, const NetworkV6& network) {
  return Begin(Action::Permit, layer)
      .WithCondition(ConditionEqual(new RemoteIpAddressAndMaskV6(network.address, network.prefixLength)));
}

FilterBuilder ExceptDns(const FilterBuilder& builder) {
  return builder.WithCondition(ConditionNotEqual(new RemotePort(kDnsPort)));
}

}  // namespace

KillSwitch::KillSwitch(GUID key, std::wstring name, std::wstring description)
    : Sublayer(key, std::move(name), std::move(description)) {
  KillSwitch::BuildFilters();
}

// Deliberate: the loopback permits stand in a different order in the two families, and only the IPv4
// broadcast permit overrides. Audits compare the list filter by filter.
void KillSwitch::BuildFilters() {
  for (const LayerType layer : kKillSwitchLayersV4) {
    AddFilter(Block(layer));
    AddFilter(PermitLoopbackFlag(layer));
    AddFilter(PermitTo(layer, kLoopbackV4).Get());
    for (const NetworkV4& network : kLocalNetworksV4) {
      FilterBuilder permit = ExceptDns(PermitTo(layer, network));
      if (network.overridesOtherSublayers) {
        permit.OverrideOtherSublayers();
      }
      AddFilter(permit.Get());
    }
  }
  for (const LayerType layer : kKillSwitchLayersV6) {
    AddFilter(Block(layer));
    AddFilter(PermitTo(layer, kLoopbackV6).Get());
    AddFilter(PermitLoopbackFlag(layer));
    for (const NetworkV6& network : kLocalNetworksV6) {
      AddFilter(ExceptDns(PermitTo(layer, network)).Get());
    }
  }
}

}  // namespace WfpFirewall::Sublayers
