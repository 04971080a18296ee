/**
 * @file
 * The filtering engine's records.
 */
#pragma once

#include <fwptypes.h>

#define FWPM_SESSION_FLAG_DYNAMIC 0x00000001
#define FWPM_PROVIDER_FLAG_PERSISTENT 0x00000001
#define FWPM_PROVIDER_FLAG_DISABLED 0x00000010
#define FWPM_SUBLAYER_FLAG_PERSISTENT 0x00000001
#define FWPM_FILTER_FLAG_NONE 0x00000000
#define FWPM_FILTER_FLAG_PERSISTENT 0x00000001
#define FWPM_FILTER_FLAG_BOOTTIME 0x00000002
#define FWPM_FILTER_FLAG_HAS_PROVIDER_CONTEXT 0x00000004
#define FWPM_FILTER_FLAG_CLEAR_ACTION_RIGHT 0x00000008
#define FWPM_FILTER_FLAG_PERMIT_IF_CALLOUT_UNREGISTERED 0x00000010
#define FWPM_FILTER_FLAG_DISABLED 0x00000020
#define FWPM_FILTER_FLAG_INDEXED 0x00000040

typedef SDK_SUBSET_ENUM(FWPM_CHANGE_TYPE_){
    FWPM_CHANGE_ADD = 1,
    FWPM_CHANGE_DELETE = 2,
    FWPM_CHANGE_TYPE_MAX = 3,
} FWPM_CHANGE_TYPE;

typedef SDK_SUBSET_ENUM(FWPM_ENGINE_OPTION_){
    FWPM_ENGINE_COLLECT_NET_EVENTS = 0,
    FWPM_ENGINE_NET_EVENT_MATCH_ANY_KEYWORDS = 1,
    FWPM_ENGINE_NAME_CACHE = 2,
    FWPM_ENGINE_OPTION_MAX = 3,
} FWPM_ENGINE_OPTION;

typedef SDK_SUBSET_ENUM(FWPM_FIELD_TYPE_){
    FWPM_FIELD_RAW_DATA = 0,
    FWPM_FIELD_IP_ADDRESS = 1,
    FWPM_FIELD_FLAGS = 2,
    FWPM_FIELD_TYPE_MAX = 3,
} FWPM_FIELD_TYPE;

typedef SDK_SUBSET_ENUM(FWPM_PROVIDER_CONTEXT_TYPE_){
    FWPM_IPSEC_KEYING_CONTEXT = 0,
    FWPM_CLASSIFY_OPTIONS_CONTEXT = 7,
    FWPM_GENERAL_CONTEXT = 8,
} FWPM_PROVIDER_CONTEXT_TYPE;

typedef struct FWPM_DISPLAY_DATA0_ {
  wchar_t* name;
  wchar_t* description;
} FWPM_DISPLAY_DATA0;

typedef struct FWPM_SESSION0_ {
  GUID sessionKey;
  FWPM_DISPLAY_DATA0 displayData;
  UINT32 flags;
  UINT32 txnWaitTimeoutInMSec;
  DWORD processId;
  SID* sid;
  wchar_t* username;
  BOOL kernelMode;
} FWPM_SESSION0;

typedef struct FWPM_SESSION_ENUM_TEMPLATE0_ {
  UINT64 reserved;
} FWPM_SESSION_ENUM_TEMPLATE0;

typedef struct FWPM_PROVIDER0_ {
  GUID providerKey;
  FWPM_DISPLAY_DATA0 displayData;
  UINT32 flags;
  FWP_BYTE_BLOB providerData;
  wchar_t* serviceName;
} FWPM_PROVIDER0;

typedef struct FWPM_PROVIDER_ENUM_TEMPLATE0_ {
  UINT64 reserved;
} FWPM_PROVIDER_ENUM_TEMPLATE0;

typedef struct FWPM_PROVIDER_CHANGE0_ {
  FWPM_CHANGE_TYPE changeType;
  GUID providerKey;
} FWPM_PROVIDER_CHANGE0;

typedef struct FWPM_PROVIDER_SUBSCRIPTION0_ {
  FWPM_PROVIDER_ENUM_TEMPLATE0* enumTemplate;
  UINT32 flags;
  GUID sessionKey;
} FWPM_PROVIDER_SUBSCRIPTION0;

typedef struct FWPM_SUBLAYER0_ {
  GUID subLayerKey;
  FWPM_DISPLAY_DATA0 displayData;
  UINT32 flags;
  GUID* providerKey;
  FWP_BYTE_BLOB providerData;
  UINT16 weight;
} FWPM_SUBLAYER0;

