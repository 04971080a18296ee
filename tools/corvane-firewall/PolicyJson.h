#pragma once

#include <string_view>
#include <vector>

#include "Json.h"
#include "policy/Lint.h"
#include "policy/Map.h"
#include "policy/Owners.h"
#include "promises/Proof.h"

// Results of the policy library as JSON. Numbers that may need more than 53 bits are texts: LUIDs in decimal,
// others (weights, the ends of intervals) in hexadecimal. An application is given by the bytes of its id, in
// hexadecimal.

/// "outbound", "inbound"
const char* DirectionText(Policy::Direction direction);
/// 4 or 6.
int VersionNumber(Policy::IpVersion ipVersion);
/// The number in hexadecimal, such as "0x0a000001".
std::string HexText(Policy::Number number);
/// The bytes in hexadecimal, such as "5c006400".
std::string HexText(std::string_view bytes);

Json ToJson(const Policy::Verdict& verdict);
Json ToJson(const Policy::ValueClass& values, Policy::Field field);
Json ToJson(const Policy::Connection& connection, const Policy::Labels& labels);
Json ToJson(const Policy::Explanation& explanation, const Policy::Owners& owners,
            const Policy::Labels& labels);
Json ToJson(const Policy::Map& map);
Json ToJson(const std::vector<Promises::PromiseResult>& promises, const Policy::Owners& owners,
            const Policy::Labels& labels);
/// Sorted by the owners of their filters.
Json ToJson(std::vector<Policy::Finding> findings, const Policy::Owners& owners);
