#pragma once

#include <string>
#include <vector>

#include "Failure.h"
#include "Step.h"

/// What a command line asks for; UTF-8.
struct Plan {
  Engine engine = Engine::System;
  std::string dump;    ///< the file, if the engine is one
  std::string start;   ///< the dump that the emulated engine begins with; empty for none
  std::string assume;  ///< a calibration to take as settled; empty for none
  std::string dnsApp;
  std::vector<std::string> blockedApps;
  bool json = false;
  bool noHold = false;
  std::vector<PlannedStep> steps;
  /// The text of --help or --version, which is then printed and no step runs; otherwise empty.
  std::string information;
};

/// A command line that is not valid: what is wrong with it and what would be right.
class UsageError : public Failure {
 public:
  UsageError(const std::string& wrong, const std::string& right)
      : Failure(wrong, right + ", see corvane-firewall --help") {}
};

/// Whether a command line asks for a JSON document. It need not be a valid command line.
bool AsksForJson(const std::vector<std::string>& arguments);

/// @param arguments without the program's name.
/// @throws UsageError
Plan ParseCommandLine(const std::vector<std::string>& arguments);
