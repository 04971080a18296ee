/**
 * @file
 * Human names for the keys, codes and numbers of the filtering engine. Texts are the Windows SDK's names
 * less their common prefix. What is unknown comes out as the bare key or number (flags and error codes in
 * hexadecimal, others in decimal), never as an error.
 */
#pragma once

#include <WfpPlatform.h>

#include <optional>
#include <string>
#include <string_view>

namespace Catalog {

/// "c38d57d1-05a7-4c33-904f-7fbceee60e82"
std::string FormatGuid(const GUID& key);
/// "ALE_AUTH_CONNECT_V4"
std::string LayerName(const GUID& key);
/// "IP_REMOTE_ADDRESS"
std::string FieldName(const GUID& key);
/// "UNIVERSAL", for the sublayers that are built into the engine.
std::string SublayerName(const GUID& key);
/// "MPSSVC_WF", for the providers that are built into the engine.
std::string ProviderName(const GUID& key);
/// "IPSEC_ALE_CONNECT_V4", for the callouts that are built into the engine.
std::string CalloutName(const GUID& key);
/// "PERMIT", "BLOCK", "CALLOUT_TERMINATING", ...
std::string ActionName(FWP_ACTION_TYPE action);
/// "EQUAL", "NOT_EQUAL", ...
std::string MatchName(FWP_MATCH_TYPE match);
/// "UINT8", "V4_ADDR_MASK", "BYTE_BLOB", ...
std::string DataTypeName(FWP_DATA_TYPE type);
/// "CLEAR_ACTION_RIGHT|PERSISTENT", from the highest bit to the lowest; "-" for none.
std::string FilterFlagNames(UINT32 flags);
/// "IS_REAUTHORIZE|IS_LOOPBACK", from the highest bit to the lowest; "-" for none.
std::string ConditionFlagNames(UINT32 flags);
/// "FWP_E_IN_USE (0x8032000a)", "ERROR_ACCESS_DENIED (0x00000005)".
std::string ErrorName(DWORD code);

/// The number of a name that ActionName, MatchName or DataTypeName gives; nothing for others.
std::optional<FWP_ACTION_TYPE> FindAction(std::string_view name);
std::optional<FWP_MATCH_TYPE> FindMatch(std::string_view name);
std::optional<FWP_DATA_TYPE> FindDataType(std::string_view name);

}  // namespace Catalog
