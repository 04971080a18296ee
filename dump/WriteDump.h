/**
 * @file
 * Writing what "netsh wfp show state" and "netsh wfp show filters" write.
 */
#pragma once

#include <string>

#include "dump/DumpError.h"
#include "dump/EngineState.h"

namespace Dump {

/// A dump of the engine in UTF-8 with its mark, in the order in which netsh lists objects. Read again it
/// gives the same objects, as far as a dump of that kind holds them; of texts, halves of pairs of surrogates
/// are lost.
/// @throws DumpError if a record has what a dump cannot say: a value of a type that no condition has, a
///         malformed security descriptor, a layer that is not listed in a dump of the state.
std::string WriteDump(const EngineState& state, DumpKind kind);
inline std::string WriteDump(const EngineState& state) { return WriteDump(state, state.kind); }

}  // namespace Dump
