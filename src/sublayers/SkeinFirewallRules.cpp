#include "sublayers/SkeinFirewallRules.h"

#include <cstdint>
#include <span>
#include <utility>

#include "filtering/FilterBuilder.h"
#include "filtering/Values.h"
#include "sublayers/Destinations.h"

namespace WfpFirewall::Sublayers {
namespace {

using Filtering::ConditionEqual;
using Filtering::LayerType;
using Filtering::Values::LocalInterfaceLuid;
using Filtering::Values::RemoteIpAddressV4;

// A peer's address may lie in the blocked range: the permit has to outweigh the block.
constexpr std::int16_t kBlockWeight = 14;
constexpr std::int16_t kPermitWeight = 15;

// Inbound and IPv4 only, see docs/rule-sets.md#skein.
constexpr LayerType kLayers[]{LayerType::AleAuthRecvAcceptV4};

constexpr NetworkV4 kBlockedNetwork{"100.64.0.0", "255.192.0.0"};

FilterBuilder Begin(Action action, LayerType layer, UINT64 luid) {
  return FilterBuilder()
      .CreateFilter(action)
      .InLayer(layer)
      .WithCondition(ConditionEqual(new LocalInterfaceLuid(luid)))
      .OverrideOtherSublayers();
}

}  // namespace

SkeinFirewallRules::SkeinFirewallRules(GUID key, std::wstring name, std::wstring description,
                                       std::vector<UINT64> luids, const UINT32* addresses, std::size_t count)
    : Sublayer(key, std::move(name), std::move(description)),
      luids_(std::move(luids)),
      addresses_(addresses),
      count_(count) {
  for (const LayerType layer : kLayers) {
    AddSkeinBlockFilters(layer);
    AddSkeinPermitFilters(layer);
  }
}

void SkeinFirewallRules::AddSkeinBlockFilters(LayerType layer) {
  for (const UINT64 luid : luids_) {
    AddFilter(Begin(Action::Block, layer, luid)
                  .WithCondition(RemoteIn(kBlockedNetwork))
                  .SetWeight(kBlockWeight)
                  .Get());
  }
}

void SkeinFirewallRules::AddSkeinPermitFilters(LayerType layer) {
  if (addresses_ == nullptr || count_ == 0) {
    // A permit without peers would let everyone in.
    return;
  }
  for (const UINT64 luid : luids_) {
    FilterBuilder permit = Begin(Action::Permit, layer, luid).SetWeight(kPermitWeight);
    // The engine takes conditions on one field as alternatives.
    for (const UINT32 address : std::span(addresses_, count_)) {
      permit.WithCondition(ConditionEqual(new RemoteIpAddressV4(address)));
    }
    AddFilter(permit.Get());
  }
}

}  // namespace WfpFirewall::Sublayers
