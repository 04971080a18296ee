/**
 * @file
 * Which calls of a sequence's journal make a command fail, and how.
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

/// The engine calls on which commands depend, and the text that each failure leaves.
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

/// The first failed call that the command cannot do without.
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

/// The calls but for those of one function.
inline Calls CallsBesides(std::string_view function) {
  Calls calls = EngineEmulator::Journal();
  std::erase_if(calls, [&](const EngineEmulator::Call& call) { return call.function == function; });
  return calls;
}

/// The calls without which EnableLeakProtection cannot do when it does not replace anything: neither
/// those of the DNS rules, nor the session that the copy is read in, nor the removal of what failed.
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
