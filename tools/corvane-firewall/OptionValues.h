#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "policy/Connection.h"

/// A dotted-decimal IPv4 address in host byte order; empty for any other text.
std::optional<std::uint32_t> ParseIpV4(const std::string& text);
/// A decimal number of 64 bits other than 0; empty for any other text.
std::optional<std::uint64_t> ParseLuid(const std::string& text);

/// One end of a connection.
struct Endpoint {
  Policy::Address address;
  std::optional<std::uint16_t> port;
};
/// "10.0.0.1", "10.0.0.1:53", "fe80::1", "[fe80::1]:53"; empty for any other text.
std::optional<Endpoint> ParseEndpoint(const std::string& text);
/// A decimal number up to 255; empty for any other text.
std::optional<std::uint8_t> ParseByte(const std::string& text);
/// "tcp", "udp", "icmp" or a number; empty for any other text.
std::optional<std::uint8_t> ParseProtocol(const std::string& text, Policy::IpVersion ipVersion);
/// A whole number of seconds, from 1 to a year; empty for any other text.
std::optional<std::chrono::seconds> ParseSeconds(const std::string& text);
/// Whether a text is the name of a dump, a file that ends in ".xml".
bool IsDumpName(std::string_view text);

/// What is wrong with an option's value; empty when nothing is.
std::string RejectEmpty(const std::string& value);
std::string RejectAllButIpV4(const std::string& value);
std::string RejectAllButLuid(const std::string& value);
std::string RejectAllButEndpoint(const std::string& value);
std::string RejectAllButByte(const std::string& value);
std::string RejectAllButProtocol(const std::string& value);
std::string RejectAllButSeconds(const std::string& value);
std::string RejectAllButDump(const std::string& value);
std::string RejectAllButJson(const std::string& value);
