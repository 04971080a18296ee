/**
 * @file
 * Which calls in the journal make a command fail, and with what text.
 */
#pragma once

#include <WfpPlatform.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "emulator/Control.h"

namespace Fuzz {

/// An engine call that a command needs, and the error text after its failure.
struct FailureText {
  std::string_view function;
  std::string_view text;
};
constexpr FailureText kFailureTexts[]{
    {"FwpmEngineOpen0", "Error opening engine."},
    {"FwpmProviderAdd0", "Failed to add provider"},
    {"FwpmSubLayerAdd0", "Error creating sublayer."},
    {"FwpmFilterAdd0", "Failed to add filter to firewall."},
    {"FwpmSubLayerDeleteByKey0", "Failed to remove provider."},
    {"FwpmTransactionBegin0", "Failed to begin transaction."},
    {"FwpmTransactionCommit0", "Failed to commit transaction."},
    {"FwpmGetAppIdFromFileName0", "Failed to retrieve app blob"},
};

struct Failure {
  std::string_view function;
  std::string_view text;
  std::uint32_t code;
};

using Calls = std::vector<EngineEmulator::Call>;

inline bool IsFailedRemoval(const EngineEmulator::Call& call) {
  return call.function == "FwpmSubLayerDeleteByKey0" && call.result != ERROR_SUCCESS &&
         call.result != 0x80320005;
}

/// The first failure of a call that the command needs.
inline std::optional<Failure> FirstFailure(const Calls& calls = EngineEmulator::Journal()) {
  for (const EngineEmulator::Call& call : calls) {
    const auto* rule = std::ranges::find(kFailureTexts, call.function, &FailureText::function);
    const bool sublayerWasGone = call.function == "FwpmSubLayerDeleteByKey0" && call.result == 0x80320005;
    if (call.result != ERROR_SUCCESS && rule != std::end(kFailureTexts) && !sublayerWasGone) {
      return Failure{rule->function, rule->text, call.function == "FwpmProviderAdd0" ? 1 : call.result};
    }
  }
  return std::nullopt;
}

/// The calls in the journal without those of one function.
inline Calls CallsBesides(std::string_view function) {
  Calls calls = EngineEmulator::Journal();
  std::erase_if(calls, [&](const EngineEmulator::Call& call) { return call.function == function; });
  return calls;
}

/// The calls that EnableLeakProtection needs when it does not replace anything. Not needed are those that
/// build the DNS rules, the session for reading the blocks to copy, and the removals after a failure.
inline Calls EssentialCallsOfFirstEnable() {
  Calls calls = EngineEmulator::Journal();
  std::erase_if(calls, [readerSeen = false](const EngineEmulator::Call& call) mutable {
    const bool isReader = call.function == "FwpmEngineOpen0" && !std::exchange(readerSeen, true);
    return isReader || call.function == "FwpmGetAppIdFromFileName0" ||
           call.function == "FwpmSubLayerDeleteByKey0";
  });
  return calls;
}

inline std::string LoggedCode(const Failure& failure) {
  return std::to_string(static_cast<std::int32_t>(failure.code));
}

}  // namespace Fuzz
