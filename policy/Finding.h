/**
 * @file
 * What lint finds.
 */
#pragma once

#include <string>
#include <string_view>

#include "policy/Snapshot.h"

namespace Policy {

enum class FindingKind {
  AlwaysTrue,         ///< a condition that holds of every value
  NeverTrue,          ///< conditions that no connection meets
  NeverDecides,       ///< filters that always come too late
  TieOfActions,       ///< filters of equal weight that do different things to the same connections
  FlagsEquality,      ///< EQUAL or NOT_EQUAL on a word of flags
  OverriddenPermit,   ///< a soft permit that a lower sublayer's block takes back
  FlowEstablished,    ///< a verdict where the connection has been authorised already
  SeveralNegations,   ///< several negations on one field
  InterleavedFields,  ///< conditions on one field that do not stand together
  Refusable,          ///< what a strict engine would not have taken
  Unreadable,         ///< a condition that cannot be judged
};

/// "always-true", "never-decides", ...
std::string_view FindingName(FindingKind kind);

/// Something about a filter that its author should know.
struct Finding {
  FindingKind kind;
  const Filter* filter;
  const Filter* other = nullptr;  ///< the filter it is about as well: the one that ties, or takes it back
  std::string reason;             ///< what it is, and why it matters
  std::string advice;             ///< what would be clearer
};

/// "never-decides: filter 12 \"Name\": ... Clearer: ..."
std::string Describe(const Finding& finding);

}  // namespace Policy
