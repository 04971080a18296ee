#include "emulator/BuiltIns.h"

#include <array>
#include <string>

#include "catalog/Callouts.h"
#include "catalog/Layers.h"
#include "catalog/Providers.h"
#include "catalog/Sublayers.h"
#include "emulator/MakeObject.h"

namespace EngineEmulator {
namespace {

constexpr Origin kBuiltIn{Lifetime::BuiltIn, nullptr};

std::wstring Wide(std::string_view ascii) { return {ascii.begin(), ascii.end()}; }

ObjectPtr<FWPM_LAYER0> Make(const Catalog::Layer& layer, UINT64) {
  std::wstring name = Wide(layer.displayName);
  std::vector<GUID> keys;
  keys.reserve(layer.fields.size());
  std::vector<FWPM_FIELD0> fields;
  for (const Catalog::LayerField& field : layer.fields) {
    keys.push_back(field.field->key);
    fields.push_back({&keys.back(), field.type, field.dataType});
  }
  FWPM_LAYER0 record{};
  record.layerKey = layer.key;
  record.displayData.name = name.data();
  record.flags = layer.flags;
  record.numFields = static_cast<UINT32>(fields.size());
  record.field = fields.data();
  record.defaultSubLayerKey = layer.defaultSublayerKey;
  record.layerId = layer.id;
  return MakeObject(record, kBuiltIn, layer.id);
}

ObjectPtr<FWPM_PROVIDER0> Make(const Catalog::BuiltInProvider& provider, UINT64 number) {
  std::wstring name = Wide(provider.name);
  std::wstring service = Wide(provider.service);
  FWPM_PROVIDER0 record{};
  record.providerKey = provider.key;
  record.displayData.name = name.data();
  record.serviceName = service.empty() ? nullptr : service.data();
  return MakeObject(record, kBuiltIn, number);
}

ObjectPtr<FWPM_SUBLAYER0> Make(const Catalog::BuiltInSublayer& sublayer, UINT64 number) {
  std::wstring name = Wide(sublayer.name);
  GUID provider = sublayer.providerKey.value_or(GUID{});
  FWPM_SUBLAYER0 record{};
  record.subLayerKey = sublayer.key;
  record.displayData.name = name.data();
  record.providerKey = sublayer.providerKey ? &provider : nullptr;
  record.weight = sublayer.weight;
  return MakeObject(record, kBuiltIn, number);
}

ObjectPtr<FWPM_CALLOUT0> Make(const Catalog::BuiltInCallout& callout, UINT64) {
  std::wstring name = Wide(callout.name);
  FWPM_CALLOUT0 record{};
  record.calloutKey = callout.key;
  record.displayData.name = name.data();
  record.flags = callout.flags;
  record.applicableLayer = Catalog::FindLayer(callout.layer)->key;
  record.calloutId = callout.id;
  return MakeObject(record, kBuiltIn, callout.id);
}

template <class Native, class Entries>
std::vector<ObjectPtr<Native>> MakeAll(const Entries& entries) {
  UINT64 number = 1;
  std::vector<ObjectPtr<Native>> objects;
  objects.reserve(entries.size());
  for (const auto& entry : entries) {
    objects.push_back(Make(entry, number++));
  }
  return objects;
}

}  // namespace

const std::vector<ObjectPtr<FWPM_LAYER0>>& Layers(Catalog::WindowsVersion version) {
  static const auto kLayers = [] {
    std::array<std::vector<ObjectPtr<FWPM_LAYER0>>, Catalog::kWindowsVersions.size()> layers;
    for (const auto each : Catalog::kWindowsVersions) {
      layers[static_cast<std::size_t>(each)] = MakeAll<FWPM_LAYER0>(Catalog::AllLayers(each));
    }
    return layers;
  }();
  return kLayers[static_cast<std::size_t>(version)];
}

const std::vector<ObjectPtr<FWPM_PROVIDER0>>& BuiltInProviders() {
  static const auto kProviders = MakeAll<FWPM_PROVIDER0>(Catalog::kBuiltInProviders);
  return kProviders;
}

const std::vector<ObjectPtr<FWPM_SUBLAYER0>>& BuiltInSublayers() {
  static const auto kSublayers = MakeAll<FWPM_SUBLAYER0>(Catalog::kBuiltInSublayers);
  return kSublayers;
}

const std::vector<ObjectPtr<FWPM_CALLOUT0>>& BuiltInCallouts() {
  static const auto kCallouts = MakeAll<FWPM_CALLOUT0>(Catalog::BuiltInCallouts());
  return kCallouts;
}

}  // namespace EngineEmulator
