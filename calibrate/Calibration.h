/**
 * @file
 * Finds out by experiment how an engine reads what its documentation leaves open.
 */
#pragma once

#include <string>
#include <vector>

#include "calibrate/EngineCalls.h"
#include "calibrate/Network.h"
#include "calibrate/Observation.h"
#include "policy/Assumptions.h"
#include "policy/ShowProgress.h"

namespace Calibrate {

/// A question with its answer.
struct Result {
  Policy::AssumptionText text;
  Answer answer;
};

/// What was found out.
struct Calibration {
  std::vector<Result> assumptions;    ///< in the order of enum Assumption
  std::vector<Result> findings;       ///< what else was asked
  std::vector<std::string> notTried;  ///< kinds of connections that cannot be made here, and why
};

/// Where experiments are done.
struct Laboratory {
  EngineCalls engine;
  std::string application;     ///< the bytes of this program's id, as the engine sees it
  std::size_t mostRounds = 3;  ///< trials are done no more often
};

/// Does all experiments, in a dynamic session of its own. The filters of each name this program and its own
/// ports, and are removed after it.
/// @param network connects as the program of the laboratory.
/// @throws EngineError if nothing can be added to the engine: ERROR_ACCESS_DENIED when rights are missing.
Calibration CalibrateEngine(const Laboratory& laboratory, Network& network,
                            const Policy::ShowProgress& show = {});

/// A calibration in words: each question with its reading, or why it could not be settled, and the evidence.
std::string Describe(const Calibration& calibration);

}  // namespace Calibrate
