#pragma once

#include <string>
#include <vector>

#include "Failure.h"
#include "Step.h"

/// What a command line asks for; UTF-8.
struct Plan {
  Engine engine = Engine::System;
  std::string dnsApp;
  std::vector<std::string> blockedApps;
  bool json = false;
  bool noHold = false;
  std::vector<PlannedStep> steps;
  /// Help or the version, to be printed instead of running anything; empty otherwise.
  std::string information;
};

/// A command line that makes no sense: what is wrong with it and what would be right.
class UsageError : public Failure {
 public:
  UsageError(const std::string& wrong, const std::string& right)
      : Failure(wrong, right + ", see corvane-firewall --help") {}
};

/// Whether a command line asks for a JSON document, be it one that makes no sense.
bool AsksForJson(const std::vector<std::string>& arguments);

/// @param arguments without the program's name.
/// @throws UsageError
Plan ParseCommandLine(const std::vector<std::string>& arguments);
