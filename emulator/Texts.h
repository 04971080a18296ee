/**
 * @file
 * Arguments and objects in words. Null pointers come out as "null".
 */
#pragma once

#include <WfpPlatform.h>

#include <string>

namespace EngineEmulator {

std::string Describe(const GUID* key);
/// "dynamic", "static"
std::string Describe(const FWPM_SESSION0* session);
/// "Name" key, flags 0, service "name"
std::string Describe(const FWPM_PROVIDER0* provider);
/// "Name" key, weight 15, flags 0, provider key
std::string Describe(const FWPM_SUBLAYER0* sublayer);
/// "Name" key, flags 0, layer name, provider key
std::string Describe(const FWPM_CALLOUT0* callout);
/// "Name" key, type 8, flags 0, provider key
std::string Describe(const FWPM_PROVIDER_CONTEXT0* context);
/// Catalog::DescribeFilter
std::string Describe(const FWPM_FILTER0* filter);
/// "all", or the criteria
std::string Describe(const FWPM_PROVIDER_ENUM_TEMPLATE0* criteria);
std::string Describe(const FWPM_SUBLAYER_ENUM_TEMPLATE0* criteria);
std::string Describe(const FWPM_CALLOUT_ENUM_TEMPLATE0* criteria);
std::string Describe(const FWPM_PROVIDER_CONTEXT_ENUM_TEMPLATE0* criteria);
std::string Describe(const FWPM_FILTER_ENUM_TEMPLATE0* criteria);
std::string Describe(const FWPM_LAYER_ENUM_TEMPLATE0* criteria);
std::string Describe(const FWPM_NET_EVENT_ENUM_TEMPLATE0* criteria);

}  // namespace EngineEmulator
