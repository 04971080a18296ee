// Texts and bytes of any content as security descriptors: refused, or the same after a round; and what they
// grant.
#include <optional>
#include <string>
#include <vector>

#include "dump/Sddl.h"
#include "fuzz/Input.h"
#include "policy/AccessCheck.h"

namespace {

using Fuzz::Require;

std::optional<std::vector<UINT8>> Parse(std::string_view sddl, Dump::DomainSids domainSids) {
  try {
    return Dump::ParseSddl(sddl, domainSids);
  } catch (const Dump::SddlError&) {
    return std::nullopt;
  }
}

/// What bytes of any content grant to several programs.
void CheckAccess(std::span<const UINT8> descriptor) {
  const Policy::Sid sid{15, {2, 1, 2, 3, 4, 5, 6, 7}};
  for (const Policy::Token& token :
       {Policy::UserProgram(), Policy::SystemProgram(), Policy::ServiceProgram({5, {80, 1, 2, 3, 4, 5}}),
        Policy::AppContainerProgram({sid, {{15, {3, 1}}}})}) {
    const Policy::Access access = Policy::CheckAccess(descriptor, token);
    const std::vector<UINT8> copy(descriptor.begin(), descriptor.end());
    Require(Policy::CheckAccess(copy, token) == access, "the same bytes grant the same");
  }
}

void CheckText(std::string_view sddl) {
  const auto marked = Parse(sddl, Dump::DomainSids::Mark);
  const auto strict = Parse(sddl, Dump::DomainSids::Refuse);
  Require(!strict || (marked && *strict == *marked), "a text that names no domain is read as any other");
  if (!marked) {
    return;
  }
  CheckAccess(*marked);
  const std::string text = Dump::FormatSddl(*marked);
  Require(Dump::ParseSddl(text, Dump::DomainSids::Mark) == *marked,
          "a text that was written gives the same bytes");
}

void CheckBytes(std::span<const UINT8> descriptor) {
  CheckAccess(descriptor);
  std::string text;
  try {
    text = Dump::FormatSddl(descriptor);
  } catch (const Dump::SddlError&) {
    return;
  }
  const auto parsed = Parse(text, Dump::DomainSids::Mark);
  Require(!parsed || Dump::FormatSddl(*parsed) == text, "bytes that have a text get it again");
  Require(parsed || text.size() > 0xFFFF, "a text of ordinary length is read");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Fuzz::Input input(data, size);
  const bool isText = input.TakeFlag();
  const auto rest = input.TakeBytes(size);
  if (isText) {
    CheckText({reinterpret_cast<const char*>(rest.data()), rest.size()});
  } else {
    CheckBytes(rest);
  }
  return 0;
}