typedef struct FWPM_SUBLAYER_ENUM_TEMPLATE0_ {
  GUID* providerKey;
} FWPM_SUBLAYER_ENUM_TEMPLATE0;

typedef struct FWPM_SUBLAYER_CHANGE0_ {
  FWPM_CHANGE_TYPE changeType;
  GUID subLayerKey;
} FWPM_SUBLAYER_CHANGE0;

typedef struct FWPM_SUBLAYER_SUBSCRIPTION0_ {
  FWPM_SUBLAYER_ENUM_TEMPLATE0* enumTemplate;
  UINT32 flags;
  GUID sessionKey;
} FWPM_SUBLAYER_SUBSCRIPTION0;

typedef struct FWPM_FIELD0_ {
  GUID* fieldKey;
  FWPM_FIELD_TYPE type;
  FWP_DATA_TYPE dataType;
} FWPM_FIELD0;

typedef struct FWPM_LAYER0_ {
  GUID layerKey;
  FWPM_DISPLAY_DATA0 displayData;
  UINT32 flags;
  UINT32 numFields;
  FWPM_FIELD0* field;
  GUID defaultSubLayerKey;
  UINT16 layerId;
} FWPM_LAYER0;

typedef struct FWPM_LAYER_ENUM_TEMPLATE0_ {
  UINT64 reserved;
} FWPM_LAYER_ENUM_TEMPLATE0;

typedef struct FWPM_CALLOUT0_ {
  GUID calloutKey;
  FWPM_DISPLAY_DATA0 displayData;
  UINT32 flags;
  GUID* providerKey;
  FWP_BYTE_BLOB providerData;
  GUID applicableLayer;
  UINT32 calloutId;
} FWPM_CALLOUT0;

typedef struct FWPM_CALLOUT_ENUM_TEMPLATE0_ {
  GUID* providerKey;
  GUID layerKey;
} FWPM_CALLOUT_ENUM_TEMPLATE0;

typedef struct FWPM_CALLOUT_CHANGE0_ {
  FWPM_CHANGE_TYPE changeType;
  GUID calloutKey;
  UINT32 calloutId;
} FWPM_CALLOUT_CHANGE0;

typedef struct FWPM_CALLOUT_SUBSCRIPTION0_ {
  FWPM_CALLOUT_ENUM_TEMPLATE0* enumTemplate;
  UINT32 flags;
  GUID sessionKey;
} FWPM_CALLOUT_SUBSCRIPTION0;

/// `data` stands for pointers of many types; the sources use none of them.
typedef struct FWPM_PROVIDER_CONTEXT0_ {
  GUID providerContextKey;
  FWPM_DISPLAY_DATA0 displayData;
  UINT32 flags;
  GUID* providerKey;
  FWP_BYTE_BLOB providerData;
  FWPM_PROVIDER_CONTEXT_TYPE type;
  union {
    void* data;
    FWP_BYTE_BLOB* dataBuffer;
  };
  UINT64 providerContextId;
} FWPM_PROVIDER_CONTEXT0;

typedef struct FWPM_PROVIDER_CONTEXT_ENUM_TEMPLATE0_ {
  GUID* providerKey;
  FWPM_PROVIDER_CONTEXT_TYPE providerContextType;
} FWPM_PROVIDER_CONTEXT_ENUM_TEMPLATE0;

typedef struct FWPM_PROVIDER_CONTEXT_CHANGE0_ {
  FWPM_CHANGE_TYPE changeType;
  GUID providerContextKey;
  UINT64 providerContextId;
} FWPM_PROVIDER_CONTEXT_CHANGE0;

typedef struct FWPM_PROVIDER_CONTEXT_SUBSCRIPTION0_ {
  FWPM_PROVIDER_CONTEXT_ENUM_TEMPLATE0* enumTemplate;
  UINT32 flags;
  GUID sessionKey;
} FWPM_PROVIDER_CONTEXT_SUBSCRIPTION0;

typedef struct FWPM_ACTION0_ {
  FWP_ACTION_TYPE type;
  union {
    GUID filterType;
    GUID calloutKey;
  };
} FWPM_ACTION0;

typedef struct FWPM_FILTER_CONDITION0_ {
  GUID fieldKey;
  FWP_MATCH_TYPE matchType;
  FWP_CONDITION_VALUE0 conditionValue;
} FWPM_FILTER_CONDITION0;

