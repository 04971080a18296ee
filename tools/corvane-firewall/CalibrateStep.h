#pragma once

#include "Step.h"

void CalibrateStep(const StepContext& context, const StepOptions& options);
