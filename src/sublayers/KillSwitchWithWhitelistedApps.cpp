#include "sublayers/KillSwitchWithWhitelistedApps.h"

#include <cstdint>
#include <utility>

#include "filtering/AppId.h"
#include "filtering/FilterBuilder.h"

namespace WfpFirewall::Sublayers {
namespace {

using Filtering::ConditionEqual;
using Filtering::LayerType;
using Filtering::Values::AppId;

constexpr std::int16_t kWeight = 14;

constexpr LayerType kLayers[]{LayerType::AleAuthConnectV4,     LayerType::AleFlowEstablishedV4,
                              LayerType::AleAuthRecvAcceptV4,  LayerType::AleAuthConnectV6,
                              LayerType::AleFlowEstablishedV6, LayerType::AleAuthRecvAcceptV6};

Filter PermitApp(LayerType layer, const std::wstring& path) {
  return FilterBuilder()
      .CreateFilter(Action::Permit)
      .InLayer(layer)
      .SetWeight(kWeight)
      .WithCondition(ConditionEqual(new AppId(path)))
      .Get();
}

}  // namespace

KillSwitchWithWhitelistedApps::KillSwitchWithWhitelistedApps(KillSwitch& killSwitch,
                                                             std::vector<std::wstring> apps)
    : KillSwitch(killSwitch), apps_(std::move(apps)) {
  KillSwitchWithWhitelistedApps::BuildFilters();
}

void KillSwitchWithWhitelistedApps::BuildFilters() {
  for (const LayerType layer : kLayers) {
    for (const std::wstring& path : apps_) {
      AddFilter(PermitApp(layer, path));
    }
  }
}

std::vector<std::wstring> KillSwitchWithWhitelistedApps::GetApps() const { return apps_; }

}  // namespace WfpFirewall::Sublayers
