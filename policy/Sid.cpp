#include "policy/Sid.h"

#include <algorithm>
#include <charconv>
#include <span>

#include "policy/Ascii.h"
#include "policy/Sha.h"

namespace Policy {
namespace {

/// The number that all of a text makes.
template <class Number>
std::optional<Number> ParseWhole(std::string_view text, int base = 10) {
  Number number{};
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number, base);
  return result.ec == std::errc() && result.ptr == end ? std::optional(number) : std::nullopt;
}

/// What comes before the next hyphen; it and the hyphen are taken off the rest.
std::string_view TakePart(std::string_view& rest) {
  const std::string_view part = rest.substr(0, rest.find('-'));
  rest.remove_prefix(std::min(part.size() + 1, rest.size()));
  return part;
}

std::optional<UINT64> ParseAuthority(std::string_view text) {
  const bool isHexadecimal = text.starts_with("0x");
  const auto authority = ParseWhole<UINT64>(text.substr(isHexadecimal ? 2 : 0), isHexadecimal ? 16 : 10);
  return authority && *authority >> 48 == 0 ? authority : std::nullopt;
}

/// UTF-16 without a terminator, each letter in one case; nothing for an empty text and one that is not ASCII.
std::optional<std::vector<UINT8>> NameBytes(std::string_view name, char (*toCase)(char)) {
  if (name.empty() || !std::ranges::all_of(name, IsAscii)) {
    return std::nullopt;
  }
  std::vector<UINT8> bytes;
  bytes.reserve(name.size() * 2);
  for (const char character : name) {
    bytes.push_back(static_cast<UINT8>(toCase(character)));
    bytes.push_back(0);
  }
  return bytes;
}

/// The first numbers of a digest, behind those that a kind of SIDs begins with.
Sid SidOfDigest(Sid sid, std::span<const UINT8> digest, std::size_t count) {
  ByteReader bytes(digest);
  for (std::size_t i = 0; i < count; ++i) {
    sid.numbers.push_back(bytes.Take<UINT32>());
  }
  return sid;
}

struct NumberedCapability {
  std::string_view name;
  UINT32 number;
};
/// All other capabilities have a SID of their name's digest.
constexpr NumberedCapability kNumberedCapabilities[]{
    {"internetClient", 1},
    {"internetClientServer", 2},
    {"privateNetworkClientServer", 3},
    {"picturesLibrary", 4},
    {"videosLibrary", 5},
    {"musicLibrary", 6},
    {"documentsLibrary", 7},
    {"enterpriseAuthentication", 8},
    {"sharedUserCertificates", 9},
    {"removableStorage", 10},
    {"appointments", 11},
    {"contacts", 12},
    {"internetExplorer", 4096},
};

}  // namespace

bool Sid::BeginsWith(const Sid& other) const {
  return authority == other.authority && numbers.size() >= other.numbers.size() &&
         std::equal(other.numbers.begin(), other.numbers.end(), numbers.begin());
}

std::optional<Sid> ParseSid(std::string_view text) {
  constexpr std::string_view kPrefix = "S-1-";
  if (!text.starts_with(kPrefix) || text.ends_with('-')) {
    return std::nullopt;
  }
  std::string_view rest = text.substr(kPrefix.size());
  const auto authority = ParseAuthority(TakePart(rest));
  if (!authority) {
    return std::nullopt;
  }
  Sid sid{*authority, {}};
  while (!rest.empty()) {
    const auto number = ParseWhole<UINT32>(TakePart(rest));
    if (!number || sid.numbers.size() == SID_MAX_SUB_AUTHORITIES) {
      return std::nullopt;
    }
    sid.numbers.push_back(*number);
  }
  return sid;
}

std::string FormatSid(const Sid& sid) {
  constexpr int kAuthorityDigits = 12;
  std::string text = "S-1-";
  if (sid.authority >> 32 == 0) {
    text += std::to_string(sid.authority);
  } else {
    text += "0x";
    for (int digit = kAuthorityDigits - 1; digit >= 0; --digit) {
      text += "0123456789abcdef"[sid.authority >> digit * 4 & 15];
    }
  }
  for (const UINT32 number : sid.numbers) {
    text += '-' + std::to_string(number);
  }
  return text;
}

Sid TakeSid(ByteReader& bytes) {
  constexpr std::size_t kAuthoritySize = 6;
  const auto revision = bytes.Take<UINT8>();
  const auto count = bytes.Take<UINT8>();
  if (revision != SID_REVISION || count > SID_MAX_SUB_AUTHORITIES) {
    throw MalformedError("not a SID");
  }
  Sid sid;
  for (const UINT8 byte : bytes.TakeBytes(kAuthoritySize)) {
    sid.authority = sid.authority << 8 | byte;
  }
  for (UINT8 i = 0; i < count; ++i) {
    sid.numbers.push_back(bytes.Take<UINT32>());
  }
  return sid;
}

std::optional<Sid> ServiceSid(std::string_view name) {
  const auto bytes = NameBytes(name, ToUpper);
  return bytes ? std::optional(SidOfDigest({5, {80}}, Sha1(*bytes), 5)) : std::nullopt;
}

std::optional<Sid> PackageSid(std::string_view name) {
  const auto bytes = NameBytes(name, ToLower);
  return bytes ? std::optional(SidOfDigest({15, {2}}, Sha256(*bytes), 7)) : std::nullopt;
}

std::optional<Sid> CapabilitySid(std::string_view name) {
  const auto bytes = NameBytes(name, ToUpper);
  if (!bytes) {
    return std::nullopt;
  }
  for (const auto& [known, number] : kNumberedCapabilities) {
    if (std::ranges::equal(known, name, {}, ToUpper, ToUpper)) {
      return Sid{15, {3, number}};
    }
  }
  return SidOfDigest({15, {3, 1024}}, Sha256(*bytes), 8);
}

}  // namespace Policy
