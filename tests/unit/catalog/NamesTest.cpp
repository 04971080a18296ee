#include "catalog/Names.h"

#include <gtest/gtest.h>

#include "catalog/Guid.h"

namespace Catalog {
namespace {

template <class Number>
struct Named {
  Number number;
  const char* name;
};

TEST(FormatGuid, IsLowerCaseWithLeadingZeros) {
  EXPECT_EQ(FormatGuid({0xC38D57D1, 0x05A7, 0x4C33, {0x90, 0x4F, 0x7F, 0xBC, 0xEE, 0xE6, 0x0E, 0x82}}),
            "c38d57d1-05a7-4c33-904f-7fbceee60e82");
  EXPECT_EQ(FormatGuid({1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}}), "00000001-0002-0003-0405-060708090a0b");
  EXPECT_EQ(FormatGuid(GUID{}), "00000000-0000-0000-0000-000000000000");
}

TEST(LayerName, IsTheHeadersNameOrTheKey) {
  EXPECT_EQ(LayerName("c38d57d1-05a7-4c33-904f-7fbceee60e82"_guid), "ALE_AUTH_CONNECT_V4");
  EXPECT_EQ(LayerName("60703b07-63c8-48e9-ada3-12b1af40a617"_guid), "ALE_AUTH_LISTEN_V6_DISCARD");
  EXPECT_EQ(LayerName("12345678-9abc-def0-0102-030405060708"_guid), "12345678-9abc-def0-0102-030405060708");
}

TEST(FieldName, IsTheHeadersNameOrTheKey) {
  EXPECT_EQ(FieldName("b235ae9a-1d64-49b8-a44c-5ff3d9095045"_guid), "IP_REMOTE_ADDRESS");
  EXPECT_EQ(FieldName("2663d549-aaf2-46a2-8666-1e7667f86985"_guid), "BITMAP_IP_REMOTE_PORT");
  EXPECT_EQ(FieldName(GUID{}), "00000000-0000-0000-0000-000000000000");
}

TEST(SublayerName, IsTheHeadersNameOrTheKey) {
  EXPECT_EQ(SublayerName("eebecc03-ced4-4380-819a-2734397b2b74"_guid), "UNIVERSAL");
  EXPECT_EQ(SublayerName("ba69dc66-5176-4979-9c89-26a7b46a8327"_guid), "TEREDO");
  EXPECT_EQ(SublayerName("b3cdd441-af90-41ba-a745-7c6008ff2301"_guid), "MPSSVC_WF");
  EXPECT_EQ(SublayerName("12345678-9abc-def0-0102-030405060708"_guid),
            "12345678-9abc-def0-0102-030405060708");
}

TEST(ActionName, AgreesWithThePlatformsHeaders) {
  constexpr Named<FWP_ACTION_TYPE> kActions[]{
      {FWP_ACTION_BLOCK, "BLOCK"},
      {FWP_ACTION_PERMIT, "PERMIT"},
      {FWP_ACTION_CALLOUT_TERMINATING, "CALLOUT_TERMINATING"},
      {FWP_ACTION_CALLOUT_INSPECTION, "CALLOUT_INSPECTION"},
      {FWP_ACTION_CALLOUT_UNKNOWN, "CALLOUT_UNKNOWN"},
      {FWP_ACTION_CONTINUE, "CONTINUE"},
      {FWP_ACTION_NONE, "NONE"},
      {FWP_ACTION_NONE_NO_MATCH, "NONE_NO_MATCH"},
  };
  for (const auto& [action, name] : kActions) {
    EXPECT_EQ(ActionName(action), name);
  }
}

TEST(ActionName, AnUnknownActionIsTheBareNumber) {
  EXPECT_EQ(ActionName(0), "0");
  EXPECT_EQ(ActionName(0x1003), "4099");
}

TEST(MatchName, AgreesWithThePlatformsHeaders) {
  constexpr Named<FWP_MATCH_TYPE> kMatches[]{
      {FWP_MATCH_EQUAL, "EQUAL"},
      {FWP_MATCH_GREATER, "GREATER"},
      {FWP_MATCH_LESS, "LESS"},
      {FWP_MATCH_GREATER_OR_EQUAL, "GREATER_OR_EQUAL"},
      {FWP_MATCH_LESS_OR_EQUAL, "LESS_OR_EQUAL"},
      {FWP_MATCH_RANGE, "RANGE"},
      {FWP_MATCH_FLAGS_ALL_SET, "FLAGS_ALL_SET"},
      {FWP_MATCH_FLAGS_ANY_SET, "FLAGS_ANY_SET"},
      {FWP_MATCH_FLAGS_NONE_SET, "FLAGS_NONE_SET"},
      {FWP_MATCH_EQUAL_CASE_INSENSITIVE, "EQUAL_CASE_INSENSITIVE"},
      {FWP_MATCH_NOT_EQUAL, "NOT_EQUAL"},
  };
  for (const auto& [match, name] : kMatches) {
    EXPECT_EQ(MatchName(match), name);
  }
}

TEST(MatchName, KnowsTheMatchesOfRecentHeaders) {
  EXPECT_EQ(MatchName(static_cast<FWP_MATCH_TYPE>(11)), "PREFIX");
  EXPECT_EQ(MatchName(static_cast<FWP_MATCH_TYPE>(12)), "NOT_PREFIX");
}

TEST(MatchName, AnUnknownMatchIsTheBareNumber) {
  EXPECT_EQ(MatchName(static_cast<FWP_MATCH_TYPE>(13)), "13");
  EXPECT_EQ(MatchName(static_cast<FWP_MATCH_TYPE>(15)), "15");
}

TEST(DataTypeName, AgreesWithThePlatformsHeaders) {
  constexpr Named<FWP_DATA_TYPE> kTypes[]{
      {FWP_EMPTY, "EMPTY"},
      {FWP_UINT8, "UINT8"},
      {FWP_UINT16, "UINT16"},
      {FWP_UINT32, "UINT32"},
      {FWP_UINT64, "UINT64"},
      {FWP_INT8, "INT8"},
      {FWP_INT16, "INT16"},
      {FWP_INT32, "INT32"},
      {FWP_INT64, "INT64"},
      {FWP_FLOAT, "FLOAT"},
      {FWP_DOUBLE, "DOUBLE"},
      {FWP_BYTE_ARRAY16_TYPE, "BYTE_ARRAY16"},
      {FWP_BYTE_BLOB_TYPE, "BYTE_BLOB"},
      {FWP_SID, "SID"},
      {FWP_SECURITY_DESCRIPTOR_TYPE, "SECURITY_DESCRIPTOR"},
      {FWP_TOKEN_INFORMATION_TYPE, "TOKEN_INFORMATION"},
      {FWP_TOKEN_ACCESS_INFORMATION_TYPE, "TOKEN_ACCESS_INFORMATION"},
      {FWP_UNICODE_STRING_TYPE, "UNICODE_STRING"},
      {FWP_BYTE_ARRAY6_TYPE, "BYTE_ARRAY6"},
      {FWP_V4_ADDR_MASK, "V4_ADDR_MASK"},
      {FWP_V6_ADDR_MASK, "V6_ADDR_MASK"},
      {FWP_RANGE_TYPE, "RANGE"},
  };
  for (const auto& [type, name] : kTypes) {
    EXPECT_EQ(DataTypeName(type), name);
  }
}

TEST(DataTypeName, KnowsTheTypesOfRecentHeaders) {
  EXPECT_EQ(DataTypeName(static_cast<FWP_DATA_TYPE>(19)), "BITMAP_INDEX");
  EXPECT_EQ(DataTypeName(static_cast<FWP_DATA_TYPE>(20)), "BITMAP_ARRAY64");
}

TEST(DataTypeName, AnUnknownTypeIsTheBareNumber) {
  EXPECT_EQ(DataTypeName(static_cast<FWP_DATA_TYPE>(21)), "21");
  EXPECT_EQ(DataTypeName(static_cast<FWP_DATA_TYPE>(0x103)), "259");
}

TEST(FilterFlagNames, AgreeWithThePlatformsHeaders) {
  constexpr Named<UINT32> kFlags[]{
      {FWPM_FILTER_FLAG_NONE, "-"},
      {FWPM_FILTER_FLAG_PERSISTENT, "PERSISTENT"},
      {FWPM_FILTER_FLAG_BOOTTIME, "BOOTTIME"},
      {FWPM_FILTER_FLAG_HAS_PROVIDER_CONTEXT, "HAS_PROVIDER_CONTEXT"},
      {FWPM_FILTER_FLAG_CLEAR_ACTION_RIGHT, "CLEAR_ACTION_RIGHT"},
      {FWPM_FILTER_FLAG_PERMIT_IF_CALLOUT_UNREGISTERED, "PERMIT_IF_CALLOUT_UNREGISTERED"},
      {FWPM_FILTER_FLAG_DISABLED, "DISABLED"},
      {FWPM_FILTER_FLAG_INDEXED, "INDEXED"},
  };
  for (const auto& [flag, name] : kFlags) {
    EXPECT_EQ(FilterFlagNames(flag), name);
  }
}

TEST(Numbers, OfNamesAreThoseThatGiveThem) {
  EXPECT_EQ(FindAction("CALLOUT_UNKNOWN"), FWP_ACTION_TYPE{0x4005});
  EXPECT_EQ(FindMatch("NOT_EQUAL"), FWP_MATCH_NOT_EQUAL);
  EXPECT_EQ(FindDataType("BYTE_ARRAY16"), FWP_BYTE_ARRAY16_TYPE);
  EXPECT_EQ(FindAction("ALLOW"), std::nullopt);
  EXPECT_EQ(FindMatch(""), std::nullopt);
  EXPECT_EQ(FindDataType("UINT128"), std::nullopt);
}

TEST(ProviderName, IsTheHeadersNameOrTheKey) {
  EXPECT_EQ(ProviderName("decc16ca-3f33-4346-be1e-8fb4ae0f3d62"_guid), "MPSSVC_WF");
  EXPECT_EQ(ProviderName(GUID{}), "00000000-0000-0000-0000-000000000000");
}

TEST(CalloutName, IsTheHeadersNameOrTheKey) {
  EXPECT_EQ(CalloutName("6ac141fc-f75d-4203-b9c8-48e6149c2712"_guid), "IPSEC_ALE_CONNECT_V4");
  EXPECT_EQ(CalloutName(GUID{}), "00000000-0000-0000-0000-000000000000");
}

TEST(FilterFlagNames, StandFromTheHighestBitToTheLowest) {
  EXPECT_EQ(FilterFlagNames(0x9), "CLEAR_ACTION_RIGHT|PERSISTENT");
  EXPECT_EQ(FilterFlagNames(0x7f),
            "INDEXED|DISABLED|PERMIT_IF_CALLOUT_UNREGISTERED|CLEAR_ACTION_RIGHT|HAS_PROVIDER_CONTEXT|"
            "BOOTTIME|PERSISTENT");
}

TEST(FilterFlagNames, UnknownBitsFollowAsOneNumber) {
  EXPECT_EQ(FilterFlagNames(0x300008), "CLEAR_ACTION_RIGHT|0x00300000");
  EXPECT_EQ(FilterFlagNames(0x80000000), "0x80000000");
}

TEST(ConditionFlagNames, AgreeWithThePlatformsHeaders) {
  constexpr Named<UINT32> kFlags[]{
      {FWP_CONDITION_FLAG_IS_LOOPBACK, "IS_LOOPBACK"},
      {FWP_CONDITION_FLAG_IS_IPSEC_SECURED, "IS_IPSEC_SECURED"},
      {FWP_CONDITION_FLAG_IS_REAUTHORIZE, "IS_REAUTHORIZE"},
      {FWP_CONDITION_FLAG_IS_WILDCARD_BIND, "IS_WILDCARD_BIND"},
      {FWP_CONDITION_FLAG_IS_RAW_ENDPOINT, "IS_RAW_ENDPOINT"},
      {FWP_CONDITION_FLAG_IS_FRAGMENT, "IS_FRAGMENT"},
      {FWP_CONDITION_FLAG_IS_FRAGMENT_GROUP, "IS_FRAGMENT_GROUP"},
      {FWP_CONDITION_FLAG_IS_IPSEC_NATT_RECLASSIFY, "IS_IPSEC_NATT_RECLASSIFY"},
      {FWP_CONDITION_FLAG_REQUIRES_ALE_CLASSIFY, "REQUIRES_ALE_CLASSIFY"},
      {FWP_CONDITION_FLAG_IS_IMPLICIT_BIND, "IS_IMPLICIT_BIND"},
      {FWP_CONDITION_FLAG_IS_REASSEMBLED, "IS_REASSEMBLED"},
      {FWP_CONDITION_FLAG_IS_NAME_APP_SPECIFIED, "IS_NAME_APP_SPECIFIED"},
      {FWP_CONDITION_FLAG_IS_PROMISCUOUS, "IS_PROMISCUOUS"},
      {FWP_CONDITION_FLAG_IS_AUTH_FW, "IS_AUTH_FW"},
      {FWP_CONDITION_FLAG_IS_RECLASSIFY, "IS_RECLASSIFY"},
      {FWP_CONDITION_FLAG_IS_OUTBOUND_PASS_THRU, "IS_OUTBOUND_PASS_THRU"},
      {FWP_CONDITION_FLAG_IS_INBOUND_PASS_THRU, "IS_INBOUND_PASS_THRU"},
      {FWP_CONDITION_FLAG_IS_CONNECTION_REDIRECTED, "IS_CONNECTION_REDIRECTED"},
      {FWP_CONDITION_FLAG_IS_PROXY_CONNECTION, "IS_PROXY_CONNECTION"},
      {FWP_CONDITION_FLAG_IS_APPCONTAINER_LOOPBACK, "IS_APPCONTAINER_LOOPBACK"},
      {FWP_CONDITION_FLAG_IS_NON_APPCONTAINER_LOOPBACK, "IS_NON_APPCONTAINER_LOOPBACK"},
      {FWP_CONDITION_FLAG_IS_RESERVED, "IS_RESERVED"},
      {FWP_CONDITION_FLAG_IS_HONORING_POLICY_AUTHORIZE, "IS_HONORING_POLICY_AUTHORIZE"},
  };
  for (const auto& [flag, name] : kFlags) {
    EXPECT_EQ(ConditionFlagNames(flag), name);
  }
}

TEST(ConditionFlagNames, StandFromTheHighestBitToTheLowest) {
  EXPECT_EQ(ConditionFlagNames(0), "-");
  EXPECT_EQ(ConditionFlagNames(0x5), "IS_REAUTHORIZE|IS_LOOPBACK");
  EXPECT_EQ(ConditionFlagNames(0x801), "IS_LOOPBACK|0x00000800");
}

}  // namespace
}  // namespace Catalog
