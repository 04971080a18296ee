// An engine whose service is stopped under its clients.
#include <gmock/gmock.h>

#include "EventListener.h"
#include "emulator/ControlExports.h"
#include "support/NetEventRecord.h"

namespace {

using testing::ElementsAre;

using StoppedEngine = EngineTest;

constexpr DWORD kServerUnavailable = 1722;
constexpr DWORD kNotRegistered = 1753;

TEST_F(StoppedEngine, FailsEveryCallOfItsSessions) {
  HANDLE session = nullptr;
  FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, nullptr, &session);
  EngineEmulator::StopEngine();
  FWP_VALUE0* value = nullptr;
  FWPM_NET_EVENT3** events = nullptr;
  UINT32 count = 0;
  EXPECT_EQ(FwpmEngineGetOption0(session, FWPM_ENGINE_COLLECT_NET_EVENTS, &value), kServerUnavailable);
  EXPECT_EQ(FwpmNetEventEnum3(session, nullptr, 1, &events, &count), kServerUnavailable);
  EXPECT_EQ(Add(session, ProviderRecord()), kServerUnavailable);
  EXPECT_EQ(FwpmNetEventUnsubscribe0(session, nullptr), kServerUnavailable);
  EXPECT_EQ(FwpmEngineClose0(session), kServerUnavailable);
  EXPECT_EQ(FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, nullptr, &session), kNotRegistered);
  EXPECT_EQ(EngineEmulator::LastRefusal(), "the engine has been stopped");
}

TEST_F(StoppedEngine, TellsItsSubscribersNothing) {
  EventListener listener;
  HANDLE session = nullptr;
  FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, nullptr, &session);
  SubscribeEvents(session, listener);
  EngineEmulator::RaiseEvent(NetEventRecord::Drop(1, 48).Native());
  listener.Await(1);
  EngineEmulatorStopEngine();
  EXPECT_EQ(EngineEmulator::CountOutstanding().subscriptions, 0U);
  EXPECT_EQ(EngineEmulator::RaiseEvent(NetEventRecord::Drop(2, 48).Native()), kSuccess);
  EXPECT_THAT(listener.Texts(), ElementsAre("drop 1"));
}

TEST_F(StoppedEngine, LeavesItsClientsTheirMemory) {
  HANDLE session = nullptr;
  FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, nullptr, &session);
  FWPM_SUBLAYER0* found = nullptr;
  ASSERT_EQ(FwpmSubLayerGetByKey0(session, &kUniversalSublayer, &found), kSuccess);
  EngineEmulator::StopEngine();
  EXPECT_STREQ(found->displayData.name, L"UNIVERSAL");
  Free(found);
  EXPECT_EQ(EngineEmulator::CountOutstanding().memoryBlocks, 0U);
}

TEST_F(StoppedEngine, CanBeStoppedInACallback) {
  struct Stopper {
    static void CALLBACK Stop(void* context, const FWPM_NET_EVENT3*) {
      EngineEmulator::StopEngine();
      static_cast<Stopper*>(context)->listener.Note("stopped");
    }
    EventListener listener;
  } stopper;
  HANDLE session = nullptr;
  FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, nullptr, &session);
  const FWPM_NET_EVENT_SUBSCRIPTION0 wanted{};
  HANDLE handle = nullptr;
  ASSERT_EQ(FwpmNetEventSubscribe2(session, &wanted, Stopper::Stop, &stopper, &handle), kSuccess);
  EngineEmulator::RaiseEvent(NetEventRecord::Drop(1, 48).Native());
  EXPECT_THAT(stopper.listener.Await(1), ElementsAre("stopped"));
  EXPECT_EQ(FwpmEngineClose0(session), kServerUnavailable);
}

TEST_F(StoppedEngine, EndsTransactionsThatOthersWaitFor) {
  HANDLE writer = nullptr;
  FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, nullptr, &writer);
  ASSERT_EQ(FwpmTransactionBegin0(writer, 0), kSuccess);
  EngineEmulator::StopEngine();
  EXPECT_EQ(EngineEmulator::CountOutstanding().openTransactions, 0U);
  EXPECT_TRUE(EngineEmulator::TakeSnapshot().providers.empty());
}

TEST_F(StoppedEngine, StartsAtAReset) {
  EngineEmulator::StopEngine();
  EngineEmulator::Reset();
  const TestSession session;
  EXPECT_EQ(Add(session, ProviderRecord()), kSuccess);
}

}  // namespace
