// Every function of the engine's interface is in the journal under its own name.
#include <NetEvents.h>
#include <gmock/gmock.h>

#include <cwchar>
#include <initializer_list>
#include <string>
#include <vector>

#include "EmulatedFunctions.h"
#include "EngineClient.h"

namespace {

using Journal = EngineTest;

/// A call with null handles, null pointers and zeros.
template <class... Arguments>
void CallWithZeros(DWORD(WINAPI* function)(Arguments...)) {
  function(Arguments{}...);
}

void FreeNothing() {
  void* nothing = nullptr;
  FwpmFreeMemory0(&nothing);
}

struct Function {
  const char* name;
  void (*call)();
};

constexpr Function kFunctions[]{
    {"FwpmCalloutAdd0", [] { CallWithZeros(FwpmCalloutAdd0); }},
    {"FwpmCalloutCreateEnumHandle0", [] { CallWithZeros(FwpmCalloutCreateEnumHandle0); }},
    {"FwpmCalloutDeleteById0", [] { CallWithZeros(FwpmCalloutDeleteById0); }},
    {"FwpmCalloutDeleteByKey0", [] { CallWithZeros(FwpmCalloutDeleteByKey0); }},
    {"FwpmCalloutDestroyEnumHandle0", [] { CallWithZeros(FwpmCalloutDestroyEnumHandle0); }},
    {"FwpmCalloutEnum0", [] { CallWithZeros(FwpmCalloutEnum0); }},
    {"FwpmCalloutGetById0", [] { CallWithZeros(FwpmCalloutGetById0); }},
    {"FwpmCalloutGetByKey0", [] { CallWithZeros(FwpmCalloutGetByKey0); }},
    {"FwpmCalloutGetSecurityInfoByKey0", [] { CallWithZeros(FwpmCalloutGetSecurityInfoByKey0); }},
    {"FwpmCalloutSetSecurityInfoByKey0", [] { CallWithZeros(FwpmCalloutSetSecurityInfoByKey0); }},
    {"FwpmCalloutSubscribeChanges0", [] { CallWithZeros(FwpmCalloutSubscribeChanges0); }},
    {"FwpmCalloutSubscriptionsGet0", [] { CallWithZeros(FwpmCalloutSubscriptionsGet0); }},
    {"FwpmCalloutUnsubscribeChanges0", [] { CallWithZeros(FwpmCalloutUnsubscribeChanges0); }},
    {"FwpmEngineClose0", [] { CallWithZeros(FwpmEngineClose0); }},
    {"FwpmEngineGetOption0", [] { CallWithZeros(FwpmEngineGetOption0); }},
    {"FwpmEngineGetSecurityInfo0", [] { CallWithZeros(FwpmEngineGetSecurityInfo0); }},
    {"FwpmEngineOpen0", [] { CallWithZeros(FwpmEngineOpen0); }},
    {"FwpmEngineSetOption0", [] { CallWithZeros(FwpmEngineSetOption0); }},
    {"FwpmEngineSetSecurityInfo0", [] { CallWithZeros(FwpmEngineSetSecurityInfo0); }},
    {"FwpmFilterAdd0", [] { CallWithZeros(FwpmFilterAdd0); }},
    {"FwpmFilterCreateEnumHandle0", [] { CallWithZeros(FwpmFilterCreateEnumHandle0); }},
    {"FwpmFilterDeleteById0", [] { CallWithZeros(FwpmFilterDeleteById0); }},
    {"FwpmFilterDeleteByKey0", [] { CallWithZeros(FwpmFilterDeleteByKey0); }},
    {"FwpmFilterDestroyEnumHandle0", [] { CallWithZeros(FwpmFilterDestroyEnumHandle0); }},
    {"FwpmFilterEnum0", [] { CallWithZeros(FwpmFilterEnum0); }},
    {"FwpmFilterGetById0", [] { CallWithZeros(FwpmFilterGetById0); }},
    {"FwpmFilterGetByKey0", [] { CallWithZeros(FwpmFilterGetByKey0); }},
    {"FwpmFilterGetSecurityInfoByKey0", [] { CallWithZeros(FwpmFilterGetSecurityInfoByKey0); }},
    {"FwpmFilterSetSecurityInfoByKey0", [] { CallWithZeros(FwpmFilterSetSecurityInfoByKey0); }},
    {"FwpmFilterSubscribeChanges0", [] { CallWithZeros(FwpmFilterSubscribeChanges0); }},
    {"FwpmFilterSubscriptionsGet0", [] { CallWithZeros(FwpmFilterSubscriptionsGet0); }},
    {"FwpmFilterUnsubscribeChanges0", [] { CallWithZeros(FwpmFilterUnsubscribeChanges0); }},
    {"FwpmFreeMemory0", FreeNothing},
    {"FwpmGetAppIdFromFileName0", [] { CallWithZeros(FwpmGetAppIdFromFileName0); }},
    {"FwpmLayerCreateEnumHandle0", [] { CallWithZeros(FwpmLayerCreateEnumHandle0); }},
    {"FwpmLayerDestroyEnumHandle0", [] { CallWithZeros(FwpmLayerDestroyEnumHandle0); }},
    {"FwpmLayerEnum0", [] { CallWithZeros(FwpmLayerEnum0); }},
    {"FwpmLayerGetById0", [] { CallWithZeros(FwpmLayerGetById0); }},
    {"FwpmLayerGetByKey0", [] { CallWithZeros(FwpmLayerGetByKey0); }},
    {"FwpmLayerGetSecurityInfoByKey0", [] { CallWithZeros(FwpmLayerGetSecurityInfoByKey0); }},
    {"FwpmLayerSetSecurityInfoByKey0", [] { CallWithZeros(FwpmLayerSetSecurityInfoByKey0); }},
    {"FwpmNetEventCreateEnumHandle0", [] { CallWithZeros(FwpmNetEventCreateEnumHandle0); }},
    {"FwpmNetEventDestroyEnumHandle0", [] { CallWithZeros(FwpmNetEventDestroyEnumHandle0); }},
    {"FwpmNetEventEnum0", [] { CallWithZeros(FwpmNetEventEnum0); }},
    {"FwpmNetEventEnum1", [] { CallWithZeros(FwpmNetEventEnum1); }},
    {"FwpmNetEventEnum2", [] { CallWithZeros(FwpmNetEventEnum2); }},
    {"FwpmNetEventEnum3", [] { CallWithZeros(FwpmNetEventEnum3); }},
    {"FwpmNetEventSubscribe0", [] { CallWithZeros(FwpmNetEventSubscribe0); }},
    {"FwpmNetEventSubscribe1", [] { CallWithZeros(FwpmNetEventSubscribe1); }},
    {"FwpmNetEventSubscribe2", [] { CallWithZeros(FwpmNetEventSubscribe2); }},
    {"FwpmNetEventSubscriptionsGet0", [] { CallWithZeros(FwpmNetEventSubscriptionsGet0); }},
    {"FwpmNetEventUnsubscribe0", [] { CallWithZeros(FwpmNetEventUnsubscribe0); }},
    {"FwpmNetEventsGetSecurityInfo0", [] { CallWithZeros(FwpmNetEventsGetSecurityInfo0); }},
    {"FwpmNetEventsSetSecurityInfo0", [] { CallWithZeros(FwpmNetEventsSetSecurityInfo0); }},
    {"FwpmProviderAdd0", [] { CallWithZeros(FwpmProviderAdd0); }},
    {"FwpmProviderContextAdd0", [] { CallWithZeros(FwpmProviderContextAdd0); }},
    {"FwpmProviderContextCreateEnumHandle0", [] { CallWithZeros(FwpmProviderContextCreateEnumHandle0); }},
    {"FwpmProviderContextDeleteById0", [] { CallWithZeros(FwpmProviderContextDeleteById0); }},
    {"FwpmProviderContextDeleteByKey0", [] { CallWithZeros(FwpmProviderContextDeleteByKey0); }},
    {"FwpmProviderContextDestroyEnumHandle0", [] { CallWithZeros(FwpmProviderContextDestroyEnumHandle0); }},
    {"FwpmProviderContextEnum0", [] { CallWithZeros(FwpmProviderContextEnum0); }},
    {"FwpmProviderContextGetById0", [] { CallWithZeros(FwpmProviderContextGetById0); }},
    {"FwpmProviderContextGetByKey0", [] { CallWithZeros(FwpmProviderContextGetByKey0); }},
    {"FwpmProviderContextGetSecurityInfoByKey0",
     [] { CallWithZeros(FwpmProviderContextGetSecurityInfoByKey0); }},
    {"FwpmProviderContextSetSecurityInfoByKey0",
     [] { CallWithZeros(FwpmProviderContextSetSecurityInfoByKey0); }},
    {"FwpmProviderContextSubscribeChanges0", [] { CallWithZeros(FwpmProviderContextSubscribeChanges0); }},
    {"FwpmProviderContextSubscriptionsGet0", [] { CallWithZeros(FwpmProviderContextSubscriptionsGet0); }},
    {"FwpmProviderContextUnsubscribeChanges0", [] { CallWithZeros(FwpmProviderContextUnsubscribeChanges0); }},
    {"FwpmProviderCreateEnumHandle0", [] { CallWithZeros(FwpmProviderCreateEnumHandle0); }},
    {"FwpmProviderDeleteByKey0", [] { CallWithZeros(FwpmProviderDeleteByKey0); }},
    {"FwpmProviderDestroyEnumHandle0", [] { CallWithZeros(FwpmProviderDestroyEnumHandle0); }},
    {"FwpmProviderEnum0", [] { CallWithZeros(FwpmProviderEnum0); }},
    {"FwpmProviderGetByKey0", [] { CallWithZeros(FwpmProviderGetByKey0); }},
    {"FwpmProviderGetSecurityInfoByKey0", [] { CallWithZeros(FwpmProviderGetSecurityInfoByKey0); }},
    {"FwpmProviderSetSecurityInfoByKey0", [] { CallWithZeros(FwpmProviderSetSecurityInfoByKey0); }},
    {"FwpmProviderSubscribeChanges0", [] { CallWithZeros(FwpmProviderSubscribeChanges0); }},
    {"FwpmProviderSubscriptionsGet0", [] { CallWithZeros(FwpmProviderSubscriptionsGet0); }},
    {"FwpmProviderUnsubscribeChanges0", [] { CallWithZeros(FwpmProviderUnsubscribeChanges0); }},
    {"FwpmSessionCreateEnumHandle0", [] { CallWithZeros(FwpmSessionCreateEnumHandle0); }},
    {"FwpmSessionDestroyEnumHandle0", [] { CallWithZeros(FwpmSessionDestroyEnumHandle0); }},
    {"FwpmSessionEnum0", [] { CallWithZeros(FwpmSessionEnum0); }},
    {"FwpmSubLayerAdd0", [] { CallWithZeros(FwpmSubLayerAdd0); }},
    {"FwpmSubLayerCreateEnumHandle0", [] { CallWithZeros(FwpmSubLayerCreateEnumHandle0); }},
    {"FwpmSubLayerDeleteByKey0", [] { CallWithZeros(FwpmSubLayerDeleteByKey0); }},
    {"FwpmSubLayerDestroyEnumHandle0", [] { CallWithZeros(FwpmSubLayerDestroyEnumHandle0); }},
    {"FwpmSubLayerEnum0", [] { CallWithZeros(FwpmSubLayerEnum0); }},
    {"FwpmSubLayerGetByKey0", [] { CallWithZeros(FwpmSubLayerGetByKey0); }},
    {"FwpmSubLayerGetSecurityInfoByKey0", [] { CallWithZeros(FwpmSubLayerGetSecurityInfoByKey0); }},
    {"FwpmSubLayerSetSecurityInfoByKey0", [] { CallWithZeros(FwpmSubLayerSetSecurityInfoByKey0); }},
    {"FwpmSubLayerSubscribeChanges0", [] { CallWithZeros(FwpmSubLayerSubscribeChanges0); }},
    {"FwpmSubLayerSubscriptionsGet0", [] { CallWithZeros(FwpmSubLayerSubscriptionsGet0); }},
    {"FwpmSubLayerUnsubscribeChanges0", [] { CallWithZeros(FwpmSubLayerUnsubscribeChanges0); }},
    {"FwpmTransactionAbort0", [] { CallWithZeros(FwpmTransactionAbort0); }},
    {"FwpmTransactionBegin0", [] { CallWithZeros(FwpmTransactionBegin0); }},
    {"FwpmTransactionCommit0", [] { CallWithZeros(FwpmTransactionCommit0); }},
};

TEST_F(Journal, HoldsEachFunctionUnderItsOwnName) {
  for (const Function& function : kFunctions) {
    EngineEmulator::ClearJournal();
    function.call();
    EXPECT_EQ(Calls(), std::vector<std::string>{function.name});
  }
}

TEST_F(Journal, HoldsEveryFunctionThatTheDllExports) {
  std::vector<std::string> names;
  for (const Function& function : kFunctions) {
    names.emplace_back(function.name);
  }
  EXPECT_THAT(names, testing::UnorderedElementsAreArray(kEmulatedFunctions));
}

TEST_F(Journal, KeepsTheLastCallsAsManyAsItIsToldTo) {
  EngineEmulator::Switches switches;
  switches.journalEntries = 2;
  EngineEmulator::SetSwitches(switches);
  FwpmTransactionAbort0(nullptr);
  FwpmTransactionBegin0(nullptr, 0);
  FreeNothing();
  EXPECT_EQ(Calls(), (std::vector<std::string>{"FwpmTransactionBegin0", "FwpmFreeMemory0"}));
  switches.journalEntries = 0;
  EngineEmulator::SetSwitches(switches);
  FreeNothing();
  EXPECT_EQ(Calls(), std::vector<std::string>());
}

TEST_F(Journal, KeepsTwoThousandCalls) {
  FwpmTransactionAbort0(nullptr);
  for (int count = 0; count < 1'999; ++count) {
    FreeNothing();
  }
  EXPECT_EQ(Calls().size(), 2'000U);
  EXPECT_EQ(Calls().front(), "FwpmTransactionAbort0");
  FreeNothing();
  EXPECT_EQ(Calls().size(), 2'000U);
  EXPECT_EQ(Calls().front(), "FwpmFreeMemory0");
}

/// A file name as the journal shows it. @param units its UTF-16 units.
std::string Written(std::initializer_list<unsigned> units) {
  std::wstring name;
  for (const unsigned unit : units) {
    name += static_cast<wchar_t>(unit);
  }
  FWP_BYTE_BLOB* blob = nullptr;
  FwpmGetAppIdFromFileName0(name.c_str(), &blob);
  return EngineEmulator::Journal().back().arguments;
}

TEST_F(Journal, WritesCharactersInAsManyBytesAsTheyTake) {
  EXPECT_EQ(Written({0x01, 0x7F}), "\x01\x7F");
  EXPECT_EQ(Written({0x80, 0x7FF}), "\xC2\x80\xDF\xBF");
  EXPECT_EQ(Written({0x800, 0xD7FF}), "\xE0\xA0\x80\xED\x9F\xBF");
  EXPECT_EQ(Written({0xE000, 0xFFFF}), "\xEE\x80\x80\xEF\xBF\xBF");
}

TEST_F(Journal, WritesTwoSurrogatesAsOneCharacter) {
  EXPECT_EQ(Written({0xD800, 0xDC00}), "\xF0\x90\x80\x80");
  EXPECT_EQ(Written({0xD800, 0xDFFF}), "\xF0\x90\x8F\xBF");
  EXPECT_EQ(Written({0xDBFF, 0xDC00}), "\xF4\x8F\xB0\x80");
  EXPECT_EQ(Written({0xDBFF, 0xDFFF}), "\xF4\x8F\xBF\xBF");
  EXPECT_EQ(Written({0xD83D, 0xDE00, 0xD835, 0xDD38}), "\xF0\x9F\x98\x80\xF0\x9D\x94\xB8");
}

TEST_F(Journal, WritesHalfAPairAsTheReplacementCharacter) {
  EXPECT_EQ(Written({0xD800}), "\xEF\xBF\xBD");
  EXPECT_EQ(Written({0xDBFF, 'a'}),
            "\xEF\xBF\xBD"
            "a");
  EXPECT_EQ(Written({0xDC00, 0xD800}), "\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(Written({0xDFFF, 0xE000}), "\xEF\xBF\xBD\xEE\x80\x80");
  EXPECT_EQ(Written({0xD800, 0xD800, 0xDC00}), "\xEF\xBF\xBD\xF0\x90\x80\x80");
}

#if WCHAR_MAX > 0xFFFF
TEST_F(Journal, WritesCharactersThatTheHostHasInOneUnit) {
  EXPECT_EQ(Written({0x10000, 0x10FFFF}), "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF");
}
#endif

}  // namespace
