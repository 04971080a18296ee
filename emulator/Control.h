/**
 * @file
 * Looks into the emulated filtering engine and steers it: for tests and tools that hold the emulator as
 * a static library. ControlExports.h has the same for the DLL.
 */
#pragma once

#include <NetEvents.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "emulator/Call.h"
#include "emulator/Switches.h"

namespace EngineEmulator {

/// A fresh engine: no sessions, no objects but the built-in ones, no faults planned, an empty journal.
/// Handles and memory handed out before become invalid.
void Reset();

/// A fresh engine in the place of the one so far, as long as this object lives. Then the one before is back
/// as it was. No call may be waiting, and handles and memory are to be used only while their engine is in its
/// place; what memory holds can be read meanwhile.
class FreshEngine {
 public:
  FreshEngine();
  ~FreshEngine();
  FreshEngine(const FreshEngine&) = delete;
  FreshEngine& operator=(const FreshEngine&) = delete;
};

/// Lets the nth call of a function from now on (1 = the next) fail with a code, without any effect.
/// Several plans for one function may be waiting.
/// @param function such as "FwpmFilterAdd0"; empty for calls of any function but FwpmFreeMemory0.
void FailCall(const std::string& function, std::size_t nth, DWORD code);

/// The calls since the last Reset or ClearJournal, oldest first; of many, the last Switches::journalEntries.
std::vector<Call> Journal();
void ClearJournal();

struct ProviderObject {
  GUID key;
  std::wstring name;
  std::wstring description;
  std::wstring serviceName;
  UINT32 flags;
};

struct SublayerObject {
  GUID key;
  std::wstring name;
  std::wstring description;
  UINT32 flags;
  std::optional<GUID> providerKey;
  UINT16 weight;
};

struct FilterObject {
  UINT64 id;
  GUID key;
  std::wstring name;
  std::wstring description;
  UINT32 flags;
  std::optional<GUID> providerKey;
  GUID layerKey;
  GUID subLayerKey;
  std::string text;  ///< Catalog::DescribeFilter of the record, less the flag INDEXED, which the engine sets
};

/// What the engine holds, in the order of adding, less callouts and what is built in. Changes of a
/// transaction that is still open are included, though other sessions do not see them yet.
struct Snapshot {
  std::vector<ProviderObject> providers;
  std::vector<SublayerObject> sublayers;
  std::vector<FilterObject> filters;
};
Snapshot TakeSnapshot();

/// What clients have not given back.
struct Outstanding {
  std::size_t sessions;
  std::size_t openTransactions;
  std::size_t enumHandles;
  std::size_t memoryBlocks;
  std::size_t subscriptions;
};
Outstanding CountOutstanding();

/// The functions that handed out the memory blocks which are outstanding, oldest first.
std::vector<std::string> OutstandingMemory();

/// Why the engine last refused something, which its code alone does not tell: "IP_ARRIVAL_INTERFACE is not a
/// field of ALE_FLOW_ESTABLISHED_V4". Empty if it has refused nothing since the last Reset.
std::string LastRefusal();

/// How the engine decides what the platform's documentation leaves open. Reset restores the defaults.
Switches GetSwitches();
void SetSwitches(const Switches& switches);

/// Ends every open transaction, as the engine does to one that is held for an hour: nothing of it remains,
/// and the next call of its session fails with FWP_E_TXN_ABORTED.
void ExpireTransactions();

/// Lets the engine record a net event and tell its subscribers, as if traffic had caused it. The engine's
/// options decide whether it does.
/// @param event a drop, what was let through, or either by a capability. It is copied. Without a time stamp
/// it has the present time.
/// @return ERROR_SUCCESS, also if nobody hears of it; FWP_E_INVALID_ENUMERATOR for another type of event;
/// FWP_E_NULL_POINTER and FWP_E_INVALID_PARAMETER for what a client could not read.
DWORD RaiseEvent(const FWPM_NET_EVENT3& event);

/// How many events subscribers have missed since the last Reset, because too many were waiting for them:
/// Switches::waitingEvents.
std::size_t CountMissedEvents();

/// Ends all sessions, as when the engine's service is stopped: no callback runs any more, FwpmEngineOpen0
/// fails with EPT_S_NOT_REGISTERED and calls in the sessions so far with RPC_S_SERVER_UNAVAILABLE. Reset
/// starts it again.
void StopEngine();

/// Makes a path count as an existing file for application ids, whatever the file system says.
void PretendFileExists(const std::wstring& path);

}  // namespace EngineEmulator
