#include "Contents.h"

#include <WfpPlatform.h>
#include <gmock/gmock.h>

#include "Failure.h"
#include "Identities.h"
#include "PolicyReader.h"
#include "ToolProcess.h"
#include "ValueJson.h"
#include "catalog/Guid.h"
#include "emulator/ControlExports.h"
#include "support/EngineKeys.h"
#include "windows/LoadedModule.h"

namespace {

using Catalog::operator""_guid;

constexpr GUID kForeignProvider{0xf0000000, 0, 0, {0, 0, 0, 0, 0, 0, 0, 1}};
constexpr GUID kForeignSublayer{0xf0000000, 0, 0, {0, 0, 0, 0, 0, 0, 0, 2}};
constexpr GUID kUnknownSublayer{0xf0000000, 0, 0, {0, 0, 0, 0, 0, 0, 0, 3}};

/// The emulated engine, loaded in this process, with a session that adds objects.
class ContentsOfEngine : public testing::Test {
 protected:
  ContentsOfEngine() {
    Find<decltype(&::EngineEmulatorReset)>("EngineEmulatorReset")();
    const auto open = Find<decltype(&::FwpmEngineOpen0)>("FwpmEngineOpen0");
    FWPM_SESSION0 session{};
    session.flags = FWPM_SESSION_FLAG_DYNAMIC;
    HANDLE opened = nullptr;
    EXPECT_EQ(open(nullptr, RPC_C_AUTHN_WINNT, nullptr, &session, &opened), 0u);
    session_.reset(opened);
  }

  void AddProvider(const GUID& key) {
    FWPM_PROVIDER0 provider{};
    provider.providerKey = key;
    provider.displayData = {name_.data(), nullptr};
    const auto add = Find<decltype(&::FwpmProviderAdd0)>("FwpmProviderAdd0");
    EXPECT_EQ(add(session_.get(), &provider, nullptr), 0u);
  }

  void AddSublayer(const GUID& key, UINT16 weight) {
    FWPM_SUBLAYER0 sublayer{};
    sublayer.subLayerKey = key;
    sublayer.displayData = {name_.data(), nullptr};
    sublayer.weight = weight;
    const auto add = Find<decltype(&::FwpmSubLayerAdd0)>("FwpmSubLayerAdd0");
    EXPECT_EQ(add(session_.get(), &sublayer, nullptr), 0u);
  }

  /// @param provider null for none.
  void AddFilter(const GUID* provider, const GUID& sublayer, FWP_VALUE0 weight) {
    GUID providerKey = provider == nullptr ? GUID{} : *provider;
    FWPM_FILTER0 filter{};
    filter.displayData = {name_.data(), nullptr};
    filter.providerKey = provider == nullptr ? nullptr : &providerKey;
    filter.layerKey = kConnectV4;
    filter.subLayerKey = sublayer;
    filter.weight = weight;
    filter.action.type = FWP_ACTION_BLOCK;
    const auto add = Find<decltype(&::FwpmFilterAdd0)>("FwpmFilterAdd0");
    EXPECT_EQ(add(session_.get(), &filter, nullptr, nullptr), 0u);
  }

  Contents Read(Owners owners) {
    snapshot_ = ReadPolicy();
    return ContentsOf(snapshot_, owners);
  }

  void FailNext(const std::string& function, DWORD code) {
    Find<decltype(&::EngineEmulatorFailCall)>("EngineEmulatorFailCall")(function.c_str(), 1, code);
  }

  std::string Journal() {
    const auto readJournal = Find<decltype(&::EngineEmulatorJournalText)>("EngineEmulatorJournalText");
    std::string text(readJournal(nullptr, 0), '\0');
    readJournal(text.data(), text.size());
    return text;
  }

  void ExpectOnlyOurSessionIsOpen() {
    EngineEmulatorOutstanding outstanding{};
    Find<decltype(&::EngineEmulatorCountOutstanding)>("EngineEmulatorCountOutstanding")(&outstanding);
    EXPECT_EQ(outstanding.sessions, 1u);
    EXPECT_EQ(outstanding.enumHandles, 0u);
    EXPECT_EQ(outstanding.memoryBlocks, 0u);
  }

 private:
  template <class Function>
  Function Find(const char* function) {
    return FindFunction<Function>(emulator_.get(), function);
  }

