#include "filtering/ConditionList.h"

#include <atomic>
#include <utility>

namespace WfpFirewall::Filtering {

void ConditionList::Add(Condition&& condition) {
  if (block_ == nullptr) {
    block_ = std::make_shared<Block>();
  } else if (block_.use_count() > 1) {
    block_ = std::make_shared<Block>(*block_);
  } else {
    // The last copy to let go of the block may have read it in another thread.
    std::atomic_thread_fence(std::memory_order_acquire);
  }
  block_->Add(std::move(condition));
}

void ConditionList::Block::Add(Condition&& condition) {
  const bool isRange = condition.GetConditionType() == ConditionType::Range;
  if (firstCount_ < kFirst) {
    first_[firstCount_++].emplace(std::move(condition));
  } else {
    others_.push_back(std::move(condition));
  }
  rangeCount_ += isRange ? 1 : 0;
}

}  // namespace WfpFirewall::Filtering
