#pragma once

#include <WfpPlatform.h>

#include <vector>

#include "engine/Sublayer.h"

/// The least that any library needs: only the engine calls of a rule set, from tables made before.
class Floor {
 public:
  /// @param apps the number of application identifiers that the rule set asks the engine for.
  Floor(GUID key, WfpFirewall::Sublayer ruleSet, int apps = 0);

  void Install(HANDLE engine);
  void Remove(HANDLE engine);
  /// The calls that find out whether it is installed.
  void Confirm(HANDLE engine);
  [[nodiscard]] std::size_t FilterCount() const { return records_.size(); }

 private:
  FWPM_SUBLAYER0 sublayer_{};
  std::vector<WfpFirewall::Filter> filters_;
  std::vector<FWPM_FILTER0> records_;
  std::vector<UINT64> ids_;
  int apps_;
};

/// The engine calls for the copy of Windows Firewall's blocks when there are none.
void EnumerateFilters();
