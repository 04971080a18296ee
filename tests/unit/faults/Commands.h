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

/// A line of a command's log. `when` says whether it depends on the command's rule set being registered
/// before the command.
struct LogLine {
  const char* text;
  When when = When::Always;
};

/// In a command's failure log, these lines stand for the code in signed decimal, and for the message.
constexpr const char* kCodeLine = "{code}";
constexpr const char* kMessageLine = "{message}";

struct Command {
  const char* name;      ///< in the name of the test
  const char* function;  ///< the exported function
  unsigned bit;
  std::uint64_t (*run)(LogCallback log);  ///< gives the result; 0 for a query, whatever it answers
  RuleSetFacts Facts::*ruleSet;           ///< the rule set that it switches
  int filters;                            ///< the number of filters in that rule set
  std::vector<LogLine> log;               ///< of a success; only the last line is logged after the work
  Texts failureLog;                       ///< logged after a failure instead of the last line
  bool logsBeforeWork = false;            ///< the last line too; a failure log then follows it
  bool keepsErrorText = false;            ///< a failure does not change the error text
};

const std::vector<Command>& Commands();

constexpr std::uint64_t kSkeinLuid = 7;
constexpr std::uint32_t kSkeinPeers[]{0x64400009};
constexpr const wchar_t* kApps[]{L"C:\\a.exe", L"C:\\b.exe"};

/// Makes a machine with one adapter, on which the applications above exist and Windows Firewall blocks two
/// others.
void PrepareMachine();
