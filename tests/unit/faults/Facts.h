/**
 * @file
 * What can be seen of the module from outside between two commands.
 */
#pragma once

#include <WfpPlatform.h>

#include "api/ModuleState.h"
#include "corvane/native_firewall.h"
#include "unit/api/ApiTest.h"

/// A number of filters: the engine does not even have the sublayer.
constexpr int kAbsent = -1;

struct RuleSetFacts {
  bool registered = false;
  int filters = kAbsent;  ///< in the engine
};

struct Facts {
  bool session = false;
  bool provider = false;     ///< in the engine, whosever it is
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

/// The filters of another owner that the engine has throughout: blocks of one application each.
constexpr int kForeignBlocks = 2;
