/**
 * @file
 * Events in words.
 */
#pragma once

#include <string>

#include "watch/NetEvent.h"

namespace Watch {

/// "2026-11-22T09:16:19.123Z"; "unknown time" beyond the year 9999.
std::string TimeText(UINT64 time);
/// "\device\harddiskvolume1\a.exe"; "unknown program" if the event does not tell it.
std::string ProgramText(const NetEvent& event);
/// "outbound IPv4, protocol 6 (TCP), local 192.0.2.1:50000, remote 198.51.100.1:443, user SYSTEM"; what the
/// event does not tell is left out.
std::string ConnectionText(const NetEvent& event);
/// "to 198.51.100.1:443", "from 198.51.100.1 to port 80": what repeats of the event have in common.
std::string TargetText(const NetEvent& event);
/// "CLASSIFY_ALLOW"; "type 77" for one that is not known.
std::string TypeName(UINT32 type);
/// "internetClient", "capability 77"
std::string CapabilityName(UINT32 capability);

}  // namespace Watch
