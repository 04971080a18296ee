/**
 * @file
 * The states in which the commands of the fault matrix start.
 */
#pragma once

#include <span>

#include "Facts.h"

/// A state is one bit, so that a rule can name several.
enum StateBits : unsigned {
  kOff = 1U << 0,
  kOffAgain = 1U << 1,
  kOffBesideProvider = 1U << 2,
  kKillSwitchOn = 1U << 3,
  kKillSwitchWithAppsOn = 1U << 4,
  kDhcpOn = 1U << 5,
  kBothOn = 1U << 6,
  kKillSwitchUnopened = 1U << 7,
  kKillSwitchTorso = 1U << 8,
  kKillSwitchHalfRemoved = 1U << 9,
  kDhcpUnopened = 1U << 10,
  kDhcpTorso = 1U << 11,
  kReplacementFailed = 1U << 12,
  kLeakProtectionOn = 1U << 13,
  kFirewallCopyMissing = 1U << 14,
  kOnlyDnsRulesLeft = 1U << 15,
  kOnlyInterfaceRulesLeft = 1U << 16,
  kLeakReplacementFailed = 1U << 17,
  kLocalNetworkOn = 1U << 18,
  kLocalNetworkUnopened = 1U << 19,
  kLocalNetworkTorso = 1U << 20,
  kSkeinOn = 1U << 21,
  kSkeinUnopened = 1U << 22,
  kSkeinTorso = 1U << 23,
};

struct StartingState {
  const char* name;
  unsigned bit;
  void (*enter)(LogCallback log);  ///< called after Initialize
  Facts facts;                     ///< of the state
  unsigned commands;               ///< to try: of the state's features, and of others that it affects
  bool besideProvider = false;     ///< the engine has a provider that the library did not add
};

std::span<const StartingState> StartingStates();
