#include "sublayers/KillSwitch.h"

#include <cstdint>
#include <utility>

#include "filtering/FilterBuilder.h"
#include "filtering/Values.h"
#include "sublayers/Destinations.h"

namespace WfpFirewall::Sublayers {
namespace {

using Filtering::ConditionEqual;
using Filtering::ConditionNotEqual;
using Filtering::LayerType;
using Filtering::Values::LoopbackFlag;
using Filtering::Values::RemotePort;
using enum Action;

constexpr LayerType kLayersV4[]{LayerType::AleAuthConnectV4, LayerType::AleFlowEstablishedV4,
                                LayerType::AleAuthRecvAcceptV4};
constexpr LayerType kLayersV6[]{LayerType::AleAuthConnectV6, LayerType::AleFlowEstablishedV6,
                                LayerType::AleAuthRecvAcceptV6};

// The block weighs as much as the permits and still loses to them: among filters of the same weight the
// engine asks those with conditions first, and the block has none.
constexpr std::int16_t kWeight = 14;

constexpr bool kFinal = true;

enum class Test {
  None,
  Loopback,
  Remote,  ///< of the row
  RemotePortNotDns,
};
using enum Test;

template <class Network>
struct Row {
  Action action;
  Test conditions[2]{};
  Network remote{};
  bool isFinal = false;
};

// The filters of each layer, with the numbers of docs/rule-sets.md#kill-switch.
constexpr Row<NetworkV4> kRowsV4[]{
    {Block},                                                                       // 1
    {Permit, {Loopback}},                                                          // 2
    {Permit, {Remote}, {"127.0.0.0", "255.0.0.0"}},                                // 3
    {Permit, {Remote, RemotePortNotDns}, {"192.168.0.0", "255.255.0.0"}},          // 4
    {Permit, {Remote, RemotePortNotDns}, {"172.16.0.0", "255.240.0.0"}},           // 5
    {Permit, {Remote, RemotePortNotDns}, {"10.0.0.0", "255.0.0.0"}},               // 6
    {Permit, {Remote, RemotePortNotDns}, {"239.255.255.250", "255.255.255.255"}},  // 7
    // Final, so that no lighter sublayer keeps a client from asking for its address.
    {Permit, {Remote, RemotePortNotDns}, {"255.255.255.255", "255.255.255.255"}, kFinal},  // 8
};
constexpr Row<NetworkV6> kRowsV6[]{
    {Block},                                                 // 1
    {Permit, {Remote}, {"::1", 128}},                        // 2
    {Permit, {Loopback}},                                    // 3
    {Permit, {Remote, RemotePortNotDns}, {"fe80::", 10}},    // 4
    {Permit, {Remote, RemotePortNotDns}, {"fc00::", 7}},     // 5
    {Permit, {Remote, RemotePortNotDns}, {"ff02::c", 128}},  // 6
    {Permit, {Remote, RemotePortNotDns}, {"ff05::c", 128}},  // 7
    {Permit, {Remote, RemotePortNotDns}, {"ff08::c", 128}},  // 8
    {Permit, {Remote, RemotePortNotDns}, {"ff0e::c", 128}},  // 9
};

template <class Network>
void AddCondition(const FilterBuilder& filter, Test test, const Network& remote) {
  switch (test) {
    case None:
      break;
    case Loopback:
      filter.WithCondition(ConditionEqual(new LoopbackFlag()));
      break;
    case Remote:
      filter.WithCondition(RemoteIn(remote));
      break;
    case RemotePortNotDns:
      filter.WithCondition(ConditionNotEqual(new RemotePort(kDnsPort)));
      break;
  }
}

template <class Network>
Filter MakeFilter(LayerType layer, const Row<Network>& row) {
  FilterBuilder filter = FilterBuilder().CreateFilter(row.action).InLayer(layer);
  for (const Test test : row.conditions) {
    AddCondition(filter, test, row.remote);
  }
  filter.SetWeight(kWeight);
  if (row.isFinal) {
    filter.OverrideOtherSublayers();
  }
  return filter.Get();
}

}  // namespace

KillSwitch::KillSwitch(GUID key, std::wstring name, std::wstring description)
    : Sublayer(key, std::move(name), std::move(description)) {
  KillSwitch::BuildFilters();
}

void KillSwitch::BuildFilters() {
  for (const LayerType layer : kLayersV4) {
    for (const Row<NetworkV4>& row : kRowsV4) {
      AddFilter(MakeFilter(layer, row));
    }
  }
  for (const LayerType layer : kLayersV6) {
    for (const Row<NetworkV6>& row : kRowsV6) {
      AddFilter(MakeFilter(layer, row));
    }
  }
}

}  // namespace WfpFirewall::Sublayers
