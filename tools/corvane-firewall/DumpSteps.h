/**
 * @file
 * The steps that take an engine's objects as a whole.
 */
#pragma once

#include "Step.h"

void ExportStep(const StepContext& context, const StepOptions& options);
void ReplayStep(const StepContext& context, const StepOptions& options);
