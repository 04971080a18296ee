/**
 * @file
 * Security descriptors in their self-relative form.
 */
#pragma once

#include <WfpPlatform.h>

#include <optional>
#include <span>
#include <vector>

#include "policy/Sid.h"

namespace Policy {

/// What an entry of an access control list says of one SID.
struct AccessEntry {
  enum class Kind {
    Allow,
    Deny,
    Other,  ///< not for an access check of this kind, or of a type that is not known; it has nothing but its
            ///< flags
  };

  Kind kind = Kind::Other;
  bool isInheritOnly = false;  ///< does not concern the object itself
  bool isConditional = false;
  UINT32 rights = 0;
  Sid sid;
  std::span<const UINT8> condition;  ///< of a conditional entry: the bytes behind the SID
};

struct SecurityDescriptor {
  std::optional<Sid> owner;
  /// As stored. Nothing: there is no list, or a null one.
  std::optional<std::vector<AccessEntry>> entries;
};

/// Conditions point into the bytes.
/// @throws MalformedError if the bytes are not a self-relative descriptor that holds all its parts.
SecurityDescriptor ReadSecurityDescriptor(std::span<const UINT8> bytes);

}  // namespace Policy
