#pragma once

#include <utility>

/// What is left of a text once `make` was given it to take over: nothing if it did.
template <typename Text, typename Make>
Text LeftOf(Text text, const Make& make) {
  make(std::move(text));
  return text;  // NOLINT(bugprone-use-after-move): asked for.
}
