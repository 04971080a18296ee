#pragma once

#include <WfpPlatform.h>

#include <utility>
#include <vector>

#include "filtering/FilterBuilder.h"

/// A filter at the outbound IPv4 connect layer, and its native record, which points into the filter.
struct NativeForm {
  explicit NativeForm(const std::vector<WfpFirewall::Filtering::Condition>& conditions) {
    filter.SetLayer(WfpFirewall::Filtering::LayerType::AleAuthConnectV4);
    for (const auto& condition : conditions) {
      filter.AddCondition(condition);
    }
    record = filter.ToNativeFilter();
  }
  NativeForm(const NativeForm&) = delete;
  NativeForm& operator=(const NativeForm&) = delete;

  [[nodiscard]] const FWPM_FILTER_CONDITION0& Condition(UINT32 index = 0) const {
    return record.filterCondition[index];
  }

  WfpFirewall::Filter filter{WfpFirewall::Action::Permit};
  FWPM_FILTER0 record{};
};
