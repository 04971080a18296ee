#pragma once

#include <vector>

#include "policy/Snapshot.h"

/// Whose filters and sublayers are shown: ours, or everybody's. A sublayer of ours is shown even if it holds
/// no filter of ours.
enum class Owners { Ours, All };

/// A sublayer and the filters in it, in the order of their ids.
struct SublayerContents {
  const Policy::Sublayer* sublayer;
  std::vector<const Policy::Filter*> filters;
};

/// What the step list shows of a snapshot, which must outlive it.
struct Contents {
  const Policy::Provider* provider;  ///< ours; null when the engine has none
  /// The weightiest first, as the engine asks them, and those that it does not show at the end; those of
  /// equal weight as the engine gave them.
  std::vector<SublayerContents> sublayers;
};

Contents ContentsOf(const Policy::Snapshot& snapshot, Owners owners);
