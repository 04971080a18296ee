/**
 * @file
 * What the failure of an engine call does to a command: the rules of the library, told once more.
 */
#pragma once

#include <WfpPlatform.h>

#include <cstddef>
#include <limits>
#include <optional>
#include <span>

/// A code, and how the log has it.
struct Code {
  DWORD value;
  const char* logged;
};

/// The one code that deleting a sublayer may give.
constexpr Code kProviderNotFound{0x80320005, "-2144206843"};

/// The codes that each call fails with.
constexpr Code kCodes[]{{0x80320012, "-2144206830"}, {1753, "1753"}, {5, "5"}, kProviderNotFound};

/// Numbers of filters that depend on the command.
constexpr int kAllOfCommand = -2;
constexpr int kAddedSoFar = -3;  ///< as many as calls of the rule came before the one that failed

/// Unset: as before the command.
struct RuleSetChange {
  std::optional<bool> registered = std::nullopt;
  std::optional<int> filters = std::nullopt;
};

/// What the failure of a step that the command does without changes in the log of a success.
struct LogChange {
  const char* line = nullptr;
  bool stays = true;
  const char* added = nullptr;  ///< behind that line
};

struct Outcome {
  const char* message = nullptr;     ///< of the failure; null: the command succeeds
  const Code* code = nullptr;        ///< of the failure; null: that of the call
  const char* lastLine = nullptr;    ///< before the failure log; null: all but the last of a success
  const char* leavesText = nullptr;  ///< a success that replaces the error text
  RuleSetChange own = {};            ///< of the command's rule set
  RuleSetChange killSwitch = {};
  RuleSetChange dhcp = {};
  RuleSetChange dnsLeak = {};
  RuleSetChange firewallCopy = {};
  RuleSetChange interfaceLeak = {};
  RuleSetChange localNetwork = {};
  RuleSetChange skein = {};
  std::optional<bool> session = std::nullopt;
  std::optional<bool> provider = std::nullopt;
  std::optional<bool> transaction = std::nullopt;
  bool asWithoutFault = false;       ///< the rest does not count
  bool leaksSession = false;         ///< for good
  bool leaksReadingSession = false;  ///< for good: that of an enumeration
  LogChange log = {};
};

constexpr std::size_t kLast = std::numeric_limits<std::size_t>::max();

/// Calls of one function during a command, counted from 1. No range: the command without a fault.
struct Range {
  std::size_t first = 0;
  std::size_t last = 0;
};

struct Rule {
  unsigned commands;
  unsigned states;
  const char* function;  ///< null: without a fault
  Range calls;
  Outcome outcome;
  DWORD onlyCode = 0;  ///< comes before the rule for all codes
};

/// By the commands' features.
std::span<const Rule> ModuleRules();
std::span<const Rule> InternetRules();
std::span<const Rule> DhcpRules();
std::span<const Rule> LeakProtectionRules();
std::span<const Rule> LocalNetworkAndSkeinRules();
