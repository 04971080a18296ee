#pragma once

#include <span>
#include <string>

#include "Step.h"

/// The features that are on after the steps, with their arguments.
/// @param dnsApp as in StepContext.
/// @param snapshot of the engine; only used to find the applications that other programs block, which the
///   library also reads from the engine.
/// @throws Failure when an application or the adapters can no longer be looked up.
Promises::Features ActiveFeatures(std::span<const PlannedStep> steps, const std::string& dnsApp,
                                  const Policy::Snapshot& snapshot);
