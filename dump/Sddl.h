/**
 * @file
 * Security descriptors: their text form, SDDL, to and from the self-relative binary form.
 */
#pragma once

#include <WfpPlatform.h>

#include <cstddef>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace Dump {

/// A text that is no SDDL, or bytes that are no security descriptor.
class SddlError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What stands for the domain in SIDs of a domain that nobody named: no real one has these numbers.
inline constexpr std::string_view kUnknownDomain = "S-1-5-21-4294967295-4294967295-4294967295";

/// What to do with abbreviations such as DA, Domain Admins, that stand for a SID only where the domain is
/// known.
enum class DomainSids {
  Refuse,
  Mark,  ///< gives them a SID of kUnknownDomain, which an access check cannot judge
};

/// The bytes of a self-relative security descriptor, laid out as the platform does it: SACL, DACL, owner,
/// group.
/// @throws SddlError with what was expected, and at which character.
std::vector<UINT8> ParseSddl(std::string_view sddl, DomainSids domainSids = DomainSids::Refuse);

/// The text of a self-relative security descriptor, in UTF-8. Parsed again it gives the same rules. What SDDL
/// cannot say is lost: defaulted parts, the layout, the widths of numbers in conditions.
/// @throws SddlError if the bytes are malformed or hold an entry that SDDL has no text for.
std::string FormatSddl(std::span<const UINT8> descriptor);

/// Whether a descriptor has a SID of kUnknownDomain.
bool NamesUnknownDomain(std::span<const UINT8> descriptor);

/// The bytes of the SID "S-1-5-18". Empty if the text is none.
std::vector<UINT8> ParseSid(std::string_view text);

/// "S-1-5-18", for the bytes of a whole SID. Empty if they are none.
std::string FormatSid(std::span<const UINT8> sid);

/// The size of the SID that bytes begin with; 0 if they begin with none.
std::size_t SizeOfSid(std::span<const UINT8> bytes);

}  // namespace Dump
