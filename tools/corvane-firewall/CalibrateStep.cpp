#include "CalibrateStep.h"

#include <ctime>
#include <iomanip>
#include <sstream>

#include "CalibrationJson.h"
#include "EngineClient.h"
#include "OutputFile.h"
#include "PolicyReader.h"
#include "Progress.h"
#include "ThisMachine.h"
#include "calibrate/SimulatedNetwork.h"

namespace {

/// The emulated engine knows no files, so any program will do.
constexpr const char* kSimulatedProgram = "\\device\\harddiskvolume1\\corvane-firewall.exe";

std::string TimeNow() {
  const std::time_t now = std::time(nullptr);
  std::ostringstream text;
  text << std::put_time(std::gmtime(&now), "%Y-%m-%dT%H:%M:%SZ");
  return text.str();
}

ToldCalibration DoExperiments(const std::string& application, Calibrate::Network& network, bool isSimulated) {
  try {
    return {Calibrate::CalibrateEngine({FindExperimentCalls(), application}, network,
                                       Progress().Of("experiments")),
            isSimulated, isSimulated ? "emulated" : WindowsBuild(), TimeNow()};
  } catch (const Calibrate::EngineError& error) {
    throw Failure(error.Code(), "Experiments need filters of their own: " + std::string(error.what()));
  }
}

ToldCalibration Simulate() {
  const std::string application = Policy::ApplicationBytes(kSimulatedProgram);
  Calibrate::SimulatedNetwork network(FindPolicyCalls(), Policy::World(), application);
  return DoExperiments(application, network, true);
}

}  // namespace

void CalibrateStep(const StepContext& context, const StepOptions& options) {
  const ToldCalibration told = context.engine == Engine::Emulated
                                   ? Simulate()
                                   : DoExperiments(ReadApplicationId(OwnProgram()), *RealNetwork(), false);
  context.reporter.ShowCalibration(told);
  if (!options.file.empty()) {
    WriteFile(options.file.front(), ToJson(told).dump(2) + "\n");
    context.reporter.ShowFile(options.file.front());
  }
}