  ModuleHandle emulator_ = LoadModule(ProgramFolder() / "emulator" / "fwpuclnt.dll");
  std::unique_ptr<void, decltype(&::FwpmEngineClose0)> session_{
      nullptr, Find<decltype(&::FwpmEngineClose0)>("FwpmEngineClose0")};
  std::wstring name_ = L"name";
  Policy::Snapshot snapshot_;
};

TEST_F(ContentsOfEngine, LeavesOutWhatOthersOwn) {
  AddProvider(kForeignProvider);
  AddSublayer(kForeignSublayer, 9);
  AddSublayer(kDhcp.key, 1);
  AddFilter(&kForeignProvider, kForeignSublayer, {});
  AddFilter(&kForeignProvider, kDhcp.key, {});
  AddFilter(nullptr, kDhcp.key, {});
  const Contents contents = Read(Owners::Ours);
  EXPECT_EQ(contents.provider, nullptr);
  ASSERT_EQ(contents.sublayers.size(), 1u);
  EXPECT_EQ(contents.sublayers[0].sublayer->key, "28c81cd0-d8bf-4ab0-9def-9a7bf71e4641"_guid);
  EXPECT_TRUE(contents.sublayers[0].filters.empty());
}

TEST_F(ContentsOfEngine, FindsSublayersOfAnyKeyThatHoldOurFilters) {
  AddProvider(kProvider.key);
  AddSublayer(kUnknownSublayer, 7);
  AddFilter(&kProvider.key, kUnknownSublayer, {});
  const Contents contents = Read(Owners::Ours);
  ASSERT_EQ(contents.sublayers.size(), 1u);
  EXPECT_EQ(contents.sublayers[0].sublayer->key, "f0000000-0000-0000-0000-000000000003"_guid);
  ASSERT_NE(contents.provider, nullptr);
  EXPECT_EQ(contents.provider->name, "name");
  EXPECT_EQ(contents.sublayers[0].filters.size(), 1u);
}

TEST_F(ContentsOfEngine, FindsWhatOthersOwnOnRequest) {
  AddProvider(kForeignProvider);
  AddSublayer(kForeignSublayer, 65535);
  AddFilter(&kForeignProvider, kForeignSublayer, {});
  AddFilter(nullptr, kForeignSublayer, {});
  const Contents contents = Read(Owners::All);
  ASSERT_EQ(contents.sublayers.size(), 19u);  // 18 are built in
  const auto& [heaviest, filters] = contents.sublayers[0];
  EXPECT_EQ(heaviest->key, "f0000000-0000-0000-0000-000000000002"_guid);
  EXPECT_EQ(heaviest->weight, 65535u);
  ASSERT_EQ(filters.size(), 2u);
  EXPECT_EQ(filters[0]->providerKey, "f0000000-0000-0000-0000-000000000001"_guid);
  EXPECT_EQ(filters[1]->providerKey, std::nullopt);
  EXPECT_LT(filters[0]->id, filters[1]->id);
}

TEST_F(ContentsOfEngine, PutsTheWeightiestSublayerFirst) {
  AddSublayer(kDhcp.key, 13);
  AddSublayer(kKillSwitch.key, 65535);
  AddSublayer(kSkein.key, 15);
  const Contents contents = Read(Owners::Ours);
  ASSERT_EQ(contents.sublayers.size(), 3u);
  EXPECT_EQ(contents.sublayers[0].sublayer->weight, 65535u);
  EXPECT_EQ(contents.sublayers[1].sublayer->weight, 15u);
  EXPECT_EQ(contents.sublayers[2].sublayer->weight, 13u);
}

TEST_F(ContentsOfEngine, TellsWeightsWithTheirTypes) {
  AddProvider(kProvider.key);
  AddSublayer(kDhcp.key, 1);
  UINT64 large = 18446744073709551615u;
  FWP_VALUE0 weight{};
  AddFilter(&kProvider.key, kDhcp.key, weight);
  weight.type = FWP_UINT8;
  weight.uint8 = 15;
  AddFilter(&kProvider.key, kDhcp.key, weight);
  weight.type = FWP_UINT64;
  weight.uint64 = &large;
  AddFilter(&kProvider.key, kDhcp.key, weight);
  const Contents contents = Read(Owners::Ours);
  ASSERT_EQ(contents.sublayers.size(), 1u);
  ASSERT_EQ(contents.sublayers[0].filters.size(), 3u);
  const auto& filters = contents.sublayers[0].filters;
  EXPECT_EQ(filters[0]->weight.type, FWP_EMPTY);
  EXPECT_TRUE(ToJson(filters[0]->weight).is_null());
  EXPECT_EQ(filters[1]->weight.type, FWP_UINT8);
  EXPECT_EQ(ToJson(filters[1]->weight), 15);
  EXPECT_EQ(filters[2]->weight.type, FWP_UINT64);
  EXPECT_EQ(ToJson(filters[2]->weight), "18446744073709551615");
  EXPECT_EQ(filters[0]->effectiveWeight, 0u);
  EXPECT_EQ(filters[1]->effectiveWeight, 17293822569102704640u);
  EXPECT_EQ(filters[2]->effectiveWeight, 18446744073709551615u);
}

TEST_F(ContentsOfEngine, GivesBackItsSessionItsHandlesAndItsMemory) {
  AddProvider(kProvider.key);
  AddSublayer(kDhcp.key, 1);
  AddFilter(&kProvider.key, kDhcp.key, {});
  ReadPolicy();
  ExpectOnlyOurSessionIsOpen();
  EXPECT_THAT(Journal(), testing::HasSubstr("FwpmFilterDestroyEnumHandle0("));
  EXPECT_THAT(Journal(), testing::HasSubstr("FwpmSubLayerDestroyEnumHandle0("));
}

TEST_F(ContentsOfEngine, NamesTheFunctionThatFailsAndGivesAllBack) {
  AddProvider(kProvider.key);
  AddSublayer(kDhcp.key, 1);
  AddFilter(&kProvider.key, kDhcp.key, {});
  for (const std::string function :
       {"FwpmEngineOpen0", "FwpmTransactionBegin0", "FwpmProviderCreateEnumHandle0", "FwpmProviderEnum0",
        "FwpmFilterCreateEnumHandle0", "FwpmFilterEnum0", "FwpmSubLayerCreateEnumHandle0",
        "FwpmSubLayerEnum0"}) {
    FailNext(function, ERROR_ACCESS_DENIED);
    try {
      ReadPolicy();
      ADD_FAILURE() << function << " was expected to fail";
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.what(), "The filtering engine cannot be read: " + function +
                                    " failed: ERROR_ACCESS_DENIED (0x00000005)");
      EXPECT_EQ(failure.Code(), 5u);
    }
    ExpectOnlyOurSessionIsOpen();
  }
}

