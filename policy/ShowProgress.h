/**
 * @file
 * What long work tells while it goes on.
 */
#pragma once

#include <cstddef>
#include <functional>

namespace Policy {

/// Is called with each part that is done. It may be empty.
using ShowProgress = std::function<void(std::size_t done, std::size_t total)>;

}  // namespace Policy
