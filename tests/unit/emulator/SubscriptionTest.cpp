#include <gmock/gmock.h>

#include <string>
#include <thread>

#include "CallbackLog.h"
#include "EngineClient.h"

namespace {

constexpr UINT32 kOnAdd = 1;
constexpr UINT32 kOnDelete = 2;
constexpr UINT32 kOnBoth = 3;

/// Collects the changes that a callback gets.
class Listener : public CallbackLog {
 public:
  template <class Change>
  static void CALLBACK Hear(void* context, const Change* change) {
    static_cast<Listener*>(context)->Note(change->changeType == FWPM_CHANGE_ADD ? "add" : "delete");
  }
};

class Subscription : public EngineTest {
 protected:
  static HANDLE ToProviders(HANDLE session, Listener& listener, UINT32 flags = kOnBoth) {
    FWPM_PROVIDER_SUBSCRIPTION0 wanted{};
    wanted.flags = flags;
    HANDLE handle = nullptr;
    EXPECT_EQ(FwpmProviderSubscribeChanges0(session, &wanted, Listener::Hear<FWPM_PROVIDER_CHANGE0>,
                                            &listener, &handle),
              kSuccess);
    return handle;
  }
};

TEST_F(Subscription, TellsOfAdditionsAndDeletionsOnAnotherThread) {
  const TestSession session;
  Listener listener;
  const HANDLE handle = ToProviders(session, listener);
  ASSERT_EQ(Add(session, ProviderRecord()), kSuccess);
  ASSERT_EQ(FwpmProviderDeleteByKey0(session, &kProviderKey), kSuccess);
  EXPECT_THAT(listener.Await(2), testing::ElementsAre("add", "delete"));
  EXPECT_NE(listener.Thread(), std::this_thread::get_id());
  EXPECT_EQ(FwpmProviderUnsubscribeChanges0(session, handle), kSuccess);
}

TEST_F(Subscription, TellsOfWhatWasAskedForOnly) {
  const TestSession session;
  Listener additions;
  Listener deletions;
  const HANDLE first = ToProviders(session, additions, kOnAdd);
  const HANDLE second = ToProviders(session, deletions, kOnDelete);
  ASSERT_EQ(Add(session, ProviderRecord()), kSuccess);
  ASSERT_EQ(FwpmProviderDeleteByKey0(session, &kProviderKey), kSuccess);
  EXPECT_THAT(deletions.Await(1), testing::ElementsAre("delete"));
  EXPECT_THAT(additions.Await(1), testing::ElementsAre("add"));
  FwpmProviderUnsubscribeChanges0(session, first);
  FwpmProviderUnsubscribeChanges0(session, second);
}

TEST_F(Subscription, TellsAfterTheCommitAndNotOfWhatWasAborted) {
  const TestSession session;
  const TestSession writer;
  Listener listener;
  const HANDLE handle = ToProviders(session, listener);
  FwpmTransactionBegin0(writer, 0);
  Add(writer, ProviderRecord(kProviderKey));
  FwpmTransactionAbort0(writer);
  FwpmTransactionBegin0(writer, 0);
  Add(writer, ProviderRecord(kOtherProviderKey));
  EXPECT_EQ(listener.Texts().size(), 0U);
  FwpmTransactionCommit0(writer);
  EXPECT_EQ(listener.Await(1).size(), 1U);
  FwpmProviderUnsubscribeChanges0(session, handle);
  EXPECT_EQ(listener.Texts().size(), 1U);
}

TEST_F(Subscription, TellsOfDynamicObjectsThatEnd) {
  const TestSession session;
  Listener listener;
  const HANDLE handle = ToProviders(session, listener, kOnDelete);
  { Add(TestSession(kDynamic), ProviderRecord()); }
  EXPECT_THAT(listener.Await(1), testing::ElementsAre("delete"));
  FwpmProviderUnsubscribeChanges0(session, handle);
}

TEST_F(Subscription, ToFiltersFollowsItsTemplateAndTellsTheId) {
  const TestSession session;
  FWPM_FILTER_ENUM_TEMPLATE0 criteria{};
  criteria.layerKey = kConnectV6;
  criteria.actionMask = 0xFFFFFFFF;
  FWPM_FILTER_SUBSCRIPTION0 wanted{};
  wanted.enumTemplate = &criteria;
  wanted.flags = kOnAdd;
  Listener listener;
  const auto hear = [](void* context, const FWPM_FILTER_CHANGE0* change) {
    static_cast<Listener*>(context)->Note(std::to_string(change->filterId));
  };
  HANDLE handle = nullptr;
  ASSERT_EQ(FwpmFilterSubscribeChanges0(session, &wanted, hear, &listener, &handle), kSuccess);
  FWPM_FILTER0 filter = FilterRecord(kFilterKey);
  UINT64 id = 0;
  ASSERT_EQ(Add(session, filter), kSuccess);
  filter = FilterRecord(kOtherFilterKey);
  filter.layerKey = kConnectV6;
  ASSERT_EQ(FwpmFilterAdd0(session, &filter, nullptr, &id), kSuccess);
  EXPECT_THAT(listener.Await(1), testing::ElementsAre(std::to_string(id)));
  EXPECT_EQ(FwpmFilterUnsubscribeChanges0(session, handle), kSuccess);
}

TEST_F(Subscription, ToSublayersFollowsItsTemplate) {
  const TestSession session;
  GUID providerKey = kProviderKey;
  FWPM_SUBLAYER_ENUM_TEMPLATE0 criteria{&providerKey};
  const FWPM_SUBLAYER_SUBSCRIPTION0 wanted{&criteria, kOnAdd, {}};
  Listener listener;
  HANDLE handle = nullptr;
  ASSERT_EQ(FwpmSubLayerSubscribeChanges0(session, &wanted, Listener::Hear<FWPM_SUBLAYER_CHANGE0>, &listener,
                                          &handle),
            kSuccess);
  FWPM_SUBLAYER0 sublayer = SublayerRecord();
  sublayer.providerKey = &providerKey;
  Add(session, ProviderRecord());
  Add(session, SublayerRecord(kOtherSublayerKey));
  Add(session, sublayer);
  EXPECT_EQ(listener.Await(1).size(), 1U);
  EXPECT_EQ(FwpmSubLayerUnsubscribeChanges0(session, handle), kSuccess);
  EXPECT_EQ(listener.Texts().size(), 1U);
}

TEST_F(Subscription, EndsWithItsSession) {
  Listener listener;
  {
    const TestSession session;
    ToProviders(session, listener);
    EXPECT_EQ(EngineEmulator::CountOutstanding().subscriptions, 1U);
  }
  EXPECT_EQ(EngineEmulator::CountOutstanding().subscriptions, 0U);
}

TEST_F(Subscription, EndsWithTheEngine) {
  HANDLE session = nullptr;
  Listener listener;
  FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, nullptr, &session);
  ToProviders(session, listener);
  EngineEmulator::Reset();
  EXPECT_EQ(EngineEmulator::CountOutstanding().subscriptions, 0U);
}

