#pragma once

#include <utility>

/// The rest of a text after `make` got it as an rvalue; empty if `make` moved from it instead of copying.
template <class Text, class Make>
Text LeftOf(Text text, const Make& make) {
  make(std::move(text));
  return text;  // NOLINT(bugprone-use-after-move): that is the test.
}
