#include "policy/ValueClass.h"

#include <algorithm>

#include "policy/Test.h"

namespace Policy {
namespace {

template <class T>
void Append(std::vector<T>& all, const std::vector<T>& more) {
  all.insert(all.end(), more.begin(), more.end());
}

/// In ascending order, with gaps between.
void Tidy(std::vector<Interval>& intervals) {
  std::ranges::sort(intervals, {}, &Interval::first);
  std::vector<Interval> tidy;
  for (const Interval& interval : intervals) {
    if (!tidy.empty() && Next(tidy.back().last) == interval.first) {
      tidy.back().last = interval.last;
    } else {
      tidy.push_back(interval);
    }
  }
  intervals = std::move(tidy);
}

bool Contains(const ValueClass& values, const std::optional<Number>& number) {
  if (!number) {
    return values.unset;
  }
  const auto next = std::ranges::upper_bound(values.intervals, *number, {}, &Interval::first);
  return next != values.intervals.begin() && *number <= std::prev(next)->last;
}

/// The class whose intervals hold the number; without a number, the class with `unset`.
std::optional<std::size_t> ClassOfNumber(const FieldClasses& field, const std::optional<Number>& number) {
  for (std::size_t i = 0; i < field.classes.size(); ++i) {
    if (Contains(field.classes[i], number)) {
      return i;
    }
  }
  return std::nullopt;
}

/// The class of a word of flags that no class names.
std::size_t ClassOfPattern(const FieldClasses& field, UINT32 word) {
  const auto fits = [word](const ValueClass::Masked& masked) {
    return (word & masked.mask) == masked.value &&
           std::ranges::find(masked.except, word) == masked.except.end();
  };
  const auto found = std::ranges::find_if(
      field.classes, [&](const ValueClass& values) { return std::ranges::any_of(values.masked, fits); });
  return static_cast<std::size_t>(found - field.classes.begin());
}

std::size_t ClassOfApplication(const FieldClasses& field, const std::optional<std::string>& id) {
  std::size_t best = 0;
  std::size_t longest = 0;
  for (std::size_t i = 0; i < field.classes.size(); ++i) {
    const ValueClass& values = field.classes[i];
    if (id ? std::ranges::find(values.applications, *id) != values.applications.end() : values.unset) {
      return i;
    }
    for (const std::string& ending : values.endings) {
      if (id && IdEndsWith(*id, ending) && ending.size() + 1 > longest) {
        best = i;
        longest = ending.size() + 1;
      }
    }
    if (values.others && longest == 0) {
      best = i;
    }
  }
  return best;
}

}  // namespace

ValueClass Together(std::span<const ValueClass* const> classes) {
  ValueClass all;
  for (const ValueClass* one : classes) {
    all.unset = all.unset || one->unset;
    all.others = all.others || one->others;
    Append(all.intervals, one->intervals);
    Append(all.masked, one->masked);
    Append(all.applications, one->applications);
    Append(all.endings, one->endings);
  }
  Tidy(all.intervals);
  return all;
}

std::size_t ClassOf(const FieldClasses& field, const Connection& connection) {
  if (field.field == Field::Application) {
    return ClassOfApplication(field, connection.application);
  }
  const std::optional<Number> number = NumberOf(connection, field.field);
  const auto named = ClassOfNumber(field, number);
  return named ? *named : ClassOfPattern(field, static_cast<UINT32>(number->low));
}

}  // namespace Policy
