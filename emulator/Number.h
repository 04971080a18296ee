/**
 * @file
 * Unsigned numbers up to the width of an IPv6 address.
 */
#pragma once

#include <WfpPlatform.h>

#include <compare>

namespace EngineEmulator {

/// A number of up to 128 bits.
struct Number {
  UINT64 high = 0;
  UINT64 low = 0;

  // NOLINTNEXTLINE(modernize-use-nullptr): takes the zero of a comparison for a pointer.
  constexpr auto operator<=>(const Number&) const = default;

  constexpr Number operator+(const Number& other) const {
    const UINT64 sum = low + other.low;
    return {high + other.high + (sum < low ? 1 : 0), sum};
  }

  constexpr Number operator-(const Number& other) const {
    return {high - other.high - (low < other.low ? 1 : 0), low - other.low};
  }
};

inline constexpr Number kOne{0, 1};

/// The greatest number of so many bits, 1 to 128.
constexpr Number GreatestOf(unsigned bits) {
  return bits > 64 ? Number{~UINT64{0} >> (128 - bits), ~UINT64{0}} : Number{0, ~UINT64{0} >> (64 - bits)};
}

/// The number of 16 bytes in network order.
constexpr Number NumberOf(const UINT8 (&bytes)[16]) {
  Number number;
  for (const UINT8 byte : bytes) {
    number = {number.high << 8 | number.low >> 56, number.low << 8 | byte};
  }
  return number;
}

/// The bits of a type of unsigned numbers; 0 for any other type.
constexpr unsigned BitsOf(FWP_DATA_TYPE type) {
  switch (type) {
    case FWP_UINT8:
      return 8;
    case FWP_UINT16:
      return 16;
    case FWP_UINT32:
      return 32;
    case FWP_UINT64:
      return 64;
    case FWP_BYTE_ARRAY16_TYPE:
      return 128;
    default:
      return 0;
  }
}

/// The number in a sound value of such a type; zero for any other type.
/// @param value an FWP_VALUE0 or FWP_CONDITION_VALUE0
template <class Value>
Number NumberOf(const Value& value) {
  switch (value.type) {
    case FWP_UINT8:
      return {0, value.uint8};
    case FWP_UINT16:
      return {0, value.uint16};
    case FWP_UINT32:
      return {0, value.uint32};
    case FWP_UINT64:
      return {0, *value.uint64};
    case FWP_BYTE_ARRAY16_TYPE:
      return NumberOf(value.byteArray16->byteArray16);
    default:
      return {};
  }
}

}  // namespace EngineEmulator
