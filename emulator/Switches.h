/**
 * @file
 * The switches for what the platform's documentation leaves open, and for what differs between its versions.
 */
#pragma once

#include <WfpPlatform.h>

#include <string_view>

#include "catalog/WindowsVersion.h"

namespace EngineEmulator {

/// A switch that says what is refused, ends or is shuffled is off if its value is 0.
struct Switches {
  /// NOT_EQUAL and comparisons with an address mask: FWP_E_MATCH_TYPE_MISMATCH.
  UINT32 refuseComparedNetworks = 1;
  /// NOT_EQUAL of data without an order, SIDs excepted: FWP_E_MATCH_TYPE_MISMATCH.
  UINT32 refuseNotEqualOfOpaqueData = 1;
  /// IPv4 masks like 255.0.255.0: FWP_E_INVALID_NET_MASK.
  UINT32 refuseNetMasksWithHoles = 1;
  /// Flags without a meaning: FWP_E_INVALID_FLAGS.
  UINT32 refuseUnknownFlags = 1;
  /// A filter's reserved pointer that is not null: FWP_E_RESERVED.
  UINT32 refuseReservedPointer = 1;
  /// PERMIT and BLOCK in the sublayer INSPECTION: FWP_E_ACTION_INCOMPATIBLE_WITH_SUBLAYER.
  UINT32 refuseVerdictsInInspection = 1;
  /// Filter templates without a layer: FWP_E_LAYER_NOT_FOUND; else they select from any layer.
  UINT32 refuseZeroLayerInTemplate = 1;
  /// The flag PERSISTENT in a dynamic session: FWP_E_LIFETIME_MISMATCH; else the object is dynamic.
  UINT32 refusePersistentInDynamicSession = 1;
  /// A persistent filter and its persistent sublayer, only one of which has a provider:
  /// FWP_E_LIFETIME_MISMATCH.
  UINT32 refuseMissingProviderAsOther = 1;
  /// A static session deletes a dynamic object: FWP_E_WRONG_SESSION.
  UINT32 refuseDeletingOthersDynamic = 1;
  /// PERMIT and BLOCK at ALE_FLOW_ESTABLISHED: FWP_E_ACTION_INCOMPATIBLE_WITH_LAYER.
  UINT32 refuseVerdictsAtFlowEstablished = 0;
  /// EQUAL with a range, which then holds of the values in it: FWP_E_MATCH_TYPE_MISMATCH.
  UINT32 refuseRangesInEqual = 0;
  /// A condition that is there twice: FWP_E_DUPLICATE_CONDITION.
  UINT32 refuseExactDuplicates = 0;
  /// The display name "": FWP_E_NULL_DISPLAY_NAME.
  UINT32 refuseEmptyNames = 0;
  /// A condition's blob of no bytes: FWP_E_ZERO_LENGTH_ARRAY.
  UINT32 refuseEmptyBlobs = 0;
  /// The code for a handle that no open session has.
  UINT32 invalidHandleCode = 6;
  /// A planned failure of FwpmTransactionCommit0 undoes the transaction.
  UINT32 failedCommitEndsTransaction = 1;
  /// Enumerations that ask for no order come shuffled.
  UINT32 shuffleEnumerations = 0;
  /// How long a session waits for the write lock if it does not say itself.
  UINT32 lockWaitMilliseconds = 15'000;
  /// How many calls the journal keeps; 0: none.
  UINT32 journalEntries = 2'000;
  /// How many net events may wait for a subscriber; it misses those that come then.
  UINT32 waitingEvents = 1'000;
  /// The build of Windows that the engine is of. To be set before anything is added.
  UINT32 windowsBuild = 26100;
  /// Added objects keep what else the engine assigns: the ids of filters and callouts, the weights of filters
  /// and sublayers, and all flags. For filling it with what another engine held.
  UINT32 keepAsGiven = 0;
  /// Conditions weigh by a guess everywhere, not by what live engines show.
  UINT32 guessWeights = 0;
  /// Matches whose weight nobody has seen count as one exact value; else by the values that they leave.
  UINT32 weighUnobservedAsExact = 0;

  [[nodiscard]] bool RefusesUnknownFlags() const { return refuseUnknownFlags != 0 && keepAsGiven == 0; }
  [[nodiscard]] Catalog::WindowsVersion Version() const { return Catalog::VersionOfBuild(windowsBuild); }
};

/// Refuses nothing but what the documentation says is refused.
Switches LenientSwitches();

/// The switch of a name, such as "refuseEmptyNames"; null if there is none.
UINT32 Switches::*FindSwitch(std::string_view name);

}  // namespace EngineEmulator
