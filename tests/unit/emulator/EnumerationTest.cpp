#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

#include "EngineClient.h"

namespace {

using testing::ElementsAre;

constexpr UINT32 kInfinite = 0xFFFFFFFF;

class Enumeration : public EngineTest {
 protected:
  void AddFilters(const TestSession& session, UINT8 count) {
    for (UINT8 number = 0; number < count; ++number) {
      FWPM_FILTER0 filter = FilterRecord(GUID{});
      filter.weight.uint8 = number;
      ASSERT_EQ(Add(session, filter), kSuccess);
    }
  }

  /// The weights of the filters in one page.
  static std::vector<int> Page(HANDLE session, HANDLE enumHandle, UINT32 requested) {
    FWPM_FILTER0** entries = nullptr;
    UINT32 returned = 0;
    EXPECT_EQ(FwpmFilterEnum0(session, enumHandle, requested, &entries, &returned), kSuccess);
    std::vector<int> weights;
    for (UINT32 index = 0; index < returned; ++index) {
      weights.push_back(entries[index]->weight.uint8);
    }
    Free(entries);
    return weights;
  }

  /// The weights of all filters that a template selects.
  static std::vector<int> Selected(HANDLE session, const FWPM_FILTER_ENUM_TEMPLATE0& criteria) {
    HANDLE enumHandle = nullptr;
    EXPECT_EQ(FwpmFilterCreateEnumHandle0(session, &criteria, &enumHandle), kSuccess);
    std::vector<int> weights = Page(session, enumHandle, kInfinite);
    EXPECT_EQ(FwpmFilterDestroyEnumHandle0(session, enumHandle), kSuccess);
    return weights;
  }

