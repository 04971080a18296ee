#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>

#include "CheckPlatform.h"
#include "OptionValues.h"
#include "Steps.h"

namespace {

constexpr const char* kJson = "--json";

std::string RejectAllButEngine(const std::string& name) {
  return name == "system" || name == "emulated" || IsDumpName(name)
             ? ""
             : name + " is neither system nor emulated, nor a file that ends in .xml";
}

void SetEngine(const std::string& name, Plan& plan) {
  plan.dump = IsDumpName(name) ? name : "";
  if (IsDumpName(name)) {
    plan.engine = Engine::Dump;
  } else {
    plan.engine = name == "emulated" ? Engine::Emulated : Engine::System;
  }
}

/// The global options may stand before, between and after the steps, so each part of the command line gets
/// them.
void AddGlobalOptions(CLI::App& app, Plan& plan) {
  app.prefix_command();
  app.allow_windows_style_options(false);
  app.set_version_flag("--version", "corvane-firewall " CORVANE_VERSION, "Print the version");
  app.add_option_function<std::string>(
         "--engine", [&plan](const std::string& name) { SetEngine(name, plan); },
         "system (default), or emulated: nothing on this machine changes. A file that netsh wfp show state "
         "or netsh wfp show filters has written can only be read")
      ->check([](const std::string& name) { return RejectAllButEngine(name); })
      ->type_name("system|emulated|FILE.xml");
  app.add_option("--start", plan.start,
                 "What the emulated engine begins with: a file that netsh wfp show state or netsh wfp show "
                 "filters has written, or the step export")
      ->check([](const std::string& file) { return RejectEmpty(file); })
      ->type_name("FILE.xml");
  app.add_option("--assume", plan.assume,
                 "How the engine reads what is not documented, as the step calibrate has written it")
      ->check([](const std::string& file) { return RejectAllButJson(file); })
      ->type_name("FILE.json");
  app.add_option("--dns-app", plan.dnsApp, "Application whose name look-ups may bypass the tunnel")
      ->type_name("PATH");
  app.add_option_function<std::vector<std::string>>(
         "--block-app",
         [&plan](const std::vector<std::string>& apps) {
           plan.blockedApps.insert(plan.blockedApps.end(), apps.begin(), apps.end());
         },
         "Application that another owner blocks in the emulated engine; the file need not exist")
      ->type_name("PATH")
      ->allow_extra_args(false);
  app.add_flag(kJson, plan.json, "One JSON document on stdout")->disable_flag_override();
  app.add_flag("--no-hold", plan.noHold, "End after the last step, and with it all rules, without waiting");
  for (CLI::Option* option : app.get_options()) {
    option->group("Global options");
  }
}

std::string Usage(const StepOption& option) {
  if (option.placeholder == nullptr) {
    return option.name;
  }
  const bool standsAlone = !std::string_view(option.name).starts_with('-');
  return standsAlone ? option.placeholder : std::string(option.name) + " " + option.placeholder;
}

std::string ListSteps() {
  std::ostringstream text;
  text << "Steps, run in the order given; each may occur more than once:\n";
  for (const Step& step : AllSteps()) {
    text << "  " << step.name << "\n      " << step.help << "\n";
    for (const StepOption& option : step.options) {
      text << "        " << Usage(option) << "\n            " << option.help << "\n";
    }
  }
  text << "All rules live as long as the program: with --engine system it waits for Enter at the end.\n"
          "Off Windows only the steps run that read an engine: a dump, or the emulated one with --start.\n"
          "Example: corvane-firewall --engine emulated disable-internet enable-dhcp list";
  return text.str();
}

bool ReadsEngine(const Step& step) { return step.effect == Effect::ReadsEngine; }

/// The names of all steps, or of those that `isNamed` picks.
std::string StepNames(bool (*isNamed)(const Step&) = [](const Step&) { return true; }) {
  std::string names;
  for (const Step& step : AllSteps()) {
    if (isNamed(step)) {
      names += names.empty() ? step.name : std::string(", ") + step.name;
    }
  }
  return names;
}

/// Parses up to the next step. @returns the remaining arguments, from the first that the app does not know.
std::vector<std::string> Parse(CLI::App& app, std::vector<std::string> arguments, Plan& plan) {
  std::ranges::reverse(arguments);
  try {
    app.parse(std::move(arguments));
  } catch (const CLI::Success& request) {
    std::ostringstream text;
    app.exit(request, text, text);
    plan.information = text.str();
    return {};
  } catch (const CLI::ParseError& error) {
    throw UsageError(error.what(), "options go after the step that they belong to, each with its value");
  }
  return app.remaining();
}

/// Whether an option stands alone and may be missing, and what follows is no value of it but the next step.
bool IsLeftOut(const StepOption& option, const std::vector<std::string>& arguments) {
  const bool standsAlone = !std::string_view(option.name).starts_with('-');
  return standsAlone && option.times == Times::AtMostOnce &&
         (arguments.empty() || !option.reject(arguments.front()).empty());
}

void AddOption(CLI::App& app, const StepOption& option, StepOptions& options) {
  std::vector<std::string>& values = options.*option.values;
  if (option.placeholder == nullptr) {
    app.add_flag_callback(
        option.name, [&values] { values.assign(1, ""); }, option.help);
    return;
  }
  CLI::Option* added =
      app.add_option(option.name, values, option.help)
          ->type_name(option.placeholder)
          ->allow_extra_args(false)
          ->required(option.times == Times::AtLeastOnce || option.times == Times::Once)
          ->check([reject = option.reject](const std::string& value) { return reject(value); });
  if (option.times == Times::AtMostOnce || option.times == Times::Once) {
    added->expected(1);
  }
}

/// "--as service NAME" as one option with one value, because it may take one word or two.
std::vector<std::string> WithWhoTogether(std::vector<std::string> arguments) {
  for (std::size_t i = 0; i + 2 < arguments.size(); ++i) {
    if (arguments[i] == "--as" && (arguments[i + 1] == "service" || arguments[i + 1] == "package")) {
      arguments[i + 1] += " " + arguments[i + 2];
      arguments.erase(arguments.begin() + static_cast<std::ptrdiff_t>(i) + 2);
    }
  }
  return arguments;
}

std::vector<std::string> ParseStep(const Step& step, std::vector<std::string> arguments, Plan& plan) {
  CLI::App app(step.help, std::string("corvane-firewall ") + step.name);
  AddGlobalOptions(app, plan);
  StepOptions options;
  for (const StepOption& option : step.options) {
    if (!IsLeftOut(option, arguments)) {
      AddOption(app, option, options);
    }
  }
  std::vector<std::string> rest = Parse(app, std::move(arguments), plan);
  plan.steps.push_back({&step, std::move(options)});
  return rest;
}

UsageError Unknown(const std::string& argument, const std::vector<PlannedStep>& before) {
  if (!argument.starts_with('-')) {
    return {"There is no step \"" + argument + "\"", "the steps are " + StepNames()};
  }
  if (before.empty()) {
    return {"There is no option " + argument + " before the first step",
            "the options of a step go after its name"};
  }
  const Step& step = *before.back().step;
  std::string known;
  for (const StepOption& option : step.options) {
    known += (known.empty() ? "" : ", ") + std::string(option.name);
  }
  return {std::string("The step ") + step.name + " has no option " + argument,
          "its options are " + (known.empty() ? std::string("only the global ones") : known)};
}

/// @throws UsageError for what takes more than a dump.
void CheckReadsDump(const Plan& plan) {
  if (!plan.dnsApp.empty()) {
    throw UsageError("--dns-app is for steps that change the engine, and a dump cannot be changed",
                     "it goes with --engine system or emulated");
  }
  for (const PlannedStep& planned : plan.steps) {
    const std::string step = planned.step->name;
    if (!IsReading(planned.step->effect)) {
      throw UsageError("The step " + step + " changes the engine, and a dump cannot be changed",
                       "--engine emulated --start " + plan.dump + " begins with what the dump holds");
    }
    if (planned.step->effect == Effect::Tries) {
      throw UsageError("The step " + step + " connects through an engine, and a dump has none",
                       "--engine system is this machine's, and --engine emulated simulates it");
    }
    if (!ReadsEngine(*planned.step)) {
      throw UsageError("The step " + step + " tells of this machine or this run, and a dump is neither",
                       "the steps that read a dump are " + StepNames(&ReadsEngine));
    }
  }
}

}  // namespace

