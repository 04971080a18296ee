#include "filtering/FilterBuilder.h"

#include <utility>

namespace WfpFirewall {

FilterBuilder FilterBuilder::CreateFilter(Action action) {
  filter_ = std::make_shared<Filter>(action);
  return *this;
}

FilterBuilder FilterBuilder::InLayer(Filtering::LayerType layer) const {
  filter_->SetLayer(layer);
  return *this;
}

FilterBuilder FilterBuilder::WithCondition(Filtering::Condition condition) const {
  filter_->AddCondition(std::move(condition));
  return *this;
}

FilterBuilder FilterBuilder::SetWeight(std::int16_t weight) const {
  filter_->SetWeight(weight);
  return *this;
}

FilterBuilder FilterBuilder::OverrideOtherSublayers() const {
  filter_->OverrideOtherSublayers();
  return *this;
}

Filter FilterBuilder::Get() { return *filter_; }

}  // namespace WfpFirewall