Policy::Filter FilterOf(UINT64 id, const GUID& sublayer) {
  Policy::Filter filter{};
  filter.id = id;
  filter.sublayerKey = sublayer;
  return filter;
}

TEST(Contents, FiltersOfASublayerThatIsNotShownComeLast) {
  constexpr GUID kLight{0xf0000000, 0, 0, {0, 0, 0, 0, 0, 0, 0, 4}};
  const Policy::Snapshot snapshot = Policy::MakeSnapshot(
      {{kLight, "light", 0}, {kForeignSublayer, "heavy", 2}, {kForeignProvider, "light too", 0}},
      {FilterOf(3, kUnknownSublayer), FilterOf(2, kLight), FilterOf(1, kUnknownSublayer)});
  const auto sublayers = ContentsOf(snapshot, Owners::All).sublayers;
  ASSERT_EQ(sublayers.size(), 4u);
  EXPECT_EQ(sublayers[0].sublayer->name, "heavy");
  EXPECT_TRUE(sublayers[0].filters.empty());
  EXPECT_EQ(sublayers[1].sublayer->name, "light too");
  EXPECT_EQ(sublayers[2].sublayer->name, "light");
  EXPECT_EQ(sublayers[2].filters.size(), 1u);
  EXPECT_EQ(sublayers[3].sublayer->key, kUnknownSublayer);
  EXPECT_FALSE(sublayers[3].sublayer->listed);
  ASSERT_EQ(sublayers[3].filters.size(), 2u);
  EXPECT_EQ(sublayers[3].filters[0]->id, 1u);
  EXPECT_EQ(sublayers[3].filters[1]->id, 3u);
}

TEST(FailureText, AccessDeniedOfTheSystemsEngineAsksForAdministratorRights) {
  const Failure denied(5, "FwpmEngineOpen0 failed");
  EXPECT_EQ(denied.Hint(Engine::System),
            "The filtering engine is open to administrators only: run this as administrator.");
  EXPECT_EQ(denied.Hint(Engine::Emulated), "");
}

TEST(FailureText, CodesOfTheLibraryHaveNames) {
  EXPECT_EQ(CodeName(904), "CORVANE_ERROR_GETTING_INTERFACES (0x00000388)");
  EXPECT_EQ(CodeName(1), "CORVANE_ERROR_WITHOUT_CODE (0x00000001)");
}

}  // namespace
