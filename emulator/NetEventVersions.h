/**
 * @file
 * Net events as the engine keeps them, and in each version that clients can ask for.
 */
#pragma once

#include <NetEvents.h>

#include <memory>

#include "emulator/Records.h"
#include "emulator/Refusal.h"

namespace EngineEmulator {

/// What is wrong with an event that is to be raised.
Refusal CheckNetEvent(const FWPM_NET_EVENT3& event);

/// The engine's copy of an event, with all that its flags say is there.
class NetEvent {
 public:
  explicit NetEvent(const FWPM_NET_EVENT3& event);

  [[nodiscard]] const FWPM_NET_EVENT3& Record() const { return *block_.root; }
  /// In bytes, with all that hangs off the record.
  [[nodiscard]] std::size_t Size() const { return size_; }

 private:
  Block<FWPM_NET_EVENT3> block_;
  std::size_t size_;
};
using NetEventPtr = std::shared_ptr<const NetEvent>;

/// Whether the records of a version can tell of an event. Those of Windows 7 and before know drops only.
/// @param type that of the event.
template <class Native>
bool CanTell(UINT32 type) {
  return requires(Native record) { record.header.packageSid; }
  || type == FWPM_NET_EVENT_TYPE_CLASSIFY_DROP;
}

/// Copies an event into a record of a version that can tell of it. The record has no more than its version
/// knows, and its flags say so.
/// @tparam Native FWPM_NET_EVENT0 to FWPM_NET_EVENT3
template <class Native>
Native* PackVersion(Packer& packer, const FWPM_NET_EVENT3& event);

}  // namespace EngineEmulator