  static FWPM_FILTER_ENUM_TEMPLATE0 AllOfConnectV4() {
    FWPM_FILTER_ENUM_TEMPLATE0 criteria{};
    criteria.layerKey = kConnectV4;
    criteria.actionMask = 0xFFFFFFFF;
    return criteria;
  }
};

TEST_F(Enumeration, GivesPageAfterPageInTheOrderOfAdding) {
  const TestSession session;
  AddFilters(session, 5);
  HANDLE enumHandle = nullptr;
  ASSERT_EQ(FwpmFilterCreateEnumHandle0(session, nullptr, &enumHandle), kSuccess);
  EXPECT_THAT(Page(session, enumHandle, 2), ElementsAre(0, 1));
  EXPECT_THAT(Page(session, enumHandle, 2), ElementsAre(2, 3));
  EXPECT_THAT(Page(session, enumHandle, 2), ElementsAre(4));
  EXPECT_THAT(Page(session, enumHandle, 2), ElementsAre());
  EXPECT_EQ(FwpmFilterDestroyEnumHandle0(session, enumHandle), kSuccess);
}

TEST_F(Enumeration, GivesEverythingForAnInfiniteCount) {
  const TestSession session;
  AddFilters(session, 3);
  HANDLE enumHandle = nullptr;
  ASSERT_EQ(FwpmFilterCreateEnumHandle0(session, nullptr, &enumHandle), kSuccess);
  EXPECT_THAT(Page(session, enumHandle, kInfinite), ElementsAre(0, 1, 2));
  FwpmFilterDestroyEnumHandle0(session, enumHandle);
}

TEST_F(Enumeration, GivesOneBlockForAPage) {
  const TestSession session;
  AddFilters(session, 3);
  HANDLE enumHandle = nullptr;
  ASSERT_EQ(FwpmFilterCreateEnumHandle0(session, nullptr, &enumHandle), kSuccess);
  FWPM_FILTER0** entries = nullptr;
  UINT32 returned = 0;
  ASSERT_EQ(FwpmFilterEnum0(session, enumHandle, kInfinite, &entries, &returned), kSuccess);
  EXPECT_EQ(returned, 3U);
  EXPECT_EQ(EngineEmulator::CountOutstanding().memoryBlocks, 1U);
  Free(entries);
  EXPECT_EQ(entries, nullptr);
  EXPECT_EQ(EngineEmulator::CountOutstanding().memoryBlocks, 0U);
  FwpmFilterDestroyEnumHandle0(session, enumHandle);
}

TEST_F(Enumeration, GivesNoMemoryForAnEmptyPage) {
  const TestSession session;
  HANDLE enumHandle = nullptr;
  ASSERT_EQ(FwpmFilterCreateEnumHandle0(session, nullptr, &enumHandle), kSuccess);
  FWPM_FILTER0* none = nullptr;
  FWPM_FILTER0** entries = &none;
  UINT32 returned = 9;
  ASSERT_EQ(FwpmFilterEnum0(session, enumHandle, kInfinite, &entries, &returned), kSuccess);
  EXPECT_EQ(returned, 0U);
  EXPECT_EQ(entries, nullptr);
  FwpmFilterDestroyEnumHandle0(session, enumHandle);
}

TEST_F(Enumeration, IsASnapshot) {
  const TestSession session;
  ASSERT_EQ(Add(session, FilterRecord(kFilterKey)), kSuccess);
  HANDLE enumHandle = nullptr;
  ASSERT_EQ(FwpmFilterCreateEnumHandle0(session, nullptr, &enumHandle), kSuccess);
  ASSERT_EQ(FwpmFilterDeleteByKey0(session, &kFilterKey), kSuccess);
  FWPM_FILTER0 later = FilterRecord(kOtherFilterKey);
  later.weight.uint8 = 3;
  ASSERT_EQ(Add(session, later), kSuccess);
  EXPECT_THAT(Page(session, enumHandle, kInfinite), ElementsAre(14));
  FwpmFilterDestroyEnumHandle0(session, enumHandle);
}

TEST_F(Enumeration, SeesTheDynamicFiltersOfOtherSessions) {
  const TestSession owner(kDynamic);
  const TestSession session;
  ASSERT_EQ(Add(owner, FilterRecord()), kSuccess);
  EXPECT_THAT(Selected(session, AllOfConnectV4()), ElementsAre(14));
}

TEST_F(Enumeration, SeesOwnUncommittedFiltersButNotThoseOfOthers) {
  const TestSession writer;
  const TestSession reader;
  ASSERT_EQ(FwpmTransactionBegin0(writer, 0), kSuccess);
  ASSERT_EQ(Add(writer, FilterRecord()), kSuccess);
  EXPECT_THAT(Selected(writer, AllOfConnectV4()), ElementsAre(14));
  EXPECT_THAT(Selected(reader, AllOfConnectV4()), ElementsAre());
  ASSERT_EQ(FwpmTransactionCommit0(writer), kSuccess);
}

TEST_F(Enumeration, HandleBelongsToItsSession) {
  const TestSession owner;
  const TestSession other;
  HANDLE enumHandle = nullptr;
  ASSERT_EQ(FwpmFilterCreateEnumHandle0(owner, nullptr, &enumHandle), kSuccess);
  FWPM_FILTER0** entries = nullptr;
  UINT32 returned = 0;
  EXPECT_EQ(FwpmFilterEnum0(other, enumHandle, 1, &entries, &returned), kNotFound);
  EXPECT_EQ(FwpmFilterDestroyEnumHandle0(other, enumHandle), kNotFound);
  EXPECT_EQ(FwpmFilterDestroyEnumHandle0(owner, enumHandle), kSuccess);
}

TEST_F(Enumeration, HandleCannotBeDestroyedTwice) {
  const TestSession session;
  HANDLE enumHandle = nullptr;
  ASSERT_EQ(FwpmFilterCreateEnumHandle0(session, nullptr, &enumHandle), kSuccess);
  EXPECT_EQ(FwpmFilterDestroyEnumHandle0(session, enumHandle), kSuccess);
  EXPECT_EQ(FwpmFilterDestroyEnumHandle0(session, enumHandle), kNotFound);
  FWPM_FILTER0** entries = nullptr;
  UINT32 returned = 0;
  EXPECT_EQ(FwpmFilterEnum0(session, enumHandle, 1, &entries, &returned), kNotFound);
}

TEST_F(Enumeration, HandleIsOfOneKindOnly) {
  const TestSession session;
  HANDLE enumHandle = nullptr;
  ASSERT_EQ(FwpmProviderCreateEnumHandle0(session, nullptr, &enumHandle), kSuccess);
  EXPECT_EQ(FwpmFilterDestroyEnumHandle0(session, enumHandle), kNotFound);
  EXPECT_EQ(FwpmProviderDestroyEnumHandle0(session, enumHandle), kSuccess);
}

TEST_F(Enumeration, NullArgumentsAreRefused) {
  const TestSession session;
  EXPECT_EQ(FwpmFilterCreateEnumHandle0(session, nullptr, nullptr), kNullPointer);
  FWPM_FILTER0** entries = nullptr;
  UINT32 returned = 0;
  EXPECT_EQ(FwpmFilterEnum0(session, nullptr, 1, &entries, &returned), kNotFound);
  EXPECT_EQ(FwpmFilterEnum0(session, nullptr, 1, nullptr, &returned), kNullPointer);
  EXPECT_EQ(FwpmFilterEnum0(session, nullptr, 1, &entries, nullptr), kNullPointer);
}

TEST_F(Enumeration, TemplateSelectsALayer) {
  const TestSession session;
  AddFilters(session, 2);
  FWPM_FILTER0 elsewhere = FilterRecord();
  elsewhere.layerKey = kConnectV6;
  ASSERT_EQ(Add(session, elsewhere), kSuccess);
  FWPM_FILTER_ENUM_TEMPLATE0 criteria = AllOfConnectV4();
  EXPECT_THAT(Selected(session, criteria), ElementsAre(0, 1));
  criteria.layerKey = kConnectV6;
  EXPECT_THAT(Selected(session, criteria), ElementsAre(14));
}

TEST_F(Enumeration, TemplateSelectsAProvider) {
  const TestSession session;
  AddFilters(session, 2);
  GUID providerKey = kProviderKey;
  FWPM_FILTER0 owned = FilterRecord();
  owned.providerKey = &providerKey;
  ASSERT_EQ(Add(session, ProviderRecord()), kSuccess);
  ASSERT_EQ(Add(session, owned), kSuccess);
  FWPM_FILTER_ENUM_TEMPLATE0 criteria = AllOfConnectV4();
  criteria.providerKey = &providerKey;
  EXPECT_THAT(Selected(session, criteria), ElementsAre(14));
  GUID otherKey = kOtherProviderKey;
  criteria.providerKey = &otherKey;
  EXPECT_THAT(Selected(session, criteria), ElementsAre());
}

TEST_F(Enumeration, TemplateWithoutAnActionMaskSelectsNothing) {
  const TestSession session;
  AddFilters(session, 2);
  FWPM_FILTER_ENUM_TEMPLATE0 criteria = AllOfConnectV4();
  criteria.actionMask = 0;
  EXPECT_THAT(Selected(session, criteria), ElementsAre());
}

TEST_F(Enumeration, TemplateCanAskForTheHeaviestFirst) {
  const TestSession session;
  AddFilters(session, 3);
  FWPM_FILTER_ENUM_TEMPLATE0 criteria = AllOfConnectV4();
  criteria.flags = 2;
  EXPECT_THAT(Selected(session, criteria), ElementsAre(2, 1, 0));
}

TEST_F(Enumeration, IsInAnotherOrderOnRequestUnlessTheTemplateAsksForOne) {
  const TestSession session;
  AddFilters(session, 16);
  EngineEmulator::Switches switches;
  switches.shuffleEnumerations = 1;
  EngineEmulator::SetSwitches(switches);
  FWPM_FILTER_ENUM_TEMPLATE0 criteria = AllOfConnectV4();
  std::vector<int> weights = Selected(session, criteria);
  EXPECT_FALSE(std::ranges::is_sorted(weights));
  std::ranges::sort(weights);
  EXPECT_THAT(weights, ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15));
  criteria.flags = FWP_FILTER_ENUM_FLAG_SORTED;
  EXPECT_THAT(Selected(session, criteria), ElementsAre(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0));
}

