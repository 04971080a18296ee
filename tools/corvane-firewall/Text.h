#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

/// The platform's wide characters to UTF-8; invalid parts become the replacement character.
std::string ToUtf8(std::wstring_view text);
/// UTF-8 to the platform's wide characters; invalid parts become the replacement character.
std::wstring ToWide(std::string_view text);
std::vector<std::wstring> ToWide(const std::vector<std::string>& texts);

/// A file's path in UTF-8 as the system has it, whatever its locale; and the reverse.
std::filesystem::path ToPath(std::string_view text);
std::string PathToUtf8(const std::filesystem::path& path);
