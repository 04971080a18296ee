/**
 * @file
 * How a filter's conditions and a template's relate, as sets of what they match.
 */
#pragma once

#include <WfpPlatform.h>

#include <span>

namespace EngineEmulator {

/// Sound conditions of one layer.
using Conditions = std::span<const FWPM_FILTER_CONDITION0>;

/// Whether the filter matches all that the template describes.
/// @param wanted at most one condition on each field.
bool Contain(Conditions filter, Conditions wanted);

/// Whether the filter matches some of what the template describes.
/// @param wanted at most one condition on each field.
bool Overlap(Conditions filter, Conditions wanted);

}  // namespace EngineEmulator