TEST_F(Enumeration, OfSublayersIsInAnotherOrderOnRequest) {
  const TestSession session;
  EngineEmulator::Switches switches;
  switches.shuffleEnumerations = 1;
  EngineEmulator::SetSwitches(switches);
  HANDLE enumHandle = nullptr;
  ASSERT_EQ(FwpmSubLayerCreateEnumHandle0(session, nullptr, &enumHandle), kSuccess);
  FWPM_SUBLAYER0** entries = nullptr;
  UINT32 count = 0;
  ASSERT_EQ(FwpmSubLayerEnum0(session, enumHandle, kInfinite, &entries, &count), kSuccess);
  std::vector<std::wstring> names;
  for (UINT32 index = 0; index < count; ++index) {
    names.emplace_back(entries[index]->displayData.name);
  }
  Free(entries);
  FwpmSubLayerDestroyEnumHandle0(session, enumHandle);
  ASSERT_EQ(names.size(), 18U);
  EXPECT_NE((std::vector<std::wstring>{names.begin(), names.begin() + 3}),
            (std::vector<std::wstring>{L"UNIVERSAL", L"INSPECTION", L"RPC_AUDIT"}));
}

TEST_F(Enumeration, TemplateLeavesBootTimeFiltersOutUnlessItAsksForThem) {
  const TestSession session;
  AddFilters(session, 1);
  FWPM_FILTER0 bootTime = FilterRecord();
  bootTime.flags = 2;
  ASSERT_EQ(Add(session, bootTime), kSuccess);
  FWPM_FILTER_ENUM_TEMPLATE0 criteria = AllOfConnectV4();
  EXPECT_THAT(Selected(session, criteria), ElementsAre(0));
  criteria.flags = 8;
  EXPECT_THAT(Selected(session, criteria), ElementsAre(0, 14));
  criteria.flags = 4;
  EXPECT_THAT(Selected(session, criteria), ElementsAre(14));
}

