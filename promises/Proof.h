/**
 * @file
 * Whether an engine's filters keep what the features promise.
 */
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "policy/Decide.h"
#include "policy/Owners.h"
#include "promises/Features.h"

namespace Promises {

/// Whether a promise is kept.
enum class Keeping {
  Holds,
  Conditional,  ///< only under some readings of the assumptions
  Broken,
};

/// "holds", "holds only under a reading", "broken"
std::string_view KeepingText(Keeping keeping);

/// A connection that breaks a promise, and why.
struct Break {
  Policy::Connection connection;
  const Policy::Filter* filter;  ///< that decides, or perhaps does; null if none matches
  bool isCertain;                ///< false: it is not known whether the filter matches
};

/// A promise, and whether it is kept.
struct PromiseResult {
  std::string feature;   ///< "kill switch"
  std::string name;      ///< "kill-switch-closes", unique
  std::string sentence;  ///< what the user is told
  Keeping keeping;
  Policy::WorldSet worlds;  ///< in which it holds for certain
  /// Unless it holds: the connection nearest to an ordinary one that breaks it, with the trace in a world
  /// where it does, and what was promised for it.
  std::optional<Policy::Explanation> counterexample;
  std::optional<Policy::Action> promised;
  /// Unless it holds: for each filter that breaks it a connection, as far as the nearest ones to ordinary
  /// ones tell.
  std::vector<Break> breaks;
  /// Whether the product's own filters alone would keep it; none if nobody else's are there.
  std::optional<Keeping> alone;
};

/// Checks every promise of the features that are on against every connection that can exist.
/// @param snapshot must outlive the results.
/// @param circumstances in which the connections are; those in any circumstances unless given.
std::vector<PromiseResult> Prove(const Policy::Snapshot& snapshot, const Features& features,
                                 const Policy::Circumstances& circumstances = {});

/// The same, and whether the product's own filters alone would keep the promises.
/// @param ours the key of the product's provider.
std::vector<PromiseResult> ProveInCompany(const Policy::Snapshot& snapshot, const Features& features,
                                          const GUID& ours, const Policy::Circumstances& circumstances = {});

/// What becomes of a promise on a machine with other programs' filters, in words: whether it holds there, and
/// whose filters break it.
std::string DescribeInCompany(const PromiseResult& result, const Policy::Owners& owners,
                              const Policy::Labels& labels = {});

/// A result in words: the sentence, its state with the readings, and the counterexample with its trace.
std::string Describe(const PromiseResult& result, const Policy::Labels& labels = {});

}  // namespace Promises
