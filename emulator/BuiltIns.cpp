#include "emulator/BuiltIns.h"

#include <string>

#include "catalog/Keys.h"
#include "catalog/Layers.h"
#include "catalog/Sublayers.h"
#include "emulator/MakeObject.h"

namespace EngineEmulator {
namespace {

using Catalog::operator""_guid;

struct SublayerWeight {
  GUID key;
  UINT32 Rules::*weight;
};

constexpr SublayerWeight kWeights[]{
    {"b3cdd441-af90-41ba-a745-7c6008ff2300"_guid, &Rules::weightOfServiceHardening},
    {"b3cdd441-af90-41ba-a745-7c6008ff2301"_guid, &Rules::weightOfWindowsFirewall},
    {Catalog::kUniversalSublayerKey, &Rules::weightOfUniversal},
};

UINT16 WeightOf(const GUID& key, const Rules& rules) {
  // The one whose weight is known.
  if (key == Catalog::kInspectionSublayerKey) {
    return 0;
  }
  const auto* found = std::ranges::find(kWeights, key, &SublayerWeight::key);
  const auto weight = found == std::end(kWeights) ? &Rules::weightOfOtherSublayers : found->weight;
  return static_cast<UINT16>(rules.*weight);
}

FWPM_FIELD_TYPE FieldTypeOf(const Catalog::Field& field) {
  switch (field.kind) {
    case Catalog::FieldKind::IpAddress:
      return FWPM_FIELD_IP_ADDRESS;
    case Catalog::FieldKind::Flags:
      return FWPM_FIELD_FLAGS;
    default:
      return FWPM_FIELD_RAW_DATA;
  }
}

/// What the field holds, which is what conditions test unless the field identifies somebody.
FWP_DATA_TYPE DataTypeOf(const Catalog::Layer& layer, const Catalog::Field& field) {
  return field.kind == Catalog::FieldKind::Token ? FWP_TOKEN_ACCESS_INFORMATION_TYPE
                                                 : Catalog::TypesAt(layer, field).type;
}

ObjectPtr<FWPM_LAYER0> MakeLayer(const Catalog::Layer& layer, UINT64 number) {
  constexpr UINT32 kKernelAndBuiltIn = 0x3;
  std::wstring name(layer.name.begin(), layer.name.end());
  std::vector<GUID> keys;
  keys.reserve(layer.fields.size());
  std::vector<FWPM_FIELD0> fields;
  for (const Catalog::Field* field : layer.fields) {
    keys.push_back(field->key);
    fields.push_back({&keys.back(), FieldTypeOf(*field), DataTypeOf(layer, *field)});
  }
  FWPM_LAYER0 record{};
  record.layerKey = layer.key;
  record.displayData.name = name.data();
  record.flags = kKernelAndBuiltIn;
  record.numFields = static_cast<UINT32>(fields.size());
  record.field = fields.data();
  record.defaultSubLayerKey = layer.defaultSublayerKey;
  record.layerId = static_cast<UINT16>(number);
  return MakeObject(record, {Lifetime::BuiltIn, nullptr}, number);
}

std::vector<ObjectPtr<FWPM_LAYER0>> MakeLayers() {
  // Layers whose id is not known get one that Windows is far from using.
  UINT64 nextUnknown = 0xFF00;
  std::vector<ObjectPtr<FWPM_LAYER0>> layers;
  for (const Catalog::Layer& layer : Catalog::AllLayers()) {
    layers.push_back(MakeLayer(layer, layer.runtimeId.has_value() ? *layer.runtimeId : nextUnknown++));
  }
  return layers;
}

}  // namespace

const std::vector<ObjectPtr<FWPM_LAYER0>>& Layers() {
  static const std::vector<ObjectPtr<FWPM_LAYER0>> kLayers = MakeLayers();
  return kLayers;
}

std::vector<ObjectPtr<FWPM_SUBLAYER0>> MakeBuiltInSublayers(const Rules& rules) {
  UINT64 number = 1;
  std::vector<ObjectPtr<FWPM_SUBLAYER0>> sublayers;
  for (const Catalog::BuiltInSublayer& builtIn : Catalog::kBuiltInSublayers) {
    std::wstring name(builtIn.name.begin(), builtIn.name.end());
    FWPM_SUBLAYER0 record{};
    record.subLayerKey = builtIn.key;
    record.displayData.name = name.data();
    record.weight = WeightOf(builtIn.key, rules);
    sublayers.push_back(MakeObject(record, {Lifetime::BuiltIn, nullptr}, number++));
  }
  return sublayers;
}

}  // namespace EngineEmulator
