#pragma once

#include "Step.h"

/// Tells of what the engine drops, now or before. Throws Failure.
void WatchStep(const StepContext& context, const StepOptions& options);
