/**
 * @file
 * The engine's decisions, written independently of policy/ and as simply as possible.
 */
#pragma once

#include <optional>
#include <vector>

#include "unit/policy/NaiveCircumstances.h"
#include "unit/policy/NaiveMatching.h"

struct NaiveSublayer {
  UINT16 weight;
  std::vector<NaiveFilter> filters;
};

/// What happens to a connection in a world; empty if it depends on filters that only the engine can judge.
std::optional<Policy::Action> DecideNaively(const std::vector<NaiveSublayer>& sublayers,
                                            const Policy::Connection& connection,
                                            const NaiveCircumstances& circumstances, Policy::World world);
