#include "Failure.h"

#include <WfpPlatform.h>

#include <utility>

#include "catalog/Names.h"
#include "corvane/native_firewall.h"

namespace {

struct CodeHint {
  DWORD code;
  const char* hint;
};

// These hints fit the system's engine only; the emulator can return the same codes for other reasons.
constexpr CodeHint kSystemHints[]{
    {ERROR_ACCESS_DENIED, "The filtering engine is open to administrators only: run this as administrator."},
    {RPC_S_CANNOT_SUPPORT,
     "This system has no filtering engine. With --engine emulated the steps run against an emulated one."},
    {EPT_S_NOT_REGISTERED,
     "The filtering engine is not running: start the Base Filtering Engine service (BFE)."},
};

}  // namespace

const char* EngineName(Engine engine) {
  switch (engine) {
    case Engine::System:
      return "system";
    case Engine::Emulated:
      return "emulated";
    case Engine::Dump:
      return "dump";
  }
  return "";
}

Failure::Failure(const std::string& text, std::string hint)
    : std::runtime_error(text), hint_(std::move(hint)) {}

Failure::Failure(std::uint64_t code, const std::string& text) : std::runtime_error(text), code_(code) {}

std::string Failure::Hint(std::optional<Engine> engine) const {
  if (engine == Engine::System) {
    for (const CodeHint& entry : kSystemHints) {
      if (code_ == entry.code) {
        return entry.hint;
      }
    }
  }
  return hint_;
}

std::string CodeName(std::uint64_t code) {
  switch (code) {
    case CORVANE_ERROR_WITHOUT_CODE:
      return "CORVANE_ERROR_WITHOUT_CODE (0x00000001)";
    case CORVANE_ERROR_GETTING_INTERFACES:
      return "CORVANE_ERROR_GETTING_INTERFACES (0x00000388)";
    default:
      return Catalog::ErrorName(static_cast<DWORD>(code));
  }
}
