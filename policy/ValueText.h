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
/// @param rest all other values of the field. If naming these takes fewer words, the text is "other than"
/// them.
/// @param longest the most values that are shown; of the others only their count. 0 for all.
std::string ValueText(Field field, IpVersion ipVersion, const ValueClass& values, const ValueClass& rest,
                      const Labels& labels, std::size_t longest = 0);

/// Gives each class its text.
void NameClasses(FieldClasses& classes, IpVersion ipVersion, const Labels& labels);

}  // namespace Policy
