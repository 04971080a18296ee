/**
 * @file
 * The providers that come with the system.
 */
#pragma once

#include <WfpPlatform.h>

#include <array>
#include <string_view>

#include "catalog/Guid.h"
#include "catalog/Keys.h"

namespace Catalog {

/// A provider that nobody can delete.
struct BuiltInProvider {
  std::string_view name;  ///< less the prefix FWPM_PROVIDER_
  GUID key;
  std::string_view service;  ///< the Windows service that it belongs to; empty for none
  std::string_view title;    ///< in words; what the engine shows as its name is often the maker's
};

// Keys as the public headers have them, not compared with a second list.
inline constexpr auto kBuiltInProviders = std::to_array<BuiltInProvider>({
    {"IKEEXT", "10ad9216-ccde-456c-8b16-e9f04e60a90b"_guid, "IKEEXT", "IKE and AuthIP"},
    {"IPSEC_DOSP_CONFIG", "3c6c05a9-c05c-4bb9-8338-2327814ce8bf"_guid, "", "IPsec DoS Protection"},
    {"TCP_CHIMNEY_OFFLOAD", "896aa19e-9a34-4bcb-ae79-beb9127c84b9"_guid, "", "TCP Chimney Offload"},
    {"TCP_TEMPLATES", "76cfcd30-3394-432d-bed3-441ae50e63c3"_guid, "", "TCP Templates"},
    {"MPSSVC_WSH", kServiceHardeningProviderKey, "mpssvc", "Windows Service Hardening"},
    {"MPSSVC_WF", kWindowsFirewallProviderKey, "mpssvc", "Windows Firewall"},
    {"MPSSVC_EDP", kDataProtectionProviderKey, "mpssvc", "Enterprise Data Protection"},
    {"MPSSVC_TENANT_RESTRICTIONS", kTenantRestrictionsProviderKey, "mpssvc", "Tenant Restrictions"},
    {"MPSSVC_APP_ISOLATION", kAppIsolationProviderKey, "mpssvc", "App Isolation"},
});

/// The built-in provider with a key; null if there is none.
const BuiltInProvider* FindBuiltInProvider(const GUID& key);

/// The built-in provider with a name; null if there is none.
const BuiltInProvider* FindBuiltInProvider(std::string_view name);

}  // namespace Catalog
