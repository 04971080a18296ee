/**
 * @file
 * Checks before a parser that trusts its input.
 */
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Dump {

/// The line of a place in a text, from 1.
std::size_t LineAt(std::string_view text, std::size_t position);

/// A file's bytes as UTF-8 without a mark. Says what the file is instead if it is no text.
/// @throws DumpError
std::string DecodeFile(std::string bytes, const std::string& fileName);

/// Checks that markup is whole and elements are closed in order, with bounds on their number and depth; that
/// there is no document type, hence no entities to expand. One document element or several.
/// @param text in UTF-8.
/// @throws DumpError
void CheckXml(std::string_view text, const std::string& fileName);

}  // namespace Dump
