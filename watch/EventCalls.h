/**
 * @file
 * The engine's functions that watching it takes.
 */
#pragma once

#include <NetEvents.h>

#include <stdexcept>
#include <string>

namespace Watch {

/// The functions of one engine, the system's or an emulated one, under their own names. Each version of
/// Windows adds versions of some, so those below may be missing; one of each kind must be there.
struct EventCalls {
  decltype(&::FwpmEngineOpen0) FwpmEngineOpen0;
  decltype(&::FwpmEngineClose0) FwpmEngineClose0;
  decltype(&::FwpmEngineGetOption0) FwpmEngineGetOption0;
  decltype(&::FwpmFreeMemory0) FwpmFreeMemory0;
  decltype(&::FwpmNetEventUnsubscribe0) FwpmNetEventUnsubscribe0;
  decltype(&::FwpmNetEventCreateEnumHandle0) FwpmNetEventCreateEnumHandle0;
  decltype(&::FwpmNetEventDestroyEnumHandle0) FwpmNetEventDestroyEnumHandle0;
  // Null where the engine lacks them.
  decltype(&::FwpmNetEventSubscribe0) FwpmNetEventSubscribe0;
  decltype(&::FwpmNetEventSubscribe1) FwpmNetEventSubscribe1;
  decltype(&::FwpmNetEventSubscribe2) FwpmNetEventSubscribe2;
  decltype(&::FwpmNetEventEnum1) FwpmNetEventEnum1;
  decltype(&::FwpmNetEventEnum2) FwpmNetEventEnum2;
  decltype(&::FwpmNetEventEnum3) FwpmNetEventEnum3;
};

/// A table of functions that are looked up.
/// @param find, findIfThere take a place of the table, to fill it, and the function's name. The second leaves
/// the place null if there is no such function.
template <class Find, class FindIfThere>
EventCalls FindEventCalls(Find find, FindIfThere findIfThere) {
  EventCalls calls{};
  find(calls.FwpmEngineOpen0, "FwpmEngineOpen0");
  find(calls.FwpmEngineClose0, "FwpmEngineClose0");
  find(calls.FwpmEngineGetOption0, "FwpmEngineGetOption0");
  find(calls.FwpmFreeMemory0, "FwpmFreeMemory0");
  find(calls.FwpmNetEventUnsubscribe0, "FwpmNetEventUnsubscribe0");
  find(calls.FwpmNetEventCreateEnumHandle0, "FwpmNetEventCreateEnumHandle0");
  find(calls.FwpmNetEventDestroyEnumHandle0, "FwpmNetEventDestroyEnumHandle0");
  findIfThere(calls.FwpmNetEventSubscribe0, "FwpmNetEventSubscribe0");
  findIfThere(calls.FwpmNetEventSubscribe1, "FwpmNetEventSubscribe1");
  findIfThere(calls.FwpmNetEventSubscribe2, "FwpmNetEventSubscribe2");
  findIfThere(calls.FwpmNetEventEnum1, "FwpmNetEventEnum1");
  findIfThere(calls.FwpmNetEventEnum2, "FwpmNetEventEnum2");
  findIfThere(calls.FwpmNetEventEnum3, "FwpmNetEventEnum3");
  return calls;
}

/// The engine that the program is linked with. Inline, so that only who calls it needs that engine.
inline EventCalls LinkedEngine() {
  return {&::FwpmEngineOpen0,
          &::FwpmEngineClose0,
          &::FwpmEngineGetOption0,
          &::FwpmFreeMemory0,
          &::FwpmNetEventUnsubscribe0,
          &::FwpmNetEventCreateEnumHandle0,
          &::FwpmNetEventDestroyEnumHandle0,
          &::FwpmNetEventSubscribe0,
          &::FwpmNetEventSubscribe1,
          &::FwpmNetEventSubscribe2,
          &::FwpmNetEventEnum1,
          &::FwpmNetEventEnum2,
          &::FwpmNetEventEnum3};
}

/// A call to the engine that failed.
class WatchError : public std::runtime_error {
 public:
  /// @param function such as "FwpmEngineOpen0".
  WatchError(DWORD code, const std::string& function);
  [[nodiscard]] DWORD Code() const { return code_; }

 private:
  DWORD code_;
};

/// The engine does not answer any more.
class LostSubscription : public WatchError {
 public:
  explicit LostSubscription(const WatchError& cause) : WatchError(cause) {}
};

}  // namespace Watch
