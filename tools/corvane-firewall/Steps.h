#pragma once

#include <span>
#include <string>

#include "Step.h"

/// All steps, in the order of the help.
std::span<const Step> AllSteps();
/// Null if no step has this name.
const Step* FindStep(const std::string& name);
