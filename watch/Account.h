/**
 * @file
 * Why something was dropped.
 */
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "watch/FilterKeeper.h"
#include "watch/NetEvent.h"

namespace Watch {

/// What a drop goes back to.
struct Account {
  std::optional<KnownFilter> filter;  ///< none if the event names none, or one that was never seen
  std::string layer;                  ///< "ALE_AUTH_CONNECT_V4"; empty if it is not known

  /// Whether the filters that are present now explain the drop.
  enum class Agreement {
    NotAsked,  ///< they decide about connections, and the drop is not one of those
    Agrees,    ///< they block the connection by the same filter
    Depends,   ///< they do so, if what they alone do not tell is so
    Differs,   ///< they have changed, or the engine knows more than the event tells
  };
  Agreement agreement = Agreement::NotAsked;

  std::string sentence;  ///< "blocked by filter 12 \"Name\" of Windows Firewall"
  std::string details;   ///< lines, each with its end: where, and what the present filters say
  /// What becomes of the connection when the filter is not there: "permitted: no filter matches". Empty if
  /// that is not known.
  std::string withoutFilter;
};

/// Gives account of a drop, with the filters that the keeper has.
Account AccountOf(const NetEvent& event, const FilterKeeper& filters);

/// The account in lines, each with its end.
std::string Describe(const Account& account);

}  // namespace Watch
