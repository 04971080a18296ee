// A conditional expression into bytes, by recursive descent: || over && over ! over everything else.
#include "dump/SddlConditionTables.h"
#include "dump/SddlParts.h"

namespace Dump {
namespace {

bool IsWordCharacter(char character) {
  return IsNameCharacter(character) || character == '%' || character == '@';
}

/// A token, and behind it bytes with their size.
void AppendSized(Bytes& bytes, UINT8 token, std::span<const UINT8> content) {
  bytes.push_back(token);
  AppendNumber(bytes, static_cast<UINT32>(content.size()));
  AppendBytes(bytes, content);
}

class ConditionParser {
 public:
  ConditionParser(SddlCursor& cursor, DomainSids domainSids) : cursor_(cursor), domainSids_(domainSids) {}

  Bytes Parse() {
    cursor_.Take("(");
    TakeInner();
    return std::move(bytes_);
  }

 private:
  /// Up to the parenthesis that closes.
  void TakeInner() {
    if (++nesting_ > kMostNesting) {
      cursor_.Fail("at most 64 parentheses in each other");
    }
    TakeAlternatives();
    cursor_.Take(")");
    --nesting_;
  }

  void TakeAlternatives() {
    TakeConjunction();
    while (TakeSymbol("||")) {
      TakeConjunction();
      bytes_.push_back(kOrToken);
    }
  }

  void TakeConjunction() {
    TakeNegatable();
    while (TakeSymbol("&&")) {
      TakeNegatable();
      bytes_.push_back(kAndToken);
    }
  }

  void TakeNegatable() {
    std::size_t negations = 0;
    while (TakeSymbol("!")) {
      ++negations;
    }
    if (TakeSymbol("(")) {
      TakeInner();
    } else {
      TakeTerm();
    }
    bytes_.insert(bytes_.end(), negations, kNotToken);
    cursor_.SkipBlanks();
  }

  bool TakeSymbol(std::string_view symbol) {
    cursor_.SkipBlanks();
    return cursor_.TakeIf(symbol);
  }

  void TakeTerm() {
    if (const ConditionName* existence = TakeWordOf(kExistences)) {
      AppendBytes(bytes_, TakeAttributeName(cursor_));
      bytes_.push_back(existence->token);
    } else if (const ConditionName* membership = TakeWordOf(kMemberships)) {
      TakeSids();
      bytes_.push_back(membership->token);
    } else {
      AppendBytes(bytes_, TakeAttributeName(cursor_));
      TakeRelation();
    }
  }

  /// The word that comes next and the blanks behind it, if it is one of these.
  template <class Names>
  const ConditionName* TakeWordOf(const Names& names) {
    SddlCursor ahead = cursor_;
    const ConditionName* found = FindWord(names, ahead.TakeWhile(IsWordCharacter));
    if (found != nullptr) {
      cursor_ = ahead;
      cursor_.SkipBlanks();
    }
    return found;
  }

  /// An operator and a value, if there are any: an attribute may stand alone.
  void TakeRelation() {
    cursor_.SkipBlanks();
    const ConditionName* relation = TakeWordOf(kRelations);
    if (relation == nullptr) {
      relation = TakeComparison();
    }
    if (relation == nullptr) {
      return;
    }
    cursor_.SkipBlanks();
    TakeValue();
    bytes_.push_back(relation->token);
  }

  const ConditionName* TakeComparison() {
    const auto found = std::ranges::find_if(
        kRelations, [this](const ConditionName& name) { return cursor_.TakeIf(name.name); });
    return found == kRelations.end() ? nullptr : &*found;
  }

  /// What an attribute is compared with: values, or another attribute.
  void TakeValue() {
    if (cursor_.Rest().starts_with("{")) {
      TakeList([this] { return TakeLiteral(); });
    } else {
      const Bytes literal = TakeLiteral();
      AppendBytes(bytes_, literal.empty() ? TakeAttributeName(cursor_) : literal);
    }
  }

  void TakeSids() {
    const auto takeSid = [this] {
      Bytes sid = TakeSidLiteral();
      if (sid.empty()) {
        cursor_.Fail("SID(...)");
      }
      return sid;
    };
    if (cursor_.Rest().starts_with("{")) {
      TakeList(takeSid);
    } else {
      AppendBytes(bytes_, takeSid());
    }
  }

  template <class TakeOne>
  void TakeList(TakeOne takeOne) {
    Bytes content;
    cursor_.Take("{");
    cursor_.SkipBlanks();
    while (!cursor_.TakeIf("}")) {
      if (!content.empty()) {
        cursor_.Take(",");
      }
      cursor_.SkipBlanks();
      const Bytes literal = takeOne();
      if (literal.empty()) {
        cursor_.Fail("a value");
      }
      AppendBytes(content, literal);
      cursor_.SkipBlanks();
    }
    AppendSized(bytes_, kListToken, content);
  }

  /// Nothing if no literal comes next.
  Bytes TakeLiteral() {
    Bytes literal;
    const char next = cursor_.IsAtEnd() ? '\0' : cursor_.Rest()[0];
    if (next == '"') {
      AppendSized(literal, kStringToken, TakeQuoted(cursor_));
    } else if (next == '#') {
      AppendSized(literal, kOctetsToken, TakeOctets(cursor_));
    } else if (IsDigit(next) || next == '+' || next == '-') {
      literal.push_back(kInt64Token);
      AppendBytes(literal, TakeInteger(cursor_));
    } else {
      literal = TakeSidLiteral();
    }
    return literal;
  }

  Bytes TakeSidLiteral() {
    Bytes literal;
    if (cursor_.TakeIf("SID(")) {
      AppendSized(literal, kSidToken, TakeSid(cursor_, domainSids_));
      cursor_.Take(")");
    }
    return literal;
  }

  SddlCursor& cursor_;
  DomainSids domainSids_;
  Bytes bytes_{kConditionMark.begin(), kConditionMark.end()};
  int nesting_ = 0;
};

}  // namespace

Bytes TakeCondition(SddlCursor& cursor, DomainSids domainSids) {
  return ConditionParser(cursor, domainSids).Parse();
}

}  // namespace Dump
