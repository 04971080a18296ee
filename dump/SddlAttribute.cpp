// Resource attributes: ("Project",TS,0x0,"Windows","SQL") to and from the platform's record of a claim.
#include "dump/SddlParts.h"

namespace Dump {
namespace {

// What the values are.
constexpr UINT16 kSigned = 1;
constexpr UINT16 kUnsigned = 2;
constexpr UINT16 kText = 3;
constexpr UINT16 kSid = 5;
constexpr UINT16 kTruth = 6;
constexpr UINT16 kOctets = 16;

struct TypeName {
  std::string_view name;
  UINT16 type;
};
constexpr auto kTypeNames = std::to_array<TypeName>(
    {{"TI", kSigned}, {"TU", kUnsigned}, {"TS", kText}, {"TD", kSid}, {"TB", kTruth}, {"TX", kOctets}});

/// Name, type, zero, flags, number of values; the values' offsets follow.
constexpr std::size_t kAttributeHeadSize = 16;
constexpr std::size_t kCountAt = 12;
constexpr const char* kWhat = "a resource attribute";

UINT16 TakeType(SddlCursor& cursor) {
  const auto known =
      std::ranges::find_if(kTypeNames, [&cursor](const TypeName& name) { return cursor.TakeIf(name.name); });
  if (known == kTypeNames.end()) {
    cursor.Fail("TI, TU, TS, TD, TB or TX");
  }
  return known->type;
}

template <class Number>
Number TakeUnsigned(SddlCursor& cursor) {
  const std::size_t start = cursor.Position();
  const int base = cursor.TakeIf("0x") ? 16 : 10;
  const auto number = ParseInteger<Number>(cursor.TakeWhile(IsHexDigit), base);
  if (!number) {
    cursor.FailAt(start, "a number of " + std::to_string(8 * sizeof(Number)) + " bits");
  }
  return *number;
}

Bytes WithSize(std::span<const UINT8> content) {
  Bytes bytes;
  AppendNumber(bytes, static_cast<UINT32>(content.size()));
  AppendBytes(bytes, content);
  return bytes;
}

/// UTF-16 of the quoted text that comes next, with a zero.
Bytes TakeText(SddlCursor& cursor) {
  const std::size_t start = cursor.Position();
  Bytes utf16 = TakeQuoted(cursor);
  for (ByteReader units(utf16, kWhat); !units.Rest().empty();) {
    if (units.Take<UINT16>() == 0) {
      cursor.FailAt(start, "a text without zeros");
    }
  }
  AppendNumber(utf16, UINT16{0});
  return utf16;
}

Bytes TakeSidValue(SddlCursor& cursor, DomainSids domainSids) {
  const bool isEnclosed = cursor.TakeIf("SID(");
  const Bytes sid = TakeSid(cursor, domainSids);
  if (isEnclosed) {
    cursor.Take(")");
  }
  return WithSize(sid);
}

Bytes TakeTruth(SddlCursor& cursor) {
  const bool isTrue = cursor.TakeIf("1");
  if (!isTrue) {
    cursor.Take("0");
  }
  Bytes bytes;
  AppendNumber(bytes, UINT64{isTrue});
  return bytes;
}

Bytes TakeValue(SddlCursor& cursor, UINT16 type, DomainSids domainSids) {
  Bytes bytes;
  switch (type) {
    case kSigned:
      bytes = TakeInteger(cursor);
      bytes.resize(sizeof(UINT64));
      return bytes;
    case kUnsigned:
      AppendNumber(bytes, TakeUnsigned<UINT64>(cursor));
      return bytes;
    case kText:
      return TakeText(cursor);
    case kSid:
      return TakeSidValue(cursor, domainSids);
    case kTruth:
      return TakeTruth(cursor);
    default:
      return WithSize(TakeOctets(cursor));
  }
}

bool TakeComma(SddlCursor& cursor) {
  cursor.SkipBlanks();
  const bool taken = cursor.TakeIf(",");
  if (taken) {
    cursor.SkipBlanks();
  }
  return taken;
}

void NeedComma(SddlCursor& cursor) {
  if (!TakeComma(cursor)) {
    cursor.Fail("\",\"");
  }
}

/// Adds what an offset in the head leads to.
void AppendPart(Bytes& attribute, std::size_t offsetAt, const Bytes& part) {
  Align(attribute);
  WriteNumber(attribute, offsetAt, static_cast<UINT32>(attribute.size()));
  AppendBytes(attribute, part);
}

/// UTF-16 up to its zero.
std::span<const UINT8> TakeTerminated(ByteReader bytes) {
  const auto all = bytes.Rest();
  std::size_t size = 0;
  while (bytes.Take<UINT16>() != 0) {
    size += sizeof(UINT16);
  }
  return all.first(size);
}

std::string ValueText(UINT16 type, ByteReader bytes) {
  switch (type) {
    case kSigned:
      return std::to_string(static_cast<INT64>(bytes.Take<UINT64>()));
    case kUnsigned:
      return std::to_string(bytes.Take<UINT64>());
    case kText:
      return QuotedText(TakeTerminated(bytes));
    case kTruth:
      return bytes.Take<UINT64>() == 0 ? "0" : "1";
    default:
      break;
  }
  const auto content = bytes.TakeBytes(bytes.Take<UINT32>());
  if (type == kOctets) {
    return OctetsText(content);
  }
  if (SizeOfSid(content) != content.size()) {
    throw SddlError("a resource attribute has a malformed SID");
  }
  return "SID(" + SidText(content) + ')';
}

ByteReader At(std::span<const UINT8> attribute, std::size_t offset) {
  ByteReader bytes(attribute, kWhat);
  bytes.TakeBytes(offset);
  return bytes;
}

}  // namespace

Bytes TakeAttribute(SddlCursor& cursor, DomainSids domainSids) {
  cursor.Take("(");
  cursor.SkipBlanks();
  const Bytes name = TakeText(cursor);
  NeedComma(cursor);
  const UINT16 type = TakeType(cursor);
  NeedComma(cursor);
  const auto flags = TakeUnsigned<UINT32>(cursor);
  std::vector<Bytes> values;
  while (TakeComma(cursor)) {
    values.push_back(TakeValue(cursor, type, domainSids));
  }
  cursor.Take(")");

  Bytes attribute(kAttributeHeadSize + values.size() * sizeof(UINT32));
  WriteNumber(attribute, 4, type);
  WriteNumber(attribute, 8, flags);
  WriteNumber(attribute, kCountAt, static_cast<UINT32>(values.size()));
  AppendPart(attribute, 0, name);
  for (std::size_t i = 0; i < values.size(); ++i) {
    AppendPart(attribute, kAttributeHeadSize + i * sizeof(UINT32), values[i]);
  }
  return attribute;
}

std::string AttributeText(std::span<const UINT8> attribute) {
  ByteReader head(attribute, kWhat);
  const auto nameAt = head.Take<UINT32>();
  const auto type = head.Take<UINT16>();
  head.Take<UINT16>();
  const auto flags = head.Take<UINT32>();
  const auto count = head.Take<UINT32>();
  const auto known = std::ranges::find(kTypeNames, type, &TypeName::type);
  if (known == kTypeNames.end()) {
    throw SddlError("a resource attribute has values of unknown type");
  }
  std::string text = '(' + QuotedText(TakeTerminated(At(attribute, nameAt))) + ',' +
                     std::string(known->name) + ',' + HexText(flags);
  for (UINT32 i = 0; i < count; ++i) {
    text += ',' + ValueText(type, At(attribute, head.Take<UINT32>()));
  }
  return text + ')';
}

}  // namespace Dump
