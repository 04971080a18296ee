#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Step.h"
#include "policy/Circumstances.h"

/// Something of the circumstances in words: {"profile", "public"}.
struct ToldCircumstance {
  std::string name;
  std::string text;
};

/// Who connects, and where.
struct AskedCircumstances {
  Policy::Circumstances circumstances;
  /// The application that such a program usually is, if that is known; bytes of its id.
  std::optional<std::string> application;
  std::vector<ToldCircumstance> told;  ///< what was given and what was taken for the rest
};

/// What the options of a step say of who connects and where.
/// @throws Failure when they contradict each other.
AskedCircumstances AskCircumstances(const StepOptions& options, const Policy::Snapshot& snapshot);

/// 1 public, 2 private, 3 domain; empty for any other text.
std::optional<UINT32> ParseProfile(std::string_view text);
/// A type of interfaces by its name or number up to 65535; empty for any other text.
std::optional<UINT64> ParseInterfaceType(const std::string& text);
/// A type of tunnels by its name or number; empty for any other text.
std::optional<UINT32> ParseTunnelType(const std::string& text);

// What is wrong with an option's value; empty when nothing is.
std::string RejectAllButProfile(const std::string& value);
std::string RejectAllButInterfaceType(const std::string& value);
std::string RejectAllButTunnelType(const std::string& value);
std::string RejectAllButNumber(const std::string& value);
std::string RejectAllButCompartment(const std::string& value);
