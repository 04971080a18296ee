/**
 * @file
 * Drops, as the engine hands them to subscribers and decoded.
 */
#pragma once

#include <NetEvents.h>

#include <string>
#include <type_traits>

#include "watch/NetEvent.h"

/// 2026-11-22T09:16:19.123Z in units of 100 ns.
inline constexpr UINT64 kNineSixteen = 134398125791230000;

/// A SID with room for two numbers: S-1-5-21-7 unless changed.
struct NativeSid {
  SID sid{SID_REVISION, 2, {{0, 0, 0, 0, 0, 5}}, {21}};
  DWORD second = 7;
};

/// The drop of an outbound connection over TCP, from 192.0.2.1:50000 to 198.51.100.7:443, of
/// \device\harddiskvolume1\a.exe, by filter 12 at ALE_AUTH_CONNECT_V4. Every field is set.
template <class Event>
class NativeDrop {
 public:
  NativeDrop() {
    event.header.timeStamp = {static_cast<DWORD>(kNineSixteen), static_cast<DWORD>(kNineSixteen >> 32)};
    event.header.flags = 0x3FFF;
    event.header.ipVersion = FWP_IP_VERSION_V4;
    event.header.ipProtocol = 6;
    event.header.localAddrV4 = 0xC0000201;
    event.header.remoteAddrV4 = 0xC6336407;
    event.header.localPort = 50000;
    event.header.remotePort = 443;
    event.header.appId = {static_cast<UINT32>(application_.size()),
                          reinterpret_cast<UINT8*>(application_.data())};
    event.header.userId = &user.sid;
    event.type = FWPM_NET_EVENT_TYPE_CLASSIFY_DROP;
    event.classifyDrop = &drop;
    drop.filterId = 12;
    drop.layerId = 48;
    drop.reauthReason = 0;
    drop.originalProfile = 2;
    drop.currentProfile = 2;
    drop.msFwpDirection = 0x3901;
  }
  NativeDrop(const NativeDrop&) = delete;
  NativeDrop& operator=(const NativeDrop&) = delete;

  NativeSid user;
  std::remove_pointer_t<decltype(Event::classifyDrop)> drop{};
  Event event{};

 private:
  static std::string Application() {
    std::string bytes;
    for (const char letter : std::string("\\device\\harddiskvolume1\\a.exe") + '\0') {
      bytes += letter;
      bytes += '\0';
    }
    return bytes;
  }

  std::string application_ = Application();
};

/// The same drop, decoded.
inline Watch::NetEvent Drop(UINT64 time = kNineSixteen) {
  Watch::NetEvent event = Watch::Decode(NativeDrop<FWPM_NET_EVENT3>().event);
  event.time = time;
  return event;
}
