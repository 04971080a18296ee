#include "live/OurObjects.h"

#include <gmock/gmock.h>

#include "Identities.h"
#include "support/EngineKeys.h"

namespace {

using testing::ElementsAre;

constexpr GUID kTheirs{0x7c300002, 0x2b1f, 0x4d63, {0x9a, 0x04, 0x5e, 0x0d, 0xc2, 0x7b, 0x13, 0x02}};

/// An engine with our provider, the kill switch and one filter of it, and a filter of somebody else.
class OurObjects : public testing::Test {
 protected:
  OurObjects() {
    FWPM_PROVIDER0 provider{};
    provider.providerKey = ours_;
    provider.displayData = {name_, nullptr};
    state_.providers = {provider};

    FWPM_SUBLAYER0 sublayer{};
    sublayer.subLayerKey = kKillSwitch.key;
    sublayer.displayData = {name_, description_};
    sublayer.providerKey = &ours_;
    sublayer.weight = 65534;
    state_.subLayers = {sublayer};

    condition_.fieldKey = kAppId;
    condition_.matchType = FWP_MATCH_EQUAL;
    condition_.conditionValue.type = FWP_BYTE_BLOB_TYPE;
    condition_.conditionValue.byteBlob = &application_;
    FWPM_FILTER0 filter{};
    filter.displayData = {name_, nullptr};
    filter.providerKey = &ours_;
    filter.layerKey = kConnectV4;
    filter.subLayerKey = kKillSwitch.key;
    filter.weight.type = FWP_UINT8;
    filter.weight.uint8 = 14;
    filter.effectiveWeight.type = FWP_UINT64;
    filter.effectiveWeight.uint64 = &weight_;
    filter.action.type = FWP_ACTION_PERMIT;
    filter.numFilterConditions = 1;
    filter.filterCondition = &condition_;
    state_.filters = {filter, filter};
    state_.filters[1].providerKey = &theirs_;
  }

  GUID ours_ = kProvider.key;
  GUID theirs_ = kTheirs;
  wchar_t name_[2] = L"N";
  wchar_t description_[2] = L"D";
  char16_t path_[27] = u"\\device\\harddiskvolume3\\a.";
  FWP_BYTE_BLOB application_{sizeof path_, reinterpret_cast<UINT8*>(path_)};
  FWPM_FILTER_CONDITION0 condition_{};
  UINT64 weight_ = 1000;
  Dump::EngineState state_;
};

TEST_F(OurObjects, AreToldWithWeightsAndWithoutTheVolume) {
  EXPECT_THAT(OurObjectsOf(state_),
              ElementsAre("filter \"N\" \"\" in N | ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 14 | - | ALE_APP_ID "
                          "EQUAL BYTE_BLOB \\device\\harddiskvolume#\\a. | weighs 1000",
                          "provider \"N\" \"\" | flags 0", "sublayer \"N\" \"D\" | weight 65534 | flags 0"));
}

TEST_F(OurObjects, DifferByTheEffectiveWeight) {
  const auto before = OurObjectsOf(state_);
  weight_ = 1001;
  EXPECT_NE(OurObjectsOf(state_), before);
}

TEST_F(OurObjects, DifferByTheWeightOfTheSublayer) {
  const auto before = OurObjectsOf(state_);
  state_.subLayers[0].weight = 65533;
  EXPECT_NE(OurObjectsOf(state_), before);
}

TEST_F(OurObjects, DifferByAFlag) {
  const auto before = OurObjectsOf(state_);
  state_.filters[0].flags = FWPM_FILTER_FLAG_CLEAR_ACTION_RIGHT;
  EXPECT_NE(OurObjectsOf(state_), before);
}

}  // namespace
