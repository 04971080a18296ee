// Layers, callouts, sessions, options, net events.
#include <set>
#include <string>

#include "EngineClient.h"

namespace {

using Layer = EngineTest;
using Callout = EngineTest;
using SessionList = EngineTest;
using Options = EngineTest;
using NetEvents = EngineTest;

constexpr DWORD kCalloutNotFound = 0x80320001;

TEST_F(Layer, HasItsFieldsWithTheirTypes) {
  const TestSession session;
  FWPM_LAYER0* layer = nullptr;
  ASSERT_EQ(FwpmLayerGetByKey0(session, &kFlowEstablishedV4, &layer), kSuccess);
  EXPECT_STREQ(layer->displayData.name, L"ALE Flow Established v4 Layer");
  EXPECT_EQ(layer->layerId, 52);
  EXPECT_EQ(layer->flags, 7U);
  EXPECT_EQ(layer->numFields, 25U);
  EXPECT_TRUE(layer->defaultSubLayerKey == kUniversalSublayer);
  std::set<int> typesOfAddress;
  for (UINT32 index = 0; index < layer->numFields; ++index) {
    if (*layer->field[index].fieldKey == kRemoteAddress) {
      EXPECT_EQ(layer->field[index].type, FWPM_FIELD_IP_ADDRESS);
      typesOfAddress.insert(layer->field[index].dataType);
    }
  }
  EXPECT_EQ(typesOfAddress, std::set<int>{FWP_UINT32});
  Free(layer);
}

TEST_F(Layer, IsFoundByItsId) {
  const TestSession session;
  FWPM_LAYER0* layer = nullptr;
  ASSERT_EQ(FwpmLayerGetById0(session, 50, &layer), kSuccess);
  EXPECT_TRUE(layer->layerKey == kConnectV6);
  Free(layer);
  EXPECT_EQ(FwpmLayerGetById0(session, 0x7FFF, &layer), kLayerNotFound);
  EXPECT_EQ(FwpmLayerGetByKey0(session, &kFilterKey, &layer), kLayerNotFound);
}

TEST_F(Layer, ListHoldsAllOfThem) {
  const TestSession session;
  HANDLE enumHandle = nullptr;
  FWPM_LAYER0** layers = nullptr;
  UINT32 count = 0;
  ASSERT_EQ(FwpmLayerCreateEnumHandle0(session, nullptr, &enumHandle), kSuccess);
  ASSERT_EQ(FwpmLayerEnum0(session, enumHandle, INFINITE, &layers, &count), kSuccess);
  ASSERT_EQ(count, 99U);
  EXPECT_EQ(layers[0]->layerId, 0);
  EXPECT_EQ(layers[98]->layerId, 98);
  Free(layers);
  EXPECT_EQ(FwpmLayerDestroyEnumHandle0(session, enumHandle), kSuccess);
}

TEST_F(Callout, IsStoredAndGetsAnId) {
  const TestSession session;
  const FWPM_CALLOUT0 callout = CalloutRecord(kConnectV4);
  UINT32 id = 0;
  ASSERT_EQ(FwpmCalloutAdd0(session, &callout, nullptr, &id), kSuccess);
  EXPECT_NE(id, 0U);
  FWPM_CALLOUT0* found = nullptr;
  ASSERT_EQ(FwpmCalloutGetById0(session, id, &found), kSuccess);
  EXPECT_TRUE(found->calloutKey == kCalloutKey);
  EXPECT_EQ(found->calloutId, id);
  EXPECT_STREQ(found->displayData.name, L"Name");
  Free(found);
  EXPECT_EQ(FwpmCalloutDeleteById0(session, id), kSuccess);
  EXPECT_EQ(FwpmCalloutGetByKey0(session, &kCalloutKey, &found), kCalloutNotFound);
}

TEST_F(Callout, StaysWhileAFilterNamesIt) {
  const TestSession session;
  const FWPM_CALLOUT0 callout = CalloutRecord(kConnectV4);
  FWPM_FILTER0 filter = FilterRecord();
  filter.action.type = FWP_ACTION_CALLOUT_TERMINATING;
  filter.action.calloutKey = kCalloutKey;
  EXPECT_EQ(Add(session, filter), kCalloutNotFound);
  ASSERT_EQ(FwpmCalloutAdd0(session, &callout, nullptr, nullptr), kSuccess);
  ASSERT_EQ(Add(session, filter), kSuccess);
  EXPECT_EQ(FwpmCalloutDeleteByKey0(session, &kCalloutKey), kInUse);
  EXPECT_EQ(FwpmFilterDeleteByKey0(session, &kFilterKey), kSuccess);
  EXPECT_EQ(FwpmCalloutDeleteByKey0(session, &kCalloutKey), kSuccess);
}

TEST_F(Callout, IsForItsLayerOnly) {
  const TestSession session;
  const FWPM_CALLOUT0 callout = CalloutRecord(kConnectV4);
  ASSERT_EQ(FwpmCalloutAdd0(session, &callout, nullptr, nullptr), kSuccess);
  FWPM_FILTER0 filter = FilterRecord();
  filter.layerKey = kConnectV6;
  filter.action.type = FWP_ACTION_CALLOUT_INSPECTION;
  filter.action.calloutKey = kCalloutKey;
  EXPECT_EQ(Add(session, filter), 0x80320014U);
}

TEST_F(Callout, OfTheSystemIsThere) {
  const TestSession session;
  FWPM_CALLOUT0* found = nullptr;
  ASSERT_EQ(FwpmCalloutGetById0(session, 15, &found), kSuccess);
  EXPECT_STREQ(found->displayData.name, L"IPSEC_ALE_CONNECT_V4");
  EXPECT_TRUE(found->applicableLayer == kConnectV4);
  EXPECT_EQ(found->flags, 0x60000U);
  FWPM_FILTER0 filter = FilterRecord();
  filter.action.type = FWP_ACTION_CALLOUT_TERMINATING;
  filter.action.calloutKey = found->calloutKey;
  EXPECT_EQ(Add(session, filter), kSuccess);
  EXPECT_EQ(FwpmCalloutDeleteByKey0(session, &found->calloutKey), kBuiltInObject);
  Free(found);
}

TEST_F(Callout, ListCanSelectALayer) {
  const TestSession session;
  FWPM_CALLOUT0 callout = CalloutRecord(kConnectV4);
  callout.applicableLayer = kFlowEstablishedV4;
  ASSERT_EQ(FwpmCalloutAdd0(session, &callout, nullptr, nullptr), kSuccess);
  for (const auto& [layer, expected] :
       {std::pair(kFlowEstablishedV4, 1U), std::pair(kFlowEstablishedV6, 0U)}) {
    FWPM_CALLOUT_ENUM_TEMPLATE0 criteria{nullptr, layer};
    HANDLE enumHandle = nullptr;
    FWPM_CALLOUT0** found = nullptr;
    UINT32 count = 9;
    ASSERT_EQ(FwpmCalloutCreateEnumHandle0(session, &criteria, &enumHandle), kSuccess);
    EXPECT_EQ(FwpmCalloutEnum0(session, enumHandle, 10, &found, &count), kSuccess);
    EXPECT_EQ(count, expected);
    Free(found);
    FwpmCalloutDestroyEnumHandle0(session, enumHandle);
  }
}

TEST_F(SessionList, HoldsEveryOpenSession) {
  const TestSession session;
  const TestSession dynamic(kDynamic, 77);
  HANDLE enumHandle = nullptr;
  FWPM_SESSION0** sessions = nullptr;
  UINT32 count = 0;
  ASSERT_EQ(FwpmSessionCreateEnumHandle0(session, nullptr, &enumHandle), kSuccess);
  ASSERT_EQ(FwpmSessionEnum0(session, enumHandle, 10, &sessions, &count), kSuccess);
  ASSERT_EQ(count, 2U);
  std::set<UINT32> patience;
  for (UINT32 index = 0; index < count; ++index) {
    EXPECT_EQ(sessions[index]->processId, GetCurrentProcessId());
    EXPECT_FALSE(sessions[index]->sessionKey == GUID{});
    EXPECT_STREQ(sessions[index]->username, L"SYSTEM");
    EXPECT_EQ(sessions[index]->kernelMode, FALSE);
    ASSERT_EQ(sessions[index]->sid->SubAuthorityCount, 1);
    EXPECT_EQ(sessions[index]->sid->IdentifierAuthority.Value[5], 5);
    EXPECT_EQ(sessions[index]->sid->SubAuthority[0], 18U);
    patience.insert(sessions[index]->txnWaitTimeoutInMSec);
  }
  EXPECT_EQ(patience, (std::set<UINT32>{0, 77}));
  Free(sessions);
  EXPECT_EQ(FwpmSessionDestroyEnumHandle0(session, enumHandle), kSuccess);
}

UINT32 ReadOption(HANDLE session, FWPM_ENGINE_OPTION option) {
  FWP_VALUE0* value = nullptr;
  EXPECT_EQ(FwpmEngineGetOption0(session, option, &value), kSuccess);
  EXPECT_EQ(value->type, FWP_UINT32);
  const UINT32 number = value->uint32;
  Free(value);
  return number;
}

TEST_F(Options, AreKeptForEverybody) {
  const TestSession session;
  FWP_VALUE0 number{};
  number.type = FWP_UINT32;
  number.uint32 = 19;
  ASSERT_EQ(FwpmEngineSetOption0(session, FWPM_ENGINE_NET_EVENT_MATCH_ANY_KEYWORDS, &number), kSuccess);
  EXPECT_EQ(ReadOption(TestSession(kDynamic), FWPM_ENGINE_NET_EVENT_MATCH_ANY_KEYWORDS), 19U);
}

TEST_F(Options, LetTheEngineCollectDropsAtFirst) {
  const TestSession session;
  EXPECT_EQ(ReadOption(session, FWPM_ENGINE_COLLECT_NET_EVENTS), 1U);
  EXPECT_EQ(ReadOption(session, FWPM_ENGINE_NET_EVENT_MATCH_ANY_KEYWORDS), 0U);
  EXPECT_EQ(ReadOption(session, FWPM_ENGINE_NAME_CACHE), 0U);
}

TEST_F(Options, AreNotSetInADynamicSession) {
  const TestSession session(kDynamic);
  FWP_VALUE0 off{};
  off.type = FWP_UINT32;
  EXPECT_EQ(FwpmEngineSetOption0(session, FWPM_ENGINE_COLLECT_NET_EVENTS, &off), kDynamicSessionInProgress);
  EXPECT_EQ(EngineEmulator::LastRefusal(), "a dynamic session sets no options");
  EXPECT_EQ(ReadOption(session, FWPM_ENGINE_COLLECT_NET_EVENTS), 1U);
}

TEST_F(Options, AreNumbersOfKnownNames) {
  const TestSession session;
  FWP_VALUE0 wrong{};
  wrong.type = FWP_UINT8;
  EXPECT_EQ(FwpmEngineSetOption0(session, FWPM_ENGINE_NAME_CACHE, &wrong), kTypeMismatch);
  EXPECT_EQ(FwpmEngineSetOption0(session, FWPM_ENGINE_NAME_CACHE, nullptr), kNullPointer);
  FWP_VALUE0* value = nullptr;
  int unknown = 6;
  EXPECT_EQ(FwpmEngineGetOption0(session, static_cast<FWPM_ENGINE_OPTION>(unknown), &value),
            kInvalidEnumerator);
}

TEST_F(NetEvents, CanBeSubscribedTo) {
  const TestSession session;
  const FWPM_NET_EVENT_SUBSCRIPTION0 wanted{};
  const auto hear = [](void*, const FWPM_NET_EVENT1*) { ADD_FAILURE() << "an event"; };
  HANDLE handle = nullptr;
  ASSERT_EQ(FwpmNetEventSubscribe0(session, &wanted, hear, nullptr, &handle), kSuccess);
  FWPM_NET_EVENT_SUBSCRIPTION0** entries = nullptr;
  UINT32 count = 0;
  EXPECT_EQ(FwpmNetEventSubscriptionsGet0(session, &entries, &count), kSuccess);
  EXPECT_EQ(count, 1U);
  Free(entries);
  EXPECT_EQ(FwpmNetEventUnsubscribe0(session, handle), kSuccess);
  EXPECT_EQ(FwpmNetEventUnsubscribe0(session, handle), kNotFound);
}

TEST_F(NetEvents, DemandEveryPointer) {
  const TestSession session;
  HANDLE enumHandle = nullptr;
  EXPECT_EQ(FwpmNetEventCreateEnumHandle0(session, nullptr, nullptr), kNullPointer);
  ASSERT_EQ(FwpmNetEventCreateEnumHandle0(session, nullptr, &enumHandle), kSuccess);
  FWPM_NET_EVENT0** events = nullptr;
  FWPM_NET_EVENT1** newerEvents = nullptr;
  UINT32 count = 0;
  EXPECT_EQ(FwpmNetEventEnum0(session, enumHandle, 10, nullptr, &count), kNullPointer);
  EXPECT_EQ(FwpmNetEventEnum0(session, enumHandle, 10, &events, nullptr), kNullPointer);
  EXPECT_EQ(FwpmNetEventEnum1(session, enumHandle, 10, nullptr, &count), kNullPointer);
  EXPECT_EQ(FwpmNetEventEnum1(session, enumHandle, 10, &newerEvents, nullptr), kNullPointer);
  FwpmNetEventDestroyEnumHandle0(session, enumHandle);
  FWPM_NET_EVENT_SUBSCRIPTION0** subscriptions = nullptr;
  EXPECT_EQ(FwpmNetEventSubscriptionsGet0(session, nullptr, &count), kNullPointer);
  EXPECT_EQ(FwpmNetEventSubscriptionsGet0(session, &subscriptions, nullptr), kNullPointer);
  const FWPM_NET_EVENT_SUBSCRIPTION0 wanted{};
  const auto hear = [](void*, const FWPM_NET_EVENT1*) {};
  HANDLE handle = nullptr;
  EXPECT_EQ(FwpmNetEventSubscribe0(session, nullptr, hear, nullptr, &handle), kNullPointer);
  EXPECT_EQ(FwpmNetEventSubscribe0(session, &wanted, nullptr, nullptr, &handle), kNullPointer);
  EXPECT_EQ(FwpmNetEventSubscribe0(session, &wanted, hear, nullptr, nullptr), kNullPointer);
}

}  // namespace
