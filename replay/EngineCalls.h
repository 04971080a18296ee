/**
 * @file
 * The engine's functions that it takes to read an engine and to fill one.
 */
#pragma once

#include <WfpPlatform.h>

#include <stdexcept>
#include <string>

namespace Replay {

/// Hands their names to another macro, one by one.
#define CORVANE_FOR_EACH_ENGINE_CALL(handle)     \
  handle(FwpmEngineOpen0);                       \
  handle(FwpmEngineClose0);                      \
  handle(FwpmTransactionBegin0);                 \
  handle(FwpmTransactionCommit0);                \
  handle(FwpmTransactionAbort0);                 \
  handle(FwpmFreeMemory0);                       \
  handle(FwpmLayerCreateEnumHandle0);            \
  handle(FwpmLayerEnum0);                        \
  handle(FwpmLayerDestroyEnumHandle0);           \
  handle(FwpmProviderAdd0);                      \
  handle(FwpmProviderCreateEnumHandle0);         \
  handle(FwpmProviderEnum0);                     \
  handle(FwpmProviderDestroyEnumHandle0);        \
  handle(FwpmProviderContextAdd0);               \
  handle(FwpmProviderContextCreateEnumHandle0);  \
  handle(FwpmProviderContextEnum0);              \
  handle(FwpmProviderContextDestroyEnumHandle0); \
  handle(FwpmSubLayerAdd0);                      \
  handle(FwpmSubLayerCreateEnumHandle0);         \
  handle(FwpmSubLayerEnum0);                     \
  handle(FwpmSubLayerDestroyEnumHandle0);        \
  handle(FwpmCalloutAdd0);                       \
  handle(FwpmCalloutCreateEnumHandle0);          \
  handle(FwpmCalloutEnum0);                      \
  handle(FwpmCalloutDestroyEnumHandle0);         \
  handle(FwpmFilterAdd0);                        \
  handle(FwpmFilterCreateEnumHandle0);           \
  handle(FwpmFilterEnum0);                       \
  handle(FwpmFilterDestroyEnumHandle0)

/// The functions of one engine, the system's or an emulated one, under their own names.
struct EngineCalls {
#define CORVANE_MEMBER(function) decltype(&::function) function
  CORVANE_FOR_EACH_ENGINE_CALL(CORVANE_MEMBER);
#undef CORVANE_MEMBER
};

/// A table of functions that are looked up.
/// @param find takes a place of the table, to fill it, and the function's name.
template <class Find>
EngineCalls FindEngineCalls(Find find) {
  EngineCalls calls{};
#define CORVANE_FIND(function) find(calls.function, #function)
  CORVANE_FOR_EACH_ENGINE_CALL(CORVANE_FIND);
#undef CORVANE_FIND
  return calls;
}

/// The engine that the program is linked with. Inline, so that only who calls it needs that engine.
inline EngineCalls LinkedEngine() {
  EngineCalls calls{};
#define CORVANE_LINK(function) calls.function = (&::function)
  CORVANE_FOR_EACH_ENGINE_CALL(CORVANE_LINK);
#undef CORVANE_LINK
  return calls;
}

/// A call to an engine that failed.
class EngineError : public std::runtime_error {
 public:
  /// @param function such as "FwpmEngineOpen0".
  EngineError(DWORD code, const std::string& function);
  [[nodiscard]] DWORD Code() const { return code_; }

 private:
  DWORD code_;
};

/// @throws EngineError unless the result is ERROR_SUCCESS.
void Check(DWORD result, const std::string& function);

}  // namespace Replay
