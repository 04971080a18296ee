#pragma once

#include <cstddef>
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
  std::vector<std::string> remotes;
  std::vector<std::string> local;
  std::vector<std::string> protocol;
  std::vector<std::string> icmpType;
  std::vector<std::string> icmpCode;
  std::vector<std::string> inbound;
  std::vector<std::string> loopback;
  std::vector<std::string> all;
  std::vector<std::string> file;
};

/// How often an option may be given.
enum class Times { Any, AtLeastOnce, AtMostOnce, Once };

/// An option that takes a value, or a flag.
struct StepOption {
  const char* name;         ///< without dashes for a value that stands alone
  const char* placeholder;  ///< null for a flag: given, it has an empty value
  const char* help;
  std::vector<std::string> StepOptions::*values;
  Times times = Times::Any;
  std::string (*reject)(const std::string& value) = RejectEmpty;  ///< says what is wrong with a value
};

struct Plan;

/// What a step works with.
struct StepContext {
  const FirewallLibrary& library;
  Reporter& reporter;
  const Plan& plan;
  std::size_t index;  ///< of the step in the plan
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
