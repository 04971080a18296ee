#include "DumpSteps.h"

#include "OutputFile.h"
#include "dump/DumpError.h"
#include "dump/WriteDump.h"
#include "replay/Replay.h"

void ExportStep(const StepContext& context, const StepOptions& options) {
  const std::string& path = options.file.front();
  try {
    WriteFile(path, Dump::WriteDump(*context.ReadObjects()));
  } catch (const Dump::DumpError& error) {
    throw Failure("The engine holds what a dump cannot say: " + std::string(error.what()), "");
  }
  context.reporter.ShowFile(path);
}

void ReplayStep(const StepContext& context, const StepOptions&) {
  context.reporter.ShowAgreement(Replay::ReplayIntoEmulator(*context.ReadObjects()));
}
