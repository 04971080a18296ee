// Expressions are in postfix order: what an operator takes lies on a stack.
#include "policy/AceCondition.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

namespace Policy {
namespace {

constexpr std::array<UINT8, 4> kConditionMark{'a', 'r', 't', 'x'};

constexpr UINT8 kPadding = 0x00;
constexpr UINT8 kInt8 = 0x01;
constexpr UINT8 kInt64 = 0x04;
constexpr UINT8 kString = 0x10;
constexpr UINT8 kOctets = 0x18;
constexpr UINT8 kList = 0x50;
constexpr UINT8 kSidLiteral = 0x51;

constexpr UINT8 kEqual = 0x80;
constexpr UINT8 kNotEqual = 0x81;
constexpr UINT8 kLess = 0x82;
constexpr UINT8 kLessOrEqual = 0x83;
constexpr UINT8 kGreater = 0x84;
constexpr UINT8 kGreaterOrEqual = 0x85;
constexpr UINT8 kContains = 0x86;
constexpr UINT8 kExists = 0x87;
constexpr UINT8 kAnyOf = 0x88;
constexpr UINT8 kNotExists = 0x8D;
constexpr UINT8 kNotContains = 0x8E;
constexpr UINT8 kNotAnyOf = 0x8F;
constexpr UINT8 kAnd = 0xA0;
constexpr UINT8 kOr = 0xA1;
constexpr UINT8 kNot = 0xA2;

constexpr UINT8 kTokenAttribute = 0xF8;
constexpr UINT8 kUserAttribute = 0xF9;
constexpr UINT8 kDeviceAttribute = 0xFB;

constexpr UINT8 kRelations[]{kEqual,          kNotEqual, kLess,  kLessOrEqual, kGreater,
                             kGreaterOrEqual, kContains, kAnyOf, kNotContains, kNotAnyOf};

/// An operator that asks for groups.
struct MembershipOperator {
  UINT8 token;
  bool isOfDevice;
  bool asksForAll;
  bool isNegated;
};
constexpr MembershipOperator kMemberships[]{
    {0x89, false, true, false},   // Member_of
    {0x8A, true, true, false},    // Device_Member_of
    {0x8B, false, false, false},  // Member_of_Any
    {0x8C, true, false, false},   // Device_Member_of_Any
    {0x90, false, true, true},    // and their Not_ forms
    {0x91, true, true, true},    {0x92, false, false, true}, {0x93, true, false, true},
};

/// Octets are nothing here: no attribute of a token that is known has any.
using Literal = std::variant<std::monostate, INT64, std::u16string, Sid>;
struct Literals {
  std::vector<Literal> values;
  bool isList = false;
};

struct Attribute {
  const TokenAttribute* found = nullptr;  ///< null: not known

