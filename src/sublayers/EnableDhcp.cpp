#include "sublayers/EnableDhcp.h"

#include <cstdint>

#include "filtering/FilterBuilder.h"
#include "filtering/Values.h"

namespace WfpFirewall::Sublayers {
namespace {

using Filtering::ConditionEqual;
using Filtering::LayerType;
using Filtering::Values::LocalPort;
using Filtering::Values::Protocol;
using Filtering::Values::RemotePort;

constexpr std::int16_t kWeight = 14;

constexpr LayerType kLayersV4[]{LayerType::AleAuthConnectV4, LayerType::AleFlowEstablishedV4};
constexpr LayerType kLayersV6[]{LayerType::AleAuthConnectV6, LayerType::AleFlowEstablishedV6};

struct PortPair {
  std::uint16_t local;
  std::uint16_t remote;
};

// With the numbers of docs/rule-sets.md#dhcp, which also tells what follows from IPv4 having the server's
// pair of ports only.
constexpr PortPair kPortsV4[]{
    {67, 68},  // 1
};
constexpr PortPair kPortsV6[]{
    {546, 547},  // 1
    {547, 546},  // 2
};

Filter PermitUdp(LayerType layer, const PortPair& ports) {
  return FilterBuilder()
      .CreateFilter(Action::Permit)
      .InLayer(layer)
      .WithCondition(ConditionEqual(new Protocol(IPPROTO_UDP)))
      .WithCondition(ConditionEqual(new LocalPort(ports.local)))
      .WithCondition(ConditionEqual(new RemotePort(ports.remote)))
      .SetWeight(kWeight)
      .Get();
}

}  // namespace

EnableDhcp::EnableDhcp(const GUID& key, const std::wstring& name, const std::wstring& description)
    : Sublayer(key, name, description) {
  AddDhcpFilters();
}

void EnableDhcp::AddDhcpFilters() {
  for (const LayerType layer : kLayersV4) {
    for (const PortPair& ports : kPortsV4) {
      AddFilter(PermitUdp(layer, ports));
    }
  }
  for (const LayerType layer : kLayersV6) {
    for (const PortPair& ports : kPortsV6) {
      AddFilter(PermitUdp(layer, ports));
    }
  }
}

}  // namespace WfpFirewall::Sublayers
