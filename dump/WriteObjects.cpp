#include "dump/WriteObjects.h"

#include <cstring>

#include "dump/DumpError.h"

namespace Dump {
namespace {

void WriteFields(DumpWriter& writer, const FWPM_LAYER0& layer) {
  XmlWriter& xml = writer.Xml();
  if (layer.numFields == 0) {
    xml.Empty("field");
    return;
  }
  xml.Open("field", layer.numFields);
  for (UINT32 i = 0; i < layer.numFields; ++i) {
    const FWPM_FIELD0& field = layer.field[i];
    xml.Open("item");
    writer.WriteKey("fieldKey", KeyKind::Field, *field.fieldKey);
    writer.WriteNamedNumber("type", kFieldTypes, static_cast<UINT32>(field.type));
    writer.WriteNamedNumber("dataType", kDataTypes, static_cast<UINT32>(field.dataType));
    xml.Close("item");
  }
  xml.Close("field");
}

void WriteConditions(DumpWriter& writer, const FWPM_FILTER0& filter) {
  XmlWriter& xml = writer.Xml();
  if (filter.numFilterConditions == 0) {
    xml.Empty("filterCondition");
    return;
  }
  xml.Open("filterCondition", filter.numFilterConditions);
  for (UINT32 i = 0; i < filter.numFilterConditions; ++i) {
    const FWPM_FILTER_CONDITION0& condition = filter.filterCondition[i];
    xml.Open("item");
    writer.WriteKey("fieldKey", KeyKind::Field, condition.fieldKey);
    writer.WriteNamedNumber("matchType", kMatches, static_cast<UINT32>(condition.matchType));
    writer.WriteConditionValue(condition.fieldKey, condition.conditionValue);
    xml.Close("item");
  }
  xml.Close("filterCondition");
}

void WriteAction(DumpWriter& writer, const FWPM_ACTION0& action) {
  XmlWriter& xml = writer.Xml();
  xml.Open("action");
  writer.WriteNamedNumber("type", kActions, action.type);
  writer.WriteKey("filterType", KeyKind::Callout, action.filterType == GUID{} ? nullptr : &action.filterType);
  xml.Close("action");
}

/// Whether the place that two members share holds a key, and not a number.
bool HasContextKey(const FWPM_FILTER0& filter) {
  GUID number{};
  std::memcpy(&number, &filter.rawContext, sizeof(filter.rawContext));
  return !MayHaveRawContext(filter.flags) ||
         (MayHaveContextKey(filter.flags) && filter.providerContextKey != number);
}

void WriteContext(DumpWriter& writer, const FWPM_FILTER0& filter) {
  if (HasContextKey(filter)) {
    writer.WriteKey("providerContextKey", KeyKind::ProviderContext, filter.providerContextKey);
  } else {
    writer.WriteNumber("rawContext", filter.rawContext);
  }
}

void WriteMembers(DumpWriter& writer, const FWPM_FILTER0& filter) {
  XmlWriter& xml = writer.Xml();
  xml.Leaf("filterKey", FormatBracedGuid(filter.filterKey));
  writer.WriteDisplayData(filter.displayData);
  writer.WriteFlags(kFilterFlags, filter.flags, filter.filterKey);
  writer.WriteKey("providerKey", KeyKind::Provider, filter.providerKey);
  writer.WriteBlob("providerData", filter.providerData);
  writer.WriteKey("layerKey", KeyKind::Layer, filter.layerKey);
  writer.WriteKey("subLayerKey", KeyKind::Sublayer, filter.subLayerKey);
  writer.WriteValue("weight", filter.weight);
  WriteConditions(writer, filter);
  WriteAction(writer, filter.action);
  WriteContext(writer, filter);
  if (filter.reserved == nullptr) {
    xml.Empty("reserved");
  } else {
    xml.Leaf("reserved", FormatBracedGuid(*filter.reserved));
  }
  writer.WriteNumber("filterId", filter.filterId);
  writer.WriteValue("effectiveWeight", filter.effectiveWeight);
}

}  // namespace

void WriteLayer(DumpWriter& writer, const FWPM_LAYER0& layer) {
  XmlWriter& xml = writer.Xml();
  xml.Open("layer");
  writer.WriteKey("layerKey", KeyKind::Layer, layer.layerKey);
  writer.WriteDisplayData(layer.displayData);
  writer.WriteFlags(kLayerFlags, layer.flags, layer.layerKey);
  WriteFields(writer, layer);
  writer.WriteKey("defaultSubLayerKey", KeyKind::Sublayer, layer.defaultSubLayerKey);
  writer.WriteNumber("layerId", layer.layerId);
  xml.Close("layer");
}

void Write(DumpWriter& writer, const FWPM_PROVIDER0& provider) {
  XmlWriter& xml = writer.Xml();
  xml.Open("item");
  writer.WriteKey("providerKey", KeyKind::Provider, provider.providerKey);
  writer.WriteDisplayData(provider.displayData);
  writer.WriteFlags(kProviderFlags, provider.flags, provider.providerKey);
  writer.WriteBlob("providerData", provider.providerData);
  writer.WriteText("serviceName", provider.serviceName);
  xml.Close("item");
}

void Write(DumpWriter& writer, const FWPM_PROVIDER_CONTEXT0& context) {
  XmlWriter& xml = writer.Xml();
  xml.Open("item");
  writer.WriteKey("providerContextKey", KeyKind::ProviderContext, context.providerContextKey);
  writer.WriteDisplayData(context.displayData);
  writer.WriteFlags(kProviderContextFlags, context.flags, context.providerContextKey);
  writer.WriteKey("providerKey", KeyKind::Provider, context.providerKey);
  writer.WriteBlob("providerData", context.providerData);
  writer.WriteNamedNumber("type", kContextTypes, static_cast<UINT32>(context.type));
  if (context.type == FWPM_GENERAL_CONTEXT) {
    writer.WriteBlob("dataBuffer", context.dataBuffer);
  }
  writer.WriteContextData(context.providerContextKey);
  writer.WriteNumber("providerContextId", context.providerContextId);
  xml.Close("item");
}

void Write(DumpWriter& writer, const FWPM_SUBLAYER0& subLayer) {
  XmlWriter& xml = writer.Xml();
  xml.Open("item");
  writer.WriteKey("subLayerKey", KeyKind::Sublayer, subLayer.subLayerKey);
  writer.WriteDisplayData(subLayer.displayData);
  writer.WriteFlags(kSublayerFlags, subLayer.flags, subLayer.subLayerKey);
  writer.WriteKey("providerKey", KeyKind::Provider, subLayer.providerKey);
  writer.WriteBlob("providerData", subLayer.providerData);
  writer.WriteNumber("weight", subLayer.weight);
  xml.Close("item");
}

void Write(DumpWriter& writer, const FWPM_CALLOUT0& callout) {
  XmlWriter& xml = writer.Xml();
  xml.Open("item");
  writer.WriteKey("calloutKey", KeyKind::Callout, callout.calloutKey);
  writer.WriteDisplayData(callout.displayData);
  writer.WriteFlags(kCalloutFlags, callout.flags, callout.calloutKey);
  writer.WriteKey("providerKey", KeyKind::Provider, callout.providerKey);
  writer.WriteBlob("providerData", callout.providerData);
  writer.WriteKey("applicableLayer", KeyKind::Layer, callout.applicableLayer);
  writer.WriteNumber("calloutId", callout.calloutId);
  xml.Close("item");
}

void Write(DumpWriter& writer, const FWPM_FILTER0& filter) {
  try {
    writer.Xml().Open("item");
    WriteMembers(writer, filter);
    writer.Xml().Close("item");
  } catch (const DumpError& error) {
    throw DumpError("filter " + FormatBracedGuid(filter.filterKey) + ": " + error.what());
  }
}

}  // namespace Dump
