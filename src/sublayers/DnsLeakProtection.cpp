#include "sublayers/DnsLeakProtection.h"

#include <cstdint>
#include <utility>

#include "filtering/FilterBuilder.h"
#include "filtering/Values.h"
#include "sublayers/Destinations.h"

namespace WfpFirewall::Sublayers {
namespace {

using Filtering::ConditionEqual;
using Filtering::LayerType;
using Filtering::Values::AppId;
using Filtering::Values::LocalInterfaceLuid;
using Filtering::Values::RemotePort;

constexpr std::int16_t kPermitWeight = 15;
constexpr std::int16_t kBlockWeight = 14;

constexpr LayerType kLayers[]{LayerType::AleAuthConnectV4, LayerType::AleFlowEstablishedV4,
                              LayerType::AleAuthConnectV6, LayerType::AleFlowEstablishedV6};

FilterBuilder ForDns(Action action, LayerType layer) {
  return FilterBuilder().CreateFilter(action).InLayer(layer).WithCondition(
      ConditionEqual(new RemotePort(kDnsPort)));
}

}  // namespace

DnsLeakProtection::DnsLeakProtection(GUID key, std::wstring name, std::wstring description,
                                     std::vector<UINT64> luids, std::wstring permittedApp)
    : Sublayer(key, std::move(name), std::move(description)),
      luids_(std::move(luids)),
      permittedApp_(std::move(permittedApp)) {
  for (const LayerType layer : kLayers) {
    AddFiltersTo(layer);
  }
}

// The three kinds of filters of docs/rule-sets.md#dns-leak-protection, in its order.
void DnsLeakProtection::AddFiltersTo(LayerType layer) {
  for (const UINT64 luid : luids_) {
    AddFilter(ForDns(Action::Permit, layer)
                  .WithCondition(ConditionEqual(new LocalInterfaceLuid(luid)))
                  .SetWeight(kPermitWeight)
                  .Get());
  }
  AddFilter(ForDns(Action::Block, layer).SetWeight(kBlockWeight).Get());
  AddFilter(ForDns(Action::Permit, layer)
                .WithCondition(ConditionEqual(new AppId(permittedApp_)))
                .SetWeight(kPermitWeight)
                .Get());
}

}  // namespace WfpFirewall::Sublayers
