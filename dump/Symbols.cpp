#include "dump/Symbols.h"

#include <algorithm>
#include <array>

#include "catalog/Callouts.h"
#include "catalog/Fields.h"
#include "catalog/Layers.h"
#include "catalog/Names.h"
#include "catalog/Providers.h"
#include "catalog/Sublayers.h"
#include "dump/Numbers.h"

namespace Dump {
namespace {

constexpr std::array<std::string_view, 6> kPrefixes{
    "FWPM_LAYER_",    "FWPM_CONDITION_", "FWPM_PROVIDER_", "FWPM_PROVIDER_CONTEXT_",
    "FWPM_SUBLAYER_", "FWPM_CALLOUT_",
};

template <class Entry>
std::optional<GUID> KeyOf(const Entry* entry) {
  return entry == nullptr ? std::nullopt : std::optional(entry->key);
}

template <class Entry>
std::string_view NameOf(const Entry* entry) {
  return entry == nullptr ? std::string_view() : entry->name;
}

/// @param name less its prefix.
std::optional<GUID> KnownKey(KeyKind kind, std::string_view name) {
  switch (kind) {
    case KeyKind::Layer:
      return KeyOf(Catalog::FindLayer(name));
    case KeyKind::Field:
      return KeyOf(Catalog::FindField(name));
    case KeyKind::Provider:
      return KeyOf(Catalog::FindBuiltInProvider(name));
    case KeyKind::Sublayer:
      return KeyOf(Catalog::FindBuiltInSublayer(name));
    case KeyKind::Callout:
      return KeyOf(Catalog::FindBuiltInCallout(name));
    default:
      return std::nullopt;
  }
}

std::string_view LayerName(const GUID& key) {
  const Catalog::Layer* layer = Catalog::FindLayer(key);
  return layer == nullptr || !layer->hasSymbol ? std::string_view() : layer->name;
}

/// Empty for a key that netsh prints as it is.
std::string_view KnownName(KeyKind kind, const GUID& key) {
  switch (kind) {
    case KeyKind::Layer:
      return LayerName(key);
    case KeyKind::Field:
      return NameOf(Catalog::FindField(key));
    case KeyKind::Provider:
      return NameOf(Catalog::FindBuiltInProvider(key));
    case KeyKind::Sublayer:
      return NameOf(Catalog::FindBuiltInSublayer(key));
    case KeyKind::Callout:
      return NameOf(Catalog::FindBuiltInCallout(key));
    default:
      return {};
  }
}

/// FNV-1a
UINT64 Hash(std::string_view text, UINT64 seed) {
  UINT64 hash = 0xcbf29ce484222325 ^ seed;
  for (const char character : text) {
    hash ^= static_cast<unsigned char>(character);
    hash *= 0x100000001b3;
  }
  return hash;
}

/// A key of version 8, which nobody else has: those of the platform and of random generators are of versions
/// 1 and 4.
GUID MakeUpKey(std::string_view symbol, UINT64 seed) {
  const UINT64 first = Hash(symbol, seed);
  const UINT64 second = Hash(symbol, ~seed);
  GUID key{};
  key.Data1 = static_cast<UINT32>(first >> 32);
  key.Data2 = static_cast<UINT16>(first >> 16);
  key.Data3 = static_cast<UINT16>(0x8000 | (first & 0x0FFF));
  for (std::size_t i = 0; i < sizeof(key.Data4); ++i) {
    key.Data4[i] = static_cast<UINT8>(second >> 8 * i);
  }
  key.Data4[0] = static_cast<UINT8>(0x80 | (key.Data4[0] & 0x3F));
  return key;
}

GUID UnknownKey(std::string_view symbol, UnknownSymbols& unknown) {
  for (UINT64 seed = 0;; ++seed) {
    const GUID key = MakeUpKey(symbol, seed);
    if (unknown.try_emplace(key, symbol).first->second == symbol) {
      return key;
    }
  }
}

/// Whether a text is a symbol of a kind, known or not. Those of provider contexts begin like those of
/// providers.
bool IsSymbol(KeyKind kind, std::string_view text) {
  const std::string_view prefix = SymbolPrefix(kind);
  return text.starts_with(prefix) && text.size() > prefix.size() &&
         std::ranges::all_of(text, IsSymbolCharacter) &&
         (kind != KeyKind::Provider || !text.starts_with(SymbolPrefix(KeyKind::ProviderContext)));
}

}  // namespace

std::string_view SymbolPrefix(KeyKind kind) { return kPrefixes[static_cast<std::size_t>(kind)]; }

std::optional<GUID> ParseBracedGuid(std::string_view text) {
  if (!text.starts_with('{') || !text.ends_with('}')) {
    return std::nullopt;
  }
  return ParseGuid(text.substr(1, text.size() - 2));
}

std::string FormatBracedGuid(const GUID& key) { return '{' + Catalog::FormatGuid(key) + '}'; }

std::optional<GUID> ParseKey(KeyKind kind, std::string_view text, UnknownSymbols& unknown) {
  if (!IsSymbol(kind, text)) {
    return ParseBracedGuid(text);
  }
  const auto known = KnownKey(kind, text.substr(SymbolPrefix(kind).size()));
  return known ? known : UnknownKey(text, unknown);
}

std::string FormatKey(KeyKind kind, const GUID& key, const UnknownSymbols& unknown) {
  const std::string_view known = KnownName(kind, key);
  if (!known.empty()) {
    return std::string(SymbolPrefix(kind)).append(known);
  }
  const auto seen = unknown.find(key);
  return seen != unknown.end() && IsSymbol(kind, seen->second) ? seen->second : FormatBracedGuid(key);
}

}  // namespace Dump
