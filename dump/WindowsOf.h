/**
 * @file
 * Which Windows a dump is of.
 */
#pragma once

#include <vector>

#include "catalog/WindowsVersion.h"
#include "dump/EngineState.h"

namespace Dump {

/// The versions of Windows that a dump may be of, in the order of their builds; all if it does not tell. One
/// of the state tells by the fields of its layers, one of the filters by the fields that these test. The
/// automatic weights of its filters tell more.
std::vector<Catalog::WindowsVersion> WindowsOf(const EngineState& state);

}  // namespace Dump
