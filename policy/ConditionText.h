/**
 * @file
 * Conditions in words for people: with names in place of flags, SIDs and descriptors.
 */
#pragma once

#include <string>

#include "policy/Snapshot.h"

namespace Policy {

/// "IP_REMOTE_PORT EQUAL UINT16 53", "FLAGS FLAGS_ALL_SET IS_LOOPBACK", "ORIGINAL_PROFILE_ID EQUAL
/// public", "ALE_USER_ID EQUAL allow service Dnscache".
std::string ConditionText(const Condition& condition);

/// All of a filter's, joined by "&"; of those on one field only the first few. "every connection" for none.
std::string ConditionsText(const Filter& filter);

}  // namespace Policy
