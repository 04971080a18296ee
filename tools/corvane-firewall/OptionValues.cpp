#include "OptionValues.h"

#include <algorithm>
#include <charconv>

#include "dump/Numbers.h"

namespace {

constexpr std::uint32_t kYear = 365 * 24 * 60 * 60;

/// Whether a text ends so, in whatever letter case, and is longer.
bool HasEnding(std::string_view text, std::string_view end) {
  return text.size() > end.size() &&
         std::ranges::equal(text.substr(text.size() - end.size()), end, {}, Dump::ToLower);
}

/// A decimal number; empty for any other text.
template <class Number>
std::optional<Number> ParseNumber(std::string_view text) {
  Number number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

}  // namespace

std::optional<std::uint32_t> ParseIpV4(const std::string& text) {
  const auto address = Policy::ParseAddress(text);
  if (!address || address->ipVersion != Policy::IpVersion::V4) {
    return std::nullopt;
  }
  return static_cast<std::uint32_t>(address->number.low);
}

std::optional<std::uint64_t> ParseLuid(const std::string& text) {
  const auto luid = ParseNumber<std::uint64_t>(text);
  return luid == 0 ? std::nullopt : luid;
}

std::optional<Endpoint> ParseEndpoint(const std::string& text) {
  if (const auto address = Policy::ParseAddress(text)) {
    return Endpoint{*address, std::nullopt};
  }
  const std::size_t colon = text.rfind(':');
  if (colon == std::string::npos || colon == 0) {
    return std::nullopt;
  }
  const bool hasBrackets = text.front() == '[' && text[colon - 1] == ']';
  const auto address = Policy::ParseAddress(hasBrackets ? text.substr(1, colon - 2) : text.substr(0, colon));
  const auto port = ParseNumber<std::uint16_t>(std::string_view(text).substr(colon + 1));
  if (!address || !port || hasBrackets != (address->ipVersion == Policy::IpVersion::V6)) {
    return std::nullopt;
  }
  return Endpoint{*address, port};
}

std::optional<std::uint8_t> ParseByte(const std::string& text) { return ParseNumber<std::uint8_t>(text); }

std::optional<std::uint8_t> ParseProtocol(const std::string& text, Policy::IpVersion ipVersion) {
  if (text == "tcp") {
    return std::uint8_t{6};
  }
  if (text == "udp") {
    return std::uint8_t{17};
  }
  if (text == "icmp") {
    return ipVersion == Policy::IpVersion::V4 ? std::uint8_t{1} : std::uint8_t{58};
  }
  return ParseByte(text);
}

std::optional<std::chrono::seconds> ParseSeconds(const std::string& text) {
  const auto seconds = ParseNumber<std::uint32_t>(text);
  if (!seconds || *seconds == 0 || *seconds > kYear) {
    return std::nullopt;
  }
  return std::chrono::seconds(*seconds);
}

bool IsDumpName(std::string_view text) { return HasEnding(text, ".xml"); }

std::string RejectEmpty(const std::string& value) { return value.empty() ? "the value is empty" : ""; }

std::string RejectAllButIpV4(const std::string& value) {
  return ParseIpV4(value) ? "" : value + " is no IPv4 address";
}

std::string RejectAllButLuid(const std::string& value) {
  return ParseLuid(value) ? "" : value + " is no LUID, a decimal number above 0";
}

std::string RejectAllButEndpoint(const std::string& value) {
  return ParseEndpoint(value)
             ? ""
             : value +
                   " is neither an address nor one with a port up to 65535, such as 10.0.0.1:53 or "
                   "[fe80::1]:53";
}

std::string RejectAllButByte(const std::string& value) {
  return ParseByte(value) ? "" : value + " is no number from 0 to 255";
}

std::string RejectAllButProtocol(const std::string& value) {
  return ParseProtocol(value, Policy::IpVersion::V4) ? "" : value + " is none of tcp, udp, icmp and 0 to 255";
}

std::string RejectAllButSeconds(const std::string& value) {
  return ParseSeconds(value) ? "" : value + " is no number of seconds from 1 to 31536000";
}

std::string RejectAllButDump(const std::string& value) {
  return IsDumpName(value) ? "" : value + " does not end in .xml, as the name of a dump does";
}

std::string RejectAllButJson(const std::string& value) {
  return HasEnding(value, ".json") ? "" : value + " does not end in .json, as the name of a calibration does";
}
