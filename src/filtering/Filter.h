#pragma once

#include <WfpPlatform.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "Export.h"
#include "filtering/Condition.h"
#include "filtering/ConditionList.h"
#include "filtering/Layer.h"

namespace WfpFirewall {

enum class Action : std::int32_t { Block = 0, Permit = 1 };

/// One filter of the engine: an action, a layer, a weight and conditions that must all hold
/// (conditions on the same field are alternatives). Copies share their conditions' values.
class WFPFIREWALL_API Filter {
 public:
  explicit Filter(Action action);

  [[nodiscard]] Action GetAction() const;
  [[nodiscard]] Filtering::Layer GetLayer() const;
  /// A copy, in the order of adding.
  [[nodiscard]] std::vector<Filtering::Condition> GetConditions() const;

  /// @throws FirewallException "Layer type must be set befo assigning it to filter!" for None.
  void SetLayer(Filtering::Layer layer);
  /// @param weight 1 to 15; 0 lets the engine choose. Its low byte reaches the engine, unchecked.
  void SetWeight(std::int16_t weight);
  /// Makes the decision final: sublayers of lower weight cannot change it. There is no way back.
  void OverrideOtherSublayers();
  void AddCondition(Filtering::Condition condition);

  /// The engine's record, complete but for names, provider and sublayer: the caller fills these in. It
  /// points into this filter and is valid until the next call or the filter's end.
  /// @throws FirewallException for a layer, match type or value that has no native form.
  FWPM_FILTER0 ToNativeFilter();

  /// Reads a filter of the engine; key, id, names, provider and sublayer are not kept. An application
  /// identifier keeps pointing at the engine's bytes.
  /// @throws FirewallException for a layer or condition that has no counterpart here.
  static Filter BuildFromNative(FWPM_FILTER0* native);

 private:
  friend class Sublayer;

  /// How many records the native form takes beside the filter's own.
  struct RecordCount {
    std::size_t conditions = 0;
    std::size_t ranges = 0;

    RecordCount& operator+=(const RecordCount& other) {
      conditions += other.conditions;
      ranges += other.ranges;
      return *this;
    }
  };
  [[nodiscard]] RecordCount CountRecords() const;
  /// @param conditions, ranges room for the records, of any content.
  /// @throws FirewallException as ToNativeFilter.
  void WriteConditions(FWPM_FILTER_CONDITION0* conditions, FWP_RANGE0* ranges) const;
  /// Writes what a record tells of this filter alone; the rest stays.
  /// @param conditions their records.
  /// @throws FirewallException for a layer that has no native form.
  void WriteRecord(FWPM_FILTER0& record, FWPM_FILTER_CONDITION0* conditions) const;

  bool overrideOtherSublayers_ = false;
  Filtering::LayerType layer_ = Filtering::LayerType::None;
  std::int16_t weight_ = 0;
  Action action_;
  Filtering::ConditionList conditions_;
  std::shared_ptr<FWPM_FILTER_CONDITION0[]> nativeConditions_;
  std::shared_ptr<FWP_RANGE0[]> nativeRanges_;
};

}  // namespace WfpFirewall
