#pragma once

#include <WfpPlatform.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Json.h"

// What the engine holds, in words; UTF-8. Keys are GUIDs in text.

struct ListedProvider {
  std::string key;
  std::string name;
  std::string description;
};

/// A value of the engine's, as NativeJson.h has it.
struct ListedValue {
  std::string type;  ///< "UINT16"
  Json value;
};

struct ListedCondition {
  std::string field;
  std::string fieldKey;
  std::string match;
  ListedValue value;
  std::string text;  ///< all of it: "IP_REMOTE_PORT NOT_EQUAL UINT16 53"
};

struct ListedFilter {
  std::uint64_t id;
  std::string key;
  std::string name;
  std::optional<std::string> provider;
  std::string layer;
  std::string layerKey;
  std::string sublayer;
  std::string action;
  std::optional<std::string> callout;
  std::uint32_t flags;  ///< FWPM_FILTER_FLAG_*
  ListedValue weight;   ///< as it was asked for
  ListedValue effectiveWeight;
  std::vector<ListedCondition> conditions;
};

struct ListedSublayer {
  std::string key;
  std::string name;
  std::string description;
  std::optional<std::string> provider;
  std::optional<unsigned> weight;  ///< empty for one that filters name, but the engine does not show
  std::vector<ListedFilter> filters;
};

struct Listing {
  std::optional<ListedProvider> provider;  ///< ours
  std::vector<ListedSublayer> sublayers;
};

ListedProvider List(const FWPM_PROVIDER0& provider);
/// @throws Failure when the record lacks the conditions that it counts.
ListedFilter List(const FWPM_FILTER0& filter);
ListedSublayer List(const FWPM_SUBLAYER0& sublayer);

/// Puts filters into their sublayers: the weightiest sublayer first, as the engine asks them, and filters in
/// the order of adding. Filters of sublayers that are not among these get one without a weight, at the end.
std::vector<ListedSublayer> Arrange(std::vector<ListedSublayer> sublayers, std::vector<ListedFilter> filters);