typedef struct FWPM_FILTER0_ {
  GUID filterKey;
  FWPM_DISPLAY_DATA0 displayData;
  UINT32 flags;
  GUID* providerKey;
  FWP_BYTE_BLOB providerData;
  GUID layerKey;
  GUID subLayerKey;
  FWP_VALUE0 weight;
  UINT32 numFilterConditions;
  FWPM_FILTER_CONDITION0* filterCondition;
  FWPM_ACTION0 action;
  union {
    UINT64 rawContext;
    GUID providerContextKey;
  };
  GUID* reserved;
  UINT64 filterId;
  FWP_VALUE0 effectiveWeight;
} FWPM_FILTER0;

typedef struct FWPM_FILTER_ENUM_TEMPLATE0_ {
  GUID* providerKey;
  GUID layerKey;
  FWP_FILTER_ENUM_TYPE enumType;
  UINT32 flags;
  FWPM_PROVIDER_CONTEXT_ENUM_TEMPLATE0* providerContextTemplate;
  UINT32 numFilterConditions;
  FWPM_FILTER_CONDITION0* filterCondition;
  UINT32 actionMask;
  GUID* calloutKey;
} FWPM_FILTER_ENUM_TEMPLATE0;

typedef struct FWPM_FILTER_CHANGE0_ {
  FWPM_CHANGE_TYPE changeType;
  GUID filterKey;
  UINT64 filterId;
} FWPM_FILTER_CHANGE0;

typedef struct FWPM_FILTER_SUBSCRIPTION0_ {
  FWPM_FILTER_ENUM_TEMPLATE0* enumTemplate;
  UINT32 flags;
  GUID sessionKey;
} FWPM_FILTER_SUBSCRIPTION0;

typedef SDK_SUBSET_ENUM(FWPM_NET_EVENT_TYPE_){
    FWPM_NET_EVENT_TYPE_IKEEXT_MM_FAILURE = 0, FWPM_NET_EVENT_TYPE_IKEEXT_QM_FAILURE = 1,
    FWPM_NET_EVENT_TYPE_IKEEXT_EM_FAILURE = 2, FWPM_NET_EVENT_TYPE_CLASSIFY_DROP = 3,
    FWPM_NET_EVENT_TYPE_IPSEC_KERNEL_DROP = 4, FWPM_NET_EVENT_TYPE_IPSEC_DOSP_DROP = 5,
} FWPM_NET_EVENT_TYPE;

typedef struct FWPM_NET_EVENT_CLASSIFY_DROP0_ {
  UINT64 filterId;
  UINT16 layerId;
} FWPM_NET_EVENT_CLASSIFY_DROP0;

typedef struct FWPM_NET_EVENT_CLASSIFY_DROP1_ {
  UINT64 filterId;
  UINT16 layerId;
  UINT32 reauthReason;
  UINT32 originalProfile;
  UINT32 currentProfile;
  UINT32 msFwpDirection;
  BOOL isLoopback;
} FWPM_NET_EVENT_CLASSIFY_DROP1;

typedef struct FWPM_NET_EVENT_HEADER0_ {
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
} FWPM_NET_EVENT_HEADER0;

/// `reserved` stands for fields whose names differ between the platform's headers; the sources use none.
typedef struct FWPM_NET_EVENT_HEADER1_ {
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
  UINT64 reserved[7];
} FWPM_NET_EVENT_HEADER1;

/// Its data depends on the type; the sources use only that of drops.
typedef struct FWPM_NET_EVENT0_ {
  FWPM_NET_EVENT_HEADER0 header;
  FWPM_NET_EVENT_TYPE type;
  union {
    FWPM_NET_EVENT_CLASSIFY_DROP0* classifyDrop;
  };
} FWPM_NET_EVENT0;

/// Its data depends on the type; the sources use only that of drops.
typedef struct FWPM_NET_EVENT1_ {
  FWPM_NET_EVENT_HEADER1 header;
  FWPM_NET_EVENT_TYPE type;
  union {
    FWPM_NET_EVENT_CLASSIFY_DROP1* classifyDrop;
  };
} FWPM_NET_EVENT1;

typedef struct FWPM_NET_EVENT_ENUM_TEMPLATE0_ {
  FILETIME startTime;
  FILETIME endTime;
  UINT32 numFilterConditions;
  FWPM_FILTER_CONDITION0* filterCondition;
} FWPM_NET_EVENT_ENUM_TEMPLATE0;

typedef struct FWPM_NET_EVENT_SUBSCRIPTION0_ {
  FWPM_NET_EVENT_ENUM_TEMPLATE0* enumTemplate;
  UINT32 flags;
  GUID sessionKey;
} FWPM_NET_EVENT_SUBSCRIPTION0;
