/**
 * @file
 * Net events: what the engine dropped or let through. The headers of MinGW-w64 and of sdk_subset end with
 * FWPM_NET_EVENT1, Windows 7; here are those of Windows 8 and 10. The Windows SDK has all of them.
 *
 * Records of FWPM_NET_EVENT4 and 5 are laid out as FWPM_NET_EVENT3.
 */
#pragma once

#include <WfpPlatform.h>

// Which fields of an event's header are set.
#ifndef FWPM_NET_EVENT_FLAG_IP_PROTOCOL_SET
#define FWPM_NET_EVENT_FLAG_IP_PROTOCOL_SET (0x00000001)
#define FWPM_NET_EVENT_FLAG_LOCAL_ADDR_SET (0x00000002)
#define FWPM_NET_EVENT_FLAG_REMOTE_ADDR_SET (0x00000004)
#define FWPM_NET_EVENT_FLAG_LOCAL_PORT_SET (0x00000008)
#define FWPM_NET_EVENT_FLAG_REMOTE_PORT_SET (0x00000010)
#define FWPM_NET_EVENT_FLAG_APP_ID_SET (0x00000020)
#define FWPM_NET_EVENT_FLAG_USER_ID_SET (0x00000040)
#define FWPM_NET_EVENT_FLAG_SCOPE_ID_SET (0x00000080)
#define FWPM_NET_EVENT_FLAG_IP_VERSION_SET (0x00000100)
#endif
#ifndef FWPM_NET_EVENT_FLAG_REAUTH_REASON_SET
#define FWPM_NET_EVENT_FLAG_REAUTH_REASON_SET (0x00000200)
#endif
#ifndef FWPM_NET_EVENT_FLAG_PACKAGE_ID_SET
#define FWPM_NET_EVENT_FLAG_PACKAGE_ID_SET (0x00000400)
#endif
#ifndef FWPM_NET_EVENT_FLAG_ENTERPRISE_ID_SET
#define FWPM_NET_EVENT_FLAG_ENTERPRISE_ID_SET (0x00000800)
#define FWPM_NET_EVENT_FLAG_POLICY_FLAGS_SET (0x00001000)
#define FWPM_NET_EVENT_FLAG_EFFECTIVE_NAME_SET (0x00002000)
#endif

// What is recorded apart from drops of outbound packets and of inbound unicast ones.
#ifndef FWPM_NET_EVENT_KEYWORD_INBOUND_MCAST
#define FWPM_NET_EVENT_KEYWORD_INBOUND_MCAST (0x00000001)
#define FWPM_NET_EVENT_KEYWORD_INBOUND_BCAST (0x00000002)
#endif
#ifndef FWPM_NET_EVENT_KEYWORD_CAPABILITY_DROP
#define FWPM_NET_EVENT_KEYWORD_CAPABILITY_DROP (0x00000004)
#define FWPM_NET_EVENT_KEYWORD_CAPABILITY_ALLOW (0x00000008)
#define FWPM_NET_EVENT_KEYWORD_CLASSIFY_ALLOW (0x00000010)
#endif

// msFwpDirection of an event's data.
#ifndef FWP_DIRECTION_IN
#define FWP_DIRECTION_IN (0x00003900)
#define FWP_DIRECTION_OUT (0x00003901)
#define FWP_DIRECTION_FORWARD (0x00003902)
#endif

#if defined(__MINGW64_VERSION_MAJOR) || !defined(_WIN32)

// What FWPM_NET_EVENT_TYPE has no room for; so the type of an event is a number.
#define FWPM_NET_EVENT_TYPE_CLASSIFY_ALLOW (6)
#define FWPM_NET_EVENT_TYPE_CAPABILITY_DROP (7)
#define FWPM_NET_EVENT_TYPE_CAPABILITY_ALLOW (8)

// NOLINTBEGIN(modernize-use-using, readability-identifier-naming): declared as the Windows SDK does.

/// The capability that the program has or lacks.
typedef enum FWPM_APPC_NETWORK_CAPABILITY_TYPE_ : int {
  FWPM_APPC_NETWORK_CAPABILITY_INTERNET_CLIENT = 0,
  FWPM_APPC_NETWORK_CAPABILITY_INTERNET_CLIENT_SERVER = 1,
  FWPM_APPC_NETWORK_CAPABILITY_INTERNET_PRIVATE_NETWORK = 2,
} FWPM_APPC_NETWORK_CAPABILITY_TYPE;

typedef struct FWPM_NET_EVENT_CLASSIFY_DROP2_ {
  UINT64 filterId;
  UINT16 layerId;
  UINT32 reauthReason;
  UINT32 originalProfile;
  UINT32 currentProfile;
  UINT32 msFwpDirection;
  BOOL isLoopback;
  FWP_BYTE_BLOB vSwitchId;
  UINT32 vSwitchSourcePort;
  UINT32 vSwitchDestinationPort;
} FWPM_NET_EVENT_CLASSIFY_DROP2;

