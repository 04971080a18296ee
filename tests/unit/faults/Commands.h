/**
 * @file
 * The commands of the fault matrix, with what they log.
 */
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "Facts.h"

/// A command of the matrix is one bit, so that a rule can name several.
enum CommandBits : unsigned {
  kInitialize = 1U << 0,
  kEnableInternet = 1U << 1,
  kDisablePlain = 1U << 2,
  kDisableWithApps = 1U << 3,
  kDisableWithInterfaces = 1U << 4,
  kDisableWithUnknownInterfaces = 1U << 5,
  kEnableDhcp = 1U << 6,
  kDisableDhcp = 1U << 7,
  kQueries = 1U << 8,
  kEnableLeakProtection = 1U << 9,
  kDisableLeakProtection = 1U << 10,
  kEnableLocalNetwork = 1U << 11,
  kDisableLocalNetwork = 1U << 12,
  kEnableSkein = 1U << 13,
  kEnableSkeinByName = 1U << 14,
  kDisableSkein = 1U << 15,
};
constexpr unsigned kDisableInternet =
    kDisablePlain | kDisableWithApps | kDisableWithInterfaces | kDisableWithUnknownInterfaces;
constexpr unsigned kAnyEnableSkein = kEnableSkein | kEnableSkeinByName;

/// The commands of each feature.
constexpr unsigned kModule = kInitialize | kQueries;
constexpr unsigned kInternet = kEnableInternet | kDisableInternet;
constexpr unsigned kDhcp = kEnableDhcp | kDisableDhcp;
constexpr unsigned kLeakProtection = kEnableLeakProtection | kDisableLeakProtection;
constexpr unsigned kLocalNetwork = kEnableLocalNetwork | kDisableLocalNetwork;
constexpr unsigned kSkein = kAnyEnableSkein | kDisableSkein;
constexpr unsigned kAllCommands = kModule | kInternet | kDhcp | kLeakProtection | kLocalNetwork | kSkein;

enum class When { Always, Registered, NotRegistered };

/// @param when the line is logged, by the command's rule set before the command.
struct LogLine {
  const char* text;
  When when = When::Always;
};

/// In a command's failure log: the place of the code in signed decimal, and of the message.
constexpr const char* kCodeLine = "{code}";
constexpr const char* kMessageLine = "{message}";

struct Command {
  const char* name;      ///< of the test
  const char* function;  ///< exported
  unsigned bit;
  std::uint64_t (*run)(LogCallback log);  ///< what a query answers does not count as a result
  RuleSetFacts Facts::*ruleSet;           ///< which it switches
  int filters;                            ///< which that rule set has
  std::vector<LogLine> log;               ///< of a success; only the last line is logged after the work
  Texts failureLog;                       ///< what follows in place of the last line
  bool logsBeforeWork = false;            ///< even the last line, which then stays before a failure log
  bool keepsErrorText = false;            ///< also when it fails
};

const std::vector<Command>& Commands();

constexpr std::uint64_t kSkeinLuid = 7;
constexpr std::uint32_t kSkeinPeers[]{0x64400009};
constexpr const wchar_t* kApps[]{L"C:\\a.exe", L"C:\\b.exe"};

/// A machine with one adapter, on which the applications above exist and Windows Firewall blocks two more.
void PrepareMachine();
