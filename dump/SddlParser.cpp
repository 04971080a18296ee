#include <utility>

#include "dump/SddlParts.h"
#include "dump/SddlTables.h"

namespace Dump {
namespace {

constexpr std::size_t kMostSize = 0xFFFF;
constexpr UINT8 kRevision = 2;
constexpr UINT8 kObjectRevision = 4;

struct Acl {
  UINT16 flags = 0;  ///< as the DACL's
  bool isNull = false;
  Bytes bytes;
};

struct Descriptor {
  std::optional<Bytes> owner;
  std::optional<Bytes> group;
  std::optional<Acl> dacl;
  std::optional<Acl> sacl;
};

class SddlParser {
 public:
  SddlParser(std::string_view sddl, DomainSids domainSids) : cursor_(sddl), domainSids_(domainSids) {}

  Descriptor Parse() {
    Descriptor descriptor;
    while (!cursor_.IsAtEnd()) {
      TakePart(descriptor);
    }
    return descriptor;
  }

 private:
  void TakePart(Descriptor& descriptor) {
    const std::size_t start = cursor_.Position();
    bool isNew = true;
    if (cursor_.TakeIf("O:")) {
      isNew = !std::exchange(descriptor.owner, TakeSid(cursor_, domainSids_));
    } else if (cursor_.TakeIf("G:")) {
      isNew = !std::exchange(descriptor.group, TakeSid(cursor_, domainSids_));
    } else if (cursor_.TakeIf("D:")) {
      isNew = !std::exchange(descriptor.dacl, TakeAcl());
    } else if (cursor_.TakeIf("S:")) {
      isNew = !std::exchange(descriptor.sacl, TakeAcl());
    } else {
      cursor_.Fail("O:, G:, D: or S:");
    }
    if (!isNew) {
      cursor_.FailAt(start, "each part once");
    }
  }

  Acl TakeAcl() {
    Acl acl;
    TakeAclFlags(acl);
    if (cursor_.TakeIf(kNullAcl)) {
      acl.isNull = true;
      return acl;
    }
    const std::size_t start = cursor_.Position();
    acl.bytes.resize(8);
    UINT16 count = 0;
    UINT8 revision = kRevision;
    for (; cursor_.Rest().starts_with("("); ++count) {
      if (TakeAce(acl.bytes).hasObjects) {
        revision = kObjectRevision;
      }
      if (acl.bytes.size() > kMostSize) {
        cursor_.FailAt(start, "a list of less than 64 KB");
      }
    }
    acl.bytes[0] = revision;
    WriteNumber(acl.bytes, 2, static_cast<UINT16>(acl.bytes.size()));
    WriteNumber(acl.bytes, 4, count);
    return acl;
  }

  void TakeAclFlags(Acl& acl) {
    const auto isNext = [this](const AclFlag& flag) { return cursor_.TakeIf(flag.name); };
    for (auto flag = std::ranges::find_if(kAclFlags, isNext); flag != kAclFlags.end();
         flag = std::ranges::find_if(kAclFlags, isNext)) {
      acl.flags = static_cast<UINT16>(acl.flags | flag->bit);
    }
  }

  /// Adds the entry that comes next.
  const AceType& TakeAce(Bytes& acl) {
    const std::size_t start = acl.size();
    cursor_.Take("(");
    const AceType& type = TakeType();
    acl.push_back(type.type);
    acl.push_back(TakeFlags());
    AppendNumber(acl, UINT16{0});
    AppendNumber(acl, TakeRights(type));
    TakeObjects(type, acl);
    AppendBytes(acl, TakeSid(cursor_, domainSids_));
    TakeTail(type, acl);
    cursor_.Take(")");
    Align(acl);
    WriteNumber(acl, start + 2, static_cast<UINT16>(acl.size() - start));
    return type;
  }

  const AceType& TakeType() {
    const std::size_t start = cursor_.Position();
    const std::string_view name = cursor_.TakeWhile(IsLetter);
    const auto known = std::ranges::find(kAceTypes, name, &AceType::name);
    if (known == kAceTypes.end()) {
      cursor_.FailAt(start, "a type of entry like A, D or XA");
    }
    cursor_.Take(";");
    return *known;
  }

  UINT8 TakeFlags() {
    UINT8 flags = 0;
    while (!cursor_.TakeIf(";")) {
      flags |= static_cast<UINT8>(TakeBits(kAceFlags, "an entry's flag like OI"));
    }
    return flags;
  }

  /// The bits of the two letters that come next.
  UINT32 TakeBits(std::span<const SddlBits> names, const char* expected) {
    const auto known = std::ranges::find(names, cursor_.Rest().substr(0, 2), &SddlBits::name);
    if (known == names.end()) {
      cursor_.Fail(expected);
    }
    cursor_.Take(known->name);
    return known->bits;
  }

