// Reads random filters from the engine. No filter may be missing, and decisions and maps must agree.
#include "fuzz/HostileRecords.h"
#include "policy/Decide.h"
#include "policy/Lint.h"
#include "policy/Map.h"

namespace {

using Fuzz::HostileRecords;
using Fuzz::Input;
using Fuzz::Require;

constexpr std::size_t kMostFilters = 6;

Policy::Snapshot TakeSnapshot(Input& input, HostileRecords& records) {
  std::vector<Policy::Sublayer> sublayers;
  std::vector<Policy::Filter> filters;
  for (std::size_t count = input.TakeIndex(4); count > 0; --count) {
    if (const auto* sublayer = records.Pointer<FWPM_SUBLAYER0>()) {
      sublayers.push_back(Policy::Decode(*sublayer));
    }
  }
  while (!input.IsEmpty() && filters.size() < kMostFilters) {
    if (auto* filter = records.Pointer<FWPM_FILTER0>()) {
      filter->effectiveWeight = records.Value();
      filters.push_back(Policy::Decode(*filter));
      Require(filters.back().conditions.empty() == (filter->numFilterConditions == 0),
              "a filter with conditions keeps some");
    }
  }
  const std::size_t count = filters.size();
  Policy::Snapshot snapshot = Policy::MakeSnapshot(std::move(sublayers), std::move(filters));
  Require(snapshot.filters.size() == count, "no filter is dropped");
  return snapshot;
}

Policy::Connection TakeConnection(Input& input) {
  const auto direction = input.TakeFlag() ? Policy::Direction::Inbound : Policy::Direction::Outbound;
  const auto version = input.TakeFlag() ? Policy::IpVersion::V6 : Policy::IpVersion::V4;
  Policy::Connection connection = Policy::OrdinaryConnection(direction, version);
  connection.remoteAddress = input.Take<UINT32>();
  connection.remotePort = input.TakeFlag() ? std::optional(input.Take<UINT16>()) : std::nullopt;
  connection.protocol = input.Take<UINT8>();
  connection.flags = input.TakeFlag() ? std::optional(input.Take<UINT32>()) : std::nullopt;
  connection.localInterface = input.Take<UINT64>();
  connection.application = input.TakeText();
  return connection;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  HostileRecords records(input);
  std::vector<Policy::Connection> connections;
  for (int i = 0; i < 4; ++i) {
    connections.push_back(TakeConnection(input));
  }
  const Policy::Snapshot snapshot = TakeSnapshot(input, records);
  Policy::Circumstances circumstances;
  if (input.TakeFlag()) {
    circumstances = Policy::UsualCircumstances(Policy::UserProgram());
    circumstances.profile = input.Take<UINT8>();
  }
  const Policy::Decider decider(snapshot, circumstances);
  const Policy::Map map = Policy::MakeMap(snapshot, {}, circumstances);
  for (const Policy::Connection& connection : connections) {
    Require(map.At(connection) == decider.Decide(connection), "the map agrees with the decision");
    Policy::Describe(decider.Explain(connection));
  }
  Policy::Describe(map);
  for (const Policy::Finding& finding : Policy::Lint(snapshot)) {
    Policy::Describe(finding);
  }
  return 0;
}