/// The data that a callback needs to end its own subscription.
struct SelfEnder {
  HANDLE session;
  HANDLE handle;
  Listener listener;
};

void CALLBACK EndSelf(void* context, const FWPM_PROVIDER_CHANGE0*) {
  auto* const self = static_cast<SelfEnder*>(context);
  self->listener.Note(std::to_string(FwpmProviderUnsubscribeChanges0(self->session, self->handle)));
}

TEST_F(Subscription, CanBeEndedByItsOwnCallback) {
  const TestSession session;
  SelfEnder self{session, nullptr, {}};
  const FWPM_PROVIDER_SUBSCRIPTION0 wanted{nullptr, kOnAdd, {}};
  ASSERT_EQ(FwpmProviderSubscribeChanges0(session, &wanted, EndSelf, &self, &self.handle), kSuccess);
  ASSERT_EQ(Add(session, ProviderRecord()), kSuccess);
  EXPECT_THAT(self.listener.Await(1), testing::ElementsAre("0"));
}

TEST_F(Subscription, IsNoPartOfATransaction) {
  const TestSession session;
  Listener listener;
  const HANDLE handle = ToProviders(session, listener);
  const FWPM_PROVIDER_SUBSCRIPTION0 wanted{nullptr, kOnBoth, {}};
  HANDLE other = nullptr;
  FwpmTransactionBegin0(session, 0);
  EXPECT_EQ(FwpmProviderSubscribeChanges0(session, &wanted, Listener::Hear<FWPM_PROVIDER_CHANGE0>, &listener,
                                          &other),
            kTransactionInProgress);
  EXPECT_EQ(FwpmProviderUnsubscribeChanges0(session, handle), kTransactionInProgress);
  FwpmTransactionAbort0(session);
  EXPECT_EQ(FwpmProviderUnsubscribeChanges0(session, handle), kSuccess);
}

