#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

/// What the steps work on. A dump is a file that tells what a machine's engine held; it can only be read.
enum class Engine { System, Emulated, Dump };

/// "system", "emulated" or "dump".
const char* EngineName(Engine engine);

/// Why the tool stopped, in words for its user; UTF-8.
class Failure : public std::runtime_error {
 public:
  /// A failure without a code.
  Failure(const std::string& text, std::string hint);
  /// @param code the result of a command of the library or of an engine call.
  Failure(std::uint64_t code, const std::string& text);

  [[nodiscard]] std::optional<std::uint64_t> Code() const { return code_; }
  /// What the user can do about it; empty if nothing is known.
  /// @param engine the engine that the step used; empty if no step ran.
  [[nodiscard]] std::string Hint(std::optional<Engine> engine) const;

 private:
  std::optional<std::uint64_t> code_;
  std::string hint_;
};

/// A code of the library, the engine or the system with its name, such as "FWP_E_IN_USE (0x8032000a)".
std::string CodeName(std::uint64_t code);
