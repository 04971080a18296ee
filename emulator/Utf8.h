/**
 * @file
 * Wide texts as UTF-8.
 */
#pragma once

#include <string>
#include <string_view>

namespace EngineEmulator {

/// UTF-16 as UTF-8; halves of a surrogate pair that stand alone become U+FFFD.
std::string Utf8(std::wstring_view text);

/// Whether every surrogate is part of a pair.
bool IsWellFormed(std::wstring_view text);

}  // namespace EngineEmulator
