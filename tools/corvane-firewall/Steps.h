#pragma once

#include <span>
#include <string>
#include <vector>

#include "FirewallLibrary.h"
#include "OptionValues.h"
#include "Reporter.h"

/// What the options of one step were given, in their order; UTF-8. Each step has some of them.
struct StepOptions {
  std::vector<std::string> apps;
  std::vector<std::string> interfaces;
  std::vector<std::string> server;
  std::vector<std::string> luid;
  std::vector<std::string> allowed;
  std::vector<std::string> peers;
};

/// How often an option may be given.
enum class Times { Any, AtMostOnce, Once };

/// An option that takes a value.
struct StepOption {
  const char* name;
  const char* placeholder;
  const char* help;
  std::vector<std::string> StepOptions::*values;
  Times times = Times::Any;
  std::string (*reject)(const std::string& value) = RejectEmpty;  ///< says what is wrong with a value
};

/// What a step works with.
struct StepContext {
  const FirewallLibrary& library;
  Reporter& reporter;
};

struct Step {
  const char* name;
  const char* help;
  std::span<const StepOption> options;
  /// Whether it may leave rules that are gone when the program ends.
  bool installs;
  /// Throws Failure.
  void (*run)(const StepContext& context, const StepOptions& options);
};

/// Every step there is.
std::span<const Step> AllSteps();
/// Null when there is none of that name.
const Step* FindStep(const std::string& name);
