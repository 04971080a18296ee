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

// Deliberate: IPv4 has the server's side of the exchange only, IPv6 both sides, and there is nothing at
// the receive-accept layers. Audits compare the list filter by filter.
constexpr PortPair kPortsV4[]{{67, 68}};
constexpr PortPair kPortsV6[]{{546, 547}, {547, 546}};

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
