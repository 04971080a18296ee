/**
 * @file
 * Names of users, groups, services and capabilities.
 */
#pragma once

#include <span>
#include <string>

#include "policy/Sid.h"

namespace Policy {

/// "SYSTEM", "Everyone", "service Dnscache", "capability internetClient"; the SID itself if it is none of
/// those that are the same on every machine.
std::string PrincipalText(const Sid& sid);

/// Whom a self-relative security descriptor grants the match to: "allow service Dnscache, SYSTEM", "deny
/// SYSTEM; allow Everyone", "allow Everyone under a condition". Long lists are cut.
std::string DescriptorText(std::span<const UINT8> descriptor);

}  // namespace Policy
