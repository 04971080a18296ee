#include "dump/ReadObjects.h"

#include "dump/ReadValues.h"

namespace Dump {
namespace {

FWPM_PROVIDER0 ReadProvider(const Element& item, EngineState& state) {
  Members members(item);
  FWPM_PROVIDER0 provider{};
  provider.providerKey = ReadKey(members.Take("providerKey"), KeyKind::Provider, state);
  provider.displayData = ReadDisplayData(members, state);
  provider.flags = ReadFlags(members.TakeIfAny("flags"), kProviderFlags, provider.providerKey, state);
  provider.providerData = ReadBlob(members.TakeIfAny("providerData"), state);
  provider.serviceName = ReadText(members.TakeIfAny("serviceName"), state);
  members.SkipRest(state.skippedElements);
  return provider;
}

/// Keeps what only the platform's key modules understand.
void KeepContextData(const Members& members, const GUID& key, EngineState& state) {
  constexpr std::size_t kIndent = 3;
  std::string xml;
  for (const Element& element : members.Rest()) {
    xml += element.ToXml(kIndent);
  }
  if (!xml.empty()) {
    state.contextData.push_back({key, std::move(xml)});
  }
}

FWPM_PROVIDER_CONTEXT0 ReadProviderContext(const Element& item, EngineState& state) {
  Members members(item);
  FWPM_PROVIDER_CONTEXT0 context{};
  context.providerContextKey = ReadKey(members.Take("providerContextKey"), KeyKind::ProviderContext, state);
  context.displayData = ReadDisplayData(members, state);
  context.flags =
      ReadFlags(members.TakeIfAny("flags"), kProviderContextFlags, context.providerContextKey, state);
  context.providerKey = ReadKeyIfAny(members.TakeIfAny("providerKey"), KeyKind::Provider, state);
  context.providerData = ReadBlob(members.TakeIfAny("providerData"), state);
  const Element type = members.Take("type");
  context.type = static_cast<FWPM_PROVIDER_CONTEXT_TYPE>(ReadNamedNumber(type, kContextTypes));
  if (context.type == FWPM_GENERAL_CONTEXT) {
    const auto buffer = members.TakeIfAny("dataBuffer");
    context.dataBuffer = buffer ? state.memory.Make(ReadBlob(buffer, state)) : nullptr;
  }
  context.providerContextId = ReadNumber<UINT64>(members.Take("providerContextId"));
  KeepContextData(members, context.providerContextKey, state);
  return context;
}

FWPM_SUBLAYER0 ReadSubLayer(const Element& item, EngineState& state) {
  Members members(item);
  FWPM_SUBLAYER0 subLayer{};
  subLayer.subLayerKey = ReadKey(members.Take("subLayerKey"), KeyKind::Sublayer, state);
  subLayer.displayData = ReadDisplayData(members, state);
  // Some headers have 16 bits for them.
  subLayer.flags = static_cast<decltype(subLayer.flags)>(
      ReadFlags(members.TakeIfAny("flags"), kSublayerFlags, subLayer.subLayerKey, state));
  subLayer.providerKey = ReadKeyIfAny(members.TakeIfAny("providerKey"), KeyKind::Provider, state);
  subLayer.providerData = ReadBlob(members.TakeIfAny("providerData"), state);
  subLayer.weight = ReadNumber<UINT16>(members.Take("weight"));
  members.SkipRest(state.skippedElements);
  return subLayer;
}

}  // namespace

void ReadProviders(const Element& list, EngineState& state) {
  for (const Element& item : Items(list, state.skippedElements)) {
    state.providers.push_back(ReadProvider(item, state));
  }
}

void ReadProviderContexts(const Element& list, EngineState& state) {
  for (const Element& item : Items(list, state.skippedElements)) {
    state.providerContexts.push_back(ReadProviderContext(item, state));
  }
}

void ReadSubLayers(const Element& list, EngineState& state) {
  for (const Element& item : Items(list, state.skippedElements)) {
    state.subLayers.push_back(ReadSubLayer(item, state));
  }
}

}  // namespace Dump
