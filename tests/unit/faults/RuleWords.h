/**
 * @file
 * Codes, texts and groups of states for the tables of rules.
 */
#pragma once

#include "Commands.h"
#include "Rules.h"
#include "StartingStates.h"

constexpr Code kOne{1, "1"};
constexpr Code kAlreadyExists{0x80320009, "-2144206839"};
constexpr Code kInUse{0x8032000a, "-2144206838"};
constexpr Code kTransactionInProgress{0x8032000e, "-2144206834"};

constexpr const char* kOpenFails = "Error opening engine.";
constexpr const char* kProviderFails = "Failed to add provider";
constexpr const char* kSublayerFails = "Error creating sublayer.";
constexpr const char* kFilterFails = "Failed to add filter to firewall.";
constexpr const char* kRemovalFails = "Failed to remove provider.";
constexpr const char* kBeginFails = "Failed to begin transaction.";
constexpr const char* kCommitFails = "Failed to commit transaction.";
constexpr const char* kAppFails = "Failed to retrieve app blob";

constexpr const char* kRemoveLine = "NATIVE: Remove killswitch layer";
constexpr const char* kCreateLine = "NATIVE: create killswitch layer";

constexpr unsigned kAllStates = (kSkeinTorso << 1U) - 1;
constexpr unsigned kBothOff = kOff | kOffAgain | kOffBesideProvider;
constexpr unsigned kKillSwitchUntouched = kKillSwitchOn | kKillSwitchWithAppsOn | kBothOn | kKillSwitchTorso;
constexpr unsigned kKillSwitchInEngine = kKillSwitchUntouched | kKillSwitchHalfRemoved;
constexpr unsigned kReplaceable = kKillSwitchInEngine | kKillSwitchUnopened;
constexpr unsigned kKillSwitchRegistered = kReplaceable | kReplacementFailed;
constexpr unsigned kDhcpInEngine = kDhcpOn | kBothOn | kDhcpTorso;
constexpr unsigned kDhcpRegistered = kDhcpInEngine | kDhcpUnopened;
constexpr unsigned kWithoutSession =
    kOff | kOffBesideProvider | kKillSwitchUnopened | kDhcpUnopened | kLocalNetworkUnopened | kSkeinUnopened;
/// DHCP is in the engine, and so comes first when rule sets are applied.
constexpr unsigned kDhcpInEngineFirst = kDhcpOn | kDhcpTorso;
/// The same for a rule set other than DHCP.
constexpr unsigned kOtherInEngineFirst =
    kKillSwitchOn | kKillSwitchWithAppsOn | kKillSwitchTorso | kLocalNetworkOn | kSkeinOn;
constexpr unsigned kKillSwitchStillToAdd = kKillSwitchUnopened | kReplacementFailed;
/// Nothing is registered. A transaction may be open.
constexpr unsigned kAllOff = kBothOff | kLeakReplacementFailed;

constexpr Range kOnce{1, 1};
constexpr Range kSecond{2, 2};
constexpr Range kThird{3, 3};
constexpr Range kFourth{4, 4};
constexpr Range kEach{1, kLast};

constexpr RuleSetChange kGone{false, kAbsent};
constexpr RuleSetChange kForgotten{.registered =
                                       false};  ///< no longer registered, but in the engine as before

constexpr Outcome kNothingHappens{};
constexpr Outcome kHarmless{.asWithoutFault = true};
