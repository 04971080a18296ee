#include <gmock/gmock.h>

#include <cstring>

#include "dump/ReadDump.h"
#include "unit/dump/DumpText.h"
#include "unit/dump/Hex.h"

namespace {

using Dump::EngineState;

constexpr std::string_view kField = "FWPM_CONDITION_IP_REMOTE_ADDRESS";

/// A condition's value, with the state that owns it.
struct Value {
  EngineState state;
  const FWP_CONDITION_VALUE0& operator*() const {
    return state.filters.front().filterCondition->conditionValue;
  }
  const FWP_CONDITION_VALUE0* operator->() const { return &**this; }
};

Value Read(const std::string& type, const std::string& value) {
  return {Dump::ReadDump(WithValue(kField, "<type>" + type + "</type>" + value), "test.xml")};
}

TEST(ReadValues, Numbers) {
  EXPECT_EQ(Read("FWP_UINT8", "<uint8>255</uint8>")->uint8, 255);
  EXPECT_EQ(Read("FWP_UINT16", "<uint16>65535</uint16>")->uint16, 65535);
  EXPECT_EQ(Read("FWP_UINT32", "<uint32>4294967295</uint32>")->uint32, 4294967295U);
  EXPECT_EQ(*Read("FWP_UINT64", "<uint64>18446744073709551615</uint64>")->uint64, 18446744073709551615U);
  EXPECT_EQ(Read("FWP_INT8", "<int8>-128</int8>")->int8, -128);
  EXPECT_EQ(Read("FWP_INT16", "<int16>-32768</int16>")->int16, -32768);
  EXPECT_EQ(Read("FWP_INT32", "<int32>-2147483648</int32>")->int32, -2147483647 - 1);
  EXPECT_EQ(*Read("FWP_INT64", "<int64>-9</int64>")->int64, -9);
  EXPECT_EQ(Read("FWP_FLOAT", "<float32>0.5</float32>")->float32, 0.5F);
  EXPECT_EQ(*Read("FWP_DOUBLE", "<double64>-2.5e10</double64>")->double64, -2.5e10);
  EXPECT_EQ(Read("FWP_BITMAP_INDEX_TYPE", "<bitmapIndex>7</bitmapIndex>")->uint8, 7);
}

TEST(ReadValues, AnAddressMayBeDotted) {
  EXPECT_EQ(Read("FWP_UINT32", "<uint32>192.168.1.2</uint32>")->uint32, 0xC0A80102U);
}

TEST(ReadValues, Empty) { EXPECT_EQ(Read("FWP_EMPTY", "")->type, FWP_EMPTY); }

TEST(ReadValues, AddressesOfSixteenBytes) {
  const Value value = Read("FWP_BYTE_ARRAY16_TYPE", "<byteArray16>fe80::ffff:1</byteArray16>");
  EXPECT_EQ(ToHex(value->byteArray16->byteArray16), "fe8000000000000000000000ffff0001");
}

TEST(ReadValues, AddressesOfSixBytes) {
  const Value value = Read("FWP_BYTE_ARRAY6_TYPE", "<byteArray6>00-1a-FF-03-04-05</byteArray6>");
  EXPECT_EQ(ToHex(value->byteArray6->byteArray6), "001aff030405");
}

TEST(ReadValues, Blobs) {
  const Value value =
      Read("FWP_BYTE_BLOB_TYPE", "<byteBlob><data>5C006100</data><asString>\\a</asString></byteBlob>");
  ASSERT_EQ(value->byteBlob->size, 4U);
  EXPECT_EQ(ToHex(std::span(value->byteBlob->data, 4)), "5c006100");
}

TEST(ReadValues, Sids) {
  const Value value = Read("FWP_SID", "<sid>S-1-5-32-544</sid>");
  EXPECT_EQ(ToHex(std::span(reinterpret_cast<const UINT8*>(value->sid), 16)),
            "01020000000000052000000020020000");
}

TEST(ReadValues, SecurityDescriptors) {
  const Value value = Read("FWP_SECURITY_DESCRIPTOR_TYPE", "<sd>D:(A;;CC;;;WD)S:NO_ACCESS_CONTROL</sd>");
  EXPECT_EQ(ToHex(std::span(value->sd->data, value->sd->size)),
            ToHex(FromHex("01 00 1480 00000000 00000000 00000000 14000000 02 00 1c00 0100 0000 "
                          "00 00 1400 01000000 01 01 000000000001 00000000")));
  EXPECT_EQ(value.state.unknownDomainSids, 0U);
}

TEST(ReadValues, GroupsOfAnUnknownDomainAreMarkedAndCounted) {
  const Value value = Read("FWP_SECURITY_DESCRIPTOR_TYPE", "<sd>D:(A;;CC;;;DA)</sd>");
  EXPECT_EQ(value.state.unknownDomainSids, 1U);
  EXPECT_EQ(ToHex(std::span(value->sd->data, value->sd->size)).substr(72),
            "010500000000000515000000ffffffffffffffffffffffff00020000");
}

TEST(ReadValues, Texts) {
  EXPECT_STREQ(Read("FWP_UNICODE_STRING_TYPE", "<unicodeString>wlan0</unicodeString>")->unicodeString,
               L"wlan0");
}

TEST(ReadValues, TokensAreBytes) {
  const Value value = Read("FWP_TOKEN_ACCESS_INFORMATION_TYPE",
                           "<tokenAccessInformation><data>01</data></tokenAccessInformation>");
  EXPECT_EQ(value->tokenAccessInformation->size, 1U);
}

TEST(ReadValues, Networks) {
  const Value v4 =
      Read("FWP_V4_ADDR_MASK", "<v4AddrMask><addr>10.0.0.0</addr><mask>255.0.0.0</mask></v4AddrMask>");
  EXPECT_EQ(v4->v4AddrMask->addr, 0x0A000000U);
  EXPECT_EQ(v4->v4AddrMask->mask, 0xFF000000U);
  const Value v6 =
      Read("FWP_V6_ADDR_MASK", "<v6AddrMask><addr>fe80::</addr><prefixLength>10</prefixLength></v6AddrMask>");
  EXPECT_EQ(ToHex(v6->v6AddrMask->addr), "fe800000000000000000000000000000");
  EXPECT_EQ(v6->v6AddrMask->prefixLength, 10);
}

TEST(ReadValues, Ranges) {
  const Value value = Read("FWP_RANGE_TYPE",
                           "<rangeValue>"
                           "<valueLow><type>FWP_UINT32</type><uint32>10.0.0.0</uint32></valueLow>"
                           "<valueHigh><type>FWP_UINT32</type><uint32>10.0.0.9</uint32></valueHigh>"
                           "</rangeValue>");
  EXPECT_EQ(value->rangeValue->valueLow.type, FWP_UINT32);
  EXPECT_EQ(value->rangeValue->valueLow.uint32, 0x0A000000U);
  EXPECT_EQ(value->rangeValue->valueHigh.uint32, 0x0A000009U);
}

TEST(ReadValues, AnEmptyElementIsANullPointer) {
  EXPECT_EQ(Read("FWP_UINT64", "<uint64/>")->uint64, nullptr);
  EXPECT_EQ(Read("FWP_BYTE_BLOB_TYPE", "<byteBlob/>")->byteBlob, nullptr);
  EXPECT_EQ(Read("FWP_SECURITY_DESCRIPTOR_TYPE", "<sd/>")->sd, nullptr);
  EXPECT_EQ(Read("FWP_SID", "<sid/>")->sid, nullptr);
  EXPECT_EQ(Read("FWP_RANGE_TYPE", "<rangeValue/>")->rangeValue, nullptr);
  EXPECT_EQ(Read("FWP_UNICODE_STRING_TYPE", "<unicodeString/>")->unicodeString, nullptr);
}

}  // namespace