TEST_F(Enumeration, TemplateNeedsALayerThatExists) {
  const TestSession session;
  FWPM_FILTER_ENUM_TEMPLATE0 criteria = AllOfConnectV4();
  criteria.layerKey = GUID{};
  HANDLE enumHandle = nullptr;
  EXPECT_EQ(FwpmFilterCreateEnumHandle0(session, &criteria, &enumHandle), kLayerNotFound);
}

TEST_F(Enumeration, TemplateIsRefusedWithUnknownFlags) {
  const TestSession session;
  FWPM_FILTER_ENUM_TEMPLATE0 criteria = AllOfConnectV4();
  criteria.flags = 0x8000;
  HANDLE enumHandle = nullptr;
  EXPECT_EQ(FwpmFilterCreateEnumHandle0(session, &criteria, &enumHandle), kInvalidFlags);
}

TEST_F(Enumeration, OfProvidersStartsWithTheBuiltInOnes) {
  const TestSession session;
  ASSERT_EQ(Add(session, ProviderRecord(kProviderKey)), kSuccess);
  ASSERT_EQ(Add(session, ProviderRecord(kOtherProviderKey)), kSuccess);
  HANDLE enumHandle = nullptr;
  ASSERT_EQ(FwpmProviderCreateEnumHandle0(session, nullptr, &enumHandle), kSuccess);
  FWPM_PROVIDER0** entries = nullptr;
  UINT32 returned = 0;
  ASSERT_EQ(FwpmProviderEnum0(session, enumHandle, kInfinite, &entries, &returned), kSuccess);
  ASSERT_EQ(returned, 11U);
  EXPECT_STREQ(entries[5]->displayData.name, L"MPSSVC_WF");
  EXPECT_STREQ(entries[5]->serviceName, L"mpssvc");
  EXPECT_TRUE(entries[9]->providerKey == kProviderKey);
  EXPECT_TRUE(entries[10]->providerKey == kOtherProviderKey);
  Free(entries);
  EXPECT_EQ(FwpmProviderDestroyEnumHandle0(session, enumHandle), kSuccess);
}

TEST_F(Enumeration, OfSublayersIsByRisingWeight) {
  const TestSession session;
  ASSERT_EQ(Add(session, SublayerRecord()), kSuccess);
  HANDLE enumHandle = nullptr;
  ASSERT_EQ(FwpmSubLayerCreateEnumHandle0(session, nullptr, &enumHandle), kSuccess);
  FWPM_SUBLAYER0** entries = nullptr;
  UINT32 returned = 0;
  ASSERT_EQ(FwpmSubLayerEnum0(session, enumHandle, kInfinite, &entries, &returned), kSuccess);
  ASSERT_EQ(returned, 19U);
  EXPECT_STREQ(entries[0]->displayData.name, L"INSPECTION");
  EXPECT_STREQ(entries[2]->displayData.name, L"MPSSVC_WF");
  EXPECT_EQ(entries[2]->weight, 2);
  ASSERT_NE(entries[2]->providerKey, nullptr);
  EXPECT_EQ(entries[2]->providerKey->Data1, 0xdecc16caU);
  EXPECT_TRUE(entries[8]->subLayerKey == kSublayerKey);
  EXPECT_EQ(entries[8]->weight, 8);
  EXPECT_STREQ(entries[14]->displayData.name, L"UNIVERSAL");
  EXPECT_EQ(entries[14]->weight, 32768);
  EXPECT_EQ(entries[18]->weight, 49152);
  Free(entries);
  EXPECT_EQ(FwpmSubLayerDestroyEnumHandle0(session, enumHandle), kSuccess);
}

TEST_F(Enumeration, OfSublayersCanSelectAProvider) {
  const TestSession session;
  GUID providerKey = kProviderKey;
  FWPM_SUBLAYER0 owned = SublayerRecord(kSublayerKey);
  owned.providerKey = &providerKey;
  ASSERT_EQ(Add(session, ProviderRecord()), kSuccess);
  ASSERT_EQ(Add(session, owned), kSuccess);
  ASSERT_EQ(Add(session, SublayerRecord(kOtherSublayerKey)), kSuccess);
  const FWPM_SUBLAYER_ENUM_TEMPLATE0 criteria{&providerKey};
  HANDLE enumHandle = nullptr;
  ASSERT_EQ(FwpmSubLayerCreateEnumHandle0(session, &criteria, &enumHandle), kSuccess);
  FWPM_SUBLAYER0** entries = nullptr;
  UINT32 returned = 0;
  ASSERT_EQ(FwpmSubLayerEnum0(session, enumHandle, kInfinite, &entries, &returned), kSuccess);
  ASSERT_EQ(returned, 1U);
  EXPECT_TRUE(entries[0]->subLayerKey == kSublayerKey);
  Free(entries);
  EXPECT_EQ(FwpmSubLayerDestroyEnumHandle0(session, enumHandle), kSuccess);
}

}  // namespace