TEST_F(Subscription, IsRefusedWithNullsAndUnknownFlags) {
  const TestSession session;
  FWPM_PROVIDER_SUBSCRIPTION0 wanted{nullptr, kOnBoth, {}};
  const auto hear = Listener::Hear<FWPM_PROVIDER_CHANGE0>;
  HANDLE handle = nullptr;
  EXPECT_EQ(FwpmProviderSubscribeChanges0(session, nullptr, hear, nullptr, &handle), kNullPointer);
  EXPECT_EQ(FwpmProviderSubscribeChanges0(session, &wanted, nullptr, nullptr, &handle), kNullPointer);
  EXPECT_EQ(FwpmProviderSubscribeChanges0(session, &wanted, hear, nullptr, nullptr), kNullPointer);
  wanted.flags = 4;
  EXPECT_EQ(FwpmProviderSubscribeChanges0(session, &wanted, hear, nullptr, &handle), kInvalidFlags);
  EXPECT_EQ(FwpmProviderUnsubscribeChanges0(session, &wanted), kNotFound);
}

TEST_F(Subscription, IsListedWithItsSessionAndTemplate) {
  const TestSession session;
  GUID providerKey = kProviderKey;
  FWPM_SUBLAYER_ENUM_TEMPLATE0 criteria{&providerKey};
  const FWPM_SUBLAYER_SUBSCRIPTION0 wanted{&criteria, kOnAdd, {}};
  Listener listener;
  HANDLE handle = nullptr;
  ASSERT_EQ(FwpmSubLayerSubscribeChanges0(session, &wanted, Listener::Hear<FWPM_SUBLAYER_CHANGE0>, &listener,
                                          &handle),
            kSuccess);
  FWPM_SUBLAYER_SUBSCRIPTION0** entries = nullptr;
  UINT32 count = 0;
  ASSERT_EQ(FwpmSubLayerSubscriptionsGet0(session, &entries, &count), kSuccess);
  ASSERT_EQ(count, 1U);
  EXPECT_EQ(entries[0]->flags, kOnAdd);
  EXPECT_TRUE(*entries[0]->enumTemplate->providerKey == kProviderKey);
  EXPECT_FALSE(entries[0]->sessionKey == GUID{});
  Free(entries);
  FwpmSubLayerUnsubscribeChanges0(session, handle);
}

TEST_F(Subscription, ToProvidersIsListedWithItsTemplate) {
  const TestSession session;
  FWPM_PROVIDER_ENUM_TEMPLATE0 criteria{};
  const FWPM_PROVIDER_SUBSCRIPTION0 wanted{&criteria, kOnAdd, {}};
  HANDLE handle = nullptr;
  ASSERT_EQ(FwpmProviderSubscribeChanges0(session, &wanted, Listener::Hear<FWPM_PROVIDER_CHANGE0>, nullptr,
                                          &handle),
            kSuccess);
  FWPM_PROVIDER_SUBSCRIPTION0** entries = nullptr;
  UINT32 count = 0;
  ASSERT_EQ(FwpmProviderSubscriptionsGet0(session, &entries, &count), kSuccess);
  ASSERT_EQ(count, 1U);
  EXPECT_NE(entries[0]->enumTemplate, nullptr);
  EXPECT_NE(entries[0]->enumTemplate, &criteria);
  Free(entries);
  FwpmProviderUnsubscribeChanges0(session, handle);
}

