/**
 * @file
 * Keys as dumps have them: a symbol of the platform's headers, or "{guid}".
 */
#pragma once

#include <WfpPlatform.h>

#include <optional>
#include <string>
#include <string_view>

#include "dump/EngineState.h"

namespace Dump {

/// What a key is the key of, if it may have a symbol.
enum class KeyKind { Layer, Field, Provider, ProviderContext, Sublayer, Callout };

/// "FWPM_LAYER_": what the symbols of a kind begin with.
std::string_view SymbolPrefix(KeyKind kind);

/// The key in "{c38d57d1-05a7-4c33-904f-7fbceee60e82}"; empty for anything else.
std::optional<GUID> ParseBracedGuid(std::string_view text);
std::string FormatBracedGuid(const GUID& key);

/// The key of a symbol or "{guid}"; empty for anything else. A symbol that nobody knows gets a key of its own
/// and is added to the unknown ones.
std::optional<GUID> ParseKey(KeyKind kind, std::string_view text, UnknownSymbols& unknown);

/// The symbol of a key, else "{guid}".
std::string FormatKey(KeyKind kind, const GUID& key, const UnknownSymbols& unknown);

}  // namespace Dump