bool AsksForJson(const std::vector<std::string>& arguments) {
  return std::ranges::find(arguments, kJson) != arguments.end();
}

Plan ParseCommandLine(const std::vector<std::string>& arguments) {
  Plan plan;
  CLI::App app("Drives the Corvane native firewall, step by step in one session", "corvane-firewall STEP...");
  app.footer(ListSteps());
  AddGlobalOptions(app, plan);
  std::vector<std::string> rest = Parse(app, WithWhoTogether(arguments), plan);
  while (!rest.empty()) {
    const Step* step = FindStep(rest.front());
    if (step == nullptr) {
      throw Unknown(rest.front(), plan.steps);
    }
    rest = ParseStep(*step, {rest.begin() + 1, rest.end()}, plan);
  }
  if (!plan.information.empty()) {
    return plan;
  }
  if (plan.steps.empty()) {
    throw UsageError("No steps are given", "give at least one of " + StepNames());
  }
  CheckPlatform(plan);
  if (!plan.blockedApps.empty() && plan.engine != Engine::Emulated) {
    throw UsageError("--block-app is for the emulated engine", "it goes with --engine emulated");
  }
  if (!plan.start.empty() && plan.engine != Engine::Emulated) {
    throw UsageError("--start is for the emulated engine", "it goes with --engine emulated");
  }
  if (plan.engine == Engine::Dump) {
    CheckReadsDump(plan);
  }
  return plan;
}
