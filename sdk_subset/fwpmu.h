/**
 * @file
 * The filtering engine's management interface.
 */
#pragma once

#include <fwpmtypes.h>
#include <rpc.h>

#define FWPM_TXN_READ_ONLY 0x00000001

#define FWPM_AUTO_WEIGHT_BITS 60
#define FWPM_AUTO_WEIGHT_MAX (UINT64_MAX >> 4)
#define FWPM_WEIGHT_RANGE_MAX (UINT64_MAX >> 60)

typedef void(CALLBACK* FWPM_PROVIDER_CHANGE_CALLBACK0)(void* context, const FWPM_PROVIDER_CHANGE0* change);
typedef void(CALLBACK* FWPM_SUBLAYER_CHANGE_CALLBACK0)(void* context, const FWPM_SUBLAYER_CHANGE0* change);
typedef void(CALLBACK* FWPM_FILTER_CHANGE_CALLBACK0)(void* context, const FWPM_FILTER_CHANGE0* change);
typedef void(CALLBACK* FWPM_CALLOUT_CHANGE_CALLBACK0)(void* context, const FWPM_CALLOUT_CHANGE0* change);
typedef void(CALLBACK* FWPM_PROVIDER_CONTEXT_CHANGE_CALLBACK0)(void* context,
                                                               const FWPM_PROVIDER_CONTEXT_CHANGE0* change);
typedef void(CALLBACK* FWPM_NET_EVENT_CALLBACK0)(void* context, const FWPM_NET_EVENT1* event);

