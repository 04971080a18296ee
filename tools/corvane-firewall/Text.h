#pragma once

#include <string>
#include <string_view>
#include <vector>

/// UTF-8 of UTF-16; what has no valid conversion becomes the replacement character.
std::string ToUtf8(std::wstring_view text);
/// UTF-16 of UTF-8; what has no valid conversion becomes the replacement character.
std::wstring ToWide(std::string_view text);
std::vector<std::wstring> ToWide(const std::vector<std::string>& texts);
