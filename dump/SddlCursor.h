/**
 * @file
 * Reading SDDL from front to back.
 */
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "dump/Encoding.h"
#include "dump/Numbers.h"
#include "dump/Sddl.h"

namespace Dump {

/// A place in a text.
class SddlCursor {
 public:
  explicit SddlCursor(std::string_view text) : text_(text) {}

  [[nodiscard]] bool IsAtEnd() const { return position_ == text_.size(); }
  [[nodiscard]] std::size_t Position() const { return position_; }
  [[nodiscard]] std::string_view Rest() const { return text_.substr(position_); }

  /// Goes past a text if it comes next.
  bool TakeIf(std::string_view next) {
    if (!Rest().starts_with(next)) {
      return false;
    }
    position_ += next.size();
    return true;
  }

  void Take(std::string_view next) {
    if (!TakeIf(next)) {
      Fail('"' + std::string(next) + '"');
    }
  }

  /// The characters up to the first for which `belongs` does not hold, at most so many.
  template <class Predicate>
  std::string_view TakeWhile(Predicate belongs, std::size_t most = std::string_view::npos) {
    const std::string_view rest = Rest().substr(0, most);
    const auto end = std::ranges::find_if_not(rest, belongs);
    const std::string_view taken = rest.substr(0, static_cast<std::size_t>(end - rest.begin()));
    position_ += taken.size();
    return taken;
  }

  void SkipBlanks() { TakeWhile(IsBlank); }

  [[noreturn]] void Fail(const std::string& expected) const { FailAt(position_, expected); }

  /// @param expected what the text should have there.
  [[noreturn]] void FailAt(std::size_t position, const std::string& expected) const {
    const std::string_view rest = text_.substr(position);
    throw SddlError("expected " + expected + " at character " + std::to_string(position + 1) + ", found " +
                    (rest.empty() ? "the end" : Quote(rest)));
  }

 private:
  std::string_view text_;
  std::size_t position_ = 0;
};

}  // namespace Dump
