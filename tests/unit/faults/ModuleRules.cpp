#include "RuleWords.h"

namespace {

constexpr Rule kRules[]{
    // Initialize makes one call, to close the earlier session. If the engine refuses, the session stays open.
    {kInitialize,
     kAllStates & ~kOffBesideProvider,
     nullptr,
     {},
     {.killSwitch = kGone,
      .dhcp = kGone,
      .dnsLeak = kGone,
      .firewallCopy = kGone,
      .interfaceLeak = kGone,
      .localNetwork = kGone,
      .skein = kGone,
      .session = false,
      .provider = false,
      .transaction = false}},
    {kInitialize, kOffBesideProvider, nullptr, {}, kNothingHappens},
    {kInitialize,
     kAllStates & ~kWithoutSession,
     "FwpmEngineClose0",
     kOnce,
     {.killSwitch = kForgotten,
      .dhcp = kForgotten,
      .dnsLeak = kForgotten,
      .firewallCopy = kForgotten,
      .interfaceLeak = kForgotten,
      .localNetwork = kForgotten,
      .skein = kForgotten,
      .leaksSession = true}},

    {kQueries, kAllStates, nullptr, {}, kNothingHappens},
};

}  // namespace

std::span<const Rule> ModuleRules() { return kRules; }
