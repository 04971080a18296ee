#pragma once

#include <span>
#include <string>
#include <vector>

#include "FirewallLibrary.h"
#include "OptionValues.h"
#include "Reporter.h"
#include "promises/Features.h"

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

struct PlannedStep;

/// What a step works with.
struct StepContext {
  const FirewallLibrary& library;
  Reporter& reporter;
  Engine engine;
  const std::string& dnsApp;  ///< empty for none; UTF-8
  std::span<const PlannedStep> before;
};

/// What a step does to the rules; those that it leaves are gone when the program ends.
enum class Effect { Reads, Installs, Removes };

/// What a feature's arguments are taken from besides the options.
struct FeatureSources {
  const std::string& dnsApp;
  const Policy::Snapshot& snapshot;
};

struct Step {
  const char* name;
  const char* help;
  std::span<const StepOption> options;
  Effect effect;
  /// Throws Failure.
  void (*run)(const StepContext& context, const StepOptions& options);
  /// Switches the step's feature as the step does; null for a step that only reads. Throws Failure, and
  /// NetworkInfoException when the adapters cannot be listed.
  void (*switchFeature)(const StepOptions& options, const FeatureSources& sources,
                        Promises::Features& features) = nullptr;
};

struct PlannedStep {
  const Step* step;
  StepOptions options;
};
