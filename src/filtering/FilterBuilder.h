#pragma once

#include <cstdint>
#include <memory>

#include "Export.h"
#include "filtering/Filter.h"

namespace WfpFirewall {

/// The fluent way to make a filter: CreateFilter, InLayer, then conditions, weight and override, then
/// Get. Copies of a builder refer to the same filter, so calls chain.
class WFPFIREWALL_API FilterBuilder {
 public:
  /// Begins a new filter; copies of this builder keep the earlier one. Must come first.
  FilterBuilder CreateFilter(Action action);
  // NOLINTBEGIN(modernize-use-nodiscard): each changes the filter; the result only serves chaining.
  /// @throws FirewallException "Layer type must be set befo assigning it to filter!" for None.
  FilterBuilder InLayer(Filtering::LayerType layer) const;
  FilterBuilder WithCondition(Filtering::Condition condition) const;
  /// @param weight see Filter::SetWeight.
  FilterBuilder SetWeight(std::int16_t weight) const;
  FilterBuilder OverrideOtherSublayers() const;
  // NOLINTEND(modernize-use-nodiscard)
  /// A copy of the filter as it stands.
  [[nodiscard]] Filter Get();

 private:
  std::shared_ptr<Filter> filter_;
};

}  // namespace WfpFirewall