typedef struct FWPM_NET_EVENT_CLASSIFY_ALLOW0_ {
  UINT64 filterId;
  UINT16 layerId;
  UINT32 reauthReason;
  UINT32 originalProfile;
  UINT32 currentProfile;
  UINT32 msFwpDirection;
  BOOL isLoopback;
} FWPM_NET_EVENT_CLASSIFY_ALLOW0;

typedef struct FWPM_NET_EVENT_CAPABILITY_DROP0_ {
  FWPM_APPC_NETWORK_CAPABILITY_TYPE networkCapabilityId;
  UINT64 filterId;
  BOOL isLoopback;
} FWPM_NET_EVENT_CAPABILITY_DROP0;

typedef struct FWPM_NET_EVENT_CAPABILITY_ALLOW0_ {
  FWPM_APPC_NETWORK_CAPABILITY_TYPE networkCapabilityId;
  UINT64 filterId;
  BOOL isLoopback;
} FWPM_NET_EVENT_CAPABILITY_ALLOW0;

/// IPv4 addresses and ports in host byte order, IPv6 addresses in network byte order.
typedef struct FWPM_NET_EVENT_HEADER2_ {
  FILETIME timeStamp;
  UINT32 flags;
  FWP_IP_VERSION ipVersion;
  UINT8 ipProtocol;
  union {
    UINT32 localAddrV4;
    FWP_BYTE_ARRAY16 localAddrV6;
  };
  union {
    UINT32 remoteAddrV4;
    FWP_BYTE_ARRAY16 remoteAddrV6;
  };
  UINT16 localPort;
  UINT16 remotePort;
  UINT32 scopeId;
  FWP_BYTE_BLOB appId;
  SID* userId;
  FWP_AF addressFamily;
  SID* packageSid;
} FWPM_NET_EVENT_HEADER2;

/// The data depends on the type; here is that of drops and of what is let through.
typedef struct FWPM_NET_EVENT2_ {
  FWPM_NET_EVENT_HEADER2 header;
  UINT32 type;
  union {
    FWPM_NET_EVENT_CLASSIFY_DROP2* classifyDrop;
    FWPM_NET_EVENT_CLASSIFY_ALLOW0* classifyAllow;
    FWPM_NET_EVENT_CAPABILITY_DROP0* capabilityDrop;
    FWPM_NET_EVENT_CAPABILITY_ALLOW0* capabilityAllow;
  };
} FWPM_NET_EVENT2;

/// IPv4 addresses and ports in host byte order, IPv6 addresses in network byte order.
typedef struct FWPM_NET_EVENT_HEADER3_ {
  FILETIME timeStamp;
  UINT32 flags;
  FWP_IP_VERSION ipVersion;
  UINT8 ipProtocol;
  union {
    UINT32 localAddrV4;
    FWP_BYTE_ARRAY16 localAddrV6;
  };
  union {
    UINT32 remoteAddrV4;
    FWP_BYTE_ARRAY16 remoteAddrV6;
  };
  UINT16 localPort;
  UINT16 remotePort;
  UINT32 scopeId;
  FWP_BYTE_BLOB appId;
  SID* userId;
  FWP_AF addressFamily;
  SID* packageSid;
  wchar_t* enterpriseId;
  UINT64 policyFlags;
  FWP_BYTE_BLOB effectiveName;
} FWPM_NET_EVENT_HEADER3;

/// The data depends on the type; here is that of drops and of what is let through.
typedef struct FWPM_NET_EVENT3_ {
  FWPM_NET_EVENT_HEADER3 header;
  UINT32 type;
  union {
    FWPM_NET_EVENT_CLASSIFY_DROP2* classifyDrop;
    FWPM_NET_EVENT_CLASSIFY_ALLOW0* classifyAllow;
    FWPM_NET_EVENT_CAPABILITY_DROP0* capabilityDrop;
    FWPM_NET_EVENT_CAPABILITY_ALLOW0* capabilityAllow;
  };
} FWPM_NET_EVENT3;

typedef void(CALLBACK* FWPM_NET_EVENT_CALLBACK1)(void* context, const FWPM_NET_EVENT2* event);
typedef void(CALLBACK* FWPM_NET_EVENT_CALLBACK2)(void* context, const FWPM_NET_EVENT3* event);

// NOLINTEND(modernize-use-using, readability-identifier-naming)

extern "C" {

DWORD WINAPI FwpmNetEventEnum2(HANDLE engine, HANDLE enumHandle, UINT32 requested, FWPM_NET_EVENT2*** entries,
                               UINT32* returned);
DWORD WINAPI FwpmNetEventEnum3(HANDLE engine, HANDLE enumHandle, UINT32 requested, FWPM_NET_EVENT3*** entries,
                               UINT32* returned);
DWORD WINAPI FwpmNetEventSubscribe1(HANDLE engine, const FWPM_NET_EVENT_SUBSCRIPTION0* subscription,
                                    FWPM_NET_EVENT_CALLBACK1 callback, void* context, HANDLE* events);
DWORD WINAPI FwpmNetEventSubscribe2(HANDLE engine, const FWPM_NET_EVENT_SUBSCRIPTION0* subscription,
                                    FWPM_NET_EVENT_CALLBACK2 callback, void* context, HANDLE* events);

}  // extern "C"

#endif
