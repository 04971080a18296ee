#include "OptionValues.h"

#include <winsock2.h>
// ws2tcpip.h needs winsock2.h.
#include <ws2tcpip.h>

#include <charconv>

std::optional<std::uint32_t> ParseIpV4(const std::string& text) {
  in_addr parsed{};
  if (inet_pton(AF_INET, text.c_str(), &parsed) != 1) {
    return std::nullopt;
  }
  return ntohl(parsed.s_addr);
}

std::optional<std::uint64_t> ParseLuid(const std::string& text) {
  std::uint64_t luid = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, luid);
  return error == std::errc() && stop == end && luid != 0 ? std::optional(luid) : std::nullopt;
}

std::string RejectEmpty(const std::string& value) { return value.empty() ? "the value is empty" : ""; }

std::string RejectAllButIpV4(const std::string& value) {
  return ParseIpV4(value) ? "" : value + " is no IPv4 address";
}

std::string RejectAllButLuid(const std::string& value) {
  return ParseLuid(value) ? "" : value + " is no LUID, a decimal number above 0";
}
