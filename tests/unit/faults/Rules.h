/**
 * @file
 * The rules of the fault matrix: what the library must do after an engine call in a command fails. They are
 * written independently of src/.
 */
#pragma once

#include <WfpPlatform.h>

#include <cstddef>
#include <limits>
#include <optional>
#include <span>

/// A code, and the text of it in the log.
struct Code {
  DWORD value;
  const char* logged;
};

/// The only failure of FwpmSubLayerDeleteByKey0 that the library accepts as success.
constexpr Code kProviderNotFound{0x80320005, "-2144206843"};

/// Each call is made to fail with each of these codes.
constexpr Code kCodes[]{{0x80320012, "-2144206830"}, {1753, "1753"}, {5, "5"}, kProviderNotFound};

/// For RuleSetChange::filters: numbers that depend on the command.
constexpr int kAllOfCommand = -2;
constexpr int kAddedSoFar = -3;  ///< the number of the rule's calls before the one that failed

/// A member without a value: as before the command.
struct RuleSetChange {
  std::optional<bool> registered = std::nullopt;
  std::optional<int> filters = std::nullopt;
};

/// How the log of a success changes if a step fails that the command can do without.
struct LogChange {
  const char* line = nullptr;
  bool stays = true;
  const char* added = nullptr;  ///< after that line
};

struct Outcome {
  const char* message = nullptr;     ///< of the failure; null: the command succeeds
  const Code* code = nullptr;        ///< of the failure; null: that of the call
  const char* lastLine = nullptr;    ///< before the failure log; null: all but the last of a success
  const char* leavesText = nullptr;  ///< the error text that a success sets
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
  bool asWithoutFault = false;       ///< as without the fault; all other members are ignored
  bool leaksSession = false;         ///< the session is never closed
  bool leaksReadingSession = false;  ///< the session of the enumeration is never closed
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
  DWORD onlyCode = 0;  ///< if not 0, the rule is for this code only, and precedes one for all codes
};

/// The rules for the commands of each feature.
std::span<const Rule> ModuleRules();
std::span<const Rule> InternetRules();
std::span<const Rule> DhcpRules();
std::span<const Rule> LeakProtectionRules();
std::span<const Rule> LocalNetworkAndSkeinRules();
