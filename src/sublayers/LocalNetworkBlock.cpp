#include "sublayers/LocalNetworkBlock.h"

#include <cstdint>
#include <utility>

#include "filtering/FilterBuilder.h"
#include "filtering/Values.h"
#include "sublayers/Destinations.h"

namespace WfpFirewall::Sublayers {
namespace {

using Filtering::ConditionNotEqual;
using Filtering::LayerType;
using Filtering::Values::RemotePort;

constexpr std::int16_t kWeight = 14;

constexpr LayerType kLayersV4[]{LayerType::AleAuthConnectV4, LayerType::AleAuthRecvAcceptV4,
                                LayerType::AleFlowEstablishedV4};
constexpr LayerType kLayersV6[]{LayerType::AleAuthConnectV6, LayerType::AleAuthRecvAcceptV6,
                                LayerType::AleFlowEstablishedV6};

// With the numbers of docs/rule-sets.md#local-network-block, which also names the networks that are left out.
constexpr NetworkV4 kNetworksV4[]{
    {"192.168.0.0", "255.255.0.0"},  // 1
    {"172.16.0.0", "255.240.0.0"},   // 2
    {"10.0.0.0", "255.0.0.0"},       // 3
};
constexpr NetworkV6 kNetworksV6[]{
    {"fe80::", 10},  // 1
    {"fc00::", 7},   // 2
};

Filter Block(LayerType layer, const auto& network) {
  return FilterBuilder()
      .CreateFilter(Action::Block)
      .InLayer(layer)
      .WithCondition(ConditionNotEqual(new RemotePort(kDnsPort)))
      .WithCondition(RemoteIn(network))
      .SetWeight(kWeight)
      .Get();
}

}  // namespace

LocalNetworkBlock::LocalNetworkBlock(GUID key, std::wstring name, std::wstring description)
    : Sublayer(key, std::move(name), std::move(description)) {
  AddLocalNetworkFilters();
}

void LocalNetworkBlock::AddLocalNetworkFilters() {
  for (const LayerType layer : kLayersV4) {
    for (const NetworkV4& network : kNetworksV4) {
      AddFilter(Block(layer, network));
    }
  }
  for (const LayerType layer : kLayersV6) {
    for (const NetworkV6& network : kNetworksV6) {
      AddFilter(Block(layer, network));
    }
  }
}

}  // namespace WfpFirewall::Sublayers
