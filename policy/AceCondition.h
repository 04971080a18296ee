/**
 * @file
 * The conditional expressions of access control entries.
 */
#pragma once

#include <WfpPlatform.h>

#include <span>

#include "policy/Token.h"

namespace Policy {

/// What an expression is evaluated for.
struct ConditionScope {
  const Token& token;
  bool isDenied = false;  ///< the entry denies
  /// False while the restricting SIDs or those of the package are asked: whose memberships count then is not
  /// documented.
  bool isOfUser = true;
};

/// Whether data behind an entry's SID are a conditional expression at all.
bool IsCondition(std::span<const UINT8> data);

/// The values that an expression can have. That of a malformed one is unknown, as for the platform.
Truths Evaluate(std::span<const UINT8> condition, const ConditionScope& scope);

}  // namespace Policy
