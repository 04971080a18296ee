#pragma once

#include <filesystem>

#include "dump/EngineState.h"
#include "policy/Snapshot.h"

/// What a dump tells of an engine.
struct DumpedPolicy {
  Dump::EngineState state;
  Policy::Snapshot snapshot;
  /// The dump is one of the filters, which lacks the sublayers. Those of the system are known, of the others
  /// only the order, as far as that of the filters tells it: they are given as not listed, by weights of this
  /// order.
  bool isOrderInferred;
};

/// Reads what netsh wfp show state or netsh wfp show filters has written.
/// @throws Dump::DumpError if the file cannot be read, or the filters' order fits no order of sublayers.
DumpedPolicy ReadDumpedPolicy(const std::filesystem::path& path);
