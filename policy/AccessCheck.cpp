#include "policy/AccessCheck.h"

#include <algorithm>

#include "policy/AceCondition.h"
#include "policy/SecurityDescriptor.h"

namespace Policy {
namespace {

/// How generic rights map to those of conditions is not documented. "All" is taken to include the one that is
/// asked for; reading, writing and executing are taken not to.
constexpr UINT32 kGenericAll = 0x10000000;
constexpr UINT32 kMatchingRights = kMatchFilterRight | kGenericAll;

/// An entry for the object's owner, whoever that is.
const Sid& OwnerRights() {
  static const Sid kSid{3, {4}};
  return kSid;
}

/// Among the restricting SIDs: these are asked for write access alone.
const Sid& WriteRestricted() {
  static const Sid kSid{5, {33}};
  return kSid;
}

/// On whose behalf the entries are asked.
enum class Party {
  User,         ///< the user and the groups
  Restricting,  ///< the restricting SIDs of a restricted token
  Package,      ///< the package and the capabilities of an app container's token
};

/// Whether an entry with a condition of these values applies: an unknown condition does not grant, but it
/// denies.
Truths AppliesWith(Truths condition, bool isDenied) {
  return Combine(condition, true, [isDenied](Truth truth, Truth) {
    const Truth unknown = isDenied ? Truth::True : Truth::False;
    return truth == Truth::Unknown ? unknown : truth;
  });
}

/// One party's way through the entries, up to the first that decides.
class Pass {
 public:
  Pass(const SecurityDescriptor& descriptor, const Token& token, Party party)
      : descriptor_(descriptor), token_(token), party_(party) {}

  [[nodiscard]] Access Run() const {
    bool mayGrant = false;
    bool mayDeny = false;
    for (const AccessEntry& entry : *descriptor_.entries) {
      const Truths applies = Applies(entry);
      if (applies.Has(Truth::True)) {
        mayGrant = mayGrant || entry.kind != AccessEntry::Kind::Deny;
        mayDeny = mayDeny || entry.kind != AccessEntry::Kind::Allow;
      }
      if (applies == true) {
        return Outcome(mayGrant, mayDeny);
      }
    }
    return Outcome(mayGrant, true);
  }

 private:
  static Access Outcome(bool mayGrant, bool mayDeny) {
    if (mayGrant && mayDeny) {
      return Access::Unknown;
    }
    return mayGrant ? Access::Granted : Access::Denied;
  }

  [[nodiscard]] Truths Applies(const AccessEntry& entry) const {
    if (entry.isInheritOnly) {
      return false;
    }
    if (entry.kind == AccessEntry::Kind::Other) {
      return kTrueOrFalse;
    }
    if ((entry.rights & kMatchingRights) == 0) {
      return false;
    }
    const bool isDenied = entry.kind == AccessEntry::Kind::Deny;
    return And(Counts(entry.sid, isDenied), ConditionApplies(entry, isDenied));
  }

  [[nodiscard]] Truths ConditionApplies(const AccessEntry& entry, bool isDenied) const {
    if (!entry.isConditional) {
      return true;
    }
    if (!IsCondition(entry.condition)) {
      return kTrueOrFalse;  // Data that mean something to a program of its own.
    }
    return AppliesWith(Evaluate(entry.condition, {token_, isDenied, party_ == Party::User}), isDenied);
  }

  [[nodiscard]] Truths Counts(const Sid& sid, bool isDenied) const {
    // Whether a condition has rights of its owner is not documented.
    if (sid == OwnerRights()) {
      const bool mayBeOwner = descriptor_.owner && CountsItself(*descriptor_.owner, false).Has(Truth::True);
      return mayBeOwner ? kTrueOrFalse : Truths(false);
    }
    return CountsItself(sid, isDenied);
  }

  [[nodiscard]] Truths CountsItself(const Sid& sid, bool isDenied) const {
    switch (party_) {
      case Party::Restricting:
        return std::ranges::find(token_.restricting, sid) != token_.restricting.end();
      case Party::Package:
        return CountsForPackage(sid, isDenied);
      default:
        return token_.Counts(sid, isDenied);
    }
  }

  /// Whether entries can deny to a package is not documented.
  [[nodiscard]] Truths CountsForPackage(const Sid& sid, bool isDenied) const {
    if (!token_.appContainer->Holds(sid)) {
      return false;
    }
    return isDenied ? kTrueOrFalse : Truths(true);
  }

  const SecurityDescriptor& descriptor_;
  const Token& token_;
  Party party_;
};

/// What restricting SIDs grant. Whether a filter's right is one to write is not documented, so those that are
/// asked for write access alone may not be asked.
Access CheckRestricting(const SecurityDescriptor& descriptor, const Token& token) {
  const Access access = Pass(descriptor, token, Party::Restricting).Run();
  const auto& sids = token.restricting;
  const bool isOfWriting = std::ranges::find(sids, WriteRestricted()) != sids.end();
  return isOfWriting ? std::max(access, Access::Unknown) : access;
}

Access CheckEntries(const SecurityDescriptor& descriptor, const Token& token) {
  Access access = Pass(descriptor, token, Party::User).Run();
  if (!token.restricting.empty()) {
    access = std::min(access, CheckRestricting(descriptor, token));
  }
  if (token.appContainer) {
    access = std::min(access, Pass(descriptor, token, Party::Package).Run());
  }
  return access;
}

}  // namespace

Access CheckAccess(std::span<const UINT8> bytes, const Token& token) {
  try {
    const SecurityDescriptor descriptor = ReadSecurityDescriptor(bytes);
    if (descriptor.entries) {
      return CheckEntries(descriptor, token);
    }
    // No list grants everything to everybody; whether to app containers too is not documented.
    return token.appContainer ? Access::Unknown : Access::Granted;
  } catch (const MalformedError&) {
    return Access::Unknown;
  }
}

}  // namespace Policy