#ifdef __cplusplus
extern "C" {
#endif

DWORD WINAPI FwpmEngineOpen0(const wchar_t* serverName, UINT32 authentication,
                             SEC_WINNT_AUTH_IDENTITY_W* identity, const FWPM_SESSION0* session,
                             HANDLE* engine);
DWORD WINAPI FwpmEngineClose0(HANDLE engine);
DWORD WINAPI FwpmEngineGetOption0(HANDLE engine, FWPM_ENGINE_OPTION option, FWP_VALUE0** value);
DWORD WINAPI FwpmEngineSetOption0(HANDLE engine, FWPM_ENGINE_OPTION option, const FWP_VALUE0* value);
DWORD WINAPI FwpmEngineGetSecurityInfo0(HANDLE engine, SECURITY_INFORMATION information, PSID* owner,
                                        PSID* group, PACL* dacl, PACL* sacl,
                                        PSECURITY_DESCRIPTOR* descriptor);
DWORD WINAPI FwpmEngineSetSecurityInfo0(HANDLE engine, SECURITY_INFORMATION information, const SID* owner,
                                        const SID* group, const ACL* dacl, const ACL* sacl);

DWORD WINAPI FwpmSessionCreateEnumHandle0(HANDLE engine, const FWPM_SESSION_ENUM_TEMPLATE0* enumTemplate,
                                          HANDLE* enumHandle);
DWORD WINAPI FwpmSessionDestroyEnumHandle0(HANDLE engine, HANDLE enumHandle);
DWORD WINAPI FwpmSessionEnum0(HANDLE engine, HANDLE enumHandle, UINT32 requested, FWPM_SESSION0*** entries,
                              UINT32* returned);

DWORD WINAPI FwpmTransactionBegin0(HANDLE engine, UINT32 flags);
DWORD WINAPI FwpmTransactionCommit0(HANDLE engine);
DWORD WINAPI FwpmTransactionAbort0(HANDLE engine);

DWORD WINAPI FwpmProviderAdd0(HANDLE engine, const FWPM_PROVIDER0* provider, PSECURITY_DESCRIPTOR descriptor);
DWORD WINAPI FwpmProviderDeleteByKey0(HANDLE engine, const GUID* key);
DWORD WINAPI FwpmProviderGetByKey0(HANDLE engine, const GUID* key, FWPM_PROVIDER0** provider);
DWORD WINAPI FwpmProviderCreateEnumHandle0(HANDLE engine, const FWPM_PROVIDER_ENUM_TEMPLATE0* enumTemplate,
                                           HANDLE* enumHandle);
DWORD WINAPI FwpmProviderDestroyEnumHandle0(HANDLE engine, HANDLE enumHandle);
DWORD WINAPI FwpmProviderEnum0(HANDLE engine, HANDLE enumHandle, UINT32 requested, FWPM_PROVIDER0*** entries,
                               UINT32* returned);
DWORD WINAPI FwpmProviderGetSecurityInfoByKey0(HANDLE engine, const GUID* key,
                                               SECURITY_INFORMATION information, PSID* owner, PSID* group,
                                               PACL* dacl, PACL* sacl, PSECURITY_DESCRIPTOR* descriptor);
DWORD WINAPI FwpmProviderSetSecurityInfoByKey0(HANDLE engine, const GUID* key,
                                               SECURITY_INFORMATION information, const SID* owner,
                                               const SID* group, const ACL* dacl, const ACL* sacl);
DWORD WINAPI FwpmProviderSubscribeChanges0(HANDLE engine, const FWPM_PROVIDER_SUBSCRIPTION0* subscription,
                                           FWPM_PROVIDER_CHANGE_CALLBACK0 callback, void* context,
                                           HANDLE* change);
DWORD WINAPI FwpmProviderUnsubscribeChanges0(HANDLE engine, HANDLE change);
DWORD WINAPI FwpmProviderSubscriptionsGet0(HANDLE engine, FWPM_PROVIDER_SUBSCRIPTION0*** entries,
                                           UINT32* count);

DWORD WINAPI FwpmSubLayerAdd0(HANDLE engine, const FWPM_SUBLAYER0* subLayer, PSECURITY_DESCRIPTOR descriptor);
DWORD WINAPI FwpmSubLayerDeleteByKey0(HANDLE engine, const GUID* key);
DWORD WINAPI FwpmSubLayerGetByKey0(HANDLE engine, const GUID* key, FWPM_SUBLAYER0** subLayer);
DWORD WINAPI FwpmSubLayerCreateEnumHandle0(HANDLE engine, const FWPM_SUBLAYER_ENUM_TEMPLATE0* enumTemplate,
                                           HANDLE* enumHandle);
DWORD WINAPI FwpmSubLayerDestroyEnumHandle0(HANDLE engine, HANDLE enumHandle);
DWORD WINAPI FwpmSubLayerEnum0(HANDLE engine, HANDLE enumHandle, UINT32 requested, FWPM_SUBLAYER0*** entries,
                               UINT32* returned);
DWORD WINAPI FwpmSubLayerGetSecurityInfoByKey0(HANDLE engine, const GUID* key,
                                               SECURITY_INFORMATION information, PSID* owner, PSID* group,
                                               PACL* dacl, PACL* sacl, PSECURITY_DESCRIPTOR* descriptor);
DWORD WINAPI FwpmSubLayerSetSecurityInfoByKey0(HANDLE engine, const GUID* key,
                                               SECURITY_INFORMATION information, const SID* owner,
                                               const SID* group, const ACL* dacl, const ACL* sacl);
DWORD WINAPI FwpmSubLayerSubscribeChanges0(HANDLE engine, const FWPM_SUBLAYER_SUBSCRIPTION0* subscription,
                                           FWPM_SUBLAYER_CHANGE_CALLBACK0 callback, void* context,
                                           HANDLE* change);
DWORD WINAPI FwpmSubLayerUnsubscribeChanges0(HANDLE engine, HANDLE change);
DWORD WINAPI FwpmSubLayerSubscriptionsGet0(HANDLE engine, FWPM_SUBLAYER_SUBSCRIPTION0*** entries,
                                           UINT32* count);

DWORD WINAPI FwpmFilterAdd0(HANDLE engine, const FWPM_FILTER0* filter, PSECURITY_DESCRIPTOR descriptor,
                            UINT64* id);
DWORD WINAPI FwpmFilterDeleteById0(HANDLE engine, UINT64 id);
DWORD WINAPI FwpmFilterDeleteByKey0(HANDLE engine, const GUID* key);
DWORD WINAPI FwpmFilterGetById0(HANDLE engine, UINT64 id, FWPM_FILTER0** filter);
DWORD WINAPI FwpmFilterGetByKey0(HANDLE engine, const GUID* key, FWPM_FILTER0** filter);
DWORD WINAPI FwpmFilterCreateEnumHandle0(HANDLE engine, const FWPM_FILTER_ENUM_TEMPLATE0* enumTemplate,
                                         HANDLE* enumHandle);
DWORD WINAPI FwpmFilterDestroyEnumHandle0(HANDLE engine, HANDLE enumHandle);
DWORD WINAPI FwpmFilterEnum0(HANDLE engine, HANDLE enumHandle, UINT32 requested, FWPM_FILTER0*** entries,
                             UINT32* returned);
DWORD WINAPI FwpmFilterGetSecurityInfoByKey0(HANDLE engine, const GUID* key, SECURITY_INFORMATION information,
                                             PSID* owner, PSID* group, PACL* dacl, PACL* sacl,
                                             PSECURITY_DESCRIPTOR* descriptor);
DWORD WINAPI FwpmFilterSetSecurityInfoByKey0(HANDLE engine, const GUID* key, SECURITY_INFORMATION information,
                                             const SID* owner, const SID* group, const ACL* dacl,
                                             const ACL* sacl);
DWORD WINAPI FwpmFilterSubscribeChanges0(HANDLE engine, const FWPM_FILTER_SUBSCRIPTION0* subscription,
                                         FWPM_FILTER_CHANGE_CALLBACK0 callback, void* context,
                                         HANDLE* change);
DWORD WINAPI FwpmFilterUnsubscribeChanges0(HANDLE engine, HANDLE change);
DWORD WINAPI FwpmFilterSubscriptionsGet0(HANDLE engine, FWPM_FILTER_SUBSCRIPTION0*** entries, UINT32* count);

DWORD WINAPI FwpmLayerGetById0(HANDLE engine, UINT16 id, FWPM_LAYER0** layer);
DWORD WINAPI FwpmLayerGetByKey0(HANDLE engine, const GUID* key, FWPM_LAYER0** layer);
DWORD WINAPI FwpmLayerCreateEnumHandle0(HANDLE engine, const FWPM_LAYER_ENUM_TEMPLATE0* enumTemplate,
                                        HANDLE* enumHandle);
DWORD WINAPI FwpmLayerDestroyEnumHandle0(HANDLE engine, HANDLE enumHandle);
DWORD WINAPI FwpmLayerEnum0(HANDLE engine, HANDLE enumHandle, UINT32 requested, FWPM_LAYER0*** entries,
                            UINT32* returned);
DWORD WINAPI FwpmLayerGetSecurityInfoByKey0(HANDLE engine, const GUID* key, SECURITY_INFORMATION information,
                                            PSID* owner, PSID* group, PACL* dacl, PACL* sacl,
                                            PSECURITY_DESCRIPTOR* descriptor);
DWORD WINAPI FwpmLayerSetSecurityInfoByKey0(HANDLE engine, const GUID* key, SECURITY_INFORMATION information,
                                            const SID* owner, const SID* group, const ACL* dacl,
                                            const ACL* sacl);

DWORD WINAPI FwpmCalloutAdd0(HANDLE engine, const FWPM_CALLOUT0* callout, PSECURITY_DESCRIPTOR descriptor,
                             UINT32* id);
DWORD WINAPI FwpmCalloutDeleteById0(HANDLE engine, UINT32 id);
DWORD WINAPI FwpmCalloutDeleteByKey0(HANDLE engine, const GUID* key);
DWORD WINAPI FwpmCalloutGetById0(HANDLE engine, UINT32 id, FWPM_CALLOUT0** callout);
DWORD WINAPI FwpmCalloutGetByKey0(HANDLE engine, const GUID* key, FWPM_CALLOUT0** callout);
DWORD WINAPI FwpmCalloutCreateEnumHandle0(HANDLE engine, const FWPM_CALLOUT_ENUM_TEMPLATE0* enumTemplate,
                                          HANDLE* enumHandle);
DWORD WINAPI FwpmCalloutDestroyEnumHandle0(HANDLE engine, HANDLE enumHandle);
DWORD WINAPI FwpmCalloutEnum0(HANDLE engine, HANDLE enumHandle, UINT32 requested, FWPM_CALLOUT0*** entries,
                              UINT32* returned);
DWORD WINAPI FwpmCalloutGetSecurityInfoByKey0(HANDLE engine, const GUID* key,
                                              SECURITY_INFORMATION information, PSID* owner, PSID* group,
                                              PACL* dacl, PACL* sacl, PSECURITY_DESCRIPTOR* descriptor);
DWORD WINAPI FwpmCalloutSetSecurityInfoByKey0(HANDLE engine, const GUID* key,
                                              SECURITY_INFORMATION information, const SID* owner,
                                              const SID* group, const ACL* dacl, const ACL* sacl);
DWORD WINAPI FwpmCalloutSubscribeChanges0(HANDLE engine, const FWPM_CALLOUT_SUBSCRIPTION0* subscription,
                                          FWPM_CALLOUT_CHANGE_CALLBACK0 callback, void* context,
                                          HANDLE* change);
DWORD WINAPI FwpmCalloutUnsubscribeChanges0(HANDLE engine, HANDLE change);
DWORD WINAPI FwpmCalloutSubscriptionsGet0(HANDLE engine, FWPM_CALLOUT_SUBSCRIPTION0*** entries,
                                          UINT32* count);

DWORD WINAPI FwpmProviderContextAdd0(HANDLE engine, const FWPM_PROVIDER_CONTEXT0* providerContext,
                                     PSECURITY_DESCRIPTOR descriptor, UINT64* id);
DWORD WINAPI FwpmProviderContextDeleteById0(HANDLE engine, UINT64 id);
DWORD WINAPI FwpmProviderContextDeleteByKey0(HANDLE engine, const GUID* key);
DWORD WINAPI FwpmProviderContextGetById0(HANDLE engine, UINT64 id, FWPM_PROVIDER_CONTEXT0** providerContext);
DWORD WINAPI FwpmProviderContextGetByKey0(HANDLE engine, const GUID* key,
                                          FWPM_PROVIDER_CONTEXT0** providerContext);
DWORD WINAPI FwpmProviderContextCreateEnumHandle0(HANDLE engine,
                                                  const FWPM_PROVIDER_CONTEXT_ENUM_TEMPLATE0* enumTemplate,
                                                  HANDLE* enumHandle);
DWORD WINAPI FwpmProviderContextDestroyEnumHandle0(HANDLE engine, HANDLE enumHandle);
DWORD WINAPI FwpmProviderContextEnum0(HANDLE engine, HANDLE enumHandle, UINT32 requested,
                                      FWPM_PROVIDER_CONTEXT0*** entries, UINT32* returned);
DWORD WINAPI FwpmProviderContextGetSecurityInfoByKey0(HANDLE engine, const GUID* key,
                                                      SECURITY_INFORMATION information, PSID* owner,
                                                      PSID* group, PACL* dacl, PACL* sacl,
                                                      PSECURITY_DESCRIPTOR* descriptor);
DWORD WINAPI FwpmProviderContextSetSecurityInfoByKey0(HANDLE engine, const GUID* key,
                                                      SECURITY_INFORMATION information, const SID* owner,
                                                      const SID* group, const ACL* dacl, const ACL* sacl);
DWORD WINAPI FwpmProviderContextSubscribeChanges0(HANDLE engine,
                                                  const FWPM_PROVIDER_CONTEXT_SUBSCRIPTION0* subscription,
                                                  FWPM_PROVIDER_CONTEXT_CHANGE_CALLBACK0 callback,
                                                  void* context, HANDLE* change);
DWORD WINAPI FwpmProviderContextUnsubscribeChanges0(HANDLE engine, HANDLE change);
DWORD WINAPI FwpmProviderContextSubscriptionsGet0(HANDLE engine,
                                                  FWPM_PROVIDER_CONTEXT_SUBSCRIPTION0*** entries,
                                                  UINT32* count);

DWORD WINAPI FwpmNetEventCreateEnumHandle0(HANDLE engine, const FWPM_NET_EVENT_ENUM_TEMPLATE0* enumTemplate,
                                           HANDLE* enumHandle);
DWORD WINAPI FwpmNetEventDestroyEnumHandle0(HANDLE engine, HANDLE enumHandle);
DWORD WINAPI FwpmNetEventEnum0(HANDLE engine, HANDLE enumHandle, UINT32 requested, FWPM_NET_EVENT0*** entries,
                               UINT32* returned);
DWORD WINAPI FwpmNetEventEnum1(HANDLE engine, HANDLE enumHandle, UINT32 requested, FWPM_NET_EVENT1*** entries,
                               UINT32* returned);
DWORD WINAPI FwpmNetEventsGetSecurityInfo0(HANDLE engine, SECURITY_INFORMATION information, PSID* owner,
                                           PSID* group, PACL* dacl, PACL* sacl,
                                           PSECURITY_DESCRIPTOR* descriptor);
DWORD WINAPI FwpmNetEventsSetSecurityInfo0(HANDLE engine, SECURITY_INFORMATION information, const SID* owner,
                                           const SID* group, const ACL* dacl, const ACL* sacl);
DWORD WINAPI FwpmNetEventSubscribe0(HANDLE engine, const FWPM_NET_EVENT_SUBSCRIPTION0* subscription,
                                    FWPM_NET_EVENT_CALLBACK0 callback, void* context, HANDLE* events);
DWORD WINAPI FwpmNetEventUnsubscribe0(HANDLE engine, HANDLE events);
DWORD WINAPI FwpmNetEventSubscriptionsGet0(HANDLE engine, FWPM_NET_EVENT_SUBSCRIPTION0*** entries,
                                           UINT32* count);

DWORD WINAPI FwpmGetAppIdFromFileName0(const wchar_t* fileName, FWP_BYTE_BLOB** appId);
void WINAPI FwpmFreeMemory0(void** memory);

#ifdef __cplusplus
}
#endif