TEST_F(Subscription, ToCalloutsIsListedWithItsTemplate) {
  const TestSession session;
  GUID providerKey = kProviderKey;
  FWPM_CALLOUT_ENUM_TEMPLATE0 criteria{&providerKey, kConnectV4};
  const FWPM_CALLOUT_SUBSCRIPTION0 wanted{&criteria, kOnDelete, {}};
  HANDLE handle = nullptr;
  ASSERT_EQ(
      FwpmCalloutSubscribeChanges0(session, &wanted, Listener::Hear<FWPM_CALLOUT_CHANGE0>, nullptr, &handle),
      kSuccess);
  FWPM_CALLOUT_SUBSCRIPTION0** entries = nullptr;
  UINT32 count = 0;
  ASSERT_EQ(FwpmCalloutSubscriptionsGet0(session, &entries, &count), kSuccess);
  ASSERT_EQ(count, 1U);
  EXPECT_EQ(entries[0]->flags, kOnDelete);
  EXPECT_NE(entries[0]->enumTemplate->providerKey, &providerKey);
  EXPECT_TRUE(*entries[0]->enumTemplate->providerKey == kProviderKey);
  EXPECT_TRUE(entries[0]->enumTemplate->layerKey == kConnectV4);
  Free(entries);
  FwpmCalloutUnsubscribeChanges0(session, handle);
}

TEST_F(Subscription, ToCalloutsTellsOfAdditionsWithTheId) {
  const TestSession session;
  const FWPM_CALLOUT_SUBSCRIPTION0 wanted{nullptr, kOnAdd, {}};
  struct Heard : Listener {
    static void CALLBACK Note(void* context, const FWPM_CALLOUT_CHANGE0* change) {
      static_cast<Heard*>(context)->id = change->calloutId;
      Hear(static_cast<Listener*>(static_cast<Heard*>(context)), change);
    }
    UINT32 id = 0;
  } listener;
  HANDLE handle = nullptr;
  ASSERT_EQ(FwpmCalloutSubscribeChanges0(session, &wanted, Heard::Note, &listener, &handle), kSuccess);
  FWPM_CALLOUT0 callout{};
  callout.displayData = {kName, kDescription};
  callout.applicableLayer = kConnectV4;
  UINT32 id = 0;
  ASSERT_EQ(FwpmCalloutAdd0(session, &callout, nullptr, &id), kSuccess);
  EXPECT_THAT(listener.Await(1), testing::ElementsAre("add"));
  EXPECT_EQ(listener.id, id);
  FwpmCalloutUnsubscribeChanges0(session, handle);
}

TEST_F(Subscription, ToNetEventsIsListedWithItsConditions) {
  const TestSession session;
  FWPM_FILTER_CONDITION0 condition{};
  condition.fieldKey = kRemotePort;
  condition.conditionValue.type = FWP_UINT16;
  condition.conditionValue.uint16 = 53;
  FWPM_NET_EVENT_ENUM_TEMPLATE0 criteria{};
  criteria.numFilterConditions = 1;
  criteria.filterCondition = &condition;
  const FWPM_NET_EVENT_SUBSCRIPTION0 wanted{&criteria, 0, {}};
  const auto ignore = [](void*, const FWPM_NET_EVENT1*) {};
  HANDLE handle = nullptr;
  ASSERT_EQ(FwpmNetEventSubscribe0(session, &wanted, ignore, nullptr, &handle), kSuccess);
  FWPM_NET_EVENT_SUBSCRIPTION0** entries = nullptr;
  UINT32 count = 0;
  ASSERT_EQ(FwpmNetEventSubscriptionsGet0(session, &entries, &count), kSuccess);
  ASSERT_EQ(count, 1U);
  EXPECT_NE(entries[0]->enumTemplate->filterCondition, &condition);
  EXPECT_EQ(entries[0]->enumTemplate->filterCondition->conditionValue.uint16, 53);
  Free(entries);
  FwpmNetEventUnsubscribe0(session, handle);
}

}  // namespace
