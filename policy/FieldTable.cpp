#include "policy/FieldTable.h"

#include <algorithm>
#include <bit>

namespace Policy {
namespace {

constexpr int kMostTestedFlags = 8;

/// Whether a test of flags holds of a word without any flag.
bool HoldsOfNoFlags(const Test& test) {
  return test.kind == Test::Kind::NoneSet || (test.kind == Test::Kind::AllSet && test.interval.first == 0);
}

}  // namespace

FieldTable::FieldTable(Field field, const StateLayout& layout, std::vector<TestGroup> groups)
    : field_(field), layout_(layout), groups_(std::move(groups)), signatures_(layout.Width()) {
  for (const TestGroup& group : groups_) {
    Counts counts;
    for (const Test* test : group.tests) {
      counts.negations += test->negated ? 1 : 0;
      counts.hasDoubt = counts.hasDoubt || test->kind == Test::Kind::Unreadable;
    }
    counts_.push_back(counts);
  }
}

bool FieldTable::CanJudge(Field field, const Test& test) {
  switch (test.kind) {
    case Test::Kind::Unreadable:
      return false;
    case Test::Kind::Unset:
      return true;
    case Test::Kind::InInterval:
      return field != Field::Flags || test.interval.first >= test.interval.last;
    case Test::Kind::AllSet:
    case Test::Kind::AnySet:
    case Test::Kind::NoneSet:
      return field == Field::Flags;
    case Test::Kind::IsBytes:
    case Test::Kind::EndsWith:
      return field == Field::Application;
  }
  return false;
}

bool FieldTable::CanJudge(Field field, const std::vector<const Test*>& tests) {
  UINT64 flags = 0;
  for (const Test* test : tests) {
    flags |= test->TestsFlags() ? test->interval.first.low : 0;
  }
  return std::popcount(flags) <= kMostTestedFlags &&
         std::ranges::all_of(tests, [field](const Test* test) { return CanJudge(field, *test); });
}

std::vector<BitWord> FieldTable::EmptySignature() const {
  std::vector<BitWord> signature(layout_.Width(), ~BitWord{0});
  for (std::size_t group = 0; group < groups_.size(); ++group) {
    for (std::size_t plane = 0; plane < layout_.planes.size(); ++plane) {
      WriteBits(signature, group, plane, false);
    }
  }
  return signature;
}

bool FieldTable::Holds(std::size_t group, Standing standing, const Plane& plane) const {
  if (groups_[group].isMark) {
    return (standing.positive > 0) != groups_[group].isExcluded;
  }
  const std::size_t negations = counts_[group].negations;
  const bool negationsHold = plane.allNegations ? standing.failing == 0 : standing.failing < negations;
  return standing.positive > 0 || (negations > 0 && negationsHold);
}

bool FieldTable::HoldsUnset(std::size_t group, const Plane& plane) const {
  const bool asksForUnset = std::ranges::any_of(
      groups_[group].tests, [](const Test* test) { return test->kind == Test::Kind::Unset; });
  if (groups_[group].isMark) {
    return asksForUnset != groups_[group].isExcluded;
  }
  const bool matches = std::ranges::any_of(
      groups_[group].tests, [](const Test* test) { return test->negated || HoldsOfNoFlags(*test); });
  return asksForUnset || (plane.unsetMatches && matches);
}

void FieldTable::WriteBits(std::vector<BitWord>& signature, std::size_t group, std::size_t plane,
                           bool holds) const {
  const TestGroup& written = groups_[group];
  if (written.isMark) {
    SetBit(signature.data() + layout_.MarksAt(), written.bit, holds);
    return;
  }
  BitWord* sure = signature.data() + plane * layout_.PlaneWords();
  SetBit(sure, written.bit, holds);
  if (layout_.hasDoubt) {
    SetBit(sure + layout_.filterWords, written.bit, holds || counts_[group].hasDoubt);
  }
}

void FieldTable::Write(std::vector<BitWord>& signature, std::size_t group, Standing standing,
                       std::optional<std::size_t> plane) const {
  const std::size_t first = plane.value_or(0);
  const std::size_t last = plane.value_or(layout_.planes.size() - 1);
  for (std::size_t i = first; i <= last; ++i) {
    WriteBits(signature, group, i, Holds(group, standing, layout_.planes[i]));
  }
}

std::size_t FieldTable::InternUnset() {
  std::vector<BitWord> signature = EmptySignature();
  for (std::size_t group = 0; group < groups_.size(); ++group) {
    for (std::size_t plane = 0; plane < layout_.planes.size(); ++plane) {
      WriteBits(signature, group, plane, HoldsUnset(group, layout_.planes[plane]));
    }
  }
  return Intern(signature);
}

}  // namespace Policy
