/**
 * @file
 * The rules of the engine told once more, as simply as possible.
 */
#pragma once

#include <optional>
#include <vector>

#include "unit/policy/NaiveMatching.h"

struct NaiveSublayer {
  UINT16 weight;
  std::vector<NaiveFilter> filters;
};

/// What happens to a connection in a world; none where it is up to filters that only the engine can judge.
std::optional<Policy::Action> DecideNaively(const std::vector<NaiveSublayer>& sublayers,
                                            const Policy::Connection& connection, Policy::World world);
