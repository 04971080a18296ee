/**
 * @file
 * The filtering layers of the engine, each with the fields that conditions there can test.
 */
#pragma once

#include <WfpPlatform.h>

#include <optional>
#include <span>
#include <string_view>

#include "catalog/Fields.h"
#include "catalog/LayerFamily.h"
#include "catalog/WindowsVersion.h"

namespace Catalog {

/// The IP version of the traffic that a layer sees.
enum class IpVersion { V4, V6 };

/// A field as a layer has it.
struct LayerField {
  const Field* field;
  FWPM_FIELD_TYPE type;
  FWP_DATA_TYPE dataType;  ///< of what it holds; conditions can test other types, see TypesOf
};

/// A layer of one version of Windows.
struct Layer {
  std::string_view name;  ///< less the prefix FWPM_LAYER_
  bool hasSymbol;         ///< false: public headers have no name for the key; `name` is made up
  GUID key;
  UINT16 id;  ///< as in the engine's events
  std::string_view displayName;
  UINT32 flags;  ///< FWPM_LAYER_FLAG_*
  LayerFamily family;
  std::optional<IpVersion> ipVersion;  ///< none: it sees both or neither
  std::span<const LayerField> fields;  ///< in the engine's order
  GUID defaultSublayerKey;
};

/// All layers, by rising id. A layer's id is its place.
std::span<const Layer> AllLayers(WindowsVersion version = kNewestWindows);

/// The layer with a key; null if there is none.
const Layer* FindLayer(const GUID& key, WindowsVersion version = kNewestWindows);

/// The layer with a runtime id; null if there is none.
const Layer* FindLayer(UINT16 id, WindowsVersion version = kNewestWindows);

/// The layer with a name; null if there is none.
const Layer* FindLayer(std::string_view name, WindowsVersion version = kNewestWindows);

/// Whether a layer is ALE_FLOW_ESTABLISHED of either IP version, or its twin for discarded traffic.
bool IsFlowEstablished(const GUID& layerKey);

/// The field as conditions at a layer can test it; null if they cannot.
/// @param field one of kFields.
const LayerField* FieldAt(const Layer& layer, const Field& field);

/// The types that a condition's value can have, besides FWP_RANGE_TYPE of a sortable type and FWP_EMPTY.
struct ConditionTypes {
  FWP_DATA_TYPE type;
  std::optional<FWP_DATA_TYPE> alternative;
};

/// The types of conditions on a field of a layer. An IP address is compared with an address or with a
/// network. A user is tested with a security descriptor: the condition holds if it grants the user access.
ConditionTypes TypesOf(const LayerField& field);

}  // namespace Catalog
