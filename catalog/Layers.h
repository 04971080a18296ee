/**
 * @file
 * The filtering layers that the catalogue covers, each with the fields that conditions there can test.
 */
#pragma once

#include <WfpPlatform.h>

#include <optional>
#include <span>
#include <string_view>

#include "catalog/Fields.h"
#include "catalog/Keys.h"

namespace Catalog {

/// The IP version of the traffic that a layer sees.
enum class IpVersion { V4, V6 };

/// A layer of the engine. The fields belong to kFields.
struct Layer {
  std::string_view name;  ///< less the prefix FWPM_LAYER_
  GUID key;
  IpVersion ipVersion;
  std::optional<UINT16> runtimeId;  ///< as in the engine's events; empty where not known
  std::span<const Field* const> fields;
  GUID defaultSublayerKey = kUniversalSublayerKey;
};

/// All layers, families together.
std::span<const Layer> AllLayers();

/// The layer with a key; null if the catalogue has none.
const Layer* FindLayer(const GUID& key);

/// The layer with a runtime id; null if the catalogue has none.
const Layer* FindLayer(UINT16 runtimeId);

/// Whether a layer is ALE_FLOW_ESTABLISHED of either IP version, or its twin for discarded traffic.
bool IsFlowEstablished(const GUID& layerKey);

/// Whether conditions at a layer can test a field.
bool HasField(const Layer& layer, const Field& field);

/// The types that a condition's value can have, besides FWP_RANGE_TYPE of a sortable type and FWP_EMPTY.
struct ConditionTypes {
  FWP_DATA_TYPE type;
  std::optional<FWP_DATA_TYPE> alternative;
};

/// The types of conditions on a field at a layer. For an IP address: the address itself, or a network.
ConditionTypes TypesAt(const Layer& layer, const Field& field);

}  // namespace Catalog
