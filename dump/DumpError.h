/**
 * @file
 * What can go wrong with a dump.
 */
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

namespace Dump {

/// A dump that cannot be read or written. The text says where, what was expected and what was found instead:
/// "machine.xml:120: expected a GUID like {...} in <filterKey>, found \"abc\"".
class DumpError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;

  /// @param line from 1.
  DumpError(const std::string& fileName, std::size_t line, const std::string& text)
      : std::runtime_error(fileName + ':' + std::to_string(line) + ": " + text) {}
};

}  // namespace Dump
