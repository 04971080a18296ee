#pragma once

#include <string_view>
#include <vector>

#include "Json.h"
#include "policy/Lint.h"
#include "policy/Map.h"
#include "promises/Proof.h"

// What the policy library says, for machines. Numbers that may need more than 53 bits are texts: LUIDs of
// decimal digits, others (weights, the ends of intervals) of hexadecimal ones. Applications are the
// hexadecimal bytes of their ids.

/// "0x0a000001"
std::string HexText(Policy::Number number);
/// "5c006400"
std::string HexText(std::string_view bytes);

Json ToJson(const Policy::Verdict& verdict);
Json ToJson(const Policy::Connection& connection, const Policy::Labels& labels);
Json ToJson(const Policy::Explanation& explanation, const Policy::Labels& labels);
Json ToJson(const Policy::Map& map);
Json ToJson(const std::vector<Promises::PromiseResult>& promises, const Policy::Labels& labels);
Json ToJson(const std::vector<Policy::Finding>& findings);
/// Sublayers and filters with what is needed to judge connections.
Json ToJson(const Policy::Snapshot& snapshot);
