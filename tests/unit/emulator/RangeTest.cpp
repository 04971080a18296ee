// Ranges of every type that has an order. If no field has the type, that is the only reason to refuse the
// range.
#include "EngineClient.h"

namespace {

class Range : public EngineTest {
 protected:
  static DWORD Check(const GUID& field, const FWP_VALUE0& low, const FWP_VALUE0& high) {
    FWP_RANGE0 range{low, high};
    FWPM_FILTER_CONDITION0 condition{};
    condition.fieldKey = field;
    condition.matchType = FWP_MATCH_RANGE;
    condition.conditionValue.type = FWP_RANGE_TYPE;
    condition.conditionValue.rangeValue = &range;
    FWPM_FILTER0 filter = FilterRecord();
    filter.numFilterConditions = 1;
    filter.filterCondition = &condition;
    const TestSession session(kDynamic);
    return Add(session, filter);
  }

  template <class Number>
  static FWP_VALUE0 Value(FWP_DATA_TYPE type, Number FWP_VALUE0::*member, Number number) {
    FWP_VALUE0 value{};
    value.type = type;
    value.*member = number;
    return value;
  }
};

TEST_F(Range, OfUnsignedNumbers) {
  const FWP_VALUE0 low8 = Value<UINT8>(FWP_UINT8, &FWP_VALUE0::uint8, 0x7F);
  const FWP_VALUE0 high8 = Value<UINT8>(FWP_UINT8, &FWP_VALUE0::uint8, 0x80);
  EXPECT_EQ(Check(kProtocol, low8, high8), kSuccess);
  EXPECT_EQ(Check(kProtocol, high8, low8), kInvalidRange);

  const FWP_VALUE0 low32 = Value<UINT32>(FWP_UINT32, &FWP_VALUE0::uint32, 0x7FFFFFFF);
  const FWP_VALUE0 high32 = Value<UINT32>(FWP_UINT32, &FWP_VALUE0::uint32, 0x80000000);
  EXPECT_EQ(Check(kRemoteAddress, low32, high32), kSuccess);
  EXPECT_EQ(Check(kRemoteAddress, high32, low32), kInvalidRange);

  UINT64 lowNumber = 0x7FFFFFFFFFFFFFFF;
  UINT64 highNumber = 0x8000000000000000;
  const FWP_VALUE0 low64 = Value(FWP_UINT64, &FWP_VALUE0::uint64, &lowNumber);
  const FWP_VALUE0 high64 = Value(FWP_UINT64, &FWP_VALUE0::uint64, &highNumber);
  EXPECT_EQ(Check(kLocalInterface, low64, high64), kSuccess);
  EXPECT_EQ(Check(kLocalInterface, high64, low64), kInvalidRange);
}

TEST_F(Range, OfSignedNumbers) {
  const FWP_VALUE0 low8 = Value<INT8>(FWP_INT8, &FWP_VALUE0::int8, -1);
  const FWP_VALUE0 high8 = Value<INT8>(FWP_INT8, &FWP_VALUE0::int8, 1);
  EXPECT_EQ(Check(kProtocol, low8, high8), kTypeMismatch);
  EXPECT_EQ(Check(kProtocol, high8, low8), kInvalidRange);

  const FWP_VALUE0 low16 = Value<INT16>(FWP_INT16, &FWP_VALUE0::int16, -1);
  const FWP_VALUE0 high16 = Value<INT16>(FWP_INT16, &FWP_VALUE0::int16, 1);
  EXPECT_EQ(Check(kProtocol, low16, high16), kTypeMismatch);
  EXPECT_EQ(Check(kProtocol, high16, low16), kInvalidRange);

  const FWP_VALUE0 low32 = Value<INT32>(FWP_INT32, &FWP_VALUE0::int32, -1);
  const FWP_VALUE0 high32 = Value<INT32>(FWP_INT32, &FWP_VALUE0::int32, 1);
  EXPECT_EQ(Check(kProtocol, low32, high32), kTypeMismatch);
  EXPECT_EQ(Check(kProtocol, high32, low32), kInvalidRange);

  INT64 lowNumber = -1;
  INT64 highNumber = 1;
  const FWP_VALUE0 low64 = Value(FWP_INT64, &FWP_VALUE0::int64, &lowNumber);
  const FWP_VALUE0 high64 = Value(FWP_INT64, &FWP_VALUE0::int64, &highNumber);
  EXPECT_EQ(Check(kProtocol, low64, high64), kTypeMismatch);
  EXPECT_EQ(Check(kProtocol, high64, low64), kInvalidRange);
}

TEST_F(Range, OfBytesGoesByTheFirstThatDiffers) {
  UINT8 ab[]{'a', 'b'};
  UINT8 b[]{'b'};
  FWP_BYTE_BLOB onlyA{1, ab};
  FWP_BYTE_BLOB both{2, ab};
  FWP_BYTE_BLOB onlyB{1, b};
  const FWP_VALUE0 low = Value(FWP_BYTE_BLOB_TYPE, &FWP_VALUE0::byteBlob, &both);
  const FWP_VALUE0 high = Value(FWP_BYTE_BLOB_TYPE, &FWP_VALUE0::byteBlob, &onlyB);
  const FWP_VALUE0 shorter = Value(FWP_BYTE_BLOB_TYPE, &FWP_VALUE0::byteBlob, &onlyA);
  EXPECT_EQ(Check(kAppId, low, high), kSuccess);
  EXPECT_EQ(Check(kAppId, high, low), kInvalidRange);
  EXPECT_EQ(Check(kAppId, shorter, low), kSuccess);
  EXPECT_EQ(Check(kAppId, low, shorter), kInvalidRange);
}

TEST_F(Range, OfTextsGoesByTheFirstCharacterThatDiffers) {
  wchar_t ab[] = L"ab";
  wchar_t b[] = L"b";
  const FWP_VALUE0 low = Value<wchar_t*>(FWP_UNICODE_STRING_TYPE, &FWP_VALUE0::unicodeString, ab);
  const FWP_VALUE0 high = Value<wchar_t*>(FWP_UNICODE_STRING_TYPE, &FWP_VALUE0::unicodeString, b);
  EXPECT_EQ(Check(kAppId, low, high), kTypeMismatch);
  EXPECT_EQ(Check(kAppId, high, low), kInvalidRange);
}

TEST_F(Range, OfWhatHasNoOrderIsRefusedForItsType) {
  float half = 0.5F;
  float one = 1;
  FWP_VALUE0 low{};
  FWP_VALUE0 high{};
  low.type = high.type = FWP_FLOAT;
  low.float32 = half;
  high.float32 = one;
  EXPECT_EQ(Check(kProtocol, high, low), kTypeMismatch);
}

TEST_F(Range, MustHaveBothEnds) {
  UINT64 number = 1;
  const FWP_VALUE0 present = Value(FWP_UINT64, &FWP_VALUE0::uint64, &number);
  const FWP_VALUE0 missing = Value<UINT64*>(FWP_UINT64, &FWP_VALUE0::uint64, nullptr);
  EXPECT_EQ(Check(kLocalInterface, missing, present), kNullPointer);
  EXPECT_EQ(Check(kLocalInterface, present, missing), kNullPointer);
}

}  // namespace
