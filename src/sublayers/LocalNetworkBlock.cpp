#include "sublayers/LocalNetworkBlock.h"

#include <cstdint>
#include <utility>

#include "filtering/FilterBuilder.h"
#include "filtering/Values.h"

namespace WfpFirewall::Sublayers {
namespace {

using Filtering::ConditionEqual;
using Filtering::ConditionNotEqual;
using Filtering::LayerType;
using Filtering::Values::RemoteIpAddressAndMaskV4;
using Filtering::Values::RemoteIpAddressAndMaskV6;
using Filtering::Values::RemotePort;

constexpr std::int16_t kWeight = 14;
constexpr std::uint16_t kDnsPort = 53;

// Deliberate: receive-accept comes second here and last in the kill switch, and the port condition comes
// first here and second there. Audits compare the list filter by filter.
constexpr LayerType kLayersV4[]{LayerType::AleAuthConnectV4, LayerType::AleAuthRecvAcceptV4,
                                LayerType::AleFlowEstablishedV4};
constexpr LayerType kLayersV6[]{LayerType::AleAuthConnectV6, LayerType::AleAuthRecvAcceptV6,
                                LayerType::AleFlowEstablishedV6};

struct NetworkV4 {
  const char* address;
  const char* mask;
};

struct NetworkV6 {
  const char* address;
  int prefixLength;
};

// Deliberate: just these. 169.254.0.0/16, 100.64.0.0/10, multicast and broadcast stay reachable.
constexpr NetworkV4 kNetworksV4[]{
    {"192.168.0.0", "255.255.0.0"},
    {"172.16.0.0", "255.240.0.0"},
    {"10.0.0.0", "255.0.0.0"},
};
constexpr NetworkV6 kNetworksV6[]{{"fe80::", 10}, {"fc00::", 7}};

RemoteIpAddressAndMaskV4* Remote(const NetworkV4& network) {
  return new RemoteIpAddressAndMaskV4(network.address, network.mask);
}

RemoteIpAddressAndMaskV6* Remote(const NetworkV6& network) {
  return new RemoteIpAddressAndMaskV6(network.address, network.prefixLength);
}

Filter Block(LayerType layer, const auto& network) {
  return FilterBuilder()
      .CreateFilter(Action::Block)
      .InLayer(layer)
      .WithCondition(ConditionNotEqual(new RemotePort(kDnsPort)))
      .WithCondition(ConditionEqual(Remote(network)))
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
