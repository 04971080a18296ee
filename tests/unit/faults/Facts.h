/**
 * @file
 * What can be seen of the module from outside between two commands.
 */
#pragma once

#include <WfpPlatform.h>

#include "corvane/native_firewall.h"
#include "unit/api/ApiTest.h"

/// A number of filters: the engine does not even have the sublayer.
constexpr int kAbsent = -1;

struct RuleSetFacts {
  bool registered = false;  ///< what the query tells
  int filters = kAbsent;    ///< in the engine
};

struct Facts {
  bool session = false;
  bool provider = false;     ///< in the engine, whosever it is
  bool transaction = false;  ///< left open
  const char* errorText = "";
  RuleSetFacts killSwitch = {};
  RuleSetFacts dhcp = {};
};

struct RuleSet {
  const char* name;
  GUID key;
  RuleSetFacts Facts::*facts;
  std::uint64_t(CORVANE_CALL* query)();
  std::uint64_t answerWhenRegistered;
};

constexpr RuleSet kRuleSets[]{
    {"kill switch", kKillSwitchKey, &Facts::killSwitch, IsInternetEnabled, 0},
    {"DHCP rules", kDhcpKey, &Facts::dhcp, IsDhcpEnabled, 1},
};
