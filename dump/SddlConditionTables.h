/**
 * @file
 * The bytes of conditional expressions: literals, attributes and operators in postfix order.
 */
#pragma once

#include <WfpPlatform.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

#include "dump/Numbers.h"

namespace Dump {

/// What a condition's bytes begin with.
inline constexpr std::array<UINT8, 4> kConditionMark{'a', 'r', 't', 'x'};

/// Expressions nested deeper than this are refused.
inline constexpr int kMostNesting = 64;

inline constexpr UINT8 kPaddingToken = 0x00;
inline constexpr UINT8 kInt8Token = 0x01;
inline constexpr UINT8 kInt64Token = 0x04;
inline constexpr UINT8 kStringToken = 0x10;
inline constexpr UINT8 kOctetsToken = 0x18;
inline constexpr UINT8 kListToken = 0x50;
inline constexpr UINT8 kSidToken = 0x51;
inline constexpr UINT8 kAndToken = 0xA0;
inline constexpr UINT8 kOrToken = 0xA1;
inline constexpr UINT8 kNotToken = 0xA2;
inline constexpr UINT8 kLocalToken = 0xF8;

// How an integer was written.
inline constexpr UINT8 kPlus = 1;
inline constexpr UINT8 kMinus = 2;
inline constexpr UINT8 kNoSign = 3;
inline constexpr UINT8 kOctal = 1;
inline constexpr UINT8 kDecimal = 2;
inline constexpr UINT8 kHexadecimal = 3;

struct ConditionName {
  std::string_view name;
  UINT8 token;
};

/// Operators between an attribute and a value; a name before those that it begins with.
inline constexpr auto kRelations = std::to_array<ConditionName>({
    {"==", 0x80},
    {"!=", 0x81},
    {"<=", 0x83},
    {"<", 0x82},
    {">=", 0x85},
    {">", 0x84},
    {"Contains", 0x86},
    {"Any_of", 0x88},
    {"Not_Contains", 0x8E},
    {"Not_Any_of", 0x8F},
});

/// Operators before an attribute.
inline constexpr auto kExistences = std::to_array<ConditionName>({{"exists", 0x87}, {"not_exists", 0x8D}});

/// Operators before a SID or a list of them.
inline constexpr auto kMemberships = std::to_array<ConditionName>({
    {"Member_of", 0x89},
    {"Device_Member_of", 0x8A},
    {"Member_of_Any", 0x8B},
    {"Device_Member_of_Any", 0x8C},
    {"Not_Member_of", 0x90},
    {"Not_Device_Member_of", 0x91},
    {"Not_Member_of_Any", 0x92},
    {"Not_Device_Member_of_Any", 0x93},
});

/// Whose attribute it is; the token's has no prefix.
inline constexpr auto kAttributePrefixes = std::to_array<ConditionName>({
    {"@User.", 0xF9},
    {"@Resource.", 0xFA},
    {"@Device.", 0xFB},
});

/// Words are compared without regard to case, as the platform does.
inline bool EqualWords(std::string_view left, std::string_view right) {
  return std::ranges::equal(left, right, {}, ToLower, ToLower);
}

template <std::size_t kCount>
const ConditionName* FindWord(const std::array<ConditionName, kCount>& names, std::string_view word) {
  for (const ConditionName& name : names) {
    if (EqualWords(name.name, word)) {
      return &name;
    }
  }
  return nullptr;
}

template <std::size_t kCount>
const ConditionName* FindToken(const std::array<ConditionName, kCount>& names, UINT8 token) {
  for (const ConditionName& name : names) {
    if (name.token == token) {
      return &name;
    }
  }
  return nullptr;
}

/// Whether a character stands for itself in the name of an attribute; others are written as %XXXX.
inline bool IsNameCharacter(char character) {
  return static_cast<unsigned char>(character) >= 0x80 || IsLetter(character) || IsDigit(character) ||
         std::string_view(":/._").find(character) != std::string_view::npos;
}

}  // namespace Dump
