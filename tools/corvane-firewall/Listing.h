#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// What the engine holds of ours, in words; UTF-8.
struct ListedProvider {
  std::string key;
  std::string name;
  std::string description;
};

struct ListedFilter {
  std::uint64_t id;
  std::string name;
  std::string layer;
  std::string action;
  std::vector<std::string> conditions;
  std::string weight;
  bool overridesOtherSublayers;
};

struct ListedSublayer {
  std::string key;
  std::string name;
  std::string description;
  unsigned weight;
  std::vector<ListedFilter> filters;  ///< in the order of adding
};

struct Listing {
  std::optional<ListedProvider> provider;
  std::vector<ListedSublayer> sublayers;  ///< the weightiest first, as the engine asks them
};
