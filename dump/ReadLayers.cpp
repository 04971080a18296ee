#include "dump/ReadObjects.h"
#include "dump/ReadValues.h"

namespace Dump {
namespace {

void ReadFields(const Element& list, FWPM_LAYER0& layer, EngineState& state) {
  const std::vector<Element> items = Items(list, state.skippedElements);
  layer.numFields = static_cast<UINT32>(items.size());
  layer.field = state.memory.MakeArray<FWPM_FIELD0>(items.size());
  for (std::size_t i = 0; i < items.size(); ++i) {
    Members members(items[i]);
    FWPM_FIELD0& field = layer.field[i];
    field.fieldKey = state.memory.Make(ReadKey(members.Take("fieldKey"), KeyKind::Field, state));
    field.type = static_cast<FWPM_FIELD_TYPE>(ReadNamedNumber(members.Take("type"), kFieldTypes));
    field.dataType = static_cast<FWP_DATA_TYPE>(ReadNamedNumber(members.Take("dataType"), kDataTypes));
    members.SkipRest(state.skippedElements);
  }
}

FWPM_LAYER0 ReadLayer(const Element& element, EngineState& state) {
  Members members(element);
  FWPM_LAYER0 layer{};
  layer.layerKey = ReadKey(members.Take("layerKey"), KeyKind::Layer, state);
  layer.displayData = ReadDisplayData(members, state);
  layer.flags = ReadFlags(members.TakeIfAny("flags"), kLayerFlags, layer.layerKey, state);
  ReadFields(members.Take("field"), layer, state);
  layer.defaultSubLayerKey = ReadKey(members.Take("defaultSubLayerKey"), KeyKind::Sublayer, state);
  layer.layerId = ReadNumber<UINT16>(members.Take("layerId"));
  members.SkipRest(state.skippedElements);
  return layer;
}

FWPM_CALLOUT0 ReadCallout(const Element& item, const GUID& layerKey, EngineState& state) {
  Members members(item);
  FWPM_CALLOUT0 callout{};
  callout.calloutKey = ReadKey(members.Take("calloutKey"), KeyKind::Callout, state);
  callout.displayData = ReadDisplayData(members, state);
  callout.flags = ReadFlags(members.TakeIfAny("flags"), kCalloutFlags, callout.calloutKey, state);
  callout.providerKey = ReadKeyIfAny(members.TakeIfAny("providerKey"), KeyKind::Provider, state);
  callout.providerData = ReadBlob(members.TakeIfAny("providerData"), state);
  callout.applicableLayer = ReadLayerKey(members.Take("applicableLayer"), &layerKey, state);
  callout.calloutId = ReadNumber<UINT32>(members.Take("calloutId"));
  members.SkipRest(state.skippedElements);
  return callout;
}

}  // namespace

GUID ReadLayerKey(const Element& element, const GUID* layerKey, EngineState& state) {
  const GUID key = ReadKey(element, KeyKind::Layer, state);
  if (layerKey != nullptr && key != *layerKey) {
    element.FailExpecting(FormatKey(KeyKind::Layer, *layerKey, state.unknownSymbols) +
                          ", the layer that lists it,");
  }
  return key;
}

void ReadLayers(const Element& list, EngineState& state) {
  for (const Element& item : Items(list, state.skippedElements)) {
    Members members(item);
    const FWPM_LAYER0 layer = ReadLayer(members.Take("layer"), state);
    state.layers.push_back(layer);
    for (const Element& callout : Items(members.Take("callouts"), state.skippedElements)) {
      state.callouts.push_back(ReadCallout(callout, layer.layerKey, state));
    }
    ReadFilters(members.Take("filters"), &layer.layerKey, state);
    members.SkipRest(state.skippedElements);
  }
}

}  // namespace Dump
