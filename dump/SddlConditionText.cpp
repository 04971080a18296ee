// A conditional expression from bytes: what the operators take lies on a stack, as text.
#include "dump/SddlConditionTables.h"
#include "dump/SddlParts.h"

namespace Dump {
namespace {

/// Which operators take it.
enum class Kind { Attribute, Value, Sids, Term };

/// The weaker an operator binds, the less.
enum class Binding { Or, And, Tight };

struct Part {
  std::string text;
  Kind kind;
  Binding binding = Binding::Tight;
  int nesting = 0;  ///< of parentheses in the text
};

class ConditionReader {
 public:
  explicit ConditionReader(std::span<const UINT8> bytes) : bytes_(bytes, "a condition") {}

  std::string Read() {
    if (!std::ranges::equal(bytes_.TakeBytes(kConditionMark.size()), kConditionMark)) {
      Fail();
    }
    while (std::ranges::any_of(bytes_.Rest(), [](UINT8 byte) { return byte != kPaddingToken; })) {
      ReadToken(bytes_.Take<UINT8>());
    }
    const Part whole = Enclose(PopOperand());
    if (!parts_.empty()) {
      Fail();
    }
    return whole.text;
  }

 private:
  [[noreturn]] static void Fail() { throw SddlError("a condition is malformed"); }

  void ReadToken(UINT8 token) {
    if (token == kLocalToken || FindToken(kAttributePrefixes, token)) {
      parts_.push_back({AttributeNameText(token, TakeSized(bytes_)), Kind::Attribute});
    } else if (token == kListToken) {
      PushList();
    } else if (token < kListToken || token == kSidToken) {
      parts_.push_back(ReadLiteral(token, bytes_));
    } else if (const ConditionName* relation = FindToken(kRelations, token)) {
      Relate(*relation);
    } else if (const ConditionName* existence = FindToken(kExistences, token)) {
      parts_.push_back(Prefixed(*existence, Pop(Kind::Attribute)));
    } else if (const ConditionName* membership = FindToken(kMemberships, token)) {
      parts_.push_back(Prefixed(*membership, Pop(Kind::Sids)));
    } else if (token == kNotToken) {
      const Part operand = Enclose(PopOperand());
      parts_.push_back({'!' + operand.text, Kind::Term, Binding::Tight, operand.nesting});
    } else if (token == kAndToken) {
      Join(" && ", Binding::And);
    } else if (token == kOrToken) {
      Join(" || ", Binding::Or);
    } else {
      Fail();
    }
  }

  static std::span<const UINT8> TakeSized(ByteReader& bytes) { return bytes.TakeBytes(bytes.Take<UINT32>()); }

  static Part ReadLiteral(UINT8 token, ByteReader& bytes) {
    if (token >= kInt8Token && token <= kInt64Token) {
      return {IntegerText(bytes), Kind::Value};
    }
    if (token == kStringToken) {
      return {QuotedText(TakeSized(bytes)), Kind::Value};
    }
    if (token == kOctetsToken) {
      return {OctetsText(TakeSized(bytes)), Kind::Value};
    }
    if (token != kSidToken) {
      Fail();
    }
    const auto sid = TakeSized(bytes);
    if (SizeOfSid(sid) != sid.size()) {
      Fail();
    }
    return {"SID(" + SidText(sid) + ')', Kind::Sids};
  }

  void PushList() {
    ByteReader content(TakeSized(bytes_), "a condition's list");
    Part list{"{", Kind::Sids};
    while (!content.Rest().empty()) {
      const auto token = content.Take<UINT8>();
      const Part literal = ReadLiteral(token, content);
      if (literal.kind != Kind::Sids) {
        list.kind = Kind::Value;
      }
      list.text += (list.text.size() > 1 ? ", " : "") + literal.text;
    }
    list.text += '}';
    parts_.push_back(std::move(list));
  }

  Part Pop() {
    if (parts_.empty()) {
      Fail();
    }
    Part part = std::move(parts_.back());
    parts_.pop_back();
    return part;
  }

  Part Pop(Kind kind) {
    Part part = Pop();
    if (part.kind != kind) {
      Fail();
    }
    return part;
  }

  /// What is true, false or unknown; an attribute alone may be.
  Part PopOperand() {
    Part part = Pop();
    if (part.kind != Kind::Term && part.kind != Kind::Attribute) {
      Fail();
    }
    return part;
  }

  static Part Prefixed(const ConditionName& name, const Part& operand) {
    return {std::string(name.name) + ' ' + operand.text, Kind::Term};
  }

  void Relate(const ConditionName& relation) {
    const Part value = Pop();
    if (value.kind == Kind::Term) {
      Fail();
    }
    Part attribute = Pop(Kind::Attribute);
    attribute.text.append(" ").append(relation.name).append(" ").append(value.text);
    parts_.push_back({std::move(attribute.text), Kind::Term});
  }

  static Part Enclose(Part part) {
    if (part.nesting == kMostNesting) {
      throw SddlError("a condition is nested too deeply");
    }
    part.text = '(' + part.text + ')';
    return {std::move(part.text), Kind::Term, Binding::Tight, part.nesting + 1};
  }

  /// Operators of a kind follow each other from left to right, so only the right one needs parentheses.
  void Join(const char* symbol, Binding binding) {
    Part right = PopOperand();
    if (right.binding <= binding) {
      right = Enclose(std::move(right));
    }
    Part left = PopOperand();
    if (left.binding < binding) {
      left = Enclose(std::move(left));
    }
    parts_.push_back({std::move(left.text) + symbol + right.text, Kind::Term, binding,
                      std::max(left.nesting, right.nesting)});
  }

  ByteReader bytes_;
  std::vector<Part> parts_;
};

}  // namespace

std::string ConditionText(std::span<const UINT8> condition) { return ConditionReader(condition).Read(); }

}  // namespace Dump