  UINT32 TakeRights(const AceType& type) {
    const std::string_view rest = cursor_.Rest();
    if (!rest.empty() && IsDigit(rest[0])) {
      const std::size_t start = cursor_.Position();
      const int base = cursor_.TakeIf("0x") || cursor_.TakeIf("0X") ? 16 : 10;
      const auto rights = ParseInteger<UINT32>(cursor_.TakeWhile(IsHexDigit), base);
      if (!rights) {
        cursor_.FailAt(start, "rights of 32 bits");
      }
      cursor_.Take(";");
      return *rights;
    }
    UINT32 rights = 0;
    while (!cursor_.TakeIf(";")) {
      rights |= TakeRight(type);
    }
    return rights;
  }

  UINT32 TakeRight(const AceType& type) {
    constexpr const char* kExpected = "a right like CC or a number like 0x1";
    if (type.type == kMandatoryLabelAce) {
      return TakeBits(kLabelRights, "a label's right: NW, NR or NX");
    }
    const auto isNext = [next = cursor_.Rest().substr(0, 2)](const SddlBits& bits) {
      return bits.name == next;
    };
    return std::ranges::any_of(kRightSets, isNext) ? TakeBits(kRightSets, kExpected)
                                                   : TakeBits(kSingleRights, kExpected);
  }

  void TakeObjects(const AceType& type, Bytes& acl) {
    const std::size_t flagsAt = acl.size();
    if (type.hasObjects) {
      AppendNumber(acl, UINT32{0});
    }
    for (const UINT32 flag : {1U, 2U}) {
      if (cursor_.TakeIf(";")) {
        continue;
      }
      if (!type.hasObjects) {
        cursor_.Fail("no GUID in an entry of this type");
      }
      AppendGuid(acl);
      acl[flagsAt] = static_cast<UINT8>(acl[flagsAt] | flag);
      cursor_.Take(";");
    }
  }

  void AppendGuid(Bytes& acl) {
    constexpr std::size_t kLength = 36;
    const auto key = ParseGuid(cursor_.Rest().substr(0, kLength));
    if (!key) {
      cursor_.Fail("a GUID like 00112233-4455-6677-8899-aabbccddeeff");
    }
    cursor_.TakeIf(cursor_.Rest().substr(0, kLength));
    AppendNumber(acl, static_cast<UINT32>(key->Data1));
    AppendNumber(acl, key->Data2);
    AppendNumber(acl, key->Data3);
    AppendBytes(acl, key->Data4);
  }

  void TakeTail(const AceType& type, Bytes& acl) {
    if (type.tail == AceTail::Attribute) {
      cursor_.Take(";");
      AppendBytes(acl, TakeAttribute(cursor_, domainSids_));
    } else if (type.tail == AceTail::Condition && cursor_.TakeIf(";")) {
      AppendBytes(acl, TakeCondition(cursor_, domainSids_));
    }
  }

  SddlCursor cursor_;
  DomainSids domainSids_;
};

/// Adds a part and notes its offset in the head.
void AppendPart(Bytes& descriptor, std::size_t offsetAt, const std::optional<Bytes>& part) {
  if (!part) {
    return;
  }
  WriteNumber(descriptor, offsetAt, static_cast<UINT32>(descriptor.size()));
  AppendBytes(descriptor, *part);
}

void AppendAcl(Bytes& descriptor, std::size_t offsetAt, const std::optional<Acl>& acl) {
  if (acl && !acl->isNull) {
    AppendPart(descriptor, offsetAt, acl->bytes);
  }
}

}  // namespace

std::vector<UINT8> ParseSddl(std::string_view sddl, DomainSids domainSids) {
  const Descriptor descriptor = SddlParser(sddl, domainSids).Parse();
  unsigned control = kSelfRelative;
  if (descriptor.dacl) {
    control |= kDaclPresent | descriptor.dacl->flags;
  }
  if (descriptor.sacl) {
    control |= kSaclPresent | unsigned{descriptor.sacl->flags} << kSaclShift;
  }
  Bytes bytes{SECURITY_DESCRIPTOR_REVISION, 0};
  AppendNumber(bytes, static_cast<UINT16>(control));
  bytes.resize(kHeadSize);
  AppendAcl(bytes, kSaclAt, descriptor.sacl);
  AppendAcl(bytes, kDaclAt, descriptor.dacl);
  AppendPart(bytes, kOwnerAt, descriptor.owner);
  AppendPart(bytes, kGroupAt, descriptor.group);
  return bytes;
}

}  // namespace Dump
