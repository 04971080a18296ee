#include "sublayers/BlockAppsBlockedInWinFirewall.h"

#include <cstdint>
#include <utility>

#include "api/RuleSetIdentity.h"
#include "engine/Engine.h"

namespace WfpFirewall::Sublayers {
namespace {

constexpr std::int16_t kWeight = 15;

}  // namespace

BlockAppsBlockedInWinFirewall::BlockAppsBlockedInWinFirewall()
    : Sublayer(Identities().firewallCopy.guid, Identities().firewallCopy.name,
               Identities().firewallCopy.description) {
  for (Filter& filter : Engine::GetAllBlockedAppsFilters()) {
    filter.SetWeight(kWeight);
    AddFilter(std::move(filter));
  }
}

}  // namespace WfpFirewall::Sublayers
