#include "ValueJson.h"

#include <gmock/gmock.h>

namespace {

FWP_CONDITION_VALUE0 Value(FWP_DATA_TYPE type) {
  FWP_CONDITION_VALUE0 value{};
  value.type = type;
  return value;
}

Json JsonOf(const FWP_CONDITION_VALUE0& value) { return ToJson(Policy::ToValue(value)); }

TEST(ValueJson, NumbersUpTo32BitsAreNumbersAndLongerOnesTexts) {
  FWP_CONDITION_VALUE0 byte = Value(FWP_UINT8);
  byte.uint8 = 255;
  EXPECT_EQ(JsonOf(byte).dump(), "255");
  FWP_CONDITION_VALUE0 port = Value(FWP_UINT16);
  port.uint16 = 53;
  EXPECT_EQ(JsonOf(port).dump(), "53");
  FWP_CONDITION_VALUE0 address = Value(FWP_UINT32);
  address.uint32 = 0xC6336407;
  EXPECT_EQ(JsonOf(address).dump(), "3325256711");
  UINT64 most = 18446744073709551615u;
  FWP_CONDITION_VALUE0 luid = Value(FWP_UINT64);
  luid.uint64 = &most;
  EXPECT_EQ(JsonOf(luid).dump(), R"("18446744073709551615")");
  INT64 least = -9223372036854775807 - 1;
  FWP_CONDITION_VALUE0 negative = Value(FWP_INT64);
  negative.int64 = &least;
  EXPECT_EQ(JsonOf(negative).dump(), R"("-9223372036854775808")");
  FWP_CONDITION_VALUE0 small = Value(FWP_INT8);
  small.int8 = -1;
  EXPECT_EQ(JsonOf(small).dump(), "-1");
}

TEST(ValueJson, NetworksHaveTheirPartsAndAddressesAreTexts) {
  FWP_V4_ADDR_AND_MASK v4{0x0A000000, 0xFF000000};
  FWP_CONDITION_VALUE0 network = Value(FWP_V4_ADDR_MASK);
  network.v4AddrMask = &v4;
  EXPECT_EQ(JsonOf(network).dump(), R"({"address":"10.0.0.0","mask":"255.0.0.0"})");
  FWP_V6_ADDR_AND_MASK v6{{0xFE, 0x80}, 10};
  network = Value(FWP_V6_ADDR_MASK);
  network.v6AddrMask = &v6;
  EXPECT_EQ(JsonOf(network).dump(), R"({"address":"fe80::","prefixLength":10})");
  FWP_BYTE_ARRAY16 bytes{{0x20, 0x01, 0x0D, 0xB8}};
  FWP_CONDITION_VALUE0 address = Value(FWP_BYTE_ARRAY16_TYPE);
  address.byteArray16 = &bytes;
  EXPECT_EQ(JsonOf(address).dump(), R"("2001:db8::")");
}

TEST(ValueJson, BytesAreHexadecimalDigits) {
  UINT8 data[]{0x61, 0x00, 0xFF};
  FWP_BYTE_BLOB blob{3, data};
  FWP_CONDITION_VALUE0 value = Value(FWP_BYTE_BLOB_TYPE);
  value.byteBlob = &blob;
  EXPECT_EQ(JsonOf(value).dump(), R"("6100ff")");
  blob.size = 0;
  EXPECT_EQ(JsonOf(value).dump(), R"("")");
  blob = {3, nullptr};
  EXPECT_TRUE(JsonOf(value).is_null());
}

TEST(ValueJson, ARangeHasTwoEndsWithTheirTypes) {
  FWP_RANGE0 range{};
  range.valueLow.type = FWP_UINT16;
  range.valueLow.uint16 = 1;
  range.valueHigh.type = FWP_UINT16;
  range.valueHigh.uint16 = 1023;
  FWP_CONDITION_VALUE0 value = Value(FWP_RANGE_TYPE);
  value.rangeValue = &range;
  EXPECT_EQ(JsonOf(value).dump(),
            R"({"low":{"type":"UINT16","value":1},"high":{"type":"UINT16","value":1023}})");
}

TEST(ValueJson, WhatIsMissingIsNull) {
  for (const FWP_DATA_TYPE type :
       {FWP_EMPTY, FWP_UINT64, FWP_INT64, FWP_DOUBLE, FWP_BYTE_ARRAY16_TYPE, FWP_BYTE_BLOB_TYPE, FWP_SID,
        FWP_SECURITY_DESCRIPTOR_TYPE, FWP_TOKEN_INFORMATION_TYPE, FWP_TOKEN_ACCESS_INFORMATION_TYPE,
        FWP_UNICODE_STRING_TYPE, FWP_BYTE_ARRAY6_TYPE, FWP_V4_ADDR_MASK, FWP_V6_ADDR_MASK, FWP_RANGE_TYPE,
        static_cast<FWP_DATA_TYPE>(99)}) {
    EXPECT_TRUE(JsonOf(Value(type)).is_null()) << type;
  }
}

}  // namespace
