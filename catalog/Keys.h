/**
 * @file
 * The keys of fields, layers, sublayers and providers that code asks for. The tables beside this file have
 * the others.
 */
#pragma once

#include <WfpPlatform.h>

#include "catalog/Guid.h"

namespace Catalog {

inline constexpr GUID kAleAppIdFieldKey = "d78e1e87-8644-4ea5-9437-d809ecefc971"_guid;
inline constexpr GUID kDirectionFieldKey = "8784c146-ca97-44d6-9fd1-19fb1840cbf7"_guid;
inline constexpr GUID kFlagsFieldKey = "632ce23b-5167-435c-86d7-e903684aa80c"_guid;
inline constexpr GUID kIpArrivalInterfaceFieldKey = "618a9b6d-386b-4136-ad6e-b51587cfb1cd"_guid;
inline constexpr GUID kIpLocalAddressFieldKey = "d9ee00de-c1ef-4617-bfe3-ffd8f5a08957"_guid;
inline constexpr GUID kIpLocalInterfaceFieldKey = "4cd62a49-59c3-4969-b7f3-bda5d32890a4"_guid;
inline constexpr GUID kIpLocalPortFieldKey = "0c1ba1af-5765-453f-af22-a8f791ac775b"_guid;
inline constexpr GUID kIpNextHopInterfaceFieldKey = "93ae8f5b-7f6f-4719-98c8-14e97429ef04"_guid;
inline constexpr GUID kIpProtocolFieldKey = "3971ef2b-623e-4f9a-8cb1-6e79b806b9a7"_guid;
inline constexpr GUID kIpRemoteAddressFieldKey = "b235ae9a-1d64-49b8-a44c-5ff3d9095045"_guid;
inline constexpr GUID kIpRemotePortFieldKey = "c35a604d-d22b-4e1a-91b4-68f674ee674b"_guid;

inline constexpr GUID kAleResourceAssignmentV4LayerKey = "1247d66d-0b60-4a15-8d44-7155d0f53a0c"_guid;
inline constexpr GUID kAleResourceAssignmentV6LayerKey = "55a650e1-5f0a-4eca-a653-88f53b26aa8c"_guid;
inline constexpr GUID kAleAuthListenV4LayerKey = "88bb5dad-76d7-4227-9c71-df0a3ed7be7e"_guid;
inline constexpr GUID kAleAuthListenV6LayerKey = "7ac9de24-17dd-4814-b4bd-a9fbc95a321b"_guid;
inline constexpr GUID kAleAuthRecvAcceptV4LayerKey = "e1cd9fe7-f4b5-4273-96c0-592e487b8650"_guid;
inline constexpr GUID kAleAuthRecvAcceptV6LayerKey = "a3b42c97-9f04-4672-b87e-cee9c483257f"_guid;
inline constexpr GUID kAleAuthConnectV4LayerKey = "c38d57d1-05a7-4c33-904f-7fbceee60e82"_guid;
inline constexpr GUID kAleAuthConnectV6LayerKey = "4a72393b-319f-44bc-84c3-ba54dcb3b6b4"_guid;
inline constexpr GUID kAleFlowEstablishedV4LayerKey = "af80470a-5596-4c13-9992-539e6fe57967"_guid;
inline constexpr GUID kAleFlowEstablishedV6LayerKey = "7021d2b3-dfa4-406e-afeb-6afaf7e70efd"_guid;

/// The sublayer of filters that name none.
inline constexpr GUID kUniversalSublayerKey = "eebecc03-ced4-4380-819a-2734397b2b74"_guid;
/// The sublayer for callouts that only look.
inline constexpr GUID kInspectionSublayerKey = "877519e1-e6a9-41a5-81b4-8c4f118e4a60"_guid;

inline constexpr GUID kServiceHardeningProviderKey = "4b153735-1049-4480-aab4-d1b9bdc03710"_guid;
inline constexpr GUID kWindowsFirewallProviderKey = "decc16ca-3f33-4346-be1e-8fb4ae0f3d62"_guid;
inline constexpr GUID kDataProtectionProviderKey = "a90296f7-46b8-4457-8f84-b05e05d3c622"_guid;
inline constexpr GUID kTenantRestrictionsProviderKey = "d0718ff9-44da-4f50-9dc2-c963a4247613"_guid;
inline constexpr GUID kAppIsolationProviderKey = "3cc2631f-2d5d-43a0-b174-614837d863a1"_guid;

}  // namespace Catalog
