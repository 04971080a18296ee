#include "dump/SddlParts.h"
#include "dump/SddlTables.h"

namespace Dump {
namespace {

constexpr std::size_t kSidHeadSize = 8;
constexpr std::size_t kMostParts = SID_MAX_SUB_AUTHORITIES;
/// An authority from here on is written in hexadecimal, with all its digits.
constexpr UINT64 kLongAuthority = UINT64{1} << 32;
constexpr std::size_t kAuthorityDigits = 12;

UINT64 TakeAuthority(SddlCursor& cursor) {
  const std::size_t start = cursor.Position();
  const bool isHexadecimal = cursor.TakeIf("0x");
  const auto authority = isHexadecimal
                             ? ParseInteger<UINT64>(cursor.TakeWhile(IsHexDigit, kAuthorityDigits), 16)
                             : ParseInteger<UINT64>(cursor.TakeWhile(IsDigit));
  if (!authority || *authority >> 48 != 0) {
    cursor.FailAt(start, "a SID's authority below 2^48");
  }
  return *authority;
}

UINT32 TakePart(SddlCursor& cursor) {
  const std::size_t start = cursor.Position();
  const auto part = ParseInteger<UINT32>(cursor.TakeWhile(IsDigit));
  if (!part) {
    cursor.FailAt(start, "a SID's number below 2^32");
  }
  return *part;
}

/// The rest of a SID, behind "S-1-".
Bytes TakeWritten(SddlCursor& cursor) {
  const std::size_t start = cursor.Position();
  Bytes sid{SID_REVISION, 0};
  const UINT64 authority = TakeAuthority(cursor);
  for (int shift = 40; shift >= 0; shift -= 8) {
    sid.push_back(static_cast<UINT8>(authority >> shift));
  }
  while (cursor.TakeIf("-")) {
    if (sid[1] == kMostParts) {
      cursor.FailAt(start, "a SID of at most 15 numbers behind its authority");
    }
    AppendNumber(sid, TakePart(cursor));
    ++sid[1];
  }
  return sid;
}

Bytes Written(std::string_view text) {
  SddlCursor cursor(text);
  cursor.Take("S-1-");
  return TakeWritten(cursor);
}

Bytes SidOf(const SidName& name) {
  return name.origin == SidOrigin::Known ? Written("S-1-" + std::string(name.sid))
                                         : Written(std::string(kUnknownDomain) + '-' + std::string(name.sid));
}

}  // namespace

std::size_t SizeOfSid(std::span<const UINT8> bytes) {
  if (bytes.size() < kSidHeadSize || bytes[0] != SID_REVISION || bytes[1] > kMostParts) {
    return 0;
  }
  const std::size_t size = kSidHeadSize + bytes[1] * sizeof(UINT32);
  return size <= bytes.size() ? size : 0;
}

bool NamesUnknownDomain(std::span<const UINT8> descriptor) {
  static const Bytes kDomain = Written(kUnknownDomain);
  const auto numbers = std::span(kDomain).subspan(kSidHeadSize);
  return std::search(descriptor.begin(), descriptor.end(), numbers.begin(), numbers.end()) !=
         descriptor.end();
}

Bytes TakeSid(SddlCursor& cursor, DomainSids domainSids) {
  constexpr const char* kExpected = "a SID like S-1-5-18 or its abbreviation like SY";
  if (cursor.TakeIf("S-1-") || cursor.TakeIf("s-1-")) {
    return TakeWritten(cursor);
  }
  const std::size_t start = cursor.Position();
  const auto known = std::ranges::find(kSidNames, cursor.Rest().substr(0, 2), &SidName::name);
  if (known == kSidNames.end()) {
    cursor.Fail(kExpected);
  }
  cursor.Take(known->name);
  if (known->origin == SidOrigin::Domain && domainSids == DomainSids::Refuse) {
    cursor.FailAt(start, "a SID of a domain in full");
  }
  return SidOf(*known);
}

Bytes ParseSid(std::string_view text) {
  try {
    SddlCursor cursor(text);
    if (!cursor.TakeIf("S-1-")) {
      return {};
    }
    Bytes sid = TakeWritten(cursor);
    return cursor.IsAtEnd() ? sid : Bytes();
  } catch (const SddlError&) {
    return {};
  }
}

std::string FormatSid(std::span<const UINT8> sid) {
  if (sid.empty() || SizeOfSid(sid) != sid.size()) {
    return {};
  }
  UINT64 authority = 0;
  for (const UINT8 byte : sid.subspan(2, 6)) {
    authority = authority << 8 | byte;
  }
  std::string text = "S-1-";
  if (authority < kLongAuthority) {
    text += std::to_string(authority);
  } else {
    text += "0x";
    for (const UINT8 byte : sid.subspan(2, 6)) {
      AppendHex(text, byte);
    }
  }
  ByteReader parts(sid.subspan(kSidHeadSize), "a SID");
  for (UINT8 i = 0; i < sid[1]; ++i) {
    text += '-' + std::to_string(parts.Take<UINT32>());
  }
  return text;
}

std::string SidText(std::span<const UINT8> sid) {
  static const auto kTexts = [] {
    std::array<std::string, kSidNames.size()> texts;
    std::ranges::transform(kSidNames, texts.begin(),
                           [](const SidName& name) { return FormatSid(SidOf(name)); });
    return texts;
  }();
  const std::string text = FormatSid(sid);
  const auto known = std::ranges::find(kTexts, text);
  return known == kTexts.end()
             ? text
             : std::string(kSidNames[static_cast<std::size_t>(known - kTexts.begin())].name);
}

}  // namespace Dump
