/**
 * @file
 * Security identifiers: who somebody is.
 */
#pragma once

#include <WfpPlatform.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "policy/ByteReader.h"

namespace Policy {

/// S-1-5-32-544 has the authority 5 and the numbers 32 and 544.
struct Sid {
  UINT64 authority = 0;
  std::vector<UINT32> numbers;

  /// Whether it has the other's authority and begins with its numbers, as S-1-5-32-544 does with S-1-5-32.
  [[nodiscard]] bool BeginsWith(const Sid& other) const;

  bool operator==(const Sid&) const = default;
};

/// The SID of a text such as "S-1-5-18"; nothing for other texts, abbreviations such as "SY" among them.
std::optional<Sid> ParseSid(std::string_view text);
/// "S-1-5-18"
std::string FormatSid(const Sid& sid);

/// Takes a SID in its binary form.
/// @throws MalformedError if the bytes do not begin with one.
Sid TakeSid(ByteReader& bytes);

/// The SID that a service has by its name, whatever account it runs as; nothing for an empty name and for one
/// that is not in ASCII. The case of letters does not count in any name.
std::optional<Sid> ServiceSid(std::string_view name);
/// The SID of the package with a family name such as "Microsoft.WindowsStore_8wekyb3d8bbwe", or of another
/// app container by its name; nothing as above.
std::optional<Sid> PackageSid(std::string_view name);
/// The SID of a capability by its name, "internetClient"; nothing as above. Capabilities of devices have
/// none.
std::optional<Sid> CapabilitySid(std::string_view name);

}  // namespace Policy
