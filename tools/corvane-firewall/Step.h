#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "DumpedPolicy.h"
#include "FirewallCommands.h"
#include "OptionValues.h"
#include "Reporter.h"
#include "promises/Features.h"

/// The values of one step's options, in the order given; UTF-8. A step uses only some of them.
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
  std::vector<std::string> who;
  std::vector<std::string> user;
  std::vector<std::string> account;
  std::vector<std::string> capabilities;
  std::vector<std::string> profile;
  std::vector<std::string> interfaceType;
  std::vector<std::string> tunnelType;
  std::vector<std::string> compartment;
  std::vector<std::string> epoch;
  std::vector<std::string> reauthorized;
  std::vector<std::string> all;
  std::vector<std::string> trace;
  std::vector<std::string> file;
  std::vector<std::string> duration;
  std::vector<std::string> last;
};

/// How often an option may be given.
enum class Times { Any, AtLeastOnce, AtMostOnce, Once };

/// An option that takes a value, or a flag.
struct StepOption {
  const char* name;         ///< without dashes if the value stands alone
  const char* placeholder;  ///< null for a flag, whose value is an empty text
  const char* help;
  std::vector<std::string> StepOptions::*values;
  Times times = Times::Any;
  std::string (*reject)(const std::string& value) = RejectEmpty;  ///< says what is wrong with a value
};

struct PlannedStep;

/// What a step uses besides its options.
struct StepContext {
  const FirewallCommands* library;  ///< null if the engine is a dump, and off Windows
  const DumpedPolicy* dump;         ///< null if it is none
  bool isOrderInferred;             ///< that of the sublayers, because a dump does not tell it
  Reporter& reporter;
  Engine engine;
  const std::string& dnsApp;  ///< empty for none; UTF-8
  std::span<const PlannedStep> before;
  const Policy::SettledReadings& settled;  ///< what is known of the engine

  /// What the engine, or the dump, holds.
  /// @throws Failure see ReadPolicy.
  [[nodiscard]] Policy::Snapshot ReadEngine() const;
  /// The same as records, with what the policy of an engine does not depend on.
  /// @throws Failure with the engine's code.
  [[nodiscard]] std::shared_ptr<const Dump::EngineState> ReadObjects() const;
  /// The names of the network adapters. None with a dump: its adapters are those of another machine.
  [[nodiscard]] Policy::Labels ReadAdapterNames() const;
};

/// What a step does to the rule sets. All rule sets are removed when the program ends.
enum class Effect {
  ReadsEngine,  ///< and nothing else, so that a dump is as good
  ReadsRun,     ///< and what this run has switched on
  ReadsEvents,  ///< and what happens in the engine, which no dump tells
  Tries,        ///< filters of its own and connections of its own, for moments
  ReadsHost,    ///< what the library counts as switched on, or the adapters of this machine
  Installs,
  Removes,
};

/// Whether a step leaves the rule sets as they are.
constexpr bool IsReading(Effect effect) { return effect != Effect::Installs && effect != Effect::Removes; }

/// Whether a step takes the library or the adapters, which only Windows has.
constexpr bool NeedsWindows(Effect effect) { return effect == Effect::ReadsHost || !IsReading(effect); }

/// The sources of a feature's arguments besides the options.
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
  /// Makes the same change to the features as the step makes to the engine; null for a step that only reads.
  /// Throws Failure.
  void (*switchFeature)(const StepOptions& options, const FeatureSources& sources,
                        Promises::Features& features) = nullptr;
};

struct PlannedStep {
  const Step* step;
  StepOptions options;
};
