#include "policy/FlagsTable.h"

#include <algorithm>

namespace Policy {
namespace {

constexpr UINT32 kLoopback = FWP_CONDITION_FLAG_IS_LOOPBACK;
constexpr UINT32 kCompanion = FWP_CONDITION_FLAG_IS_NON_APPCONTAINER_LOOPBACK;
constexpr UINT32 kCompanions = FWP_CONDITION_FLAG_IS_APPCONTAINER_LOOPBACK | kCompanion;

bool LacksCompanion(UINT32 word) { return (word & (kLoopback | kCompanions)) == kLoopback; }

bool IsWord(const Test& test) { return test.kind == Test::Kind::InInterval; }

UINT32 WordOf(const Test& test) { return static_cast<UINT32>(test.interval.first.low); }

bool Contains(const Test& test, UINT32 word) {
  const UINT32 bits = WordOf(test);
  switch (test.kind) {
    case Test::Kind::AllSet:
      return (word & bits) == bits;
    case Test::Kind::AnySet:
      return (word & bits) != 0;
    case Test::Kind::NoneSet:
      return (word & bits) == 0;
    case Test::Kind::InInterval:
      return test.interval.first <= Number(word) && Number(word) <= test.interval.last;
    default:
      return false;
  }
}

}  // namespace

FlagsTable::FlagsTable(const StateLayout& layout, std::vector<TestGroup> groups)
    : FieldTable(Field::Flags, layout, std::move(groups)) {
  FindTestedBits();
  AddNamedWords();
  AddBitPatterns();
  unset_ = InternUnset();
}

bool FlagsTable::DependsOnCompanion(const Test& test) {
  if (test.TestsFlags()) {
    return (WordOf(test) & kCompanion) != 0;
  }
  return IsWord(test) && (WordOf(test) & kLoopback) != 0;
}

void FlagsTable::FindTestedBits() {
  for (const TestGroup& group : Groups()) {
    for (const Test* test : group.tests) {
      testedBits_ |= test->TestsFlags() ? WordOf(*test) : 0;
    }
  }
  if ((testedBits_ & kCompanion) != 0) {
    testedBits_ |= kLoopback | kCompanions;
  }
}

UINT32 FlagsTable::ShownWord(UINT32 word, const TestGroup& group, const Plane& plane) const {
  const bool isAccompanied = plane.loopbackAccompanied || group.bit < Layout().acceptEnd;
  return !group.isMark && isAccompanied && LacksCompanion(word) ? word | kCompanion : word;
}

std::size_t FlagsTable::InternWord(UINT32 word) {
  std::vector<BitWord> signature = EmptySignature();
  for (std::size_t group = 0; group < Groups().size(); ++group) {
    for (std::size_t plane = 0; plane < Layout().planes.size(); ++plane) {
      const UINT32 shown = ShownWord(word, Groups()[group], Layout().planes[plane]);
      Standing standing;
      for (const Test* test : Groups()[group].tests) {
        const bool contains = Contains(*test, shown);
        (test->negated ? standing.failing : standing.positive) += contains ? 1 : 0;
      }
      Write(signature, group, standing, plane);
    }
  }
  return Intern(signature);
}

void FlagsTable::AddNamedWords() {
  std::vector<UINT32> words;
  for (const TestGroup& group : Groups()) {
    for (const Test* test : group.tests) {
      if (IsWord(*test)) {
        words.push_back(WordOf(*test));
        // The word that becomes this one with its companion.
        const UINT32 bare = WordOf(*test) & ~kCompanion;
        words.push_back(LacksCompanion(bare) ? bare : WordOf(*test));
      }
    }
  }
  std::ranges::sort(words);
  words.erase(std::unique(words.begin(), words.end()), words.end());
  for (const UINT32 word : words) {
    named_.push_back({word, word & testedBits_, InternWord(word)});
  }
}

bool FlagsTable::IsNamed(UINT32 word) const {
  return std::ranges::find(named_, word, &Piece::word) != named_.end();
}

/// The least word with some of the tested bits that no condition names; none if all are named.
std::optional<UINT32> FlagsTable::UnnamedWord(UINT32 bits) const {
  // Counts through the words with these tested bits. After one more than there are named words, some word was
  // not named.
  UINT32 word = bits;
  for (std::size_t i = 0; i <= named_.size(); ++i) {
    if (!IsNamed(word)) {
      return word;
    }
    const UINT32 rest = ((word | testedBits_) + 1) & ~testedBits_;
    word = rest | bits;
  }
  return std::nullopt;
}

void FlagsTable::AddBitPatterns() {
  // All subsets of the tested bits, in ascending order.
  UINT32 bits = 0;
  do {
    if (const auto word = UnnamedWord(bits)) {
      patterns_.push_back({*word, bits, InternWord(*word)});
    }
    bits = (bits - testedBits_) & testedBits_;
  } while (bits != 0);
}

std::size_t FlagsTable::SignatureOfWord(UINT32 word) const {
  const auto named = std::ranges::find(named_, word, &Piece::word);
  if (named != named_.end()) {
    return named->signature;
  }
  return std::ranges::lower_bound(patterns_, word & testedBits_, {}, &Piece::bits)->signature;
}

std::size_t FlagsTable::SignatureOf(const Connection& connection) const {
  return connection.flags ? SignatureOfWord(*connection.flags) : unset_;
}

std::vector<UINT32> FlagsTable::NamedWith(UINT32 bits) const {
  std::vector<UINT32> words;
  for (const Piece& named : named_) {
    if (named.bits == bits) {
      words.push_back(named.word);
    }
  }
  return words;
}

ValueClass FlagsTable::Collect(const std::vector<bool>& signatures, const Connection& ordinary) const {
  ValueClass found;
  found.unset = signatures[unset_];
  for (const Piece& word : named_) {
    if (signatures[word.signature]) {
      found.intervals.push_back({word.word, word.word});
      found.exampleNumber = found.exampleNumber.value_or(word.word);
    }
  }
  for (const Piece& pattern : patterns_) {
    if (signatures[pattern.signature]) {
      found.masked.push_back({testedBits_, pattern.bits, NamedWith(pattern.bits)});
      found.exampleNumber = found.exampleNumber.value_or(pattern.word);
    }
  }
  if (ordinary.flags && signatures[SignatureOfWord(*ordinary.flags)]) {
    found.exampleNumber = *ordinary.flags;
  }
  return found;
}

}  // namespace Policy
