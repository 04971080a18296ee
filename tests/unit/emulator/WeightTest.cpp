// The main properties of the weights that the engine chooses; ObservedWeightTest.cpp has many cases.
#include <set>
#include <vector>

#include "EngineClient.h"
#include "emulator/ControlExports.h"

namespace {

class Weight : public EngineTest {
 protected:
  static UINT64 Of(const FWP_VALUE0& weight, std::vector<FWPM_FILTER_CONDITION0> conditions) {
    const TestSession session(kDynamic);
    FWPM_FILTER0 filter = FilterRecord();
    filter.weight = weight;
    filter.numFilterConditions = static_cast<UINT32>(conditions.size());
    filter.filterCondition = conditions.data();
    EXPECT_EQ(Add(session, filter), kSuccess);
    FWPM_FILTER0* found = nullptr;
    EXPECT_EQ(FwpmFilterGetByKey0(session, &kFilterKey, &found), kSuccess);
    const UINT64 effective = *found->effectiveWeight.uint64;
    Free(found);
    return effective;
  }
  static UINT64 Of(const std::vector<FWPM_FILTER_CONDITION0>& conditions) { return Of({}, conditions); }

  /// The weight of one condition on each field of a layer, in the order of the fields.
  static std::vector<UINT64> OfEachField() {
    const TestSession session;
    FWPM_LAYER0* layer = nullptr;
    EXPECT_EQ(FwpmLayerGetByKey0(session, &kConnectV4, &layer), kSuccess);
    std::vector<UINT64> weights;
    for (UINT32 index = 0; index < layer->numFields; ++index) {
      FWPM_FILTER_CONDITION0 condition{};
      condition.fieldKey = *layer->field[index].fieldKey;
      condition.conditionValue.type = FWP_EMPTY;
      weights.push_back(Of({condition}));
    }
    Free(layer);
    return weights;
  }

  static FWPM_FILTER_CONDITION0 Port(UINT16 port) {
    FWPM_FILTER_CONDITION0 condition{};
    condition.fieldKey = kRemotePort;
    condition.conditionValue.type = FWP_UINT16;
    condition.conditionValue.uint16 = port;
    return condition;
  }
  static FWPM_FILTER_CONDITION0 Protocol() {
    FWPM_FILTER_CONDITION0 condition{};
    condition.fieldKey = kProtocol;
    condition.conditionValue.type = FWP_UINT8;
    condition.conditionValue.uint8 = 6;
    return condition;
  }
  FWPM_FILTER_CONDITION0 Ports(UINT16 low, UINT16 high) {
    range_.valueLow.type = range_.valueHigh.type = FWP_UINT16;
    range_.valueLow.uint16 = low;
    range_.valueHigh.uint16 = high;
    FWPM_FILTER_CONDITION0 condition = Port(0);
    condition.matchType = FWP_MATCH_RANGE;
    condition.conditionValue.type = FWP_RANGE_TYPE;
    condition.conditionValue.rangeValue = &range_;
    return condition;
  }
  FWPM_FILTER_CONDITION0 Network(UINT32 mask) {
    network_ = {0x0A000000, mask};
    FWPM_FILTER_CONDITION0 condition{};
    condition.fieldKey = kRemoteAddress;
    condition.conditionValue.type = FWP_V4_ADDR_MASK;
    condition.conditionValue.v4AddrMask = &network_;
    return condition;
  }

