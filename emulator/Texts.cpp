#include "emulator/Texts.h"

#include "catalog/Describe.h"
#include "catalog/Names.h"
#include "emulator/Checks.h"

namespace EngineEmulator {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool IsLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

/// Takes the next character off the text; a lone surrogate comes out as it is.
char32_t TakeCharacter(std::wstring_view& text) {
  const auto unit = static_cast<char32_t>(text.front());
  text.remove_prefix(1);
  if (!IsHighSurrogate(unit) || text.empty() || !IsLowSurrogate(static_cast<char32_t>(text.front()))) {
    return unit;
  }
  const auto low = static_cast<char32_t>(text.front());
  text.remove_prefix(1);
  return 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
}

bool IsSurrogate(char32_t character) { return IsHighSurrogate(character) || IsLowSurrogate(character); }

void AppendUtf8(std::string& text, char32_t character) {
  const auto continuation = [&](int shift) {
    text += static_cast<char>(0x80 | ((character >> shift) & 0x3F));
  };
  if (character < 0x80) {
    text += static_cast<char>(character);
  } else if (character < 0x800) {
    text += static_cast<char>(0xC0 | (character >> 6));
    continuation(0);
  } else if (character < 0x10000) {
    text += static_cast<char>(0xE0 | (character >> 12));
    continuation(6);
    continuation(0);
  } else {
    text += static_cast<char>(0xF0 | (character >> 18));
    continuation(12);
    continuation(6);
    continuation(0);
  }
}

std::string Quote(const wchar_t* text) { return text == nullptr ? "null" : '"' + Utf8(text) + '"'; }

std::string OptionalKey(const GUID* key) { return key == nullptr ? "-" : Catalog::FormatGuid(*key); }

}  // namespace

std::string Utf8(std::wstring_view text) {
  std::string result;
  while (!text.empty()) {
    const char32_t character = TakeCharacter(text);
    AppendUtf8(result, IsSurrogate(character) ? kReplacement : character);
  }
  return result;
}

bool IsWellFormed(std::wstring_view text) {
  while (!text.empty()) {
    if (IsSurrogate(TakeCharacter(text))) {
      return false;
    }
  }
  return true;
}

std::string Describe(const GUID* key) { return key == nullptr ? "null" : Catalog::FormatGuid(*key); }

std::string Describe(const FWPM_SESSION0* session) {
  return session != nullptr && (session->flags & FWPM_SESSION_FLAG_DYNAMIC) != 0 ? "dynamic" : "static";
}

std::string Describe(const FWPM_PROVIDER0* provider) {
  if (provider == nullptr) {
    return "null";
  }
  return Quote(provider->displayData.name) + ' ' + Catalog::FormatGuid(provider->providerKey) + ", flags " +
         std::to_string(provider->flags) + ", service " + Quote(provider->serviceName);
}

std::string Describe(const FWPM_SUBLAYER0* sublayer) {
  if (sublayer == nullptr) {
    return "null";
  }
  return Quote(sublayer->displayData.name) + ' ' + Catalog::FormatGuid(sublayer->subLayerKey) + ", weight " +
         std::to_string(sublayer->weight) + ", flags " + std::to_string(sublayer->flags) + ", provider " +
         OptionalKey(sublayer->providerKey);
}

std::string Describe(const FWPM_CALLOUT0* callout) {
  if (callout == nullptr) {
    return "null";
  }
  return Quote(callout->displayData.name) + ' ' + Catalog::FormatGuid(callout->calloutKey) + ", flags " +
         std::to_string(callout->flags) + ", layer " + Catalog::LayerName(callout->applicableLayer) +
         ", provider " + OptionalKey(callout->providerKey);
}

std::string Describe(const FWPM_FILTER0* filter) {
  if (filter == nullptr) {
    return "null";
  }
  return IsReadable(*filter) ? Catalog::DescribeFilter(*filter) : "not readable";
}

std::string Describe(const FWPM_PROVIDER_ENUM_TEMPLATE0*) { return "all"; }

std::string Describe(const FWPM_SUBLAYER_ENUM_TEMPLATE0* criteria) {
  return criteria == nullptr ? "all" : "provider " + OptionalKey(criteria->providerKey);
}

std::string Describe(const FWPM_CALLOUT_ENUM_TEMPLATE0* criteria) {
  return criteria == nullptr ? "all"
                             : "provider " + OptionalKey(criteria->providerKey) + ", layer " +
                                   Catalog::LayerName(criteria->layerKey);
}

std::string Describe(const FWPM_LAYER_ENUM_TEMPLATE0*) { return "all"; }

std::string Describe(const FWPM_FILTER_ENUM_TEMPLATE0* criteria) {
  if (criteria == nullptr) {
    return "all";
  }
  return "provider " + OptionalKey(criteria->providerKey) + ", layer " +
         Catalog::LayerName(criteria->layerKey) + ", flags " + std::to_string(criteria->flags);
}

}  // namespace EngineEmulator
