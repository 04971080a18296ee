/**
 * @file
 * What the features promise their user, and whether the filters keep it.
 */
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "policy/Decide.h"

namespace Policy {

/// Which features are on, with their arguments. Applications are the bytes of their ids, interfaces LUIDs,
/// IPv4 addresses numbers in host byte order.
struct Features {
  struct KillSwitch {
    std::vector<std::string> applications;  ///< exempt
    std::vector<UINT64> interfaces;         ///< exempt, if there are no applications
  };
  struct LeakProtection {
    std::vector<UINT64> interfaces;
    UINT32 serverAddress = 0;
    std::vector<UINT32> permittedAddresses;
    std::string nameApplication;               ///< its look-ups may go anywhere
    std::vector<std::string> blockedOutbound;  ///< applications that Windows Firewall blocks
    std::vector<std::string> blockedInbound;
  };
  struct Skein {
    std::vector<UINT64> interfaces;
    std::vector<UINT32> peers;
  };

  std::optional<KillSwitch> killSwitch;
  bool dhcp = false;
  bool localNetworkBlock = false;
  std::optional<LeakProtection> leakProtection;
  std::optional<Skein> skein;
};

/// Whether a promise is kept.
enum class Keeping {
  Holds,
  Conditional,  ///< only under some readings of the assumptions
  Broken,
};

/// "holds", "holds only under a reading", "broken"
std::string_view KeepingText(Keeping keeping);

/// A promise and how it fares.
struct PromiseResult {
  std::string feature;   ///< "kill switch"
  std::string name;      ///< "kill-switch-closes", unique
  std::string sentence;  ///< what the user is told
  Keeping keeping;
  WorldSet worlds;  ///< in which it holds for certain
  /// Unless it holds: the connection nearest to an ordinary one that breaks it, with the trace in a world
  /// where it does, and what was promised for it.
  std::optional<Explanation> counterexample;
  std::optional<Action> promised;
};

/// Checks every promise of the features that are on against every connection that can exist.
/// @param snapshot must outlive the results.
std::vector<PromiseResult> Prove(const Snapshot& snapshot, const Features& features);

/// A result in words: the sentence, its state with the readings, and the counterexample with its trace.
std::string Describe(const PromiseResult& result, const Labels& labels = {});

}  // namespace Policy
