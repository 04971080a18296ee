#include <cstdint>
#include <exception>
#include <string>
#include <vector>

#include "api/Commands.h"
#include "api/InterfaceSearch.h"
#include "api/Logging.h"
#include "api/ModuleState.h"
#include "corvane/native_firewall.h"
#include "helpers/NetworkInfoException.h"
#include "sublayers/KillSwitch.h"
#include "sublayers/KillSwitchFilteredByInterface.h"
#include "sublayers/KillSwitchWithWhitelistedApps.h"

namespace {

using WfpFirewall::Firewall;
using WfpFirewall::FirewallException;
using WfpFirewall::Sublayer;
using WfpFirewall::Helpers::NetworkInfoException;
using WfpFirewall::Sublayers::KillSwitch;
using WfpFirewall::Sublayers::KillSwitchFilteredByInterface;
using WfpFirewall::Sublayers::KillSwitchWithWhitelistedApps;

/// The kill switch in the variant that the arguments of DisableInternet ask for.
Sublayer BuildKillSwitch(const wchar_t* const* apps, std::uint32_t appCount,
                         const wchar_t* const* interfaceNames, std::uint32_t interfaceCount,
                         LogCallback log) {
  log("NATIVE: create killswitch layer");
  const RuleSetIdentity& identity = Identities().killSwitch;
  KillSwitch killSwitch(identity.guid, identity.name, identity.description);
  if (appCount > 0) {
    return KillSwitchWithWhitelistedApps(killSwitch, CopyTexts(apps, appCount));
  }

  log("NATIVE: get interface luids");
  if (interfaceNames == nullptr) {
    log("NATIVE: KillSwitch without adapter filter");
    return killSwitch;
  }
  try {
    const std::vector<std::uint64_t> luids =
        GetInterfaceLuids(CopyTexts(interfaceNames, interfaceCount), log);
    if (!luids.empty()) {
      return KillSwitchFilteredByInterface(killSwitch, luids);
    }
    log("NATIVE: No adapters found.");
  } catch (const NetworkInfoException&) {
    log("NATIVE: Cant fetch interfaces.");
  }
  return killSwitch;
}

}  // namespace

std::uint64_t CORVANE_CALL IsInternetEnabled() { return IsRegistered(Identities().killSwitch.guid) ? 0 : 1; }

std::uint64_t CORVANE_CALL EnableInternet() { return RemoveRuleSet(Identities().killSwitch.guid); }

std::uint64_t CORVANE_CALL DisableInternet(const wchar_t* const* apps, std::uint32_t appCount,
                                           const wchar_t* const* interfaceNames, std::uint32_t interfaceCount,
                                           LogCallback log) {
  log("NATIVE: DisableInternet");
  if (interfaceNames != nullptr) {
    const std::wstring names = Join(CopyTexts(interfaceNames, interfaceCount));
    log(ToNarrow(L"NATIVE: DisableInternet: " + names).c_str());
  }
  try {
    Firewall& firewall = *Module().firewall;
    const bool replaces = IsInternetEnabled() == 0;
    if (replaces) {
      log("NATIVE: Remove killswitch layer");
      // After a failure from here on the transaction stays open until the session closes.
      firewall.TransactionBegin();
      firewall.RemoveSublayer(Identities().killSwitch.guid);
    }
    Sublayer killSwitch = BuildKillSwitch(apps, appCount, interfaceNames, interfaceCount, log);
    firewall.AddSublayer(killSwitch);
    firewall.Apply();
    if (replaces) {
      firewall.TransactionCommit();
    }
    log("NATIVE: Apply firewall.");
    return 0;
  } catch (const FirewallException& error) {
    log("NATIVE: Error applying firewall.");
    log(ToSignedDecimal(error.GetErrorCode()).c_str());
    return FailWith(error);
  } catch (const std::exception& error) {
    log("NATIVE: Error geting interfaces.");
    log(error.what());
    Module().lastErrorText = error.what();
    return CORVANE_ERROR_GETTING_INTERFACES;
  }
}
