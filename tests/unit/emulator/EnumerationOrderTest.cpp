// The order in which enumerations give filters.
#include <gmock/gmock.h>

#include <vector>

#include "EngineClient.h"

namespace {

using testing::ElementsAre;

class EnumerationOrder : public EngineTest {
 protected:
  /// The contexts of all filters that a template selects.
  static std::vector<UINT64> Contexts(HANDLE session, const FWPM_FILTER_ENUM_TEMPLATE0& criteria) {
    HANDLE enumHandle = nullptr;
    EXPECT_EQ(FwpmFilterCreateEnumHandle0(session, &criteria, &enumHandle), kSuccess);
    FWPM_FILTER0** entries = nullptr;
    UINT32 returned = 0;
    EXPECT_EQ(FwpmFilterEnum0(session, enumHandle, 0xFFFFFFFF, &entries, &returned), kSuccess);
    std::vector<UINT64> contexts;
    for (UINT32 index = 0; index < returned; ++index) {
      contexts.push_back(entries[index]->rawContext);
    }
    Free(entries);
    EXPECT_EQ(FwpmFilterDestroyEnumHandle0(session, enumHandle), kSuccess);
    return contexts;
  }
};

TEST_F(EnumerationOrder, ByWeightGivesTheNewestOfEqualsFirst) {
  const TestSession session;
  for (const UINT64 context : {UINT64{1}, UINT64{2}, UINT64{3}}) {
    FWPM_FILTER0 filter = FilterRecord(GUID{});
    filter.rawContext = context;
    ASSERT_EQ(Add(session, filter), kSuccess);
  }
  FWPM_FILTER_ENUM_TEMPLATE0 criteria{};
  criteria.layerKey = kConnectV4;
  criteria.actionMask = 0xFFFFFFFF;
  EXPECT_THAT(Contexts(session, criteria), ElementsAre(1, 2, 3));
  criteria.flags = FWP_FILTER_ENUM_FLAG_SORTED;
  EXPECT_THAT(Contexts(session, criteria), ElementsAre(3, 2, 1));
}

TEST_F(EnumerationOrder, ByWeightGoesByLayersThenBySublayersThenByFilters) {
  const TestSession session;
  EngineEmulator::Switches switches;
  switches.refuseZeroLayerInTemplate = 0;
  EngineEmulator::SetSwitches(switches);
  FWPM_SUBLAYER0 heavy = SublayerRecord(kSublayerKey);
  heavy.weight = 60000;
  FWPM_SUBLAYER0 light = SublayerRecord(kOtherSublayerKey);
  light.weight = 500;
  ASSERT_EQ(Add(session, heavy), kSuccess);
  ASSERT_EQ(Add(session, light), kSuccess);
  const auto add = [&](UINT64 context, const GUID& layer, const GUID& sublayer, UINT8 weight) {
    FWPM_FILTER0 filter = FilterRecord(GUID{});
    filter.rawContext = context;
    filter.layerKey = layer;
    filter.subLayerKey = sublayer;
    filter.weight.uint8 = weight;
    ASSERT_EQ(Add(session, filter), kSuccess);
  };
  add(1, kConnectV6, kSublayerKey, 15);
  add(2, kConnectV4, kOtherSublayerKey, 15);
  add(3, kConnectV4, kSublayerKey, 1);
  add(4, kConnectV4, kSublayerKey, 2);
  FWPM_FILTER_ENUM_TEMPLATE0 criteria{};
  criteria.actionMask = 0xFFFFFFFF;
  EXPECT_THAT(Contexts(session, criteria), ElementsAre(1, 2, 3, 4));
  criteria.flags = FWP_FILTER_ENUM_FLAG_SORTED;
  EXPECT_THAT(Contexts(session, criteria), ElementsAre(4, 3, 2, 1));
}

}  // namespace