  FWP_RANGE0 range_{};
  FWP_V4_ADDR_AND_MASK network_{};
};

TEST_F(Weight, OfAFilterWithoutConditionsIsZero) { EXPECT_EQ(Of({}), 0U); }

TEST_F(Weight, OfTheRangeIsOnTopOfTheRest) {
  FWP_VALUE0 range{};
  range.type = FWP_UINT8;
  range.uint8 = 15;
  EXPECT_EQ(Of(range, {}), 0xF000000000000000U);
  EXPECT_EQ(Of(range, {Port(53)}) & 0x0FFFFFFFFFFFFFFF, Of({Port(53)}));
}

TEST_F(Weight, GivenInFullIsTaken) {
  UINT64 given = 0xFEDCBA9876543210;
  FWP_VALUE0 weight{};
  weight.type = FWP_UINT64;
  weight.uint64 = &given;
  EXPECT_EQ(Of(weight, {Port(53)}), 0xFEDCBA9876543210U);
}

TEST_F(Weight, RisesWithTheConditions) {
  EXPECT_GT(Of({Port(53)}), 0U);
  EXPECT_GT(Of({Port(53), Protocol()}), Of({Port(53)}));
  EXPECT_GT(Of({Port(53), Protocol()}), Of({Protocol()}));
}

TEST_F(Weight, OfAnExactValueIsAboveThatOfARange) {
  EXPECT_GT(Of({Port(53)}), Of({Ports(53, 9999)}));
  EXPECT_GT(Of({Ports(53, 9999)}), 0U);
}

TEST_F(Weight, OfARangeOfEverythingIsZero) {
  EXPECT_EQ(Of({Ports(0, 0xFFFF)}), 0U);
  EXPECT_EQ(Of({Network(0)}), 0U);
}

TEST_F(Weight, OfAnyRangeOfAFieldWithoutASizeIsOneBit) {
  UINT64 low = 0;
  UINT64 high = 0xFFFFFFFFFFFFFFFF;
  FWP_RANGE0 range{};
  range.valueLow.type = range.valueHigh.type = FWP_UINT64;
  range.valueLow.uint64 = &low;
  range.valueHigh.uint64 = &high;
  FWPM_FILTER_CONDITION0 condition{};
  condition.fieldKey = kLocalInterface;
  condition.matchType = FWP_MATCH_RANGE;
  condition.conditionValue.type = FWP_RANGE_TYPE;
  condition.conditionValue.rangeValue = &range;
  EXPECT_EQ(Of({condition}), UINT64{1} << 51);
  high = 1;
  EXPECT_EQ(Of({condition}), UINT64{1} << 51);
}

TEST_F(Weight, OfARangeGoesByItsEndsWhateverTheirTypeWhenGuessed) {
  EngineEmulatorSetRule("guessWeights", 1);
  FWP_RANGE0 range{};
  FWPM_FILTER_CONDITION0 condition{};
  condition.matchType = FWP_MATCH_RANGE;
  condition.conditionValue.type = FWP_RANGE_TYPE;
  condition.conditionValue.rangeValue = &range;

  condition.fieldKey = kProtocol;
  range.valueLow.type = range.valueHigh.type = FWP_UINT8;
  range.valueLow.uint8 = range.valueHigh.uint8 = 6;
  EXPECT_EQ(Of({condition}), Of({Protocol()}));
  range.valueLow.uint8 = 0;
  range.valueHigh.uint8 = 0xFF;
  EXPECT_EQ(Of({condition}), 0U);

  condition.fieldKey = kLocalInterface;
  UINT64 low = 0;
  UINT64 high = 0xFFFFFFFFFFFFFFFF;
  range.valueLow.type = range.valueHigh.type = FWP_UINT64;
  range.valueLow.uint64 = &low;
  range.valueHigh.uint64 = &high;
  EXPECT_EQ(Of({condition}), 0U);
  high = 1;
  EXPECT_GT(Of({condition}), 0U);

  condition.fieldKey = kAppId;
  UINT8 letter = 'a';
  FWP_BYTE_BLOB blob{1, &letter};
  range.valueLow.type = range.valueHigh.type = FWP_BYTE_BLOB_TYPE;
  range.valueLow.byteBlob = range.valueHigh.byteBlob = &blob;
  EXPECT_GT(Of({condition}), 0U);
}

TEST_F(Weight, OfARemoteAddressIsAboveAllOthersTogether) {
  EXPECT_EQ(Of({Network(0xFFFFFFFF)}), 0x0400000000000000U);
  EXPECT_EQ(Of({Network(0xFF000000)}), 0x0100000000000000U);
  EXPECT_GT(Of({Network(0xFF000000)}), Of({Port(53), Protocol()}));
}

TEST_F(Weight, OfTwoConditionsOnAFieldAddsUp) {
  EXPECT_EQ(Of({Network(0xF0000000)}), 0x0080000000000000U);
  EXPECT_EQ(Of({Network(0xF0000000), Network(0xF0000000)}), 0x0100000000000000U);
  EXPECT_EQ(Of({Port(53), Port(54)}), Of({Port(53)}));
}

TEST_F(Weight, OfThreeConditionsOnAFieldIsThatOfAnExactValue) {
  EXPECT_EQ(Of({Network(0xF0000000), Network(0xF0000000), Network(0xF0000000)}), 0x0400000000000000U);
}

FWPM_FILTER_CONDITION0 WithMatch(FWPM_FILTER_CONDITION0 condition, FWP_MATCH_TYPE match) {
  condition.matchType = match;
  return condition;
}

TEST_F(Weight, OfMatchesThatNobodyHasSeenIsByTheValuesTheyLeave) {
  // The slot of a port has three bits; all 16 bits of the port pinned down give the highest value, 7.
  EXPECT_EQ(Of({Port(53)}), UINT64{7} << 39);
  EXPECT_EQ(Of({WithMatch(Port(53), FWP_MATCH_NOT_EQUAL)}), UINT64{1} << 39);
  EXPECT_EQ(Of({WithMatch(Port(0xFFFE), FWP_MATCH_GREATER)}), UINT64{7} << 39);
  EXPECT_EQ(Of({WithMatch(Port(0xFF00), FWP_MATCH_GREATER_OR_EQUAL)}), UINT64{4} << 39);
  EXPECT_EQ(Of({WithMatch(Port(0x0100), FWP_MATCH_LESS)}), UINT64{4} << 39);
  EXPECT_EQ(Of({WithMatch(Port(0x00FF), FWP_MATCH_LESS_OR_EQUAL)}), UINT64{4} << 39);
  EXPECT_EQ(Of({WithMatch(Port(0), FWP_MATCH_GREATER_OR_EQUAL)}), 0U);
  EXPECT_EQ(Of({WithMatch(Port(0x00FF), FWP_MATCH_FLAGS_NONE_SET)}), UINT64{4} << 39);
}

TEST_F(Weight, OfMatchesThatNobodyHasSeenCanBeThatOfAnExactValue) {
  EngineEmulatorSetRule("weighUnobservedAsExact", 1);
  EXPECT_EQ(Of({WithMatch(Port(53), FWP_MATCH_NOT_EQUAL)}), UINT64{7} << 39);
  EXPECT_EQ(Of({WithMatch(Port(0xFF00), FWP_MATCH_GREATER_OR_EQUAL)}), UINT64{7} << 39);
}

TEST_F(Weight, CanBeGuessed) {
  EngineEmulatorSetRule("guessWeights", 1);
  EXPECT_EQ(Of({Network(0xFFFFFFFF)}), UINT64{1} << 57);
  EXPECT_EQ(Of({Network(0xFF000000)}), UINT64{1} << 55);
  EXPECT_EQ(Of({Port(53), Ports(60, 70)}), Of({Ports(60, 70)}));
}

TEST_F(Weight, OfTheFieldsOfAClassIsOneAndOfNoTwoClassesOverlaps) {
  const std::vector<UINT64> weights = OfEachField();
  const std::set<UINT64> classes(weights.begin(), weights.end());
  UINT64 together = 0;
  for (const UINT64 weight : classes) {
    EXPECT_NE(weight, 0U);
    EXPECT_EQ(together & weight, 0U);
    together |= weight;
  }
  EXPECT_EQ(classes.size(), 27U);
}

TEST_F(Weight, OfEachFieldIsItsOwnWhenGuessed) {
  EngineEmulatorSetRule("guessWeights", 1);
  const std::vector<UINT64> weights = OfEachField();
  const std::set<UINT64> different(weights.begin(), weights.end());
  EXPECT_EQ(different.size(), weights.size());
  EXPECT_FALSE(different.contains(0));
}

TEST_F(Weight, StaysBelowTheRangesWithEveryField) {
  EXPECT_LT(Of({Network(0xFFFFFFFF), Port(53)}), 1ULL << 60);
}

}  // namespace
