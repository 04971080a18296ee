#pragma once

#include <span>
#include <string>

#include "Step.h"

/// Every step there is.
std::span<const Step> AllSteps();
/// Null when there is none of that name.
const Step* FindStep(const std::string& name);
