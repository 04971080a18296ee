#pragma once

#include <string>
#include <string_view>
#include <vector>

/// UTF-16 to UTF-8; invalid parts become the replacement character.
std::string ToUtf8(std::wstring_view text);
/// UTF-8 to UTF-16; invalid parts become the replacement character.
std::wstring ToWide(std::string_view text);
std::vector<std::wstring> ToWide(const std::vector<std::string>& texts);
