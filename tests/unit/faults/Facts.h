/**
 * @file
 * The state of the library and the engine between two commands, as far as it can be observed from outside.
 */
#pragma once

#include <WfpPlatform.h>

#include "api/ModuleState.h"
#include "corvane/native_firewall.h"
#include "unit/api/ApiTest.h"

/// As a number of filters: the engine does not have the sublayer either.
constexpr int kAbsent = -1;

struct RuleSetFacts {
  bool registered = false;
  int filters = kAbsent;  ///< in the engine
};

struct Facts {
  bool session = false;
  bool provider = false;     ///< in the engine, whoever added it
  bool transaction = false;  ///< left open
  const char* errorText = "";
  RuleSetFacts killSwitch = {};
  RuleSetFacts dhcp = {};
  RuleSetFacts dnsLeak = {};
  RuleSetFacts firewallCopy = {};
  RuleSetFacts interfaceLeak = {};
  RuleSetFacts localNetwork = {};
  RuleSetFacts skein = {};
};

struct RuleSet {
  const char* name;
  GUID key;
  RuleSetFacts Facts::*facts;
};

constexpr RuleSet kRuleSets[]{
    {"kill switch", kKillSwitchKey, &Facts::killSwitch},
    {"DHCP rules", kDhcpKey, &Facts::dhcp},
    {"DNS rules", kDnsLeakKey, &Facts::dnsLeak},
    {"copy of Windows Firewall's blocks", kFirewallCopyKey, &Facts::firewallCopy},
    {"interface rules", kInterfaceLeakKey, &Facts::interfaceLeak},
    {"local network block", kLocalNetworkKey, &Facts::localNetwork},
    {"Skein rules", kSkeinKey, &Facts::skein},
};

/// The number of filters of another owner, which the engine always has. Each blocks one application.
constexpr int kForeignBlocks = 2;
