/**
 * @file
 * Classes of values in words.
 */
#pragma once

#include <cstddef>
#include <string>

#include "policy/ValueClass.h"

namespace Policy {

/// Some of a field's values in words: addresses as networks, other numbers as ranges, flags as words.
/// @param values those to name.
/// @param rest all others of the field: where they are fewer words, the text is "other than" these.
/// @param longest of longer lists only so many values are shown, with the count of the rest; 0 for all.
std::string ValueText(Field field, IpVersion ipVersion, const ValueClass& values, const ValueClass& rest,
                      const Labels& labels, std::size_t longest = 0);

/// Gives each class its text.
void NameClasses(FieldClasses& classes, IpVersion ipVersion, const Labels& labels);

}  // namespace Policy
