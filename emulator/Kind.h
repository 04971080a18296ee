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
  static constexpr DWORD kNotFound = static_cast<DWORD>(FWP_E_PROVIDER_NOT_FOUND);
  static constexpr GUID FWPM_PROVIDER0::*kKey = &FWPM_PROVIDER0::providerKey;
};

template <>
struct Kind<FWPM_SUBLAYER0> {
  using EnumTemplate = FWPM_SUBLAYER_ENUM_TEMPLATE0;
  static constexpr DWORD kNotFound = static_cast<DWORD>(FWP_E_SUBLAYER_NOT_FOUND);
  static constexpr GUID FWPM_SUBLAYER0::*kKey = &FWPM_SUBLAYER0::subLayerKey;
};

template <>
struct Kind<FWPM_FILTER0> {
  using EnumTemplate = FWPM_FILTER_ENUM_TEMPLATE0;
  static constexpr DWORD kNotFound = static_cast<DWORD>(FWP_E_FILTER_NOT_FOUND);
  static constexpr GUID FWPM_FILTER0::*kKey = &FWPM_FILTER0::filterKey;
};

}  // namespace EngineEmulator
