#pragma once

#include "Step.h"

// Steps that read the engine and change nothing.
void ExplainStep(const StepContext& context, const StepOptions& options);
void MapStep(const StepContext& context, const StepOptions& options);
void ProveStep(const StepContext& context, const StepOptions& options);
void LintStep(const StepContext& context, const StepOptions& options);
void ReportStep(const StepContext& context, const StepOptions& options);
