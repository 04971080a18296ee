/**
 * @file
 * The providers, sublayers and filters of a filtering engine, decoded.
 */
#pragma once

#include <WfpPlatform.h>

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "catalog/Fields.h"
#include "catalog/Layers.h"
#include "policy/Assumptions.h"
#include "policy/EngineCalls.h"
#include "policy/Test.h"
#include "policy/Value.h"

namespace Policy {

/// A condition of a filter.
struct Condition {
  GUID fieldKey;
  const Catalog::Field* field;  ///< null if the catalogue has none of that key
  FWP_MATCH_TYPE match;
  Value value;
  Test test;
  std::string text;  ///< "IP_REMOTE_PORT NOT_EQUAL UINT16 53"
};

struct Provider {
  GUID key;
  std::string name;
  std::string description;
};

struct Sublayer {
  GUID key;
  std::string name;
  UINT16 weight;
  bool listed = true;  ///< false: filters name it, but the engine does not show it; its weight is a guess
  std::string description{};
  std::optional<GUID> providerKey{};
  std::size_t place = 0;  ///< among all, in the order in which the engine gave them
};

struct Filter {
  UINT64 id;
  GUID key;
  std::string name;
  std::optional<GUID> providerKey;
  GUID layerKey;
  GUID sublayerKey;
  FWP_ACTION_TYPE action;
  std::optional<GUID> calloutKey;  ///< of an action that is one
  UINT32 flags;                    ///< FWPM_FILTER_FLAG_*
  Value weight;                    ///< as it was asked for; EMPTY if it was left to the engine
  UINT64 effectiveWeight;          ///< as the engine reports it
  std::vector<Condition> conditions;

  /// Whether static filters of lower sublayers cannot change what this one decides.
  [[nodiscard]] bool IsHard() const;
};

/// "filter 12 \"Name\"": how texts refer to a filter.
std::string Describe(const Filter& filter);

/// What an engine holds: sublayers in the order of their turn, the heaviest first, and filters by ascending
/// id. Every filter's sublayer is among them.
struct Snapshot {
  std::vector<Sublayer> sublayers;
  std::vector<Filter> filters;
  std::vector<Provider> providers;  ///< in the engine's order
  SettledReadings settled{};        ///< what is known of the engine itself
};

/// Sorts what was found, and adds sublayers that filters name, but that were not found, as not listed.
Snapshot MakeSnapshot(std::vector<Sublayer> sublayers, std::vector<Filter> filters);

/// A call to the engine that failed.
class SnapshotError : public std::runtime_error {
 public:
  /// @param function such as "FwpmEngineOpen0".
  SnapshotError(DWORD code, const std::string& function);
  [[nodiscard]] DWORD Code() const { return code_; }

 private:
  DWORD code_;
};

/// Reads what the caller may see of an engine, in one read-only transaction. Changes nothing.
/// @throws SnapshotError with the engine's code: ERROR_ACCESS_DENIED when rights are missing.
Snapshot ReadEngine(const EngineCalls& engine);

/// A condition of a filter at a layer. What it cannot make sense of, it gives as unreadable: counts and
/// sizes may be any, pointers must be null or valid.
/// @param layer null for one that the catalogue does not have.
Condition Decode(const FWPM_FILTER_CONDITION0& condition, const Catalog::Layer* layer);
/// A filter; its texts and conditions as above.
Filter Decode(const FWPM_FILTER0& filter);
Sublayer Decode(const FWPM_SUBLAYER0& sublayer);
Provider Decode(const FWPM_PROVIDER0& provider);

}  // namespace Policy
