/**
 * @file
 * Whether a condition with a security descriptor holds.
 */
#pragma once

#include <WfpPlatform.h>

#include <span>

#include "policy/Token.h"

namespace Policy {

/// The right that a condition asks for, FWP_ACTRL_MATCH_FILTER. Granted: the condition holds.
inline constexpr UINT32 kMatchFilterRight = 0x1;

/// The lesser of two is what both together grant.
enum class Access {
  Denied,
  Unknown,  ///< only the engine can tell: of a malformed descriptor, or because the token is not known that
            ///< well
  Granted,
};

/// What a self-relative security descriptor grants to a token. Neither the owner's implicit rights nor
/// integrity levels have a part in this.
Access CheckAccess(std::span<const UINT8> descriptor, const Token& token);

}  // namespace Policy
