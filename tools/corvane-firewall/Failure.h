#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

enum class Engine { System, Emulated };

/// What stopped the tool, in words for its user; UTF-8.
class Failure : public std::runtime_error {
 public:
  /// Something that no command and no engine call reported.
  Failure(const std::string& text, std::string hint);
  /// @param code a result of the library or of the engine.
  Failure(std::uint64_t code, const std::string& text);

  [[nodiscard]] std::optional<std::uint64_t> Code() const { return code_; }
  /// What to do about it; empty when there is nothing to say.
  /// @param engine that it was about; none where no step was run.
  [[nodiscard]] std::string Hint(std::optional<Engine> engine) const;

 private:
  std::optional<std::uint64_t> code_;
  std::string hint_;
};

/// "FWP_E_IN_USE (0x8032000a)": codes of the library, the engine and the system.
std::string CodeName(std::uint64_t code);
