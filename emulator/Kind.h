/**
 * @file
 * The kinds of objects: what the engine's own code needs to know of each.
 */
#pragma once

#include <WfpPlatform.h>

namespace EngineEmulator {

template <class Native>
struct Kind;

template <>
struct Kind<FWPM_PROVIDER0> {
  using EnumTemplate = FWPM_PROVIDER_ENUM_TEMPLATE0;
  using Subscription = FWPM_PROVIDER_SUBSCRIPTION0;
  using Callback = FWPM_PROVIDER_CHANGE_CALLBACK0;
  using Change = FWPM_PROVIDER_CHANGE0;
  static constexpr const char* kName = "provider";
  static constexpr HRESULT kNotFound = FWP_E_PROVIDER_NOT_FOUND;
  static constexpr GUID FWPM_PROVIDER0::*kKey = &FWPM_PROVIDER0::providerKey;

  static Change MakeChange(FWPM_CHANGE_TYPE type, const FWPM_PROVIDER0& provider) {
    return {type, provider.providerKey};
  }
};

template <>
struct Kind<FWPM_SUBLAYER0> {
  using EnumTemplate = FWPM_SUBLAYER_ENUM_TEMPLATE0;
  using Subscription = FWPM_SUBLAYER_SUBSCRIPTION0;
  using Callback = FWPM_SUBLAYER_CHANGE_CALLBACK0;
  using Change = FWPM_SUBLAYER_CHANGE0;
  static constexpr const char* kName = "sublayer";
  static constexpr HRESULT kNotFound = FWP_E_SUBLAYER_NOT_FOUND;
  static constexpr GUID FWPM_SUBLAYER0::*kKey = &FWPM_SUBLAYER0::subLayerKey;

  static Change MakeChange(FWPM_CHANGE_TYPE type, const FWPM_SUBLAYER0& sublayer) {
    return {type, sublayer.subLayerKey};
  }
};

template <>
struct Kind<FWPM_CALLOUT0> {
  using EnumTemplate = FWPM_CALLOUT_ENUM_TEMPLATE0;
  using Subscription = FWPM_CALLOUT_SUBSCRIPTION0;
  using Callback = FWPM_CALLOUT_CHANGE_CALLBACK0;
  using Change = FWPM_CALLOUT_CHANGE0;
  static constexpr const char* kName = "callout";
  static constexpr HRESULT kNotFound = FWP_E_CALLOUT_NOT_FOUND;
  static constexpr GUID FWPM_CALLOUT0::*kKey = &FWPM_CALLOUT0::calloutKey;

  static Change MakeChange(FWPM_CHANGE_TYPE type, const FWPM_CALLOUT0& callout) {
    return {type, callout.calloutKey, callout.calloutId};
  }
};

template <>
struct Kind<FWPM_PROVIDER_CONTEXT0> {
  using EnumTemplate = FWPM_PROVIDER_CONTEXT_ENUM_TEMPLATE0;
  using Subscription = FWPM_PROVIDER_CONTEXT_SUBSCRIPTION0;
  using Callback = FWPM_PROVIDER_CONTEXT_CHANGE_CALLBACK0;
  using Change = FWPM_PROVIDER_CONTEXT_CHANGE0;
  static constexpr const char* kName = "provider context";
  static constexpr HRESULT kNotFound = FWP_E_PROVIDER_CONTEXT_NOT_FOUND;
  static constexpr GUID FWPM_PROVIDER_CONTEXT0::*kKey = &FWPM_PROVIDER_CONTEXT0::providerContextKey;

  static Change MakeChange(FWPM_CHANGE_TYPE type, const FWPM_PROVIDER_CONTEXT0& context) {
    return {type, context.providerContextKey, context.providerContextId};
  }
};

template <>
struct Kind<FWPM_FILTER0> {
  using EnumTemplate = FWPM_FILTER_ENUM_TEMPLATE0;
  using Subscription = FWPM_FILTER_SUBSCRIPTION0;
  using Callback = FWPM_FILTER_CHANGE_CALLBACK0;
  using Change = FWPM_FILTER_CHANGE0;
  static constexpr const char* kName = "filter";
  static constexpr HRESULT kNotFound = FWP_E_FILTER_NOT_FOUND;
  static constexpr GUID FWPM_FILTER0::*kKey = &FWPM_FILTER0::filterKey;

  static Change MakeChange(FWPM_CHANGE_TYPE type, const FWPM_FILTER0& filter) {
    return {type, filter.filterKey, filter.filterId};
  }
};

template <>
struct Kind<FWPM_LAYER0> {
  using EnumTemplate = FWPM_LAYER_ENUM_TEMPLATE0;
  static constexpr const char* kName = "layer";
  static constexpr HRESULT kNotFound = FWP_E_LAYER_NOT_FOUND;
  static constexpr GUID FWPM_LAYER0::*kKey = &FWPM_LAYER0::layerKey;
};

template <>
struct Kind<FWPM_SESSION0> {
  using EnumTemplate = FWPM_SESSION_ENUM_TEMPLATE0;
  static constexpr GUID FWPM_SESSION0::*kKey = &FWPM_SESSION0::sessionKey;
};

}  // namespace EngineEmulator
