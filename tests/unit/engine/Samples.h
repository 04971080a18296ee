#pragma once

#include <WfpPlatform.h>

#include <cstdint>

#include "engine/Provider.h"
#include "engine/Sublayer.h"
#include "filtering/FilterBuilder.h"
#include "filtering/Values.h"
#include "support/RuleSetKeys.h"

// Objects for the tests of providers, sublayers and firewalls.
namespace Samples {

inline constexpr GUID kFirstKey{0x20000000, 0x0002, 0x4002, {0x80, 0, 0, 0, 0, 0, 0, 2}};
inline constexpr GUID kSecondKey{0x30000000, 0x0003, 0x4003, {0x80, 0, 0, 0, 0, 0, 0, 3}};
inline constexpr GUID kThirdKey{0x40000000, 0x0004, 0x4004, {0x80, 0, 0, 0, 0, 0, 0, 4}};

inline WfpFirewall::Provider MakeProvider() {
  return {kProviderKey, L"CorvaneService", L"Corvane", L"Corvane firewall provider"};
}

/// A block of one remote port at the outbound IPv4 connect layer.
inline WfpFirewall::Filter BlockPort(std::uint16_t port) {
  using namespace WfpFirewall;
  return FilterBuilder()
      .CreateFilter(Action::Block)
      .InLayer(Filtering::LayerType::AleAuthConnectV4)
      .SetWeight(14)
      .WithCondition(Filtering::ConditionEqual(new Filtering::Values::RemotePort(port)))
      .Get();
}

/// Blocks the ports 1 to 3, one filter each.
inline WfpFirewall::Sublayer ThreeFilters(const GUID& key = kFirstKey) {
  WfpFirewall::Sublayer sublayer(key, L"Ports", L"Blocks three ports");
  sublayer.AddFilters({BlockPort(1), BlockPort(2), BlockPort(3)});
  return sublayer;
}

/// A sublayer without filters.
inline WfpFirewall::Sublayer Empty(const GUID& key) { return {key, L"Empty", L"Holds nothing"}; }

}  // namespace Samples
