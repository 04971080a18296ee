/**
 * @file
 * Native filter records in words, one line each.
 */
#pragma once

#include <WfpPlatform.h>

#include <string>

namespace Catalog {

/// A value with its type: "UINT16 53", "UINT64 7", "V4_ADDR_MASK 10.0.0.0/255.0.0.0",
/// "V6_ADDR_MASK fe80::/10", "BYTE_BLOB \device\harddiskvolume1\a.exe", "RANGE UINT32 1 to UINT32 2",
/// "EMPTY". IPv4 addresses are dotted, the flags word is "0x00000001", other numbers are decimal. Null
/// pointers come out as "null".
std::string DescribeConditionValue(const GUID& fieldKey, const FWP_CONDITION_VALUE0& value);

/// "IP_REMOTE_PORT NOT_EQUAL UINT16 53"
std::string DescribeCondition(const FWPM_FILTER_CONDITION0& condition);

/// Layer, action, weight, flags and conditions: "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 14 |
/// CLEAR_ACTION_RIGHT | IP_REMOTE_PORT NOT_EQUAL UINT16 53 & FLAGS EQUAL UINT32 0x00000001". "-" stands
/// for no flags and for no conditions, "EMPTY" for a weight left to the engine.
std::string DescribeFilter(const FWPM_FILTER0& filter);

}  // namespace Catalog
