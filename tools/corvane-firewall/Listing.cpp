#include "Listing.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <span>
#include <utility>

#include "Failure.h"
#include "NativeJson.h"
#include "Text.h"
#include "catalog/Describe.h"
#include "catalog/Names.h"

namespace {

/// A text of the engine's, which may be null.
std::string TextOf(const wchar_t* text) { return text == nullptr ? std::string() : ToUtf8(text); }

std::optional<std::string> KeyText(const GUID* key) {
  return key == nullptr ? std::nullopt : std::optional(Catalog::FormatGuid(*key));
}

template <class Value>
ListedValue ListValue(const Value& value) {
  return {Catalog::DataTypeName(value.type), ToJson(value)};
}

ListedCondition ListCondition(const FWPM_FILTER_CONDITION0& condition) {
  return {Catalog::FieldName(condition.fieldKey), Catalog::FormatGuid(condition.fieldKey),
          Catalog::MatchName(condition.matchType), ListValue(condition.conditionValue),
          Catalog::DescribeCondition(condition)};
}

}  // namespace

ListedProvider List(const FWPM_PROVIDER0& provider) {
  return {Catalog::FormatGuid(provider.providerKey), TextOf(provider.displayData.name),
          TextOf(provider.displayData.description)};
}

ListedFilter List(const FWPM_FILTER0& filter) {
  if (filter.numFilterConditions != 0 && filter.filterCondition == nullptr) {
    throw Failure("The engine gave filter " + std::to_string(filter.filterId) + " without its conditions",
                  "");
  }
  const bool hasCallout = (filter.action.type & FWP_ACTION_FLAG_CALLOUT) != 0;
  ListedFilter listed{filter.filterId,
                      Catalog::FormatGuid(filter.filterKey),
                      TextOf(filter.displayData.name),
                      KeyText(filter.providerKey),
                      Catalog::LayerName(filter.layerKey),
                      Catalog::FormatGuid(filter.layerKey),
                      Catalog::FormatGuid(filter.subLayerKey),
                      Catalog::ActionName(filter.action.type),
                      KeyText(hasCallout ? &filter.action.calloutKey : nullptr),
                      filter.flags,
                      ListValue(filter.weight),
                      ListValue(filter.effectiveWeight),
                      {}};
  std::ranges::transform(std::span(filter.filterCondition, filter.numFilterConditions),
                         std::back_inserter(listed.conditions), ListCondition);
  return listed;
}

ListedSublayer List(const FWPM_SUBLAYER0& sublayer) {
  return {Catalog::FormatGuid(sublayer.subLayerKey),
          TextOf(sublayer.displayData.name),
          TextOf(sublayer.displayData.description),
          KeyText(sublayer.providerKey),
          sublayer.weight,
          {}};
}

std::vector<ListedSublayer> Arrange(std::vector<ListedSublayer> sublayers,
                                    std::vector<ListedFilter> filters) {
  std::ranges::stable_sort(sublayers, std::greater{}, &ListedSublayer::weight);
  // The engine promises no order; ids count up as filters are added.
  std::ranges::sort(filters, {}, &ListedFilter::id);
  for (ListedFilter& filter : filters) {
    auto sublayer = std::ranges::find(sublayers, filter.sublayer, &ListedSublayer::key);
    if (sublayer == sublayers.end()) {
      sublayer = sublayers.insert(sublayer, {filter.sublayer, {}, {}, {}, {}, {}});
    }
    sublayer->filters.push_back(std::move(filter));
  }
  return sublayers;
}
