#pragma once

#include <string>
#include <unordered_map>
#include <utility>

#include "Json.h"

/// Texts of a page's data that stand there once; elsewhere the data have their indices.
class SharedTexts {
 public:
  std::size_t IndexOf(const std::string& text) {
    const auto [place, isNew] = indices_.try_emplace(text, indices_.size());
    if (isNew) {
      texts_.push_back(text);
    }
    return place->second;
  }

  /// The texts, by their indices. None is added afterwards.
  Json Take() { return std::move(texts_); }

 private:
  Json texts_ = Json::array();
  std::unordered_map<std::string, std::size_t> indices_;
};
