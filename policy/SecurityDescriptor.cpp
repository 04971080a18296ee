#include "policy/SecurityDescriptor.h"

namespace Policy {
namespace {

constexpr std::size_t kDescriptorHeadSize = 20;

constexpr UINT8 kOldestListRevision = 2;
constexpr UINT8 kNewestListRevision = 4;
constexpr std::size_t kListHeadSize = 8;

constexpr UINT8 kAllow = 0;
constexpr UINT8 kDeny = 1;
constexpr UINT8 kConditionalAllow = 9;
constexpr UINT8 kConditionalDeny = 10;
constexpr UINT8 kInheritOnly = 0x8;
constexpr std::size_t kEntryHeadSize = 4;

AccessEntry TakeEntry(ByteReader& list) {
  const auto type = list.Take<UINT8>();
  const auto flags = list.Take<UINT8>();
  const std::size_t size = list.Take<UINT16>();
  if (size < kEntryHeadSize || size % 4 != 0) {
    throw MalformedError("the size of an access control entry");
  }
  ByteReader content(list.TakeBytes(size - kEntryHeadSize));
  AccessEntry entry;
  entry.isInheritOnly = (flags & kInheritOnly) != 0;
  const bool isAllow = type == kAllow || type == kConditionalAllow;
  if (!isAllow && type != kDeny && type != kConditionalDeny) {
    return entry;
  }
  entry.kind = isAllow ? AccessEntry::Kind::Allow : AccessEntry::Kind::Deny;
  entry.isConditional = type == kConditionalAllow || type == kConditionalDeny;
  entry.rights = content.Take<UINT32>();
  entry.sid = TakeSid(content);
  entry.condition = content.Rest();
  return entry;
}

std::vector<AccessEntry> ReadEntries(ByteReader bytes) {
  const auto revision = bytes.Take<UINT8>();
  bytes.Take<UINT8>();
  const std::size_t size = bytes.Take<UINT16>();
  const auto count = bytes.Take<UINT16>();
  bytes.Take<UINT16>();
  if (revision < kOldestListRevision || revision > kNewestListRevision || size < kListHeadSize) {
    throw MalformedError("the head of an access control list");
  }
  ByteReader list(bytes.TakeBytes(size - kListHeadSize));
  std::vector<AccessEntry> entries;
  for (UINT16 i = 0; i < count; ++i) {
    entries.push_back(TakeEntry(list));
  }
  return entries;
}

/// The bytes from an offset on; nothing for an offset of 0, which stands for no such part.
std::optional<ByteReader> PartAt(std::span<const UINT8> bytes, UINT32 offset) {
  if (offset == 0) {
    return std::nullopt;
  }
  if (offset < kDescriptorHeadSize || offset > bytes.size()) {
    throw MalformedError("the offset of a part");
  }
  return ByteReader(bytes.subspan(offset));
}

std::optional<Sid> SidAt(std::span<const UINT8> bytes, UINT32 offset) {
  auto part = PartAt(bytes, offset);
  return part ? std::optional(TakeSid(*part)) : std::nullopt;
}

std::optional<std::vector<AccessEntry>> EntriesAt(std::span<const UINT8> bytes, UINT32 offset) {
  const auto part = PartAt(bytes, offset);
  return part ? std::optional(ReadEntries(*part)) : std::nullopt;
}

}  // namespace

SecurityDescriptor ReadSecurityDescriptor(std::span<const UINT8> bytes) {
  ByteReader head(bytes);
  const auto revision = head.Take<UINT8>();
  head.Take<UINT8>();
  const auto control = head.Take<UINT16>();
  const auto owner = head.Take<UINT32>();
  const auto group = head.Take<UINT32>();
  const auto sacl = head.Take<UINT32>();
  const auto dacl = head.Take<UINT32>();
  if (revision != SECURITY_DESCRIPTOR_REVISION || (control & SE_SELF_RELATIVE) == 0) {
    throw MalformedError("the head of a security descriptor");
  }
  // A check reads neither the group nor the SACL, but nobody knows what the engine makes of malformed ones.
  SidAt(bytes, group);
  EntriesAt(bytes, (control & SE_SACL_PRESENT) != 0 ? sacl : 0);
  return {SidAt(bytes, owner), EntriesAt(bytes, (control & SE_DACL_PRESENT) != 0 ? dacl : 0)};
}

}  // namespace Policy
