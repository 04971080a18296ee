#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "filtering/Condition.h"

namespace WfpFirewall::Filtering {

/// The conditions of a filter, in the order of adding. Copies share them until conditions are added to one.
class ConditionList {
 public:
  [[nodiscard]] std::size_t Size() const { return block_ == nullptr ? 0 : block_->Size(); }
  /// Of these, the ranges.
  [[nodiscard]] std::size_t RangeCount() const { return block_ == nullptr ? 0 : block_->RangeCount(); }
  [[nodiscard]] const Condition& operator[](std::size_t index) const { return (*block_)[index]; }
  void Add(Condition&& condition);

 private:
  /// Few filters have more conditions than fit into the first ones, which take no memory of their own.
  class Block {
   public:
    [[nodiscard]] std::size_t Size() const { return firstCount_ + others_.size(); }
    [[nodiscard]] std::size_t RangeCount() const { return rangeCount_; }
    const Condition& operator[](std::size_t index) const {
      return index < kFirst ? *first_[index] : others_[index - kFirst];
    }
    void Add(Condition&& condition);

   private:
    static constexpr std::size_t kFirst = 3;

    std::size_t firstCount_ = 0;
    std::size_t rangeCount_ = 0;
    std::array<std::optional<Condition>, kFirst> first_;
    std::vector<Condition> others_;
  };

  std::shared_ptr<Block> block_;
};

}  // namespace WfpFirewall::Filtering
