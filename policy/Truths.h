/**
 * @file
 * Logic of three values, where not even the value may be known.
 */
#pragma once

#include <algorithm>
#include <array>

namespace Policy {

/// The values of conditional expressions; unknown is what comes of an attribute that a token does not have.
/// The lesser of two values is what "and" makes of them, the greater what "or" makes.
enum class Truth : unsigned { False, Unknown, True };

/// The values that an expression can have, as far as is known. The unknown among them is the platform's; what
/// nobody here knows is a set of several values.
class Truths {
 public:
  constexpr Truths() = default;
  // NOLINTNEXTLINE(google-explicit-constructor): a value that is known is one of these.
  constexpr Truths(Truth truth) : bits_(Bit(truth)) {}
  // NOLINTNEXTLINE(google-explicit-constructor): as is a value of two.
  constexpr Truths(bool isTrue) : Truths(isTrue ? Truth::True : Truth::False) {}

  [[nodiscard]] constexpr bool Has(Truth truth) const { return (bits_ & Bit(truth)) != 0; }
  constexpr void Add(Truth truth) { bits_ |= Bit(truth); }

  constexpr bool operator==(const Truths&) const = default;

 private:
  static constexpr unsigned Bit(Truth truth) { return 1U << static_cast<unsigned>(truth); }

  unsigned bits_ = 0;
};

inline constexpr std::array kAllTruths{Truth::False, Truth::Unknown, Truth::True};

constexpr Truths Either(Truths left, Truths right) {
  for (const Truth truth : kAllTruths) {
    if (right.Has(truth)) {
      left.Add(truth);
    }
  }
  return left;
}

/// What is either true or false.
inline constexpr Truths kTrueOrFalse = Either(true, false);
inline constexpr Truths kAnyTruth = Either(kTrueOrFalse, Truth::Unknown);

/// Of each pair of values what a function makes of it.
template <class Function>
constexpr Truths Combine(Truths left, Truths right, Function function) {
  Truths result;
  for (const Truth a : kAllTruths) {
    for (const Truth b : kAllTruths) {
      if (left.Has(a) && right.Has(b)) {
        result.Add(function(a, b));
      }
    }
  }
  return result;
}

constexpr Truths And(Truths left, Truths right) {
  return Combine(left, right, [](Truth a, Truth b) { return std::min(a, b); });
}

constexpr Truths Or(Truths left, Truths right) {
  return Combine(left, right, [](Truth a, Truth b) { return std::max(a, b); });
}

constexpr Truths Not(Truths truths) {
  return Combine(truths, true, [](Truth a, Truth) {
    return static_cast<Truth>(static_cast<unsigned>(Truth::True) - static_cast<unsigned>(a));
  });
}

}  // namespace Policy
