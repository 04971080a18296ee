#include "emulator/SecurityDescriptor.h"

#include <cstring>
#include <iterator>

namespace EngineEmulator {
namespace {

using Bytes = std::span<const UINT8>;
using Header = SECURITY_DESCRIPTOR_RELATIVE;

constexpr std::size_t kParts = 4;
constexpr DWORD Header::*kOffsets[kParts]{&Header::Owner, &Header::Group, &Header::Dacl, &Header::Sacl};
constexpr std::size_t kFirstList = 2;
/// The control bit that says that a part is there.
constexpr WORD kPresent[kParts]{0, 0, SE_DACL_PRESENT, SE_SACL_PRESENT};

/// The size of a SID that begins with these bytes; 0 for none that fits in them.
std::size_t SizeOfSid(Bytes bytes) {
  constexpr std::size_t kHead = offsetof(SID, SubAuthority);
  if (bytes.size() < kHead || bytes[0] != SID_REVISION || bytes[1] > SID_MAX_SUB_AUTHORITIES) {
    return 0;
  }
  const std::size_t size = kHead + bytes[1] * sizeof(DWORD);
  return size <= bytes.size() ? size : 0;
}

/// The same for an access control list.
std::size_t SizeOfAcl(Bytes bytes) {
  ACL list;
  if (bytes.size() < sizeof(list)) {
    return 0;
  }
  std::memcpy(&list, bytes.data(), sizeof(list));
  return list.AclSize >= sizeof(list) && list.AclSize <= bytes.size() ? list.AclSize : 0;
}

std::size_t SizeOfPart(std::size_t part, Bytes bytes) {
  return part < kFirstList ? SizeOfSid(bytes) : SizeOfAcl(bytes);
}

/// The bytes of a part, none if it is absent. Empty if it is malformed.
std::optional<Bytes> PartAt(Bytes descriptor, const Header& header, std::size_t part) {
  const std::size_t offset = header.*kOffsets[part];
  if (offset == 0) {
    return Bytes();
  }
  if (offset < sizeof(Header) || offset >= descriptor.size()) {
    return std::nullopt;
  }
  const std::size_t size = SizeOfPart(part, descriptor.subspan(offset));
  return size == 0 ? std::nullopt : std::optional(descriptor.subspan(offset, size));
}

bool ReadHeader(Bytes descriptor, Header& header) {
  if (descriptor.size() < sizeof(Header)) {
    return false;
  }
  std::memcpy(&header, descriptor.data(), sizeof(Header));
  return header.Revision == SECURITY_DESCRIPTOR_REVISION && (header.Control & SE_SELF_RELATIVE) != 0;
}

void Append(std::vector<UINT8>& bytes, const void* data, std::size_t size) {
  const auto* first = static_cast<const UINT8*>(data);
  bytes.insert(bytes.end(), first, first + size);
}

std::vector<UINT8> MakeSid(UINT8 authority, std::initializer_list<DWORD> subAuthorities) {
  std::vector<UINT8> sid{SID_REVISION, static_cast<UINT8>(subAuthorities.size()), 0, 0, 0, 0, 0, authority};
  for (const DWORD subAuthority : subAuthorities) {
    Append(sid, &subAuthority, sizeof(subAuthority));
  }
  return sid;
}

/// An entry of an access control list that lets somebody in.
struct Grant {
  std::vector<UINT8> sid;
  ACCESS_MASK rights;
};

std::vector<UINT8> MakeAcl(std::initializer_list<Grant> grants) {
  std::vector<UINT8> entries;
  for (const Grant& grant : grants) {
    const ACE_HEADER header{ACCESS_ALLOWED_ACE_TYPE, 0,
                            static_cast<WORD>(sizeof(ACE_HEADER) + sizeof(ACCESS_MASK) + grant.sid.size())};
    Append(entries, &header, sizeof(header));
    Append(entries, &grant.rights, sizeof(grant.rights));
    Append(entries, grant.sid.data(), grant.sid.size());
  }
  const ACL list{ACL_REVISION, 0, static_cast<WORD>(sizeof(ACL) + entries.size()),
                 static_cast<WORD>(grants.size()), 0};
  std::vector<UINT8> bytes;
  Append(bytes, &list, sizeof(list));
  Append(bytes, entries.data(), entries.size());
  return bytes;
}

}  // namespace

bool IsSelfRelative(std::span<const UINT8> bytes) {
  Header header;
  if (!ReadHeader(bytes, header)) {
    return false;
  }
  for (std::size_t part = 0; part < kParts; ++part) {
    if (!PartAt(bytes, header, part).has_value()) {
      return false;
    }
  }
  return true;
}

const SecurityDescriptor& SecurityDescriptor::Default() {
  constexpr ACCESS_MASK kAllRights = 0xF07FF;
  constexpr ACCESS_MASK kOpenAndClassify = 0x50;
  static const SecurityDescriptor kDefault = [] {
    const std::vector<UINT8> administrators = MakeSid(5, {32, 544});
    const std::vector<UINT8> networkOperators = MakeSid(5, {32, 556});
    const std::vector<UINT8> everyone = MakeSid(1, {0});
    SecurityDescriptor descriptor;
    descriptor.parts_[0] = administrators;
    descriptor.parts_[1] = administrators;
    descriptor.parts_[2] =
        MakeAcl({{administrators, kAllRights}, {networkOperators, kAllRights}, {everyone, kOpenAndClassify}});
    return descriptor;
  }();
  return kDefault;
}

std::optional<SecurityDescriptor> SecurityDescriptor::FromNative(const void* descriptor) {
  // Nothing tells its size: offsets lead no further than this, and each part tells its own.
  constexpr std::size_t kLongest = 0x40000;
  const Bytes bytes(static_cast<const UINT8*>(descriptor), kLongest);
  Header header;
  if (!ReadHeader(bytes, header)) {
    return std::nullopt;
  }
  SecurityDescriptor result;
  for (std::size_t part = 0; part < kParts; ++part) {
    const std::optional<Bytes> found = PartAt(bytes, header, part);
    if (!found.has_value()) {
      return std::nullopt;
    }
    result.parts_[part].assign(found->begin(), found->end());
  }
  return result;
}

bool SecurityDescriptor::Set(SECURITY_INFORMATION information, const SID* owner, const SID* group,
                             const ACL* dacl, const ACL* sacl) {
  constexpr std::size_t kLongest = 0x10000;
  const void* const given[kParts]{owner, group, dacl, sacl};
  std::array<std::vector<UINT8>, kParts> parts = parts_;
  for (std::size_t part = 0; part < kParts; ++part) {
    if ((information >> part & 1) == 0) {
      continue;
    }
    const auto* first = static_cast<const UINT8*>(given[part]);
    const std::size_t size = first == nullptr ? 0 : SizeOfPart(part, {first, kLongest});
    if (size == 0 && (first != nullptr || part < kFirstList)) {
      return false;
    }
    parts[part].assign(first, first + size);
  }
  parts_ = std::move(parts);
  return true;
}

UINT8* SecurityDescriptor::Pack(Packer& packer, SECURITY_INFORMATION information) const {
  Header header{};
  header.Revision = SECURITY_DESCRIPTOR_REVISION;
  header.Control = SE_SELF_RELATIVE;
  std::vector<UINT8> bytes(sizeof(Header));
  for (std::size_t part = 0; part < kParts; ++part) {
    if ((information >> part & 1) == 0) {
      continue;
    }
    header.Control = static_cast<WORD>(header.Control | kPresent[part]);
    if (!parts_[part].empty()) {
      header.*kOffsets[part] = static_cast<DWORD>(bytes.size());
      Append(bytes, parts_[part].data(), parts_[part].size());
    }
  }
  std::memcpy(bytes.data(), &header, sizeof(header));
  return packer.Copy(bytes.data(), bytes.size());
}

SecurityParts PartsOf(UINT8* descriptor) {
  Header header;
  std::memcpy(&header, descriptor, sizeof(header));
  const auto at = [&](DWORD offset) -> void* { return offset == 0 ? nullptr : descriptor + offset; };
  return {at(header.Owner), at(header.Group), static_cast<ACL*>(at(header.Dacl)),
          static_cast<ACL*>(at(header.Sacl))};
}

}  // namespace EngineEmulator
