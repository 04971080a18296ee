#include "dump/WriteDump.h"

#include <algorithm>
#include <map>
#include <tuple>

#include "dump/WriteObjects.h"

namespace Dump {
namespace {

constexpr std::string_view kHead =
    "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n";

template <class Object>
using ByKey = std::map<GUID, Object, Catalog::KeyOrder>;

template <class Objects>
void WriteList(DumpWriter& writer, std::string_view name, const Objects& objects, bool hasNumItems = true) {
  if (objects.empty()) {
    writer.Xml().Empty(name);
    return;
  }
  writer.Xml().Open(name, hasNumItems ? std::optional(objects.size()) : std::nullopt);
  for (const auto* object : objects) {
    Write(writer, *object);
  }
  writer.Xml().Close(name);
}

template <class Object>
std::vector<const Object*> PointersTo(const std::vector<Object>& objects) {
  std::vector<const Object*> pointers;
  pointers.reserve(objects.size());
  for (const Object& object : objects) {
    pointers.push_back(&object);
  }
  return pointers;
}

/// Objects by their layers.
/// @throws DumpError if the dump lists no such layer.
template <class Object>
ByKey<std::vector<const Object*>> ByLayer(const EngineState& state, const std::vector<Object>& objects,
                                          GUID Object::*layerKey) {
  ByKey<std::vector<const Object*>> byLayer;
  for (const FWPM_LAYER0& layer : state.layers) {
    byLayer[layer.layerKey];
  }
  for (const Object& object : objects) {
    const auto layer = byLayer.find(object.*layerKey);
    if (layer == byLayer.end()) {
      throw DumpError("expected the layer " +
                      FormatKey(KeyKind::Layer, object.*layerKey, state.unknownSymbols) +
                      " among those of the dump, since it has filters or callouts");
    }
    layer->second.push_back(&object);
  }
  return byLayer;
}

void WriteTimeStamp(DumpWriter& writer, const EngineState& state) {
  if (!state.timeStamp.empty()) {
    writer.Xml().Leaf("timeStamp", state.timeStamp);
  }
}

void WriteLayers(DumpWriter& writer, const EngineState& state) {
  const auto callouts = ByLayer(state, state.callouts, &FWPM_CALLOUT0::applicableLayer);
  auto filters = ByLayer(state, state.filters, &FWPM_FILTER0::layerKey);
  XmlWriter& xml = writer.Xml();
  xml.Open("layers", state.layers.size());
  for (const FWPM_LAYER0& layer : state.layers) {
    auto& filtersThere = filters.at(layer.layerKey);
    std::ranges::stable_sort(filtersThere, {}, &FWPM_FILTER0::filterId);
    xml.Open("item");
    WriteLayer(writer, layer);
    WriteList(writer, "callouts", callouts.at(layer.layerKey));
    WriteList(writer, "filters", filtersThere);
    xml.Close("item");
  }
  xml.Close("layers");
}

void WriteState(DumpWriter& writer, const EngineState& state) {
  writer.Xml().Open("wfpstate");
  WriteTimeStamp(writer, state);
  writer.Xml().Empty("sessions");
  WriteLayers(writer, state);
  WriteList(writer, "providers", PointersTo(state.providers));
  WriteList(writer, "providerContexts", PointersTo(state.providerContexts));
  WriteList(writer, "subLayers", PointersTo(state.subLayers));
  writer.Xml().Close("wfpstate");
}

UINT64 EffectiveWeight(const FWPM_FILTER0& filter) {
  const FWP_VALUE0& weight = filter.effectiveWeight;
  return weight.type == FWP_UINT64 && weight.uint64 != nullptr ? *weight.uint64 : 0;
}

/// Filters by layer, weight of the sublayer, effective weight, the newest first; as they come if there is
/// nothing known of layers.
std::vector<const FWPM_FILTER0*> SortedFilters(const EngineState& state) {
  ByKey<UINT16> layerIds;
  for (const FWPM_LAYER0& layer : state.layers) {
    layerIds.emplace(layer.layerKey, layer.layerId);
  }
  ByKey<UINT16> weights;
  for (const FWPM_SUBLAYER0& subLayer : state.subLayers) {
    weights.emplace(subLayer.subLayerKey, subLayer.weight);
  }
  const auto find = [](const ByKey<UINT16>& numbers, const GUID& key) {
    const auto found = numbers.find(key);
    return found == numbers.end() ? UINT16{0} : found->second;
  };
  const auto rank = [&](const FWPM_FILTER0* filter) {
    return std::tuple(find(layerIds, filter->layerKey),
                      static_cast<UINT16>(~find(weights, filter->subLayerKey)), ~EffectiveWeight(*filter),
                      ~filter->filterId);
  };
  auto filters = PointersTo(state.filters);
  if (!state.layers.empty()) {
    std::ranges::stable_sort(filters, {}, rank);
  }
  return filters;
}

void WriteFilters(DumpWriter& writer, const EngineState& state) {
  writer.Xml().Open("wfpdiag");
  WriteTimeStamp(writer, state);
  WriteList(writer, "filters", SortedFilters(state), false);
  WriteList(writer, "providers", PointersTo(state.providers), false);
  writer.Xml().Close("wfpdiag");
}

}  // namespace

std::string WriteDump(const EngineState& state, DumpKind kind) {
  DumpWriter writer(state);
  writer.Xml().Raw(kHead);
  if (kind == DumpKind::State) {
    WriteState(writer, state);
  } else {
    WriteFilters(writer, state);
  }
  return writer.Xml().Text();
}

}  // namespace Dump
