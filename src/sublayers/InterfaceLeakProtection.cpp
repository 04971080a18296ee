#include "sublayers/InterfaceLeakProtection.h"

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <utility>

#include "filtering/FilterBuilder.h"
#include "filtering/Values.h"

namespace WfpFirewall::Sublayers {
namespace {

using Filtering::Condition;
using Filtering::ConditionEqual;
using Filtering::ConditionNotEqual;
using Filtering::LayerType;
using Filtering::Values::LocalInterfaceLuid;
using Filtering::Values::LoopbackFlag;
using Filtering::Values::RemoteIpAddressAndMaskV4;
using Filtering::Values::RemoteIpAddressAndMaskV6;
using Filtering::Values::RemoteIpAddressV4;

constexpr LayerType kLayerV4 = LayerType::AleAuthConnectV4;
constexpr LayerType kLayerV6 = LayerType::AleAuthConnectV6;

constexpr std::int16_t kListedAddressWeight = 15;
constexpr std::int16_t kPermitWeight = 14;
// Deliberate: on IPv4 every permit outranks the block, on IPv6 the block stands level with the permits.
// Audits compare the weights filter by filter.
constexpr std::int16_t kBlockWeightV4 = 13;
constexpr std::int16_t kBlockWeightV6 = 14;

struct NetworkV4 {
  const char* address;
  const char* mask;
};

struct NetworkV6 {
  const char* address;
  int prefixLength;
};

constexpr NetworkV4 kLoopbackV4{"127.0.0.1", "255.0.0.0"};
constexpr NetworkV4 kPrivateNetworksV4[]{
    {"192.168.0.0", "255.255.0.0"}, {"10.0.0.0", "255.0.0.0"}, {"172.16.0.0", "255.240.0.0"}};
constexpr NetworkV4 kGroupAndBroadcastV4[]{{"239.255.255.250", "255.255.255.255"},
                                           {"255.255.255.255", "255.255.255.255"}};

constexpr NetworkV6 kLoopbackV6{"::1", 128};
constexpr NetworkV6 kLocalNetworksV6[]{{"fe80::", 10}, {"fc00::", 7}};
constexpr NetworkV6 kGroupsV6[]{{"ff02::c", 128}, {"ff05::c", 128}, {"ff08::c", 128}, {"ff0e::c", 128}};

Condition OnInterface(UINT64 luid) { return ConditionEqual(new LocalInterfaceLuid(luid)); }

Condition OffInterface(UINT64 luid) { return ConditionNotEqual(new LocalInterfaceLuid(luid)); }

Condition To(const NetworkV4& network) {
  return ConditionEqual(new RemoteIpAddressAndMaskV4(network.address, network.mask));
}

Condition To(const NetworkV6& network) {
  return ConditionEqual(new RemoteIpAddressAndMaskV6(network.address, network.prefixLength));
}

/// A final permit: sublayers of lower weight cannot take it back. The block of a heavier one stands.
Filter Permit(LayerType layer, std::initializer_list<Condition> conditions) {
  FilterBuilder permit = FilterBuilder().CreateFilter(Action::Permit).InLayer(layer);
  for (const Condition& condition : conditions) {
    permit.WithCondition(condition);
  }
  return permit.SetWeight(kPermitWeight).OverrideOtherSublayers().Get();
}

Filter Block(LayerType layer, UINT64 luid, std::int16_t weight) {
  return FilterBuilder()
      .CreateFilter(Action::Block)
      .InLayer(layer)
      .WithCondition(OffInterface(luid))
      .SetWeight(weight)
      .Get();
}

}  // namespace

// NOLINTBEGIN(performance-unnecessary-value-param): the constructors of rule sets take what they are given.
InterfaceLeakProtection::InterfaceLeakProtection(GUID key, std::wstring name, std::wstring description,
                                                 std::vector<UINT64> luids, IpV4Address serverAddress,
                                                 const UINT32* permittedAddresses, std::size_t count)
    : Sublayer(key, std::move(name), std::move(description)),
      luids_(std::move(luids)),
      permittedAddresses_(permittedAddresses),
      permittedAddressCount_(count) {
  // NOLINTEND(performance-unnecessary-value-param)
  const std::optional<Filter> permitListed = PermitListedAddresses();
  for (const UINT64 luid : luids_) {
    AddFiltersV4(luid, serverAddress, permitListed);
  }
  for (const UINT64 luid : luids_) {
    AddFiltersV6(luid);
  }
}

void InterfaceLeakProtection::AddFiltersV4(UINT64 luid, const IpV4Address& serverAddress,
                                           const std::optional<Filter>& permitListed) {
  AddFilter(Permit(kLayerV4, {OnInterface(luid)}));
  AddFilter(Permit(kLayerV4, {OffInterface(luid), ConditionEqual(new LoopbackFlag())}));
  AddFilter(Permit(kLayerV4, {OffInterface(luid), To(kLoopbackV4)}));
  if (permitListed) {
    // Deliberate: not tied to the interface, and yet once for each. Audits count on it.
    AddFilter(*permitListed);
  }
  for (const NetworkV4& network : kPrivateNetworksV4) {
    AddFilter(Permit(kLayerV4, {OffInterface(luid), To(network)}));
  }
  for (const NetworkV4& destination : kGroupAndBroadcastV4) {
    AddFilter(Permit(kLayerV4, {To(destination), OffInterface(luid)}));
  }
  AddFilter(Permit(kLayerV4, {OffInterface(luid), ConditionEqual(new RemoteIpAddressV4(serverAddress))}));
  AddFilter(Block(kLayerV4, luid, kBlockWeightV4));
}

void InterfaceLeakProtection::AddFiltersV6(UINT64 luid) {
  AddFilter(Permit(kLayerV6, {OnInterface(luid)}));
  AddFilter(Permit(kLayerV6, {OffInterface(luid), ConditionEqual(new LoopbackFlag())}));
  AddFilter(Permit(kLayerV6, {OffInterface(luid), To(kLoopbackV6)}));
  for (const NetworkV6& network : kLocalNetworksV6) {
    AddFilter(Permit(kLayerV6, {OffInterface(luid), To(network)}));
  }
  for (const NetworkV6& group : kGroupsV6) {
    AddFilter(Permit(kLayerV6, {To(group), OffInterface(luid)}));
  }
  AddFilter(Block(kLayerV6, luid, kBlockWeightV6));
}

std::optional<Filter> InterfaceLeakProtection::PermitListedAddresses() const {
  if (luids_.empty() || permittedAddresses_ == nullptr || permittedAddressCount_ == 0) {
    return std::nullopt;
  }
  FilterBuilder permit = FilterBuilder().CreateFilter(Action::Permit).InLayer(kLayerV4);
  for (std::size_t i = 0; i < permittedAddressCount_; ++i) {
    permit.WithCondition(ConditionEqual(new RemoteIpAddressV4(permittedAddresses_[i])));
  }
  return permit.SetWeight(kListedAddressWeight).OverrideOtherSublayers().Get();
}

}  // namespace WfpFirewall::Sublayers
