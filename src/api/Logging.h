#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The text in UTF-8; a character that cannot be converted becomes U+FFFD.
std::string ToNarrow(std::wstring_view text);

/// Copies of a host's strings. @param texts may be null when count is 0.
std::vector<std::wstring> CopyTexts(const wchar_t* const* texts, std::uint32_t count);

/// The texts with "," between them.
std::wstring Join(std::span<const std::wstring> texts);

/// An error code as the log has it: signed decimal.
std::string ToSignedDecimal(std::uint32_t code);
