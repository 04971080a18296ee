/**
 * @file
 * The objects of a dump.
 */
#pragma once

#include "dump/EngineState.h"
#include "dump/XmlDocument.h"

// All of them add what the items hold, and throw DumpError for what they do not understand.
namespace Dump {

void ReadProviders(const Element& list, EngineState& state);
void ReadProviderContexts(const Element& list, EngineState& state);
void ReadSubLayers(const Element& list, EngineState& state);
/// Layers, each with its callouts and filters.
void ReadLayers(const Element& list, EngineState& state);
/// @param layerKey of the layer that lists them; null if they are listed apart from layers.
void ReadFilters(const Element& list, const GUID* layerKey, EngineState& state);

/// The key that a filter or callout has for its layer.
/// @throws DumpError if it is not that of the layer that lists it.
GUID ReadLayerKey(const Element& element, const GUID* layerKey, EngineState& state);

}  // namespace Dump
