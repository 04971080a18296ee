#include "emulator/NetEventVersions.h"

#include "emulator/Checks.h"

namespace EngineEmulator {
namespace {

constexpr UINT32 kFlagsOfVersion0 = FWPM_NET_EVENT_FLAG_IP_PROTOCOL_SET | FWPM_NET_EVENT_FLAG_LOCAL_ADDR_SET |
                                    FWPM_NET_EVENT_FLAG_REMOTE_ADDR_SET | FWPM_NET_EVENT_FLAG_LOCAL_PORT_SET |
                                    FWPM_NET_EVENT_FLAG_REMOTE_PORT_SET | FWPM_NET_EVENT_FLAG_APP_ID_SET |
                                    FWPM_NET_EVENT_FLAG_USER_ID_SET | FWPM_NET_EVENT_FLAG_SCOPE_ID_SET |
                                    FWPM_NET_EVENT_FLAG_IP_VERSION_SET;
constexpr UINT32 kFlagsOfVersion1 = kFlagsOfVersion0 | FWPM_NET_EVENT_FLAG_REAUTH_REASON_SET;
constexpr UINT32 kFlagsOfVersion2 = kFlagsOfVersion1 | FWPM_NET_EVENT_FLAG_PACKAGE_ID_SET;
constexpr UINT32 kFlagsOfVersion3 = kFlagsOfVersion2 | FWPM_NET_EVENT_FLAG_ENTERPRISE_ID_SET |
                                    FWPM_NET_EVENT_FLAG_POLICY_FLAGS_SET |
                                    FWPM_NET_EVENT_FLAG_EFFECTIVE_NAME_SET;

constexpr UINT32 KnownFlags(const FWPM_NET_EVENT_HEADER0&) { return kFlagsOfVersion0; }
constexpr UINT32 KnownFlags(const FWPM_NET_EVENT_HEADER1&) { return kFlagsOfVersion1; }
constexpr UINT32 KnownFlags(const FWPM_NET_EVENT_HEADER2&) { return kFlagsOfVersion2; }
constexpr UINT32 KnownFlags(const FWPM_NET_EVENT_HEADER3&) { return kFlagsOfVersion3; }

bool Has(const FWPM_NET_EVENT_HEADER3& header, UINT32 flag) { return (header.flags & flag) != 0; }

/// What hangs off a header without its flag may be anything.
template <class Pointer>
Pointer IfSet(const FWPM_NET_EVENT_HEADER3& header, UINT32 flag, Pointer pointer) {
  return Has(header, flag) ? pointer : nullptr;
}

FWP_BYTE_BLOB PackIfSet(Packer& packer, const FWPM_NET_EVENT_HEADER3& header, UINT32 flag,
                        const FWP_BYTE_BLOB& blob) {
  return Has(header, flag) ? Pack(packer, blob) : FWP_BYTE_BLOB{};
}

template <class Header>
Header PackHeader(Packer& packer, const FWPM_NET_EVENT_HEADER3& event) {
  Header header{};
  header.timeStamp = event.timeStamp;
  header.flags = event.flags & KnownFlags(header);
  header.ipVersion = event.ipVersion;
  header.ipProtocol = event.ipProtocol;
  header.localAddrV6 = event.localAddrV6;  // all bytes, and so those of an IPv4 address
  header.remoteAddrV6 = event.remoteAddrV6;
  header.localPort = event.localPort;
  header.remotePort = event.remotePort;
  header.scopeId = event.scopeId;
  header.appId = PackIfSet(packer, event, FWPM_NET_EVENT_FLAG_APP_ID_SET, event.appId);
  header.userId = PackSid(packer, IfSet(event, FWPM_NET_EVENT_FLAG_USER_ID_SET, event.userId));
  if constexpr (requires { header.packageSid; }) {
    header.addressFamily = event.addressFamily;
    header.packageSid = PackSid(packer, IfSet(event, FWPM_NET_EVENT_FLAG_PACKAGE_ID_SET, event.packageSid));
  }
  if constexpr (requires { header.enterpriseId; }) {
    header.enterpriseId =
        PackString(packer, IfSet(event, FWPM_NET_EVENT_FLAG_ENTERPRISE_ID_SET, event.enterpriseId));
    header.policyFlags = event.policyFlags;
    header.effectiveName =
        PackIfSet(packer, event, FWPM_NET_EVENT_FLAG_EFFECTIVE_NAME_SET, event.effectiveName);
  }
  return header;
}

template <class Drop>
Drop* PackDrop(Packer& packer, const FWPM_NET_EVENT_CLASSIFY_DROP2& event) {
  Drop drop{};
  drop.filterId = event.filterId;
  drop.layerId = event.layerId;
  if constexpr (requires { drop.reauthReason; }) {
    drop.reauthReason = event.reauthReason;
    drop.originalProfile = event.originalProfile;
    drop.currentProfile = event.currentProfile;
    drop.msFwpDirection = event.msFwpDirection;
    drop.isLoopback = event.isLoopback;
  }
  if constexpr (requires { drop.vSwitchId; }) {
    drop.vSwitchId = Pack(packer, event.vSwitchId);
    drop.vSwitchSourcePort = event.vSwitchSourcePort;
    drop.vSwitchDestinationPort = event.vSwitchDestinationPort;
  }
  return packer.Copy(&drop);
}

/// The part of an event that its type decides on.
template <class Native>
void PackData(Packer& packer, const FWPM_NET_EVENT3& event, Native& record) {
  if (event.type == FWPM_NET_EVENT_TYPE_CLASSIFY_DROP) {
    record.classifyDrop =
        PackDrop<std::remove_pointer_t<decltype(record.classifyDrop)>>(packer, *event.classifyDrop);
    return;
  }
  if constexpr (requires { record.classifyAllow; }) {
    if (event.type == FWPM_NET_EVENT_TYPE_CLASSIFY_ALLOW) {
      record.classifyAllow = packer.Copy(event.classifyAllow);
    } else if (event.type == FWPM_NET_EVENT_TYPE_CAPABILITY_DROP) {
      record.capabilityDrop = packer.Copy(event.capabilityDrop);
    } else {
      record.capabilityAllow = packer.Copy(event.capabilityAllow);
    }
  }
}

std::size_t MeasureNetEvent(const FWPM_NET_EVENT3& event) {
  Packer measure(nullptr);
  PackVersion<FWPM_NET_EVENT3>(measure, event);
  return measure.Size();
}

Refusal CheckHeader(const FWPM_NET_EVENT_HEADER3& header) {
  if (Has(header, FWPM_NET_EVENT_FLAG_APP_ID_SET)) {
    if (Refusal refusal = CheckBlob(header.appId)) {
      return refusal;
    }
  }
  if (Has(header, FWPM_NET_EVENT_FLAG_USER_ID_SET)) {
    if (Refusal refusal = CheckSid(header.userId)) {
      return refusal;
    }
  }
  if (Has(header, FWPM_NET_EVENT_FLAG_PACKAGE_ID_SET)) {
    if (Refusal refusal = CheckSid(header.packageSid)) {
      return refusal;
    }
  }
  return Has(header, FWPM_NET_EVENT_FLAG_EFFECTIVE_NAME_SET) ? CheckBlob(header.effectiveName) : Refusal();
}

}  // namespace

Refusal CheckNetEvent(const FWPM_NET_EVENT3& event) {
  const bool isDrop = event.type == FWPM_NET_EVENT_TYPE_CLASSIFY_DROP;
  if (!isDrop && event.type != FWPM_NET_EVENT_TYPE_CLASSIFY_ALLOW &&
      event.type != FWPM_NET_EVENT_TYPE_CAPABILITY_DROP &&
      event.type != FWPM_NET_EVENT_TYPE_CAPABILITY_ALLOW) {
    return {FWP_E_INVALID_ENUMERATOR, "events of type " + std::to_string(event.type) + " cannot be raised"};
  }
  if (event.classifyDrop == nullptr) {
    return {FWP_E_NULL_POINTER, "the event has no data"};
  }
  if (isDrop) {
    if (Refusal refusal = CheckBlob(event.classifyDrop->vSwitchId)) {
      return refusal;
    }
  }
  return CheckHeader(event.header);
}

NetEvent::NetEvent(const FWPM_NET_EVENT3& event)
    : block_(MakeBlock([&](Packer& packer) { return PackVersion<FWPM_NET_EVENT3>(packer, event); })),
      size_(MeasureNetEvent(event)) {}

template <class Native>
Native* PackVersion(Packer& packer, const FWPM_NET_EVENT3& event) {
  Native record{};
  record.header = PackHeader<decltype(record.header)>(packer, event.header);
  record.type = static_cast<decltype(record.type)>(event.type);
  PackData(packer, event, record);
  return packer.Copy(&record);
}

template FWPM_NET_EVENT0* PackVersion(Packer&, const FWPM_NET_EVENT3&);
template FWPM_NET_EVENT1* PackVersion(Packer&, const FWPM_NET_EVENT3&);
template FWPM_NET_EVENT2* PackVersion(Packer&, const FWPM_NET_EVENT3&);
template FWPM_NET_EVENT3* PackVersion(Packer&, const FWPM_NET_EVENT3&);

}  // namespace EngineEmulator
