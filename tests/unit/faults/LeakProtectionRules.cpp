#include "RuleWords.h"

namespace {

constexpr const char* kLuidLine = "NATIVE: Allowing interface by LUID 7";
constexpr const char* kReplaceLine = "NATIVE: LeakProtection already enabled - changing only whitelisted IP.";
constexpr const char* kDnsLine = "NATIVE: LeakProtection dnsLeakSublayer set weight";
constexpr const char* kApplyLine = "NATIVE: LeakProtection - apply firewall.";
constexpr const char* kCommitLine = "NATIVE: LeakProtection - transaction commit.";

constexpr LogChange kWithoutDnsRules{kDnsLine, false, "NATIVE: DNS leak FirewallException"};
constexpr LogChange kWithoutCopy{kDnsLine, true, "NATIVE: Win Firewall Copy FirewallException"};

/// Nothing of leak protection is registered, and no other rule set is still to be installed.
constexpr unsigned kJustLeakProtection = kAllOff | kKillSwitchOn;
constexpr unsigned kFirst = kJustLeakProtection | kKillSwitchStillToAdd | kOnlyDnsRulesLeft;
constexpr unsigned kReplacing = kLeakProtectionOn | kFirewallCopyMissing | kOnlyInterfaceRulesLeft;
constexpr unsigned kInterfaceRulesWhole = kLeakProtectionOn | kFirewallCopyMissing;

constexpr RuleSetChange kDns{true, 12};
constexpr RuleSetChange kCopy{true, 2};
/// The enumeration has a session of its own, so it still sees the copies that the open transaction has
/// removed.
constexpr RuleSetChange kCopyOfCopies{true, 4};
constexpr RuleSetChange kEmpty{true, 0};
constexpr RuleSetChange kInterface{true, 21};
constexpr RuleSetChange kOneFilterLeft{.filters = 1};
constexpr RuleSetChange kNoFilterLeft{.filters = 0};

/// The end of a first installation that succeeds; one of the rule sets may be left out.
constexpr Outcome Installed(const RuleSetChange& dns, const RuleSetChange& copy, const LogChange& log = {},
                            const RuleSetChange& killSwitch = {}) {
  return {.killSwitch = killSwitch,
          .dnsLeak = dns,
          .firewallCopy = copy,
          .interfaceLeak = kInterface,
          .session = true,
          .provider = true,
          .log = log};
}

/// The end of a first installation that fails: nothing of it stays.
constexpr Outcome NotInstalled(const char* message, const Code* code = nullptr,
                               const RuleSetChange& killSwitch = {}) {
  return {.message = message,
          .code = code,
          .lastLine = kApplyLine,
          .killSwitch = killSwitch,
          .dnsLeak = kGone,
          .session = true,
          .provider = true};
}

/// The end of a replacement that fails: nothing stays.
constexpr Outcome NotReplaced(const char* message, const char* lastLine, const Code* code = nullptr) {
  return {.message = message,
          .code = code,
          .lastLine = lastLine,
          .dnsLeak = kGone,
          .firewallCopy = kGone,
          .interfaceLeak = kGone,
          .transaction = true};
}

/// The end of DisableLeakProtection: all rule sets are gone, unless given otherwise.
constexpr Outcome Disabled(const RuleSetChange& interfaceRules, const RuleSetChange& dns = kGone,
                           const RuleSetChange& copy = kGone) {
  return {.dnsLeak = dns, .firewallCopy = copy, .interfaceLeak = interfaceRules};
}

constexpr RuleSetChange kKillSwitchAdded{true, 51};
constexpr RuleSetChange kEmptyAndForgotten{false, 0};

constexpr Rule kRules[]{
    // EnableLeakProtection for the first time. A rule set that cannot be built is left out.
    {kEnableLeakProtection, kBothOff | kKillSwitchOn, nullptr, {}, Installed(kDns, kCopy)},
    {kEnableLeakProtection, kLeakReplacementFailed, nullptr, {}, Installed(kDns, kCopyOfCopies)},
    {kEnableLeakProtection, kKillSwitchStillToAdd, nullptr, {}, Installed(kDns, kCopy, {}, kKillSwitchAdded)},
    // The sublayer still exists, so the library takes all of its filters for installed.
    {kEnableLeakProtection, kOnlyDnsRulesLeft, nullptr, {}, Installed(kEmpty, kCopy)},
    {kEnableLeakProtection,
     kBothOff | kKillSwitchOn | kOnlyDnsRulesLeft,
     "FwpmGetAppIdFromFileName0",
     {1, 4},
     Installed(kGone, kCopy, kWithoutDnsRules)},
    {kEnableLeakProtection,
     kLeakReplacementFailed,
     "FwpmGetAppIdFromFileName0",
     {1, 4},
     Installed(kGone, kCopyOfCopies, kWithoutDnsRules)},
    {kEnableLeakProtection,
     kKillSwitchStillToAdd,
     "FwpmGetAppIdFromFileName0",
     {1, 4},
     Installed(kGone, kCopy, kWithoutDnsRules, kKillSwitchAdded)},
    {kEnableLeakProtection, kJustLeakProtection, "FwpmEngineOpen0", kOnce,
     Installed(kDns, kGone, kWithoutCopy)},
    {kEnableLeakProtection, kKillSwitchStillToAdd, "FwpmEngineOpen0", kOnce,
     Installed(kDns, kGone, kWithoutCopy, kKillSwitchAdded)},
    {kEnableLeakProtection, kOnlyDnsRulesLeft, "FwpmEngineOpen0", kOnce,
     Installed(kEmpty, kGone, kWithoutCopy)},
    // If the enumeration fails, nothing is copied.
    {kEnableLeakProtection, kJustLeakProtection, "FwpmFilterCreateEnumHandle0", kOnce,
     Installed(kDns, kEmpty)},
    {kEnableLeakProtection, kJustLeakProtection, "FwpmFilterEnum0", kOnce, Installed(kDns, kEmpty)},
    {kEnableLeakProtection, kKillSwitchStillToAdd, "FwpmFilterCreateEnumHandle0", kOnce,
     Installed(kDns, kEmpty, {}, kKillSwitchAdded)},
    {kEnableLeakProtection, kKillSwitchStillToAdd, "FwpmFilterEnum0", kOnce,
     Installed(kDns, kEmpty, {}, kKillSwitchAdded)},
    {kEnableLeakProtection, kOnlyDnsRulesLeft, "FwpmFilterCreateEnumHandle0", kOnce,
     Installed(kEmpty, kEmpty)},
    {kEnableLeakProtection, kOnlyDnsRulesLeft, "FwpmFilterEnum0", kOnce, Installed(kEmpty, kEmpty)},
    {kEnableLeakProtection, kFirst, "FwpmFilterDestroyEnumHandle0", kOnce, kHarmless},
    {kEnableLeakProtection,
     kFirst,
     "FwpmEngineClose0",
     kOnce,
     {.asWithoutFault = true, .leaksReadingSession = true}},
    // Applying. If a part of a rule set cannot be installed, all of it is removed again.
    {kEnableLeakProtection,
     kWithoutSession,
     "FwpmEngineOpen0",
     kSecond,
     {.message = kOpenFails, .lastLine = kApplyLine}},
    {kEnableLeakProtection, kOff | kKillSwitchUnopened, "FwpmProviderGetByKey0", kOnce, kHarmless},
    {kEnableLeakProtection,
     kOffBesideProvider,
     "FwpmProviderGetByKey0",
     kOnce,
     {.message = kProviderFails, .code = &kOne, .lastLine = kApplyLine, .session = true}},
    {kEnableLeakProtection,
     kOff | kKillSwitchUnopened,
     "FwpmProviderAdd0",
     kOnce,
     {.message = kProviderFails, .code = &kOne, .lastLine = kApplyLine, .session = true}},
    {kEnableLeakProtection, kAllOff, "FwpmSubLayerGetByKey0", {1, 3}, kHarmless},
    {kEnableLeakProtection, kKillSwitchOn, "FwpmSubLayerGetByKey0", kOnce,
     NotInstalled(kSublayerFails, &kAlreadyExists)},
    {kEnableLeakProtection, kKillSwitchOn, "FwpmSubLayerGetByKey0", {2, 4}, kHarmless},
    {kEnableLeakProtection, kKillSwitchStillToAdd, "FwpmSubLayerGetByKey0", {1, 4}, kHarmless},
    {kEnableLeakProtection,
     kOnlyDnsRulesLeft,
     "FwpmSubLayerGetByKey0",
     {1, 2},
     NotInstalled(kSublayerFails, &kAlreadyExists)},
    {kEnableLeakProtection, kOnlyDnsRulesLeft, "FwpmSubLayerGetByKey0", {3, 4}, kHarmless},
    {kEnableLeakProtection, kJustLeakProtection, "FwpmSubLayerAdd0", {1, 3}, NotInstalled(kSublayerFails)},
    {kEnableLeakProtection, kOnlyDnsRulesLeft, "FwpmSubLayerAdd0", {1, 2}, NotInstalled(kSublayerFails)},
    {kEnableLeakProtection, kKillSwitchStillToAdd, "FwpmSubLayerAdd0", kOnce, NotInstalled(kSublayerFails)},
    {kEnableLeakProtection,
     kKillSwitchStillToAdd,
     "FwpmSubLayerAdd0",
     {2, 4},
     NotInstalled(kSublayerFails, nullptr, kKillSwitchAdded)},
    {kEnableLeakProtection, kJustLeakProtection | kOnlyDnsRulesLeft, "FwpmFilterAdd0", kEach,
     NotInstalled(kFilterFails)},
    {kEnableLeakProtection,
     kKillSwitchStillToAdd,
     "FwpmFilterAdd0",
     {1, 51},
     NotInstalled(kFilterFails, nullptr, {true, kAddedSoFar})},
    {kEnableLeakProtection,
     kKillSwitchStillToAdd,
     "FwpmFilterAdd0",
     {52, kLast},
     NotInstalled(kFilterFails, nullptr, kKillSwitchAdded)},

    // EnableLeakProtection again, in a transaction. It is only ended if all three rule sets were registered.
    {kEnableLeakProtection, kLeakProtectionOn, nullptr, {}, kNothingHappens},
    {kEnableLeakProtection, kFirewallCopyMissing, nullptr, {}, {.transaction = true}},
    {kEnableLeakProtection,
     kOnlyInterfaceRulesLeft,
     nullptr,
     {},
     {.interfaceLeak = kInterface, .transaction = true}},
    {kEnableLeakProtection,
     kReplacing,
     "FwpmTransactionBegin0",
     kOnce,
     {.message = kBeginFails,
      .lastLine = kLuidLine,
      .dnsLeak = kGone,
      .firewallCopy = kGone,
      .interfaceLeak = kGone}},
    // A sublayer that was not removed counts as installed.
    {kEnableLeakProtection, kInterfaceRulesWhole, "FwpmSubLayerGetByKey0", kOnce, kHarmless},
    {kEnableLeakProtection, kOnlyInterfaceRulesLeft, "FwpmSubLayerGetByKey0", kOnce, {.transaction = true}},
    // The filter that remained is deleted by the removals at the end of the command.
    {kEnableLeakProtection, kInterfaceRulesWhole, "FwpmFilterDeleteById0", kEach,
     NotReplaced(kRemovalFails, kReplaceLine, &kInUse)},
    // These filters are gone, but the entry, whose removal failed before, still has their ids.
    {kEnableLeakProtection, kOnlyInterfaceRulesLeft, "FwpmFilterDeleteById0", kEach, kHarmless},
    {kEnableLeakProtection, kReplacing, "FwpmSubLayerDeleteByKey0", kOnce,
     NotReplaced(kRemovalFails, kReplaceLine)},
    {kEnableLeakProtection,
     kLeakProtectionOn,
     "FwpmSubLayerDeleteByKey0",
     kOnce,
     {.interfaceLeak = kNoFilterLeft},
     kProviderNotFound.value},
    {kEnableLeakProtection,
     kReplacing & ~kLeakProtectionOn,
     "FwpmSubLayerDeleteByKey0",
     kOnce,
     {.interfaceLeak = kNoFilterLeft, .transaction = true},
     kProviderNotFound.value},
    {kEnableLeakProtection,
     kLeakProtectionOn,
     "FwpmSubLayerGetByKey0",
     {2, 3},
     NotReplaced(kSublayerFails, kApplyLine, &kAlreadyExists)},
    {kEnableLeakProtection, kLeakProtectionOn, "FwpmSubLayerGetByKey0", kFourth, kHarmless},
    {kEnableLeakProtection, kFirewallCopyMissing, "FwpmSubLayerGetByKey0", kSecond,
     NotReplaced(kSublayerFails, kApplyLine, &kAlreadyExists)},
    {kEnableLeakProtection, kFirewallCopyMissing, "FwpmSubLayerGetByKey0", kThird, kHarmless},
    {kEnableLeakProtection, kOnlyInterfaceRulesLeft, "FwpmSubLayerGetByKey0", kSecond, kHarmless},
    {kEnableLeakProtection, kReplacing, "FwpmSubLayerAdd0", kOnce, NotReplaced(kSublayerFails, kApplyLine)},
    {kEnableLeakProtection, kReplacing, "FwpmFilterAdd0", kEach, NotReplaced(kFilterFails, kApplyLine)},
    // The engine then undoes the replacement. The library does not have the ids of the filters that are back.
    {kEnableLeakProtection,
     kLeakProtectionOn,
     "FwpmTransactionCommit0",
     kOnce,
     {.message = kCommitFails, .lastLine = kCommitLine, .dnsLeak = kGone, .firewallCopy = kGone}},

    // DisableLeakProtection removes what it can, in this order: interface rules, DNS rules, copy.
    {kDisableLeakProtection, kAllStates, nullptr, {}, Disabled(kGone)},
    {kDisableLeakProtection, kReplacing, "FwpmSubLayerGetByKey0", kOnce, Disabled(kForgotten)},
    {kDisableLeakProtection, kInterfaceRulesWhole, "FwpmSubLayerGetByKey0", kSecond,
     Disabled(kGone, kForgotten)},
    {kDisableLeakProtection, kOnlyDnsRulesLeft, "FwpmSubLayerGetByKey0", kOnce, Disabled(kGone, kForgotten)},
    {kDisableLeakProtection, kLeakProtectionOn, "FwpmSubLayerGetByKey0", kThird,
     Disabled(kGone, kGone, kForgotten)},
    {kDisableLeakProtection,
     kInterfaceRulesWhole,
     "FwpmFilterDeleteById0",
     {1, 21},
     Disabled(kOneFilterLeft)},
    {kDisableLeakProtection,
     kInterfaceRulesWhole,
     "FwpmFilterDeleteById0",
     {22, 33},
     Disabled(kGone, kOneFilterLeft)},
    {kDisableLeakProtection,
     kLeakProtectionOn,
     "FwpmFilterDeleteById0",
     {34, 35},
     Disabled(kGone, kGone, kOneFilterLeft)},
    {kDisableLeakProtection, kOnlyDnsRulesLeft | kOnlyInterfaceRulesLeft, "FwpmFilterDeleteById0", kEach,
     kHarmless},
    {kDisableLeakProtection, kReplacing, "FwpmSubLayerDeleteByKey0", kOnce, Disabled(kNoFilterLeft)},
    {kDisableLeakProtection, kReplacing, "FwpmSubLayerDeleteByKey0", kOnce, Disabled(kEmptyAndForgotten),
     kProviderNotFound.value},
    {kDisableLeakProtection, kInterfaceRulesWhole, "FwpmSubLayerDeleteByKey0", kSecond,
     Disabled(kGone, kNoFilterLeft)},
    {kDisableLeakProtection, kInterfaceRulesWhole, "FwpmSubLayerDeleteByKey0", kSecond,
     Disabled(kGone, kEmptyAndForgotten), kProviderNotFound.value},
    {kDisableLeakProtection, kOnlyDnsRulesLeft, "FwpmSubLayerDeleteByKey0", kOnce,
     Disabled(kGone, kNoFilterLeft)},
    {kDisableLeakProtection, kOnlyDnsRulesLeft, "FwpmSubLayerDeleteByKey0", kOnce,
     Disabled(kGone, kEmptyAndForgotten), kProviderNotFound.value},
    {kDisableLeakProtection, kLeakProtectionOn, "FwpmSubLayerDeleteByKey0", kThird,
     Disabled(kGone, kGone, kNoFilterLeft)},
    {kDisableLeakProtection, kLeakProtectionOn, "FwpmSubLayerDeleteByKey0", kThird,
     Disabled(kGone, kGone, kEmptyAndForgotten), kProviderNotFound.value},
};

}  // namespace

std::span<const Rule> LeakProtectionRules() { return kRules; }
