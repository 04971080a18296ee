/**
 * @file
 * What an engine holds, as a dump would have it.
 */
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "dump/EngineState.h"
#include "replay/EngineCalls.h"

namespace Replay {

/// Memory that an engine handed out.
using EngineMemory = std::unique_ptr<void, std::function<void(void*)>>;

/// The objects of an engine. The records lie in its memory.
struct EngineContents {
  Dump::EngineState state;
  std::vector<EngineMemory> memory;
};

/// Reads what the caller may see of an engine, in one read-only transaction. Changes nothing.
/// @throws EngineError with the engine's code: ERROR_ACCESS_DENIED when rights are missing.
EngineContents ReadEngine(const EngineCalls& engine);

}  // namespace Replay
