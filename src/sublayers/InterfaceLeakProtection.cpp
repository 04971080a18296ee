#include "sublayers/InterfaceLeakProtection.h"

#include <cstdint>
#include <optional>
#include <utility>

#include "filtering/FilterBuilder.h"
#include "filtering/Values.h"
#include "sublayers/Destinations.h"

namespace WfpFirewall::Sublayers {
namespace {

using Filtering::ConditionEqual;
using Filtering::ConditionNotEqual;
using Filtering::LayerType;
using Filtering::Values::LocalInterfaceLuid;
using Filtering::Values::LoopbackFlag;
using Filtering::Values::RemoteIpAddressV4;
using enum Action;

constexpr LayerType kLayerV4 = LayerType::AleAuthConnectV4;
constexpr LayerType kLayerV6 = LayerType::AleAuthConnectV6;

constexpr bool kFinal = true;

enum class Test {
  None,
  Interface,
  OtherInterfaces,
  Loopback,
  Remote,              ///< of the row
  Server,              ///< IPv4 only
  PermittedAddresses,  ///< IPv4 only
};
using enum Test;

template <class Network>
struct Row {
  Action action;
  Test conditions[2];
  Network remote;
  std::int16_t weight;
  bool isFinal = false;
};

// The filters for each interface, with the numbers of docs/rule-sets.md#interface-leak-protection. It also
// tells what follows from the different weights of the two blocks.
constexpr Row<NetworkV4> kRowsV4[]{
    {Permit, {Interface}, {}, 14, kFinal},                                                    // 1
    {Permit, {OtherInterfaces, Loopback}, {}, 14, kFinal},                                    // 2
    {Permit, {OtherInterfaces, Remote}, {"127.0.0.1", "255.0.0.0"}, 14, kFinal},              // 3
    {Permit, {PermittedAddresses}, {}, 15, kFinal},                                           // 4
    {Permit, {OtherInterfaces, Remote}, {"192.168.0.0", "255.255.0.0"}, 14, kFinal},          // 5
    {Permit, {OtherInterfaces, Remote}, {"10.0.0.0", "255.0.0.0"}, 14, kFinal},               // 6
    {Permit, {OtherInterfaces, Remote}, {"172.16.0.0", "255.240.0.0"}, 14, kFinal},           // 7
    {Permit, {Remote, OtherInterfaces}, {"239.255.255.250", "255.255.255.255"}, 14, kFinal},  // 8
    {Permit, {Remote, OtherInterfaces}, {"255.255.255.255", "255.255.255.255"}, 14, kFinal},  // 9
    {Permit, {OtherInterfaces, Server}, {}, 14, kFinal},                                      // 10
    {Block, {OtherInterfaces}, {}, 13},                                                       // 11
};
constexpr Row<NetworkV6> kRowsV6[]{
    {Permit, {Interface}, {}, 14, kFinal},                              // 1
    {Permit, {OtherInterfaces, Loopback}, {}, 14, kFinal},              // 2
    {Permit, {OtherInterfaces, Remote}, {"::1", 128}, 14, kFinal},      // 3
    {Permit, {OtherInterfaces, Remote}, {"fe80::", 10}, 14, kFinal},    // 4
    {Permit, {OtherInterfaces, Remote}, {"fc00::", 7}, 14, kFinal},     // 5
    {Permit, {Remote, OtherInterfaces}, {"ff02::c", 128}, 14, kFinal},  // 6
    {Permit, {Remote, OtherInterfaces}, {"ff05::c", 128}, 14, kFinal},  // 7
    {Permit, {Remote, OtherInterfaces}, {"ff08::c", 128}, 14, kFinal},  // 8
    {Permit, {Remote, OtherInterfaces}, {"ff0e::c", 128}, 14, kFinal},  // 9
    {Block, {OtherInterfaces}, {}, 14},                                 // 10
};

/// What the tests of a row stand for.
struct Arguments {
  UINT64 luid;
  const IpV4Address* server = nullptr;
};

template <class Network>
void AddConditions(const FilterBuilder& filter, Test test, const Network& remote,
                   const Arguments& arguments) {
  switch (test) {
    case None:
      break;
    case Interface:
      filter.WithCondition(ConditionEqual(new LocalInterfaceLuid(arguments.luid)));
      break;
    case OtherInterfaces:
      filter.WithCondition(ConditionNotEqual(new LocalInterfaceLuid(arguments.luid)));
      break;
    case Loopback:
      filter.WithCondition(ConditionEqual(new LoopbackFlag()));
      break;
    case Remote:
      filter.WithCondition(RemoteIn(remote));
      break;
    case Server:
      filter.WithCondition(ConditionEqual(new RemoteIpAddressV4(*arguments.server)));
      break;
    case PermittedAddresses:  // see MakePermitListed
      break;
  }
}

template <class Network>
Filter MakeFilter(LayerType layer, const Row<Network>& row, const Arguments& arguments) {
  FilterBuilder filter = FilterBuilder().CreateFilter(row.action).InLayer(layer);
  for (const Test test : row.conditions) {
    AddConditions(filter, test, row.remote, arguments);
  }
  filter.SetWeight(row.weight);
  if (row.isFinal) {
    filter.OverrideOtherSublayers();
  }
  return filter.Get();
}

/// The filter of a row that tests for permitted addresses. The filters of all interfaces share these.
Filter MakePermitListed(const Row<NetworkV4>& row, Filter listed) {
  listed.SetLayer(kLayerV4);
  listed.SetWeight(row.weight);
  if (row.isFinal) {
    listed.OverrideOtherSublayers();
  }
  return listed;
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
  for (const Row<NetworkV4>& row : kRowsV4) {
    if (row.conditions[0] != PermittedAddresses) {
      AddFilter(MakeFilter(kLayerV4, row, {luid, &serverAddress}));
    } else if (permitListed) {  // without addresses it would permit everything
      AddFilter(MakePermitListed(row, *permitListed));
    }
  }
}

void InterfaceLeakProtection::AddFiltersV6(UINT64 luid) {
  for (const Row<NetworkV6>& row : kRowsV6) {
    AddFilter(MakeFilter(kLayerV6, row, {luid}));
  }
}

std::optional<Filter> InterfaceLeakProtection::PermitListedAddresses() const {
  if (luids_.empty() || permittedAddresses_ == nullptr || permittedAddressCount_ == 0) {
    return std::nullopt;
  }
  Filter permit(Permit);
  for (std::size_t i = 0; i < permittedAddressCount_; ++i) {
    permit.AddCondition(ConditionEqual(new RemoteIpAddressV4(permittedAddresses_[i])));
  }
  return permit;
}

}  // namespace WfpFirewall::Sublayers
