/**
 * @file
 * What a machine's engine holds, made up by tests.
 */
#pragma once

#include <optional>
#include <string>

#include "dump/EngineState.h"
#include "support/EngineKeys.h"

/// The key of a sublayer or a provider.
inline constexpr GUID kOurs{0xaaaa0000, 0, 0, {0, 0, 0, 0, 0, 0, 0, 1}};

/// A filter at ALE_AUTH_CONNECT_V4.
struct MachineFilter {
  UINT64 id;
  UINT64 effectiveWeight;
  std::optional<UINT16> remotePort = std::nullopt;
  GUID layerKey = kConnectV4;
  GUID sublayerKey = kUniversalSublayer;
  std::optional<GUID> providerKey = std::nullopt;
  UINT32 flags = 0;
};

/// A state to which tests add objects.
class MachineState {
 public:
  explicit MachineState(Dump::DumpKind kind = Dump::DumpKind::State) { state_.kind = kind; }

  /// A filter whose weight the engine chose. The first number of its key is its id.
  FWPM_FILTER0& Add(const MachineFilter& filter) {
    FWPM_FILTER0 record{};
    record.filterKey = {static_cast<UINT32>(filter.id), 0, 0, {}};
    record.displayData = Named(L"Filter " + std::to_wstring(filter.id));
    record.flags = filter.flags;
    record.layerKey = filter.layerKey;
    record.subLayerKey = filter.sublayerKey;
    record.providerKey = filter.providerKey ? state_.memory.Make(*filter.providerKey) : nullptr;
    record.weight.type = FWP_EMPTY;
    record.action.type = FWP_ACTION_BLOCK;
    record.filterId = filter.id;
    record.effectiveWeight.type = FWP_UINT64;
    record.effectiveWeight.uint64 = state_.memory.Make(filter.effectiveWeight);
    if (filter.remotePort) {
      FWPM_FILTER_CONDITION0 condition{};
      condition.fieldKey = kRemotePort;
      condition.matchType = FWP_MATCH_EQUAL;
      condition.conditionValue.type = FWP_UINT16;
      condition.conditionValue.uint16 = *filter.remotePort;
      record.numFilterConditions = 1;
      record.filterCondition = state_.memory.Make(condition);
    }
    return state_.filters.emplace_back(record);
  }

  FWPM_SUBLAYER0& AddSublayer(const GUID& key, UINT16 weight) {
    FWPM_SUBLAYER0 record{};
    record.subLayerKey = key;
    record.displayData = Named(L"Sublayer");
    record.weight = weight;
    return state_.subLayers.emplace_back(record);
  }

  FWPM_PROVIDER0& AddProvider(const GUID& key, UINT32 flags) {
    FWPM_PROVIDER0 record{};
    record.providerKey = key;
    record.displayData = Named(L"Provider");
    record.flags = flags;
    return state_.providers.emplace_back(record);
  }

  [[nodiscard]] const Dump::EngineState& State() const { return state_; }

 private:
  FWPM_DISPLAY_DATA0 Named(const std::wstring& name) { return {state_.memory.MakeText(name), nullptr}; }

  Dump::EngineState state_;
};
