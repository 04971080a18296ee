/**
 * @file
 * What becomes of connections that are there when filters change.
 */
#pragma once

#include <span>

#include "calibrate/Calibration.h"

namespace Calibrate {

/// Whether a change of filters has a connection judged anew with its next packet, as is documented.
/// @param paths those that can be used here.
/// @throws EngineError, NetworkError
Result FindReauthorization(const Bench& bench, Network& network, std::span<const Path> paths);

}  // namespace Calibrate
