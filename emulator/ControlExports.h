/**
 * @file
 * The emulator's control interface as the DLL exports it, for C and C++; find the functions with
 * GetProcAddress. Texts are UTF-8.
 */
#pragma once

/* It must come before windows.h. */
#include <winsock2.h>

#include <windows.h>

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Of Windows 10; not in the headers of every toolchain. */
struct FWPM_NET_EVENT3_;

/** What clients have not given back. */
// NOLINTNEXTLINE(modernize-use-using): for C, too.
typedef struct EngineEmulatorOutstanding {
  size_t sessions;
  size_t openTransactions;
  size_t enumHandles;
  size_t memoryBlocks;
  size_t subscriptions;
} EngineEmulatorOutstanding;

/** A fresh engine. Handles and memory handed out before become invalid. */
void EngineEmulatorReset(void);

/**
 * Lets the nth call of a function from now on (1 = the next) fail with a code, without any effect.
 * @param function such as "FwpmFilterAdd0"; empty for calls of any function but FwpmFreeMemory0.
 */
void EngineEmulatorFailCall(const char* function, size_t nth, DWORD code);

void EngineEmulatorClearJournal(void);

/**
 * The calls since the last reset or clearing, oldest first, one line each:
 *   FwpmProviderGetByKey0(c0c00001-...) -> FWP_E_PROVIDER_NOT_FOUND (0x80320005)
 * @param buffer receives as much as fits, always terminated; may be null if size is 0.
 * @return the size of the whole text with its terminating zero.
 */
size_t EngineEmulatorJournalText(char* buffer, size_t size);

/**
 * The objects that clients added, providers first, then sublayers, then filters, in the order of adding.
 * One line each, "-" for an absent key:
 *   provider <key> flags <n> "<name>" "<description>" service "<name>"
 *   sublayer <key> flags <n> weight <n> provider <key> "<name>" "<description>"
 *   filter <id> <key> sublayer <key> provider <key> "<name>" "<description>" <layer, action, conditions>
 * Buffer, size and result are those of EngineEmulatorJournalText.
 */
size_t EngineEmulatorSnapshotText(char* buffer, size_t size);

void EngineEmulatorCountOutstanding(EngineEmulatorOutstanding* outstanding);

/** The functions that handed out the memory which is outstanding, one a line, oldest first. */
size_t EngineEmulatorOutstandingMemoryText(char* buffer, size_t size);

/**
 * Why the engine last refused something, which its code alone does not tell:
 *   IP_ARRIVAL_INTERFACE is not a field of ALE_FLOW_ESTABLISHED_V4
 * Empty if it has refused nothing since the last reset.
 */
size_t EngineEmulatorLastRefusal(char* buffer, size_t size);

/**
 * Sets a switch, until the next reset: how the engine behaves where the platform's documentation leaves it
 * open. Switches.h lists them.
 * @param name such as "refuseEmptyNames"; "lenient" with a value other than 0 for all that refuse at once.
 * @return 1, or 0 if there is no such switch.
 */
int EngineEmulatorSetRule(const char* name, UINT32 value);

/**
 * Ends every open transaction, as the engine does to one that is held for an hour: the next call of its
 * session fails with FWP_E_TXN_ABORTED.
 */
void EngineEmulatorExpireTransactions(void);

/**
 * Lets the engine record a net event and tell its subscribers, as if traffic had caused it. The engine's
 * options decide whether it does.
 * @param event a drop, what was let through, or either by a capability. It is copied. Without a time stamp
 * it has the present time.
 * @return ERROR_SUCCESS, also if nobody hears of it; FWP_E_INVALID_ENUMERATOR for another type of event;
 * FWP_E_NULL_POINTER and FWP_E_INVALID_PARAMETER for what a client could not read.
 */
DWORD EngineEmulatorRaiseEvent(const struct FWPM_NET_EVENT3_* event);

/**
 * How many events subscribers have missed since the last reset, because too many were waiting for them: the
 * rule waitingEvents.
 */
size_t EngineEmulatorCountMissedEvents(void);

/**
 * Ends all sessions, as when the engine's service is stopped: no callback runs any more, FwpmEngineOpen0
 * fails with EPT_S_NOT_REGISTERED and calls in the sessions so far with RPC_S_SERVER_UNAVAILABLE. A reset
 * starts it again.
 */
void EngineEmulatorStopEngine(void);

/** Makes a path count as an existing file for application ids, whatever the file system says. */
void EngineEmulatorPretendFileExists(const wchar_t* path);

#ifdef __cplusplus
}
#endif
