/**
 * @file
 * Net events for tests to raise.
 */
#pragma once

#include <NetEvents.h>

#include <initializer_list>
#include <string_view>
#include <vector>

/// An event with all that hangs off it. What a test does not set is not there, as the flags of its header
/// say.
class NetEventRecord {
 public:
  /// @param direction FWP_DIRECTION_IN or …_OUT
  static NetEventRecord Drop(UINT64 filterId, UINT16 layerId, UINT32 direction = FWP_DIRECTION_OUT);
  static NetEventRecord Allow(UINT64 filterId, UINT16 layerId, UINT32 direction = FWP_DIRECTION_OUT);
  static NetEventRecord CapabilityDrop(UINT64 filterId, FWPM_APPC_NETWORK_CAPABILITY_TYPE capability);
  static NetEventRecord CapabilityAllow(UINT64 filterId, FWPM_APPC_NETWORK_CAPABILITY_TYPE capability);

  /// In units of 100 ns since 1601; without it the engine gives the present time.
  NetEventRecord& At(UINT64 time);
  NetEventRecord& Protocol(UINT8 protocol);
  /// Both ends in host byte order.
  NetEventRecord& Local(UINT32 address, UINT16 port);
  NetEventRecord& Remote(UINT32 address, UINT16 port);
  NetEventRecord& Local(const FWP_BYTE_ARRAY16& address, UINT16 port);
  NetEventRecord& Remote(const FWP_BYTE_ARRAY16& address, UINT16 port);
  NetEventRecord& Scope(UINT32 id);
  /// @param path such as "\\device\\harddiskvolume1\\app.exe", ASCII.
  NetEventRecord& App(std::string_view path);
  /// The SID S-1-5-… with these sub-authorities.
  NetEventRecord& User(std::initializer_list<DWORD> subAuthorities);
  /// The SID S-1-15-… with these sub-authorities.
  NetEventRecord& Package(std::initializer_list<DWORD> subAuthorities);
  NetEventRecord& Loopback();
  NetEventRecord& ReauthorizedFor(UINT32 reason);

  /// The record; valid as long as this object is there and unchanged.
  const FWPM_NET_EVENT3& Native();

 private:
  NetEventRecord() = default;
  void Set(UINT32 flag) { event_.header.flags |= flag; }
  void SetVersion(FWP_IP_VERSION version, FWP_AF family);

  FWPM_NET_EVENT3 event_{};
  FWPM_NET_EVENT_CLASSIFY_DROP2 drop_{};
  FWPM_NET_EVENT_CLASSIFY_ALLOW0 allow_{};
  FWPM_NET_EVENT_CAPABILITY_DROP0 capabilityDrop_{};
  FWPM_NET_EVENT_CAPABILITY_ALLOW0 capabilityAllow_{};
  std::vector<UINT8> app_;
  std::vector<DWORD> user_;  ///< as DWORDs for its alignment
  std::vector<DWORD> package_;
};
