/**
 * @file
 * The engine's functions for each kind of object, so that the same code can call them for all kinds.
 */
#pragma once

#include <NetEvents.h>

namespace Fuzz {

template <class Record, class Template>
struct EnumCalls {
  DWORD(WINAPI* create)(HANDLE, const Template*, HANDLE*);
  DWORD(WINAPI* next)(HANDLE, HANDLE, UINT32, Record***, UINT32*);
  DWORD(WINAPI* destroy)(HANDLE, HANDLE);
};

template <class Record>
struct KeyCalls {
  DWORD(WINAPI* get)(HANDLE, const GUID*, Record**);
  DWORD(WINAPI* getSecurity)
  (HANDLE, const GUID*, SECURITY_INFORMATION, PSID*, PSID*, PACL*, PACL*, PSECURITY_DESCRIPTOR*);
  DWORD(WINAPI* setSecurity)
  (HANDLE, const GUID*, SECURITY_INFORMATION, const SID*, const SID*, const ACL*, const ACL*);
};

template <class Subscription, class Change>
struct ChangeCalls {
  DWORD(WINAPI* subscribe)
  (HANDLE, const Subscription*, void(CALLBACK*)(void*, const Change*), void*, HANDLE*);
  DWORD(WINAPI* unsubscribe)(HANDLE, HANDLE);
  DWORD(WINAPI* get)(HANDLE, Subscription***, UINT32*);
};

/// The functions for one kind of object that clients can add.
template <class Record, class Template, class Subscription, class Change>
struct ObjectCalls {
  DWORD(WINAPI* remove)(HANDLE, const GUID*);
  KeyCalls<Record> keys;
  EnumCalls<Record, Template> enumerations;
  ChangeCalls<Subscription, Change> changes;
};

inline constexpr EnumCalls<FWPM_SESSION0, FWPM_SESSION_ENUM_TEMPLATE0> kSessionEnums{
    FwpmSessionCreateEnumHandle0, FwpmSessionEnum0, FwpmSessionDestroyEnumHandle0};

/// The oldest version and the newest one.
inline constexpr EnumCalls<FWPM_NET_EVENT0, FWPM_NET_EVENT_ENUM_TEMPLATE0> kOldEventEnums{
    FwpmNetEventCreateEnumHandle0, FwpmNetEventEnum0, FwpmNetEventDestroyEnumHandle0};
inline constexpr EnumCalls<FWPM_NET_EVENT3, FWPM_NET_EVENT_ENUM_TEMPLATE0> kEventEnums{
    FwpmNetEventCreateEnumHandle0, FwpmNetEventEnum3, FwpmNetEventDestroyEnumHandle0};
inline constexpr ChangeCalls<FWPM_NET_EVENT_SUBSCRIPTION0, FWPM_NET_EVENT3> kEvents{
    FwpmNetEventSubscribe2, FwpmNetEventUnsubscribe0, FwpmNetEventSubscriptionsGet0};

inline constexpr EnumCalls<FWPM_LAYER0, FWPM_LAYER_ENUM_TEMPLATE0> kLayerEnums{
    FwpmLayerCreateEnumHandle0, FwpmLayerEnum0, FwpmLayerDestroyEnumHandle0};
inline constexpr KeyCalls<FWPM_LAYER0> kLayerKeys{FwpmLayerGetByKey0, FwpmLayerGetSecurityInfoByKey0,
                                                  FwpmLayerSetSecurityInfoByKey0};

inline constexpr ObjectCalls<FWPM_PROVIDER0, FWPM_PROVIDER_ENUM_TEMPLATE0, FWPM_PROVIDER_SUBSCRIPTION0,
                             FWPM_PROVIDER_CHANGE0>
    kProviders{
        FwpmProviderDeleteByKey0,
        {FwpmProviderGetByKey0, FwpmProviderGetSecurityInfoByKey0, FwpmProviderSetSecurityInfoByKey0},
        {FwpmProviderCreateEnumHandle0, FwpmProviderEnum0, FwpmProviderDestroyEnumHandle0},
        {FwpmProviderSubscribeChanges0, FwpmProviderUnsubscribeChanges0, FwpmProviderSubscriptionsGet0}};

inline constexpr ObjectCalls<FWPM_SUBLAYER0, FWPM_SUBLAYER_ENUM_TEMPLATE0, FWPM_SUBLAYER_SUBSCRIPTION0,
                             FWPM_SUBLAYER_CHANGE0>
    kSublayers{
        FwpmSubLayerDeleteByKey0,
        {FwpmSubLayerGetByKey0, FwpmSubLayerGetSecurityInfoByKey0, FwpmSubLayerSetSecurityInfoByKey0},
        {FwpmSubLayerCreateEnumHandle0, FwpmSubLayerEnum0, FwpmSubLayerDestroyEnumHandle0},
        {FwpmSubLayerSubscribeChanges0, FwpmSubLayerUnsubscribeChanges0, FwpmSubLayerSubscriptionsGet0}};

inline constexpr ObjectCalls<FWPM_CALLOUT0, FWPM_CALLOUT_ENUM_TEMPLATE0, FWPM_CALLOUT_SUBSCRIPTION0,
                             FWPM_CALLOUT_CHANGE0>
    kCallouts{FwpmCalloutDeleteByKey0,
              {FwpmCalloutGetByKey0, FwpmCalloutGetSecurityInfoByKey0, FwpmCalloutSetSecurityInfoByKey0},
              {FwpmCalloutCreateEnumHandle0, FwpmCalloutEnum0, FwpmCalloutDestroyEnumHandle0},
              {FwpmCalloutSubscribeChanges0, FwpmCalloutUnsubscribeChanges0, FwpmCalloutSubscriptionsGet0}};

inline constexpr ObjectCalls<FWPM_PROVIDER_CONTEXT0, FWPM_PROVIDER_CONTEXT_ENUM_TEMPLATE0,
                             FWPM_PROVIDER_CONTEXT_SUBSCRIPTION0, FWPM_PROVIDER_CONTEXT_CHANGE0>
    kProviderContexts{FwpmProviderContextDeleteByKey0,
                      {FwpmProviderContextGetByKey0, FwpmProviderContextGetSecurityInfoByKey0,
                       FwpmProviderContextSetSecurityInfoByKey0},
                      {FwpmProviderContextCreateEnumHandle0, FwpmProviderContextEnum0,
                       FwpmProviderContextDestroyEnumHandle0},
                      {FwpmProviderContextSubscribeChanges0, FwpmProviderContextUnsubscribeChanges0,
                       FwpmProviderContextSubscriptionsGet0}};

inline constexpr ObjectCalls<FWPM_FILTER0, FWPM_FILTER_ENUM_TEMPLATE0, FWPM_FILTER_SUBSCRIPTION0,
                             FWPM_FILTER_CHANGE0>
    kFilters{FwpmFilterDeleteByKey0,
             {FwpmFilterGetByKey0, FwpmFilterGetSecurityInfoByKey0, FwpmFilterSetSecurityInfoByKey0},
             {FwpmFilterCreateEnumHandle0, FwpmFilterEnum0, FwpmFilterDestroyEnumHandle0},
             {FwpmFilterSubscribeChanges0, FwpmFilterUnsubscribeChanges0, FwpmFilterSubscriptionsGet0}};

}  // namespace Fuzz