  [[nodiscard]] bool IsMissing() const { return found != nullptr && !found->values; }
};

using Operand = std::variant<Truths, Attribute, Literals>;

std::span<const UINT8> TakeSized(ByteReader& bytes) { return bytes.TakeBytes(bytes.Take<UINT32>()); }

std::u16string TextOf(std::span<const UINT8> utf16) {
  ByteReader units(utf16);
  std::u16string text;
  while (!units.Rest().empty()) {
    text += static_cast<char16_t>(units.Take<UINT16>());
  }
  return text;
}

Literal TakeLiteral(UINT8 token, ByteReader& bytes) {
  if (token >= kInt8 && token <= kInt64) {
    const auto number = static_cast<INT64>(bytes.Take<UINT64>());
    bytes.TakeBytes(2);  // how its sign and its base were written
    return number;
  }
  if (token == kString) {
    return TextOf(TakeSized(bytes));
  }
  if (token == kOctets) {
    TakeSized(bytes);
    return {};
  }
  if (token != kSidLiteral) {
    throw MalformedError("not a literal");
  }
  ByteReader content(TakeSized(bytes));
  Sid sid = TakeSid(content);
  if (!content.Rest().empty()) {
    throw MalformedError("more than a SID");
  }
  return sid;
}

Literals TakeList(ByteReader& bytes) {
  ByteReader content(TakeSized(bytes));
  Literals literals{{}, true};
  while (!content.Rest().empty()) {
    const auto token = content.Take<UINT8>();
    literals.values.push_back(TakeLiteral(token, content));
  }
  return literals;
}

bool IsLiteral(UINT8 token) { return token < kEqual && token != kList; }

Truths Equal(const AttributeValue& value, const Literal& literal) {
  if (const auto* number = std::get_if<INT64>(&value)) {
    const auto* other = std::get_if<INT64>(&literal);
    return other == nullptr ? kAnyTruth : Truths(*number == *other);
  }
  const auto* other = std::get_if<std::u16string>(&literal);
  return other == nullptr ? kAnyTruth : EqualTexts(std::get<std::u16string>(value), *other);
}

/// Whether a text is one of an attribute's strings that are not known.
Truths IsAmongOthers(const std::u16string& text, const Token& token) {
  return IsPackageFamilyName(text) ? token.IsOfFamily(text) : kTrueOrFalse;
}

/// Whether an attribute that a token has holds a value.
Truths HasValue(const TokenAttribute& attribute, const Literal& literal, const Token& token) {
  const auto* text = std::get_if<std::u16string>(&literal);
  Truths holds = attribute.isWhole || text == nullptr ? Truths(false) : IsAmongOthers(*text, token);
  for (const AttributeValue& value : *attribute.values) {
    holds = Or(holds, Equal(value, literal));
  }
  return holds;
}

Truths HasValues(const TokenAttribute& attribute, const Literals& literals, const Token& token, bool all) {
  Truths holds = all;
  for (const Literal& literal : literals.values) {
    const Truths has = HasValue(attribute, literal, token);
    holds = all ? And(holds, has) : Or(holds, has);
  }
  return literals.values.empty() ? kAnyTruth : holds;
}

/// How lists compare is not documented, nor how types differ.
Truths Compare(UINT8 token, const TokenAttribute& attribute, const Literals& literals) {
  if (attribute.values->size() != 1 || !attribute.isWhole || literals.isList) {
    return kAnyTruth;
  }
  const AttributeValue& value = attribute.values->front();
  if (token == kEqual || token == kNotEqual) {
    const Truths equal = Equal(value, literals.values.front());
    return token == kEqual ? equal : Not(equal);
  }
  const auto* left = std::get_if<INT64>(&value);
  const auto* right = std::get_if<INT64>(&literals.values.front());
  if (left == nullptr || right == nullptr) {
    return kAnyTruth;
  }
  switch (token) {
    case kLess:
      return *left < *right;
    case kLessOrEqual:
      return *left <= *right;
    case kGreater:
      return *left > *right;
    default:
      return *left >= *right;
  }
}

Truths Relate(UINT8 relation, const TokenAttribute& attribute, const Literals& literals, const Token& token) {
  switch (relation) {
    case kContains:
      return HasValues(attribute, literals, token, true);
    case kNotContains:
      return Not(HasValues(attribute, literals, token, true));
    case kAnyOf:
      return HasValues(attribute, literals, token, false);
    case kNotAnyOf:
      return Not(HasValues(attribute, literals, token, false));
    default:
      return Compare(relation, attribute, literals);
  }
}

/// Evaluates one expression.
class Evaluation {
 public:
  Evaluation(std::span<const UINT8> condition, const ConditionScope& scope)
      : bytes_(condition), scope_(scope) {}

  Truths Run() {
    bytes_.TakeBytes(kConditionMark.size());
    while (std::ranges::any_of(bytes_.Rest(), [](UINT8 byte) { return byte != kPadding; })) {
      const auto token = bytes_.Take<UINT8>();
      operands_.push_back(Take(token));
    }
    const Truths result = PopTruths();
    if (!operands_.empty()) {
      throw MalformedError("an operand without an operator");
    }
    return result;
  }

 private:
  Operand Take(UINT8 token) {
    if (token == kList) {
      return TakeList(bytes_);
    }
    if (IsLiteral(token)) {
      return Literals{{TakeLiteral(token, bytes_)}};
    }
    if (token >= kTokenAttribute && token <= kDeviceAttribute) {
      return TakeAttribute(token);
    }
    return Operate(token);
  }

  Attribute TakeAttribute(UINT8 token) {
    const std::u16string name = TextOf(TakeSized(bytes_));
    switch (token) {
      case kTokenAttribute:
        return {scope_.token.FindAttribute(AttributeOwner::Token, name)};
      case kUserAttribute:
        return {scope_.token.FindAttribute(AttributeOwner::User, name)};
      case kDeviceAttribute:
        return {scope_.token.FindAttribute(AttributeOwner::Device, name)};
      default:
        return {};  // of the resource, no part of a token
    }
  }

