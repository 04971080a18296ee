/**
 * @file
 * Numbers up to the width of an IPv6 address.
 */
#pragma once

#include <WfpPlatform.h>

#include <array>
#include <compare>
#include <cstddef>

namespace Policy {

/// An unsigned number of 128 bits: an address, a port, a LUID, a word of flags. An IPv4 address is the
/// number of its 32 bits (10.0.0.1 is 0x0a000001), an IPv6 address that of its bytes as on the wire.
struct Number {
  UINT64 high = 0;
  UINT64 low = 0;

  constexpr Number() = default;
  // NOLINTNEXTLINE(google-explicit-constructor): a plain number is one of these.
  constexpr Number(UINT64 number) : low(number) {}
  constexpr Number(UINT64 highHalf, UINT64 lowHalf) : high(highHalf), low(lowHalf) {}

  // NOLINTNEXTLINE(modernize-use-nullptr): takes the zero of a comparison for a pointer.
  constexpr auto operator<=>(const Number&) const = default;
};

/// The greatest number of so many bits, 0 to 128.
constexpr Number GreatestOfBits(unsigned bits) {
  if (bits == 0) {
    return {};
  }
  if (bits > 64) {
    return {~UINT64{0} >> (128 - bits), ~UINT64{0}};
  }
  return {~UINT64{0} >> (64 - bits)};
}

/// The next number; of the greatest, zero.
constexpr Number Next(Number number) {
  const UINT64 low = number.low + 1;
  return {number.high + (low == 0 ? 1 : 0), low};
}

/// The number before; of zero, the greatest.
constexpr Number Previous(Number number) { return {number.high - (number.low == 0 ? 1 : 0), number.low - 1}; }

/// The number of 16 bytes in network order.
constexpr Number FromBytes(const UINT8* bytes) {
  Number number;
  for (std::size_t i = 0; i < 8; ++i) {
    number.high = number.high << 8 | bytes[i];
    number.low = number.low << 8 | bytes[i + 8];
  }
  return number;
}

/// A number's bytes in network order.
constexpr std::array<UINT8, 16> ToBytes(Number number) {
  std::array<UINT8, 16> bytes{};
  for (std::size_t i = 8; i-- > 0; number.high >>= 8, number.low >>= 8) {
    bytes[i] = static_cast<UINT8>(number.high);
    bytes[i + 8] = static_cast<UINT8>(number.low);
  }
  return bytes;
}

/// Numbers from the first to the last, both included.
struct Interval {
  Number first;
  Number last;

  constexpr bool operator==(const Interval&) const = default;
};

}  // namespace Policy
