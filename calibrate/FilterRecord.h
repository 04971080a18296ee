/**
 * @file
 * A rule as the engine takes it.
 */
#pragma once

#include <deque>
#include <vector>

#include "calibrate/Rule.h"

namespace Calibrate {

/// The keys of what experiments add.
extern const GUID kProviderKey;
extern const GUID kUpperKey;
extern const GUID kLowerKey;

/// The native record of a rule. It points into this object.
class FilterRecord {
 public:
  /// @param rule, target must outlive the record.
  /// @param sublayer the key of the rule's.
  FilterRecord(const Rule& rule, const Target& target, const GUID& sublayer);
  FilterRecord(const FilterRecord&) = delete;
  FilterRecord& operator=(const FilterRecord&) = delete;

  [[nodiscard]] const FWPM_FILTER0& Get() const { return filter_; }

 private:
  void AddConditions(const Rule& rule, const Target& target);
  void AddUsual(const Rule& rule, const Target& target);
  void Add(const GUID& field, FWP_MATCH_TYPE match, FWP_CONDITION_VALUE0 value);
  FWP_CONDITION_VALUE0 ValueOf(const Extra& extra, const Target& target);
  FWP_CONDITION_VALUE0 Address(Policy::IpVersion ipVersion, unsigned which);
  FWP_CONDITION_VALUE0 Number(FWP_DATA_TYPE type, UINT64 number);
  FWP_CONDITION_VALUE0 All(FWP_DATA_TYPE type);
  FWP_CONDITION_VALUE0 Blob(FWP_DATA_TYPE type, const UINT8* data, std::size_t size);

  // What the record points to.
  std::deque<UINT64> numbers_;
  std::deque<FWP_BYTE_ARRAY16> addresses_;
  std::deque<FWP_BYTE_BLOB> blobs_;
  std::deque<FWP_RANGE0> ranges_;
  std::vector<FWPM_FILTER_CONDITION0> conditions_;
  GUID provider_;
  UINT64 weight_;
  FWPM_FILTER0 filter_{};
};

}  // namespace Calibrate
