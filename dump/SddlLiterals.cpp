#include "dump/SddlConditionTables.h"
#include "dump/SddlParts.h"

namespace Dump {
namespace {

constexpr std::size_t kEscapeDigits = 4;

/// The unit that "%" and four digits stand for; empty if that does not come next.
std::optional<UINT16> TakeEscape(SddlCursor& cursor) {
  const std::string_view rest = cursor.Rest();
  if (!rest.starts_with("%") || rest.size() <= kEscapeDigits) {
    return std::nullopt;
  }
  const std::string_view digits = rest.substr(1, kEscapeDigits);
  if (!std::ranges::all_of(digits, IsHexDigit)) {
    return std::nullopt;
  }
  cursor.TakeIf(rest.substr(0, 1 + kEscapeDigits));
  return ParseInteger<UINT16>(digits, 16);
}

void AppendEscape(std::string& text, char16_t unit) {
  text += '%';
  for (int shift = 12; shift >= 0; shift -= 4) {
    text += "0123456789abcdef"[unit >> shift & 15];
  }
}

/// UTF-16 of the characters that belong to the text, with escapes resolved.
template <class Predicate>
Bytes TakeUnits(SddlCursor& cursor, Predicate belongs) {
  Bytes units;
  for (;;) {
    if (const auto unit = TakeEscape(cursor)) {
      AppendNumber(units, *unit);
      continue;
    }
    std::string_view rest = cursor.Rest();
    if (rest.empty() || !belongs(rest[0])) {
      return units;
    }
    const char32_t character = TakeCharacter(rest);
    if (character == kNotUtf8) {
      cursor.Fail("text in UTF-8");
    }
    cursor.TakeIf(cursor.Rest().substr(0, cursor.Rest().size() - rest.size()));
    ForEachUnit(character, [&units](char16_t unit) { AppendNumber(units, static_cast<UINT16>(unit)); });
  }
}

/// The text of UTF-16; what is not to stand for itself, and halves of pairs, as escapes.
template <class Predicate>
std::string UnitsText(std::span<const UINT8> utf16, Predicate standsForItself) {
  if (utf16.size() % 2 != 0) {
    throw SddlError("a text in UTF-16 has an odd number of bytes");
  }
  std::string text;
  ByteReader units(utf16, "a text");
  while (!units.Rest().empty()) {
    const char32_t unit = units.Take<UINT16>();
    ByteReader ahead = units;
    const char32_t next = ahead.Rest().empty() ? 0 : ahead.Take<UINT16>();
    if (IsHighSurrogate(unit) && IsLowSurrogate(next)) {
      AppendUtf8(text, FromSurrogates(unit, next));
      units = ahead;
    } else if (IsCharacter(unit) && (unit >= 0x80 || standsForItself(static_cast<char>(unit)))) {
      AppendUtf8(text, unit);
    } else {
      AppendEscape(text, static_cast<char16_t>(unit));
    }
  }
  return text;
}

}  // namespace

Bytes TakeQuoted(SddlCursor& cursor) {
  cursor.Take("\"");
  Bytes units = TakeUnits(cursor, [](char character) { return character != '"'; });
  cursor.Take("\"");
  return units;
}

std::string QuotedText(std::span<const UINT8> utf16) {
  const auto standsForItself = [](char character) {
    return character >= ' ' && character != 0x7F && character != '"' && character != '%';
  };
  return '"' + UnitsText(utf16, standsForItself) + '"';
}

Bytes TakeOctets(SddlCursor& cursor) {
  cursor.Take("#");
  const std::string_view digits = cursor.TakeWhile(IsHexDigit);
  if (digits.size() % 2 != 0) {
    cursor.Fail("an even number of hexadecimal digits");
  }
  Bytes octets;
  for (std::size_t i = 0; i < digits.size(); i += 2) {
    octets.push_back(*ParseInteger<UINT8>(digits.substr(i, 2), 16));
  }
  return octets;
}

std::string OctetsText(std::span<const UINT8> bytes) {
  std::string text = "#";
  for (const UINT8 byte : bytes) {
    AppendHex(text, byte);
  }
  return text;
}

Bytes TakeAttributeName(SddlCursor& cursor) {
  const std::string_view rest = cursor.Rest();
  const auto prefix = std::ranges::find_if(kAttributePrefixes, [rest](const ConditionName& name) {
    return EqualWords(rest.substr(0, name.name.size()), name.name);
  });
  Bytes attribute{kLocalToken};
  if (prefix != kAttributePrefixes.end()) {
    attribute[0] = prefix->token;
    cursor.TakeIf(rest.substr(0, prefix->name.size()));
  }
  const Bytes name = TakeUnits(cursor, IsNameCharacter);
  if (name.empty()) {
    cursor.Fail("the name of an attribute");
  }
  AppendNumber(attribute, static_cast<UINT32>(name.size()));
  AppendBytes(attribute, name);
  return attribute;
}

std::string AttributeNameText(UINT8 token, std::span<const UINT8> utf16) {
  if (utf16.empty()) {
    throw SddlError("a condition names an attribute without a name");
  }
  const ConditionName* prefix = FindToken(kAttributePrefixes, token);
  std::string name = UnitsText(utf16, IsNameCharacter);
  const bool looksDifferent = IsDigit(name[0]) || FindWord(kExistences, name) || FindWord(kMemberships, name);
  if (prefix == nullptr && looksDifferent) {
    std::string escaped;
    AppendEscape(escaped, static_cast<unsigned char>(name[0]));
    name.replace(0, 1, escaped);
  }
  return (prefix == nullptr ? "" : std::string(prefix->name)) + name;
}

Bytes TakeInteger(SddlCursor& cursor) {
  const std::size_t start = cursor.Position();
  UINT8 sign = kNoSign;
  if (cursor.TakeIf("-")) {
    sign = kMinus;
  } else if (cursor.TakeIf("+")) {
    sign = kPlus;
  }
  const bool isHexadecimal = cursor.TakeIf("0x") || cursor.TakeIf("0X");
  const std::string_view digits = cursor.TakeWhile(IsHexDigit);
  const bool isOctal = !isHexadecimal && digits.size() > 1 && digits[0] == '0';
  UINT8 base = kDecimal;
  int radix = 10;
  if (isHexadecimal) {
    base = kHexadecimal;
    radix = 16;
  } else if (isOctal) {
    base = kOctal;
    radix = 8;
  }
  const auto magnitude = ParseInteger<UINT64>(digits, radix);
  const UINT64 most = (UINT64{1} << 63) - (sign == kMinus ? 0 : 1);
  if (!magnitude || *magnitude > most) {
    cursor.FailAt(start, "an integer of 64 bits");
  }
  Bytes integer;
  AppendNumber(integer, sign == kMinus ? UINT64{0} - *magnitude : *magnitude);
  integer.push_back(sign);
  integer.push_back(base);
  return integer;
}

std::string IntegerText(ByteReader& integer) {
  const auto value = integer.Take<UINT64>();
  const auto sign = integer.Take<UINT8>();
  const auto base = integer.Take<UINT8>();
  const bool isNegative = value >> 63 != 0;
  const UINT64 magnitude = isNegative ? UINT64{0} - value : value;
  std::string text;
  if (isNegative || (value == 0 && sign == kMinus)) {
    text = "-";
  } else if (sign == kPlus) {
    text = "+";
  }
  std::array<char, 24> digits;
  const auto write = [&](int radix) {
    return std::string(digits.data(),
                       std::to_chars(digits.data(), digits.data() + digits.size(), magnitude, radix).ptr);
  };
  switch (base) {
    case kOctal:
      return text + '0' + write(8);
    case kDecimal:
      return text + write(10);
    case kHexadecimal:
      return text + "0x" + write(16);
    default:
      throw SddlError("a condition has an integer of unknown base");
  }
}

}  // namespace Dump
