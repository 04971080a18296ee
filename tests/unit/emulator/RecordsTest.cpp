// Values of types that no field has. No filter can have them, so they are tested here.
#include "emulator/Records.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using namespace EngineEmulator;

class Records : public testing::Test {
 protected:
  /// Copies a filter that has one condition with this value. The result is valid as long as block_.
  FWP_CONDITION_VALUE0 Copy(const FWP_CONDITION_VALUE0& value) {
    FWPM_FILTER_CONDITION0 condition{};
    condition.conditionValue = value;
    FWPM_FILTER0 filter{};
    filter.numFilterConditions = 1;
    filter.filterCondition = &condition;
    block_ = MakeBlock([&](Packer& packer) { return PackRecord(packer, filter); });
    return block_.root->filterCondition[0].conditionValue;
  }

  Block<FWPM_FILTER0> block_{};
};

TEST_F(Records, KeepSignedAndFloatingNumbersBehindPointers) {
  INT64 number = -5;
  FWP_CONDITION_VALUE0 value{};
  value.type = FWP_INT64;
  value.int64 = &number;
  FWP_CONDITION_VALUE0 copy = Copy(value);
  EXPECT_NE(copy.int64, &number);
  EXPECT_EQ(*copy.int64, -5);

  double fraction = 0.5;
  value.type = FWP_DOUBLE;
  value.double64 = &fraction;
  copy = Copy(value);
  EXPECT_NE(copy.double64, &fraction);
  EXPECT_EQ(*copy.double64, 0.5);
}

TEST_F(Records, KeepHardwareAddresses) {
  FWP_BYTE_ARRAY6 address{{1, 2, 3, 4, 5, 6}};
  FWP_CONDITION_VALUE0 value{};
  value.type = FWP_BYTE_ARRAY6_TYPE;
  value.byteArray6 = &address;
  const FWP_CONDITION_VALUE0 copy = Copy(value);
  EXPECT_NE(copy.byteArray6, &address);
  EXPECT_EQ(copy.byteArray6->byteArray6[5], 6);
}

TEST_F(Records, AlignBytesForAnything) {
  wchar_t name[] = L"a";
  UINT8 byte = 5;
  FWPM_FILTER0 filter{};
  filter.displayData.name = name;
  filter.providerData = {1, &byte};
  const auto block = MakeBlock([&](Packer& packer) { return PackRecord(packer, filter); });
  const UINT8* const copy = block.root->providerData.data;
  EXPECT_EQ(*copy, 5);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(copy) % 16, 0U);
}

TEST_F(Records, KeepStrings) {
  wchar_t text[] = L"text";
  FWP_CONDITION_VALUE0 value{};
  value.type = FWP_UNICODE_STRING_TYPE;
  value.unicodeString = text;
  const FWP_CONDITION_VALUE0 copy = Copy(value);
  EXPECT_NE(copy.unicodeString, text);
  EXPECT_STREQ(copy.unicodeString, L"text");
}

TEST_F(Records, KeepTokens) {
  SID everyone{1, 1, {{0, 0, 0, 0, 0, 1}}, {0}};
  SID restricted{1, 1, {{0, 0, 0, 0, 0, 5}}, {12}};
  SID_AND_ATTRIBUTES sids[]{{&everyone, 7}, {&everyone, 8}};
  SID_AND_ATTRIBUTES restrictedSids[]{{&restricted, 9}};
  FWP_TOKEN_INFORMATION token{2, sids, 1, restrictedSids};
  FWP_CONDITION_VALUE0 value{};
  value.type = FWP_TOKEN_INFORMATION_TYPE;
  value.tokenInformation = &token;
  const FWP_TOKEN_INFORMATION& copy = *Copy(value).tokenInformation;
  EXPECT_NE(&copy, &token);
  EXPECT_NE(copy.sids, sids);
  EXPECT_NE(copy.restrictedSids[0].Sid, &restricted);
  EXPECT_EQ(copy.sids[1].Attributes, 8U);
  EXPECT_EQ(copy.restrictedSids[0].Attributes, 9U);
  EXPECT_EQ(static_cast<SID*>(copy.restrictedSids[0].Sid)->SubAuthority[0], 12U);
}

TEST_F(Records, KeepRangesOfNumbersBehindPointers) {
  UINT64 low = 1;
  UINT64 high = 2;
  FWP_RANGE0 range{};
  range.valueLow.type = range.valueHigh.type = FWP_UINT64;
  range.valueLow.uint64 = &low;
  range.valueHigh.uint64 = &high;
  FWP_CONDITION_VALUE0 value{};
  value.type = FWP_RANGE_TYPE;
  value.rangeValue = &range;
  const FWP_RANGE0& copy = *Copy(value).rangeValue;
  EXPECT_NE(copy.valueHigh.uint64, &high);
  EXPECT_EQ(*copy.valueLow.uint64, 1U);
  EXPECT_EQ(*copy.valueHigh.uint64, 2U);
}

TEST_F(Records, KeepAccessInformationOfTokens) {
  UINT8 bytes[]{1, 2, 3};
  FWP_BYTE_BLOB blob{3, bytes};
  FWP_CONDITION_VALUE0 value{};
  value.type = FWP_TOKEN_ACCESS_INFORMATION_TYPE;
  value.tokenAccessInformation = &blob;
  const FWP_BYTE_BLOB& copy = *Copy(value).tokenAccessInformation;
  EXPECT_NE(copy.data, bytes);
  ASSERT_EQ(copy.size, 3U);
  EXPECT_EQ(copy.data[2], 3);
}

TEST_F(Records, KeepNullsAsTheyAre) {
  FWP_CONDITION_VALUE0 value{};
  for (const FWP_DATA_TYPE type :
       {FWP_UINT64, FWP_BYTE_BLOB_TYPE, FWP_SID, FWP_SECURITY_DESCRIPTOR_TYPE, FWP_TOKEN_INFORMATION_TYPE,
        FWP_TOKEN_ACCESS_INFORMATION_TYPE, FWP_UNICODE_STRING_TYPE, FWP_V4_ADDR_MASK, FWP_RANGE_TYPE}) {
    value.type = type;
    EXPECT_EQ(Copy(value).byteBlob, nullptr) << type;
  }
}

}  // namespace
