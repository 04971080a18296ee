/**
 * @file
 * What the engine still knows of what it dropped.
 */
#pragma once

#include <vector>

#include "watch/EventCalls.h"
#include "watch/NetEvent.h"

namespace Watch {

/// The events that the engine remembers, some hundred, the newest last.
/// @throws WatchError with the engine's code: FWP_E_NET_EVENTS_DISABLED when it collects none,
/// ERROR_ACCESS_DENIED when rights are missing, ERROR_CALL_NOT_IMPLEMENTED when it has none of the functions.
std::vector<NetEvent> ReadRememberedEvents(const EventCalls& engine);

}  // namespace Watch
