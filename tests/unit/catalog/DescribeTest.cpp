#include "catalog/Describe.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "catalog/Guid.h"
#include "support/EngineKeys.h"

namespace Catalog {
namespace {

/// A value of a type; `set` fills the union.
template <class Value = FWP_CONDITION_VALUE0, class Set>
Value Make(FWP_DATA_TYPE type, Set set) {
  Value value{};
  value.type = type;
  set(value);
  return value;
}

template <class Set>
std::string Describe(const GUID& field, FWP_DATA_TYPE type, Set set) {
  return DescribeConditionValue(field, Make(type, set));
}

template <class Set>
std::string Describe(FWP_DATA_TYPE type, Set set) {
  return Describe(GUID{}, type, set);
}

FWPM_FILTER_CONDITION0 PortIsNot(UINT16 port) {
  return {kRemotePort, FWP_MATCH_NOT_EQUAL, Make(FWP_UINT16, [&](auto& value) { value.uint16 = port; })};
}

FWPM_FILTER_CONDITION0 FlagsAre(UINT32 flags) {
  return {kFlagsField, FWP_MATCH_EQUAL, Make(FWP_UINT32, [&](auto& value) { value.uint32 = flags; })};
}

TEST(DescribeConditionValue, UnsignedNumbers) {
  UINT64 luid = 0xffffffffffffffff;
  EXPECT_EQ(Describe(FWP_UINT8, [](auto& value) { value.uint8 = 255; }), "UINT8 255");
  EXPECT_EQ(Describe(FWP_UINT16, [](auto& value) { value.uint16 = 65535; }), "UINT16 65535");
  EXPECT_EQ(Describe(FWP_UINT32, [](auto& value) { value.uint32 = 4294967295; }), "UINT32 4294967295");
  EXPECT_EQ(Describe(FWP_UINT64, [&](auto& value) { value.uint64 = &luid; }), "UINT64 18446744073709551615");
}

TEST(DescribeConditionValue, SignedNumbers) {
  INT64 number = -9000000000;
  EXPECT_EQ(Describe(FWP_INT8, [](auto& value) { value.int8 = -128; }), "INT8 -128");
  EXPECT_EQ(Describe(FWP_INT16, [](auto& value) { value.int16 = -2; }), "INT16 -2");
  EXPECT_EQ(Describe(FWP_INT32, [](auto& value) { value.int32 = -3; }), "INT32 -3");
  EXPECT_EQ(Describe(FWP_INT64, [&](auto& value) { value.int64 = &number; }), "INT64 -9000000000");
}

TEST(DescribeConditionValue, FloatingPointNumbers) {
  double number = 0.25;
  EXPECT_EQ(Describe(FWP_FLOAT, [](auto& value) { value.float32 = 1.5F; }), "FLOAT 1.5");
  EXPECT_EQ(Describe(FWP_DOUBLE, [&](auto& value) { value.double64 = &number; }), "DOUBLE 0.25");
}

TEST(DescribeConditionValue, ThirtyTwoBitsReadAsTheFieldDoes) {
  const auto set = [](auto& value) { value.uint32 = 0x0a000001; };
  EXPECT_EQ(Describe(kRemoteAddress, FWP_UINT32, set), "UINT32 10.0.0.1");
  EXPECT_EQ(Describe(kFlagsField, FWP_UINT32, set), "UINT32 0x0a000001");
  EXPECT_EQ(Describe(kInterfaceIndex, FWP_UINT32, set), "UINT32 167772161");
  EXPECT_EQ(Describe(GUID{}, FWP_UINT32, set), "UINT32 167772161");
}

TEST(DescribeConditionValue, Networks) {
  FWP_V4_ADDR_AND_MASK v4{0x0a000000, 0xff000000};
  FWP_V6_ADDR_AND_MASK v6{{0xfe, 0x80}, 10};
  EXPECT_EQ(Describe(kRemoteAddress, FWP_V4_ADDR_MASK, [&](auto& value) { value.v4AddrMask = &v4; }),
            "V4_ADDR_MASK 10.0.0.0/255.0.0.0");
  EXPECT_EQ(Describe(kRemoteAddress, FWP_V6_ADDR_MASK, [&](auto& value) { value.v6AddrMask = &v6; }),
            "V6_ADDR_MASK fe80::/10");
}

TEST(DescribeConditionValue, AnImpossiblePrefixLengthIsShownAsItIs) {
  FWP_V6_ADDR_AND_MASK network{{}, 255};
  EXPECT_EQ(Describe(kRemoteAddress, FWP_V6_ADDR_MASK, [&](auto& value) { value.v6AddrMask = &network; }),
            "V6_ADDR_MASK ::/255");
}

TEST(DescribeConditionValue, ByteArrays) {
  FWP_BYTE_ARRAY16 address{{0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}};
  FWP_BYTE_ARRAY6 hardware{{0x00, 0x1b, 0x44, 0x11, 0x3a, 0xb7}};
  EXPECT_EQ(Describe(FWP_BYTE_ARRAY16_TYPE, [&](auto& value) { value.byteArray16 = &address; }),
            "BYTE_ARRAY16 2001:db8::1");
  EXPECT_EQ(Describe(FWP_BYTE_ARRAY6_TYPE, [&](auto& value) { value.byteArray6 = &hardware; }),
            "BYTE_ARRAY6 001b44113ab7");
}

TEST(DescribeConditionValue, AnApplicationIdIsText) {
  char16_t path[] = u"\\device\\harddiskvolume1\\a.exe";
  FWP_BYTE_BLOB blob{sizeof(path), reinterpret_cast<UINT8*>(path)};
  EXPECT_EQ(Describe(kAppId, FWP_BYTE_BLOB_TYPE, [&](auto& value) { value.byteBlob = &blob; }),
            "BYTE_BLOB \\device\\harddiskvolume1\\a.exe");
}

TEST(DescribeConditionValue, OtherBlobsAreBytes) {
  UINT8 bytes[]{1, 2, 0xab};
  FWP_BYTE_BLOB blob{sizeof(bytes), bytes};
  EXPECT_EQ(Describe(FWP_BYTE_BLOB_TYPE, [&](auto& value) { value.byteBlob = &blob; }), "BYTE_BLOB 0102ab");
  EXPECT_EQ(Describe(FWP_SECURITY_DESCRIPTOR_TYPE, [&](auto& value) { value.sd = &blob; }),
            "SECURITY_DESCRIPTOR 0102ab");
  EXPECT_EQ(
      Describe(FWP_TOKEN_ACCESS_INFORMATION_TYPE, [&](auto& value) { value.tokenAccessInformation = &blob; }),
      "TOKEN_ACCESS_INFORMATION 0102ab");
}

TEST(DescribeConditionValue, ABlobWithoutBytesIsEmpty) {
  FWP_BYTE_BLOB blob{};
  EXPECT_EQ(Describe(FWP_BYTE_BLOB_TYPE, [&](auto& value) { value.byteBlob = &blob; }), "BYTE_BLOB empty");
}

TEST(DescribeConditionValue, ABlobThatOnlyClaimsBytesIsNull) {
  FWP_BYTE_BLOB blob{4, nullptr};
  EXPECT_EQ(Describe(FWP_BYTE_BLOB_TYPE, [&](auto& value) { value.byteBlob = &blob; }), "BYTE_BLOB null");
}

TEST(DescribeConditionValue, Identities) {
  SID sid{1, 1, {{0, 0, 0, 0, 0, 5}}, {18}};
  FWP_TOKEN_INFORMATION token{3, nullptr, 1, nullptr};
  EXPECT_EQ(Describe(FWP_SID, [&](auto& value) { value.sid = &sid; }), "SID S-1-5-18");
  EXPECT_EQ(Describe(FWP_TOKEN_INFORMATION_TYPE, [&](auto& value) { value.tokenInformation = &token; }),
            "TOKEN_INFORMATION 3 and 1 restricted");
}

TEST(DescribeConditionValue, Strings) {
  wchar_t text[] = L"peer";
  EXPECT_EQ(Describe(FWP_UNICODE_STRING_TYPE, [&](auto& value) { value.unicodeString = text; }),
            "UNICODE_STRING peer");
}

TEST(DescribeConditionValue, Ranges) {
  FWP_RANGE0 range{Make<FWP_VALUE0>(FWP_UINT32, [](auto& value) { value.uint32 = 1; }),
                   Make<FWP_VALUE0>(FWP_UINT32, [](auto& value) { value.uint32 = 2; })};
  const auto set = [&](auto& value) { value.rangeValue = &range; };
  EXPECT_EQ(Describe(kInterfaceIndex, FWP_RANGE_TYPE, set), "RANGE UINT32 1 to UINT32 2");
  EXPECT_EQ(Describe(kRemoteAddress, FWP_RANGE_TYPE, set), "RANGE UINT32 0.0.0.1 to UINT32 0.0.0.2");
}

TEST(DescribeConditionValue, ARangeOfImpossibleEnds) {
  FWP_RANGE0 range{Make<FWP_VALUE0>(FWP_UINT64, [](auto&) {}),
                   Make<FWP_VALUE0>(FWP_RANGE_TYPE, [](auto&) {})};
  EXPECT_EQ(Describe(FWP_RANGE_TYPE, [&](auto& value) { value.rangeValue = &range; }),
            "RANGE UINT64 null to RANGE");
}

TEST(DescribeConditionValue, EmptyHasNoDatum) {
  EXPECT_EQ(Describe(FWP_EMPTY, [](auto&) {}), "EMPTY");
}

TEST(DescribeConditionValue, TypesWithoutAReadableDatumAreNamedOnly) {
  EXPECT_EQ(Describe(static_cast<FWP_DATA_TYPE>(19), [](auto&) {}), "BITMAP_INDEX");
  EXPECT_EQ(Describe(static_cast<FWP_DATA_TYPE>(99), [](auto&) {}), "99");
}

TEST(DescribeConditionValue, NullPointersOfEveryType) {
  const auto nothing = [](auto&) {};
  EXPECT_EQ(Describe(FWP_UINT64, nothing), "UINT64 null");
  EXPECT_EQ(Describe(FWP_INT64, nothing), "INT64 null");
  EXPECT_EQ(Describe(FWP_DOUBLE, nothing), "DOUBLE null");
  EXPECT_EQ(Describe(FWP_BYTE_ARRAY16_TYPE, nothing), "BYTE_ARRAY16 null");
  EXPECT_EQ(Describe(FWP_BYTE_BLOB_TYPE, nothing), "BYTE_BLOB null");
  EXPECT_EQ(Describe(FWP_SID, nothing), "SID null");
  EXPECT_EQ(Describe(FWP_SECURITY_DESCRIPTOR_TYPE, nothing), "SECURITY_DESCRIPTOR null");
  EXPECT_EQ(Describe(FWP_TOKEN_INFORMATION_TYPE, nothing), "TOKEN_INFORMATION null");
  EXPECT_EQ(Describe(FWP_TOKEN_ACCESS_INFORMATION_TYPE, nothing), "TOKEN_ACCESS_INFORMATION null");
  EXPECT_EQ(Describe(FWP_UNICODE_STRING_TYPE, nothing), "UNICODE_STRING null");
  EXPECT_EQ(Describe(FWP_BYTE_ARRAY6_TYPE, nothing), "BYTE_ARRAY6 null");
  EXPECT_EQ(Describe(FWP_V4_ADDR_MASK, nothing), "V4_ADDR_MASK null");
  EXPECT_EQ(Describe(FWP_V6_ADDR_MASK, nothing), "V6_ADDR_MASK null");
  EXPECT_EQ(Describe(FWP_RANGE_TYPE, nothing), "RANGE null");
}

TEST(DescribeCondition, NamesFieldAndMatch) {
  EXPECT_EQ(DescribeCondition(PortIsNot(53)), "IP_REMOTE_PORT NOT_EQUAL UINT16 53");
}

TEST(DescribeCondition, AnUnknownFieldAndMatchAreBare) {
  EXPECT_EQ(DescribeCondition({GUID{}, static_cast<FWP_MATCH_TYPE>(13), {}}),
            "00000000-0000-0000-0000-000000000000 13 EMPTY");
}

FWPM_FILTER0 PermitConnections() {
  FWPM_FILTER0 filter{};
  filter.layerKey = kConnectV4;
  filter.action.type = FWP_ACTION_PERMIT;
  return filter;
}

TEST(DescribeFilter, HasFiveParts) {
  std::vector conditions{PortIsNot(53), FlagsAre(1)};
  FWPM_FILTER0 filter = PermitConnections();
  filter.flags = 8;
  filter.weight = Make<FWP_VALUE0>(FWP_UINT8, [](auto& value) { value.uint8 = 14; });
  filter.numFilterConditions = 2;
  filter.filterCondition = conditions.data();
  EXPECT_EQ(DescribeFilter(filter),
            "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 14 | CLEAR_ACTION_RIGHT | IP_REMOTE_PORT NOT_EQUAL UINT16 "
            "53 & FLAGS EQUAL UINT32 0x00000001");
}

TEST(DescribeFilter, WithoutWeightFlagsAndConditions) {
  EXPECT_EQ(DescribeFilter(PermitConnections()), "ALE_AUTH_CONNECT_V4 | PERMIT | EMPTY | - | -");
}

TEST(DescribeFilter, AWeightOfSixtyFourBits) {
  UINT64 weight = 7;
  FWPM_FILTER0 filter = PermitConnections();
  filter.weight = Make<FWP_VALUE0>(FWP_UINT64, [&](auto& value) { value.uint64 = &weight; });
  EXPECT_EQ(DescribeFilter(filter), "ALE_AUTH_CONNECT_V4 | PERMIT | UINT64 7 | - | -");
  filter.weight.uint64 = nullptr;
  EXPECT_EQ(DescribeFilter(filter), "ALE_AUTH_CONNECT_V4 | PERMIT | UINT64 null | - | -");
}

TEST(DescribeFilter, ConditionsThatAreOnlyCountedAreNull) {
  FWPM_FILTER0 filter = PermitConnections();
  filter.numFilterConditions = 3;
  EXPECT_EQ(DescribeFilter(filter), "ALE_AUTH_CONNECT_V4 | PERMIT | EMPTY | - | null");
}

TEST(DescribeFilter, ConditionsThatAreNotCountedAreNotRead) {
  FWPM_FILTER_CONDITION0 condition = PortIsNot(53);
  FWPM_FILTER0 filter = PermitConnections();
  filter.filterCondition = &condition;
  EXPECT_EQ(DescribeFilter(filter), "ALE_AUTH_CONNECT_V4 | PERMIT | EMPTY | - | -");
}

TEST(DescribeFilter, OfNothingButZeros) {
  EXPECT_EQ(DescribeFilter(FWPM_FILTER0{}), "00000000-0000-0000-0000-000000000000 | 0 | EMPTY | - | -");
}

}  // namespace
}  // namespace Catalog
