/**
 * @file
 * Numbers and native data as text.
 */
#pragma once

#include <WfpPlatform.h>

#include <array>
#include <charconv>
#include <cstddef>
#include <span>
#include <string>

namespace Catalog {

/// "0x0000000a"
std::string FormatHex(UINT32 number);
/// "00ff"; "empty" for no bytes.
std::string FormatBytes(std::span<const UINT8> bytes);
/// "10.0.0.1", from a number in host byte order.
std::string FormatIpV4(UINT32 address);
/// "fe80::1", from 16 bytes in network byte order.
std::string FormatIpV6(const UINT8* address);
/// "S-1-5-32-544"
std::string FormatSid(const SID& sid);
/// A zero-terminated text without control characters, in UTF-8; of any other the bytes.
std::string FormatText(const wchar_t* text);
/// The text of bytes that hold a zero-terminated UTF-16 string without control characters, in UTF-8; of all
/// other bytes the same as FormatBytes. So texts differ wherever bytes do, and an unterminated string,
/// which never matches, shows.
std::string FormatTextOrBytes(std::span<const UINT8> bytes);

/// Decimal; the shortest that reads back as the same number.
template <class Number>
std::string FormatNumber(Number number) {
  std::array<char, 32> buffer;
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number).ptr;
  return {buffer.data(), end};
}

}  // namespace Catalog
