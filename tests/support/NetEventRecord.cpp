#include "support/NetEventRecord.h"

#include <cstring>

namespace {

/// The SID S-1-<authority>-… as DWORDs.
std::vector<DWORD> MakeSid(BYTE authority, std::initializer_list<DWORD> subAuthorities) {
  const BYTE head[8]{SID_REVISION, static_cast<BYTE>(subAuthorities.size()), 0, 0, 0, 0, 0, authority};
  std::vector<DWORD> sid(2);
  std::memcpy(sid.data(), head, sizeof(head));
  sid.insert(sid.end(), subAuthorities);
  return sid;
}

}  // namespace

NetEventRecord NetEventRecord::Drop(UINT64 filterId, UINT16 layerId, UINT32 direction) {
  NetEventRecord record;
  record.event_.type = FWPM_NET_EVENT_TYPE_CLASSIFY_DROP;
  record.drop_.filterId = filterId;
  record.drop_.layerId = layerId;
  record.drop_.msFwpDirection = direction;
  return record;
}

NetEventRecord NetEventRecord::Allow(UINT64 filterId, UINT16 layerId, UINT32 direction) {
  NetEventRecord record;
  record.event_.type = FWPM_NET_EVENT_TYPE_CLASSIFY_ALLOW;
  record.allow_.filterId = filterId;
  record.allow_.layerId = layerId;
  record.allow_.msFwpDirection = direction;
  return record;
}

NetEventRecord NetEventRecord::CapabilityDrop(UINT64 filterId, FWPM_APPC_NETWORK_CAPABILITY_TYPE capability) {
  NetEventRecord record;
  record.event_.type = FWPM_NET_EVENT_TYPE_CAPABILITY_DROP;
  record.capabilityDrop_ = {capability, filterId, FALSE};
  return record;
}

NetEventRecord NetEventRecord::CapabilityAllow(UINT64 filterId,
                                               FWPM_APPC_NETWORK_CAPABILITY_TYPE capability) {
  NetEventRecord record;
  record.event_.type = FWPM_NET_EVENT_TYPE_CAPABILITY_ALLOW;
  record.capabilityAllow_ = {capability, filterId, FALSE};
  return record;
}

NetEventRecord& NetEventRecord::At(UINT64 time) {
  event_.header.timeStamp = {static_cast<DWORD>(time), static_cast<DWORD>(time >> 32)};
  return *this;
}

NetEventRecord& NetEventRecord::Protocol(UINT8 protocol) {
  Set(FWPM_NET_EVENT_FLAG_IP_PROTOCOL_SET);
  event_.header.ipProtocol = protocol;
  return *this;
}

void NetEventRecord::SetVersion(FWP_IP_VERSION version, FWP_AF family) {
  Set(FWPM_NET_EVENT_FLAG_IP_VERSION_SET);
  event_.header.ipVersion = version;
  event_.header.addressFamily = family;
}

NetEventRecord& NetEventRecord::Local(UINT32 address, UINT16 port) {
  SetVersion(FWP_IP_VERSION_V4, FWP_AF_INET);
  Set(FWPM_NET_EVENT_FLAG_LOCAL_ADDR_SET | FWPM_NET_EVENT_FLAG_LOCAL_PORT_SET);
  event_.header.localAddrV4 = address;
  event_.header.localPort = port;
  return *this;
}

NetEventRecord& NetEventRecord::Remote(UINT32 address, UINT16 port) {
  SetVersion(FWP_IP_VERSION_V4, FWP_AF_INET);
  Set(FWPM_NET_EVENT_FLAG_REMOTE_ADDR_SET | FWPM_NET_EVENT_FLAG_REMOTE_PORT_SET);
  event_.header.remoteAddrV4 = address;
  event_.header.remotePort = port;
  return *this;
}

NetEventRecord& NetEventRecord::Local(const FWP_BYTE_ARRAY16& address, UINT16 port) {
  SetVersion(FWP_IP_VERSION_V6, FWP_AF_INET6);
  Set(FWPM_NET_EVENT_FLAG_LOCAL_ADDR_SET | FWPM_NET_EVENT_FLAG_LOCAL_PORT_SET);
  event_.header.localAddrV6 = address;
  event_.header.localPort = port;
  return *this;
}

NetEventRecord& NetEventRecord::Remote(const FWP_BYTE_ARRAY16& address, UINT16 port) {
  SetVersion(FWP_IP_VERSION_V6, FWP_AF_INET6);
  Set(FWPM_NET_EVENT_FLAG_REMOTE_ADDR_SET | FWPM_NET_EVENT_FLAG_REMOTE_PORT_SET);
  event_.header.remoteAddrV6 = address;
  event_.header.remotePort = port;
  return *this;
}

NetEventRecord& NetEventRecord::Scope(UINT32 id) {
  Set(FWPM_NET_EVENT_FLAG_SCOPE_ID_SET);
  event_.header.scopeId = id;
  return *this;
}

NetEventRecord& NetEventRecord::App(std::string_view path) {
  Set(FWPM_NET_EVENT_FLAG_APP_ID_SET);
  app_.clear();
  for (const char letter : path) {
    app_.insert(app_.end(), {static_cast<UINT8>(letter), 0});
  }
  app_.insert(app_.end(), {0, 0});
  return *this;
}

NetEventRecord& NetEventRecord::User(std::initializer_list<DWORD> subAuthorities) {
  Set(FWPM_NET_EVENT_FLAG_USER_ID_SET);
  user_ = MakeSid(5, subAuthorities);
  return *this;
}

NetEventRecord& NetEventRecord::Package(std::initializer_list<DWORD> subAuthorities) {
  Set(FWPM_NET_EVENT_FLAG_PACKAGE_ID_SET);
  package_ = MakeSid(15, subAuthorities);
  return *this;
}

NetEventRecord& NetEventRecord::Loopback() {
  drop_.isLoopback = TRUE;
  allow_.isLoopback = TRUE;
  capabilityDrop_.isLoopback = TRUE;
  capabilityAllow_.isLoopback = TRUE;
  return *this;
}

NetEventRecord& NetEventRecord::ReauthorizedFor(UINT32 reason) {
  Set(FWPM_NET_EVENT_FLAG_REAUTH_REASON_SET);
  drop_.reauthReason = reason;
  allow_.reauthReason = reason;
  return *this;
}

const FWPM_NET_EVENT3& NetEventRecord::Native() {
  event_.header.appId = {static_cast<UINT32>(app_.size()), app_.data()};
  event_.header.userId = user_.empty() ? nullptr : reinterpret_cast<SID*>(user_.data());
  event_.header.packageSid = package_.empty() ? nullptr : reinterpret_cast<SID*>(package_.data());
  switch (event_.type) {
    case FWPM_NET_EVENT_TYPE_CLASSIFY_DROP:
      event_.classifyDrop = &drop_;
      break;
    case FWPM_NET_EVENT_TYPE_CLASSIFY_ALLOW:
      event_.classifyAllow = &allow_;
      break;
    case FWPM_NET_EVENT_TYPE_CAPABILITY_DROP:
      event_.capabilityDrop = &capabilityDrop_;
      break;
    default:
      event_.capabilityAllow = &capabilityAllow_;
      break;
  }
  return event_;
}
