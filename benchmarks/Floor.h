#pragma once

#include <WfpPlatform.h>

#include <vector>

#include "engine/Sublayer.h"

/// What no library can beat: the engine calls of a rule set, straight from tables made beforehand.
class Floor {
 public:
  /// @param apps how many application identifiers the rule set needs from the engine.
  Floor(GUID key, WfpFirewall::Sublayer ruleSet, int apps = 0);

  void Install(HANDLE engine);
  void Remove(HANDLE engine);
  /// What tells that it is installed.
  void Confirm(HANDLE engine);
  [[nodiscard]] std::size_t FilterCount() const { return records_.size(); }

 private:
  FWPM_SUBLAYER0 sublayer_{};
  std::vector<WfpFirewall::Filter> filters_;
  std::vector<FWPM_FILTER0> records_;
  std::vector<UINT64> ids_;
  int apps_;
};

/// What the copy of Windows Firewall's blocks asks of the engine when there are none.
void EnumerateFilters();
