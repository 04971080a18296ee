#include "emulator/Texts.h"

#include "catalog/Describe.h"
#include "catalog/Names.h"
#include "emulator/Checks.h"
#include "emulator/Utf8.h"

namespace EngineEmulator {
namespace {

std::string Quote(const wchar_t* text) { return text == nullptr ? "null" : '"' + Utf8(text) + '"'; }

std::string OptionalKey(const GUID* key) { return key == nullptr ? "-" : Catalog::FormatGuid(*key); }

}  // namespace

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

std::string Describe(const FWPM_PROVIDER_CONTEXT0* context) {
  if (context == nullptr) {
    return "null";
  }
  return Quote(context->displayData.name) + ' ' + Catalog::FormatGuid(context->providerContextKey) +
         ", type " + std::to_string(int{context->type}) + ", flags " + std::to_string(context->flags) +
         ", provider " + OptionalKey(context->providerKey);
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

std::string Describe(const FWPM_PROVIDER_CONTEXT_ENUM_TEMPLATE0* criteria) {
  return criteria == nullptr ? "all"
                             : "provider " + OptionalKey(criteria->providerKey) + ", type " +
                                   std::to_string(int{criteria->providerContextType});
}

std::string Describe(const FWPM_LAYER_ENUM_TEMPLATE0*) { return "all"; }

std::string Describe(const FWPM_NET_EVENT_ENUM_TEMPLATE0* criteria) {
  return criteria == nullptr ? "all" : "conditions " + std::to_string(criteria->numFilterConditions);
}

std::string Describe(const FWPM_FILTER_ENUM_TEMPLATE0* criteria) {
  if (criteria == nullptr) {
    return "all";
  }
  return "provider " + OptionalKey(criteria->providerKey) + ", layer " +
         Catalog::LayerName(criteria->layerKey) + ", flags " + std::to_string(criteria->flags);
}

}  // namespace EngineEmulator
