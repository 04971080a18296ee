#include "catalog/Names.h"
#include "dump/SddlParts.h"
#include "dump/SddlTables.h"

namespace Dump {
namespace {

constexpr UINT32 kObjectTypePresent = 1;
constexpr UINT32 kInheritedObjectTypePresent = 2;

/// The SID that bytes begin with.
std::span<const UINT8> TakeWholeSid(ByteReader& bytes) {
  const std::size_t size = SizeOfSid(bytes.Rest());
  if (size == 0) {
    throw SddlError("a SID is malformed");
  }
  return bytes.TakeBytes(size);
}

std::string FlagsText(UINT8 flags, bool isAccessFilter) {
  std::string text;
  for (const auto& [name, bit] : kAceFlags) {
    const bool belongs = bit != 0x40 || (name == "TP") == isAccessFilter;
    if ((flags & bit) != 0 && belongs) {
      text += name;
    }
  }
  return text;
}

std::string RightsText(UINT32 rights, bool isLabel) {
  const auto set = std::ranges::find(kRightSets, rights, &SddlBits::bits);
  if (!isLabel && set != kRightSets.end()) {
    return std::string(set->name);
  }
  const std::span<const SddlBits> names = isLabel ? std::span<const SddlBits>(kLabelRights) : kSingleRights;
  std::string text;
  UINT32 left = rights;
  for (const auto& [name, bit] : names) {
    if ((rights & bit) == 0) {
      continue;
    }
    text += name;
    left &= ~bit;
  }
  return left == 0 ? text : HexText(rights);
}

std::string TakeGuidText(ByteReader& bytes) {
  GUID key{};
  key.Data1 = bytes.Take<UINT32>();
  key.Data2 = bytes.Take<UINT16>();
  key.Data3 = bytes.Take<UINT16>();
  std::ranges::copy(bytes.TakeBytes(sizeof(key.Data4)), key.Data4);
  return Catalog::FormatGuid(key);
}

/// "type;inherited type", either of them empty.
std::string TakeObjectsText(const AceType& type, ByteReader& ace) {
  const UINT32 flags = type.hasObjects ? ace.Take<UINT32>() : 0;
  std::string text;
  if ((flags & kObjectTypePresent) != 0) {
    text += TakeGuidText(ace);
  }
  text += ';';
  if ((flags & kInheritedObjectTypePresent) != 0) {
    text += TakeGuidText(ace);
  }
  return text;
}

std::string TailText(const AceType& type, std::span<const UINT8> tail) {
  if (type.tail == AceTail::Attribute) {
    return ';' + AttributeText(tail);
  }
  return type.tail == AceTail::None || tail.empty() ? "" : ';' + ConditionText(tail);
}

/// @param content of the entry, behind its head.
std::string AceText(UINT8 typeNumber, UINT8 flags, ByteReader content) {
  const auto type = std::ranges::find(kAceTypes, typeNumber, &AceType::type);
  if (type == kAceTypes.end()) {
    throw SddlError("SDDL has no text for an entry of type " + HexText(typeNumber));
  }
  const std::string rights = RightsText(content.Take<UINT32>(), typeNumber == kMandatoryLabelAce);
  const std::string objects = TakeObjectsText(*type, content);
  const std::string sid = SidText(TakeWholeSid(content));
  return '(' + std::string(type->name) + ';' + FlagsText(flags, typeNumber == kAccessFilterAce) + ';' +
         rights + ';' + objects + ';' + sid + TailText(*type, content.Rest()) + ')';
}

std::string TakeAceText(ByteReader& acl) {
  constexpr std::size_t kAceHeadSize = 4;
  const auto type = acl.Take<UINT8>();
  const auto flags = acl.Take<UINT8>();
  const std::size_t size = acl.Take<UINT16>();
  if (size < kAceHeadSize) {
    throw SddlError("an entry's size is wrong");
  }
  return AceText(type, flags, {acl.TakeBytes(size - kAceHeadSize), "an access control entry"});
}

/// The entries of the list that bytes begin with.
std::string EntriesText(ByteReader bytes) {
  constexpr std::size_t kAclHeadSize = 8;
  bytes.Take<UINT16>();
  const std::size_t size = bytes.Take<UINT16>();
  const auto count = bytes.Take<UINT16>();
  bytes.Take<UINT16>();
  if (size < kAclHeadSize) {
    throw SddlError("an access control list's size is wrong");
  }
  ByteReader acl(bytes.TakeBytes(size - kAclHeadSize), "an access control list");
  std::string text;
  for (UINT16 i = 0; i < count; ++i) {
    text += TakeAceText(acl);
  }
  return text;
}

/// Reads the parts that the head of a descriptor leads to.
class DescriptorReader {
 public:
  explicit DescriptorReader(std::span<const UINT8> bytes) : bytes_(bytes) {
    ByteReader head(bytes, kWhat);
    const auto revision = head.Take<UINT8>();
    head.Take<UINT8>();
    control_ = head.Take<UINT16>();
    head.TakeBytes(kHeadSize - 4);
    if (revision != SECURITY_DESCRIPTOR_REVISION || (control_ & kSelfRelative) == 0) {
      throw SddlError("not a self-relative security descriptor");
    }
  }

  std::string SidPart(const char* prefix, std::size_t offsetAt) const {
    auto part = PartAt(offsetAt);
    return part ? prefix + SidText(TakeWholeSid(*part)) : "";
  }

  /// @param shift of the list's flags, against those of the DACL.
  std::string AclPart(const char* prefix, UINT16 presentBit, std::size_t offsetAt, int shift) const {
    if ((control_ & presentBit) == 0) {
      return "";
    }
    std::string text = prefix;
    for (const auto& [name, bit] : kAclFlags) {
      if ((control_ & bit << shift) != 0) {
        text += name;
      }
    }
    const auto part = PartAt(offsetAt);
    return text + (part ? EntriesText(*part) : std::string(kNullAcl));
  }

 private:
  static constexpr const char* kWhat = "a security descriptor";

  /// The bytes from a part on; empty if there is none.
  [[nodiscard]] std::optional<ByteReader> PartAt(std::size_t offsetAt) const {
    ByteReader head(bytes_.subspan(offsetAt), kWhat);
    const auto offset = head.Take<UINT32>();
    if (offset == 0) {
      return std::nullopt;
    }
    ByteReader part(bytes_, kWhat);
    part.TakeBytes(offset);
    return part;
  }

  std::span<const UINT8> bytes_;
  UINT16 control_ = 0;
};

}  // namespace

std::string FormatSddl(std::span<const UINT8> descriptor) {
  const DescriptorReader reader(descriptor);
  return reader.SidPart("O:", kOwnerAt) + reader.SidPart("G:", kGroupAt) +
         reader.AclPart("D:", kDaclPresent, kDaclAt, 0) +
         reader.AclPart("S:", kSaclPresent, kSaclAt, kSaclShift);
}

}  // namespace Dump
