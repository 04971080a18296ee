#pragma once

#include <vector>

#include "policy/Snapshot.h"

/// Whose filters and sublayers are shown: the library's, or everybody's. A sublayer of the library is shown
/// even if it holds no filter.
enum class Owners { Ours, All };

/// A sublayer and the filters in it, in the order of their ids.
struct SublayerContents {
  const Policy::Sublayer* sublayer;
  std::vector<const Policy::Filter*> filters;
};

/// What the step list shows of a snapshot, which must outlive it.
struct Contents {
  const Policy::Provider* provider;  ///< the library's; null if it is not in the engine
  /// In the order of the snapshot, which is that of their turn. Sublayers that the engine did not list, but
  /// that filters name, are at the end.
  std::vector<SublayerContents> sublayers;
};

Contents ContentsOf(const Policy::Snapshot& snapshot, Owners owners);
