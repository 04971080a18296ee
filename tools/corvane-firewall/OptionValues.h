#pragma once

#include <cstdint>
#include <optional>
#include <string>

/// A dotted-decimal IPv4 address in host byte order; empty for any other text.
std::optional<std::uint32_t> ParseIpV4(const std::string& text);
/// A decimal number of 64 bits other than 0; empty for any other text.
std::optional<std::uint64_t> ParseLuid(const std::string& text);

/// What is wrong with an option's value; empty when nothing is.
std::string RejectEmpty(const std::string& value);
std::string RejectAllButIpV4(const std::string& value);
std::string RejectAllButLuid(const std::string& value);