  Truths Operate(UINT8 token) {
    switch (token) {
      case kAnd: {
        const Truths right = PopTruths();
        return And(PopTruths(), right);
      }
      case kOr: {
        const Truths right = PopTruths();
        return Or(PopTruths(), right);
      }
      case kNot:
        return Not(PopTruths());
      case kExists:
        return Exists();
      case kNotExists:
        return Not(Exists());
      default:
        break;
    }
    const auto* membership = std::ranges::find(kMemberships, token, &MembershipOperator::token);
    return membership == std::end(kMemberships) ? Relation(token) : MemberOf(*membership);
  }

  Truths Exists() {
    const auto attribute = Pop<Attribute>();
    const bool isKnown = attribute.found != nullptr && attribute.found->isCertain;
    return isKnown ? Truths(!attribute.IsMissing()) : kTrueOrFalse;
  }

  Truths Relation(UINT8 token) {
    if (std::ranges::find(kRelations, token) == std::end(kRelations)) {
      throw MalformedError("not an operator");
    }
    const Operand right = Pop();
    const auto left = Pop<Attribute>();
    if (std::holds_alternative<Truths>(right)) {
      throw MalformedError("a relation to no value");
    }
    if (left.IsMissing()) {
      return Truth::Unknown;
    }
    const auto* literals = std::get_if<Literals>(&right);
    // What comes of two attributes is left open, unless one is missing.
    if (literals == nullptr) {
      return std::get<Attribute>(right).IsMissing() ? Truths(Truth::Unknown) : kAnyTruth;
    }
    if (left.found == nullptr) {
      return kAnyTruth;
    }
    const Truths truths = Relate(token, *left.found, *literals, scope_.token);
    return left.found->isCertain ? truths : Either(truths, Truth::Unknown);
  }

  Truths MemberOf(const MembershipOperator& membership) {
    const auto sids = Pop<Literals>();
    Truths holds = membership.asksForAll;
    for (const Literal& literal : sids.values) {
      const auto* sid = std::get_if<Sid>(&literal);
      if (sid == nullptr) {
        throw MalformedError("a member of no SID");
      }
      const Truths counts = membership.isOfDevice ? kTrueOrFalse : CountsAsMember(*sid);
      holds = membership.asksForAll ? And(holds, counts) : Or(holds, counts);
    }
    if (sids.values.empty()) {
      return kAnyTruth;
    }
    return membership.isNegated ? Not(holds) : holds;
  }

  /// Whether packages and capabilities count as groups is not documented.
  [[nodiscard]] Truths CountsAsMember(const Sid& sid) const {
    const bool isOfPackage = scope_.token.appContainer && scope_.token.appContainer->Holds(sid);
    return scope_.isOfUser && !isOfPackage ? scope_.token.Counts(sid, scope_.isDenied) : kTrueOrFalse;
  }

  Operand Pop() {
    if (operands_.empty()) {
      throw MalformedError("an operator without an operand");
    }
    Operand operand = std::move(operands_.back());
    operands_.pop_back();
    return operand;
  }

  template <class Kind>
  Kind Pop() {
    Operand operand = Pop();
    if (auto* found = std::get_if<Kind>(&operand)) {
      return std::move(*found);
    }
    throw MalformedError("an operand of another kind");
  }

  /// What is true, false or unknown; what an attribute alone is, is not documented but for a missing one.
  Truths PopTruths() {
    const Operand operand = Pop();
    if (const auto* attribute = std::get_if<Attribute>(&operand)) {
      return attribute->IsMissing() ? Truths(Truth::Unknown) : kAnyTruth;
    }
    if (const auto* truths = std::get_if<Truths>(&operand)) {
      return *truths;
    }
    throw MalformedError("a value alone");
  }

  ByteReader bytes_;
  const ConditionScope& scope_;
  std::vector<Operand> operands_;
};

}  // namespace

bool IsCondition(std::span<const UINT8> data) {
  return data.size() >= kConditionMark.size() &&
         std::ranges::equal(data.first(kConditionMark.size()), kConditionMark);
}

Truths Evaluate(std::span<const UINT8> condition, const ConditionScope& scope) {
  try {
    return Evaluation(condition, scope).Run();
  } catch (const MalformedError&) {
    return Truth::Unknown;
  }
}

}  // namespace Policy
