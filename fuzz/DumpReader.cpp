// Files of any content as dumps: read or refused, and what was read is written and read again.
#include <string>

#include "dump/ReadDump.h"
#include "dump/WriteDump.h"
#include "fuzz/Input.h"

namespace {

using Fuzz::Require;

/// @param kind of the dump to write.
void CheckRewriting(const Dump::EngineState& state, Dump::DumpKind kind) {
  const std::string written = Dump::WriteDump(state, kind);
  const Dump::EngineState again = Dump::ReadDump(written, "written");
  Require(Dump::WriteDump(again) == written, "what was written reads the same");
  Require(again.filters.size() == state.filters.size(), "no filter is dropped");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const Dump::EngineState state = Dump::ReadDump(std::string(data, data + size), "fuzzed");
    CheckRewriting(state, state.kind);
    CheckRewriting(state, Dump::DumpKind::Filters);
  } catch (const Dump::DumpError& error) {
    Require(std::string(error.what()).starts_with("fuzzed:"), "what was read can be written and read again");
  }
  return 0;
}
