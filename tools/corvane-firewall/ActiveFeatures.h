#pragma once

#include <span>
#include <string>

#include "Step.h"

/// The features that steps leave switched on, with their arguments.
/// @param dnsApp as in StepContext.
/// @param snapshot of the engine, asked only for what the library itself finds there: the applications that
///   others block.
/// @throws Failure when an application or the adapters can no longer be looked up.
Promises::Features ActiveFeatures(std::span<const PlannedStep> steps, const std::string& dnsApp,
                                  const Policy::Snapshot& snapshot);
