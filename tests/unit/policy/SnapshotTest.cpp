#include "policy/Snapshot.h"

#include "catalog/Guid.h"
#include "unit/policy/PolicyTest.h"

namespace {

using Catalog::operator""_guid;
using Policy::Condition;
using Policy::Filter;
using Policy::Interval;
using Policy::Number;
using Policy::Snapshot;
using testing::ElementsAre;
using testing::SizeIs;

/// Another name for it, because GoogleTest has a class Test too.
using Asked = Policy::Test;

class SnapshotTest : public PolicyTest {};

/// The one condition of a filter at the connect layer.
Condition DecodeCondition(const std::string& condition, const std::string& version = "V4") {
  FilterText text("ALE_AUTH_CONNECT_" + version + " | BLOCK | EMPTY | - | " + condition);
  return Policy::Decode(text.Record()).conditions.at(0);
}

Asked InInterval(Number first, Number last) { return {Asked::Kind::InInterval, false, {first, last}, {}}; }
Asked NotIn(Number first, Number last) { return {Asked::Kind::InInterval, true, {first, last}, {}}; }

TEST_F(SnapshotTest, HoldsWhatAFilterIs) {
  Install(7, "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 14 | CLEAR_ACTION_RIGHT | IP_REMOTE_PORT EQUAL UINT16 53");
  const Snapshot snapshot = Read();
  ASSERT_THAT(snapshot.filters, SizeIs(1));
  const Filter& filter = snapshot.filters.front();
  EXPECT_EQ(filter.name, "Filter");
  EXPECT_EQ(filter.layerKey, "c38d57d1-05a7-4c33-904f-7fbceee60e82"_guid);
  EXPECT_EQ(filter.sublayerKey, (GUID{0x5ab1a7e6, 0, 1, {}}));
  EXPECT_EQ(filter.action, 0x1002U);
  EXPECT_EQ(filter.calloutKey, std::nullopt);
  EXPECT_EQ(filter.flags, 8U);
  EXPECT_EQ(filter.weight.type, FWP_UINT8);
  EXPECT_EQ(std::get<UINT64>(filter.weight.data), 14U);
  EXPECT_EQ(filter.effectiveWeight >> 60, 14U);
  EXPECT_TRUE(filter.IsHard());
  ASSERT_THAT(filter.conditions, SizeIs(1));
  EXPECT_EQ(filter.conditions.front().text, "IP_REMOTE_PORT EQUAL UINT16 53");
}

TEST_F(SnapshotTest, AWeightOf64BitsIsNoneOfTheEnginesChoosing) {
  Install(7, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT64 99 | - | -");
  const Snapshot snapshot = Read();
  EXPECT_EQ(snapshot.filters.front().effectiveWeight, 99U);
}

TEST_F(SnapshotTest, HoldsTheKeysOfAFiltersProviderAndCallout) {
  GUID provider{1, 2, 3, {4}};
  FWPM_FILTER0 record{};
  record.filterId = 4294967296;
  record.filterKey = {0xa0000000, 0, 0, {}};
  record.providerKey = &provider;
  record.action.type = FWP_ACTION_CALLOUT_TERMINATING;
  record.action.calloutKey = {0xb0000000, 0, 0, {}};
  const Filter filter = Policy::Decode(record);
  EXPECT_EQ(filter.id, 4294967296U);
  EXPECT_EQ(filter.key, "a0000000-0000-0000-0000-000000000000"_guid);
  EXPECT_EQ(filter.name, "");
  EXPECT_EQ(filter.providerKey, "00000001-0002-0003-0400-000000000000"_guid);
  EXPECT_EQ(filter.calloutKey, "b0000000-0000-0000-0000-000000000000"_guid);
  EXPECT_EQ(filter.weight.type, FWP_EMPTY);
  EXPECT_TRUE(filter.conditions.empty());
}

TEST_F(SnapshotTest, HoldsWhatProvidersAndSublayersAre) {
  GUID key{1, 2, 3, {4}};
  std::wstring name = L"Name";
  std::wstring description = L"What it is for";
  FWPM_PROVIDER0 record{};
  record.providerKey = key;
  record.displayData = {name.data(), description.data()};
  const Policy::Provider provider = Policy::Decode(record);
  EXPECT_EQ(provider.key, key);
  EXPECT_EQ(provider.name, "Name");
  EXPECT_EQ(provider.description, "What it is for");

  FWPM_SUBLAYER0 sublayerRecord{};
  sublayerRecord.providerKey = &key;
  sublayerRecord.displayData.description = description.data();
  const Policy::Sublayer sublayer = Policy::Decode(sublayerRecord);
  EXPECT_EQ(sublayer.name, "");
  EXPECT_EQ(sublayer.description, "What it is for");
  EXPECT_EQ(sublayer.providerKey, key);
}

TEST_F(SnapshotTest, TakesAnEmptyTextForEmpty) {
  std::wstring empty;
  FWPM_PROVIDER0 record{};
  record.displayData = {empty.data(), nullptr};
  EXPECT_EQ(Policy::Decode(record).name, "");
  EXPECT_EQ(Policy::Decode(record).description, "");
}

TEST_F(SnapshotTest, ReadsTheProvidersOfTheEngine) {
  Promises::Features features;
  features.dhcp = true;
  Install(features);
  std::vector<std::string> names;
  for (const Policy::Provider& provider : Read().providers) {
    names.push_back(provider.name);
  }
  EXPECT_THAT(names, testing::Contains("Corvane"));
}

TEST_F(SnapshotTest, SublayersDescendByWeight) {
  Install(7, "");
  Install(0xFFFF, "");
  std::vector<UINT16> weights;
  for (const Policy::Sublayer& sublayer : Read().sublayers) {
    weights.push_back(sublayer.weight);
  }
  EXPECT_TRUE(std::ranges::is_sorted(weights, std::greater<>()));
  EXPECT_EQ(weights.front(), 0xFFFF);
}

TEST_F(SnapshotTest, ASublayerThatIsNotShownIsMarked) {
  FilterText text("ALE_AUTH_CONNECT_V4 | BLOCK | EMPTY | - | -");
  text.Record().subLayerKey = "00000000-0000-0000-0000-000000000bad"_guid;
  const Snapshot snapshot = Policy::MakeSnapshot({}, {Policy::Decode(text.Record())});
  ASSERT_THAT(snapshot.sublayers, SizeIs(1));
  EXPECT_FALSE(snapshot.sublayers.front().listed);
  EXPECT_EQ(snapshot.sublayers.front().key, snapshot.filters.front().sublayerKey);
}

TEST_F(SnapshotTest, ReadsEveryPage) {
  std::string filters;
  for (int i = 0; i < 2500; ++i) {
    filters += "ALE_AUTH_CONNECT_V4 | BLOCK | EMPTY | - | -\n";
  }
  Install(1, filters);
  const Snapshot snapshot = Read();
  EXPECT_THAT(snapshot.filters, SizeIs(2500));
  EXPECT_TRUE(std::ranges::is_sorted(snapshot.filters, {}, &Filter::id));
}

TEST_F(SnapshotTest, ReadsInOneReadOnlyTransactionAndChangesNothing) {
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | EMPTY | - | -");
  EngineEmulator::ClearJournal();
  Read();
  EXPECT_THAT(Calls(),
              ElementsAre("FwpmEngineOpen0", "FwpmTransactionBegin0", "FwpmProviderCreateEnumHandle0",
                          "FwpmProviderEnum0", "FwpmFreeMemory0", "FwpmProviderDestroyEnumHandle0",
                          "FwpmSubLayerCreateEnumHandle0", "FwpmSubLayerEnum0", "FwpmFreeMemory0",
                          "FwpmSubLayerDestroyEnumHandle0", "FwpmFilterCreateEnumHandle0", "FwpmFilterEnum0",
                          "FwpmFreeMemory0", "FwpmFilterDestroyEnumHandle0", "FwpmTransactionAbort0",
                          "FwpmEngineClose0"));
  EXPECT_EQ(EngineEmulator::Journal().at(1).arguments, "flags 1");
}

TEST_F(SnapshotTest, EveryFailingCallIsReportedWithItsCode) {
  for (const char* function : {"FwpmEngineOpen0", "FwpmTransactionBegin0", "FwpmProviderCreateEnumHandle0",
                               "FwpmProviderEnum0", "FwpmSubLayerCreateEnumHandle0", "FwpmSubLayerEnum0",
                               "FwpmFilterCreateEnumHandle0", "FwpmFilterEnum0"}) {
    EngineEmulator::FailCall(function, 1, ERROR_ACCESS_DENIED);
    try {
      Read();
      FAIL() << function;
    } catch (const Policy::SnapshotError& error) {
      EXPECT_EQ(error.Code(), DWORD{5});
      EXPECT_STREQ(error.what(),
                   (std::string(function) + " failed: ERROR_ACCESS_DENIED (0x00000005)").c_str());
    }
  }
}

TEST_F(SnapshotTest, NumbersBecomeIntervals) {
  EXPECT_EQ(DecodeCondition("IP_REMOTE_PORT EQUAL UINT16 53").test, InInterval(53, 53));
  EXPECT_EQ(DecodeCondition("IP_REMOTE_PORT NOT_EQUAL UINT16 53").test, NotIn(53, 53));
  EXPECT_EQ(DecodeCondition("IP_REMOTE_PORT GREATER UINT16 53").test, InInterval(54, 65535));
  EXPECT_EQ(DecodeCondition("IP_REMOTE_PORT LESS UINT16 53").test, InInterval(0, 52));
  EXPECT_EQ(DecodeCondition("IP_REMOTE_PORT GREATER_OR_EQUAL UINT16 53").test, InInterval(53, 65535));
  EXPECT_EQ(DecodeCondition("IP_REMOTE_PORT LESS_OR_EQUAL UINT16 53").test, InInterval(0, 53));
  EXPECT_EQ(DecodeCondition("IP_REMOTE_PORT RANGE RANGE UINT16 1 to UINT16 9").test, InInterval(1, 9));
  EXPECT_EQ(DecodeCondition("IP_REMOTE_PORT EQUAL RANGE UINT16 1 to UINT16 9").test, InInterval(1, 9));
  EXPECT_EQ(DecodeCondition("IP_PROTOCOL GREATER UINT8 17").test, InInterval(18, 255));
  EXPECT_EQ(DecodeCondition("IP_LOCAL_INTERFACE GREATER_OR_EQUAL UINT64 7").test,
            InInterval(7, 0xFFFFFFFFFFFFFFFF));
}

TEST_F(SnapshotTest, NothingIsGreaterThanTheGreatestOrLessThanTheLeast) {
  EXPECT_EQ(DecodeCondition("IP_REMOTE_PORT GREATER UINT16 65535").test, InInterval(1, 0));
  EXPECT_EQ(DecodeCondition("IP_REMOTE_PORT LESS UINT16 0").test, InInterval(1, 0));
}

TEST_F(SnapshotTest, NetworksBecomeIntervalsWhateverTheirHostBits) {
  EXPECT_EQ(DecodeCondition("IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 10.1.2.3/255.0.0.0").test,
            InInterval(0x0A000000, 0x0AFFFFFF));
  EXPECT_EQ(DecodeCondition("IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 10.1.2.3/255.255.255.255").test,
            InInterval(0x0A010203, 0x0A010203));
  EXPECT_EQ(DecodeCondition("IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 10.1.2.3/0.0.0.0").test,
            InInterval(0, 0xFFFFFFFF));
  EXPECT_EQ(DecodeCondition("IP_REMOTE_ADDRESS EQUAL V6_ADDR_MASK fe80::1/10", "V6").test,
            InInterval({0xFE80000000000000, 0}, {0xFEBFFFFFFFFFFFFF, 0xFFFFFFFFFFFFFFFF}));
  EXPECT_EQ(DecodeCondition("IP_REMOTE_ADDRESS EQUAL V6_ADDR_MASK ::1/128", "V6").test,
            InInterval({0, 1}, {0, 1}));
  EXPECT_EQ(DecodeCondition("IP_REMOTE_ADDRESS EQUAL V6_ADDR_MASK ::1/0", "V6").test,
            InInterval(0, {0xFFFFFFFFFFFFFFFF, 0xFFFFFFFFFFFFFFFF}));
  EXPECT_EQ(DecodeCondition("IP_REMOTE_ADDRESS NOT_EQUAL V4_ADDR_MASK 10.0.0.0/255.0.0.0").test,
            NotIn(0x0A000000, 0x0AFFFFFF));
}

TEST_F(SnapshotTest, AddressesOfSixteenBytesAreNumbersInNetworkOrder) {
  EXPECT_EQ(DecodeCondition("IP_REMOTE_ADDRESS EQUAL BYTE_ARRAY16 fe80::2", "V6").test,
            InInterval({0xFE80000000000000, 2}, {0xFE80000000000000, 2}));
}

TEST_F(SnapshotTest, FlagsAreTestedBitByBit) {
  EXPECT_EQ(DecodeCondition("FLAGS FLAGS_ALL_SET UINT32 5").test,
            (Asked{Asked::Kind::AllSet, false, {5, 5}, {}}));
  EXPECT_EQ(DecodeCondition("FLAGS FLAGS_ANY_SET UINT32 5").test,
            (Asked{Asked::Kind::AnySet, false, {5, 5}, {}}));
  EXPECT_EQ(DecodeCondition("FLAGS FLAGS_NONE_SET UINT32 5").test,
            (Asked{Asked::Kind::NoneSet, false, {5, 5}, {}}));
}

TEST_F(SnapshotTest, ApplicationsAreBytesAndEndings) {
  const std::string bytes("a\0\0\0", 4);
  EXPECT_EQ(DecodeCondition("ALE_APP_ID EQUAL BYTE_BLOB a").test,
            (Asked{Asked::Kind::IsBytes, false, {}, bytes}));
  EXPECT_EQ(DecodeCondition("ALE_APP_ID NOT_EQUAL BYTE_BLOB a").test,
            (Asked{Asked::Kind::IsBytes, true, {}, bytes}));
  EXPECT_EQ(DecodeCondition("ALE_APP_ID PREFIX BYTE_BLOB a").test,
            (Asked{Asked::Kind::EndsWith, false, {}, bytes}));
  EXPECT_EQ(DecodeCondition("ALE_APP_ID NOT_PREFIX BYTE_BLOB a").test,
            (Asked{Asked::Kind::EndsWith, true, {}, bytes}));
}

TEST_F(SnapshotTest, EmptyMeansWithoutAValue) {
  EXPECT_EQ(DecodeCondition("IP_REMOTE_PORT EQUAL EMPTY").test, (Asked{Asked::Kind::Unset, false, {}, {}}));
}

TEST_F(SnapshotTest, WhatItCannotJudgeIsKeptAsUnreadable) {
  for (const char* condition :
       {"IP_REMOTE_PORT EQUAL UINT8 53", "IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 10.0.0.0/255.0.255.0",
        "IP_REMOTE_ADDRESS GREATER V4_ADDR_MASK 10.0.0.0/255.0.0.0", "IP_REMOTE_PORT NOT_EQUAL EMPTY",
        "IP_REMOTE_PORT RANGE RANGE UINT16 9 to UINT16 1",
        "IP_REMOTE_PORT NOT_EQUAL RANGE UINT16 1 to UINT16 9", "ALE_APP_ID GREATER BYTE_BLOB a",
        "IP_REMOTE_PORT RANGE UINT16 1", "IP_FORWARD_INTERFACE EQUAL UINT64 1"}) {
    const Condition decoded = DecodeCondition(condition);
    EXPECT_EQ(decoded.test.kind, Asked::Kind::Unreadable) << condition;
    EXPECT_EQ(decoded.text, condition);
  }
}

TEST_F(SnapshotTest, AnAccessCheckIsUnreadable) {
  EXPECT_EQ(DecodeCondition("ALE_USER_ID EQUAL SECURITY_DESCRIPTOR a").test.kind, Asked::Kind::Unreadable);
}

TEST_F(SnapshotTest, AFieldThatNobodyKnowsIsUnreadable) {
  FilterText text("ALE_AUTH_CONNECT_V4 | BLOCK | EMPTY | - | IP_REMOTE_PORT EQUAL UINT16 53");
  text.Record().filterCondition->fieldKey = "00000000-0000-0000-0000-000000000bad"_guid;
  const Condition decoded = Policy::Decode(text.Record()).conditions.at(0);
  EXPECT_EQ(decoded.field, nullptr);
  EXPECT_EQ(decoded.test.kind, Asked::Kind::Unreadable);
}

/// The text of the first condition of a record, which must be unreadable.
std::string Unreadable(FilterText& text) {
  const Condition condition = Policy::Decode(text.Record()).conditions.at(0);
  EXPECT_EQ(condition.test.kind, Asked::Kind::Unreadable);
  return condition.text;
}

TEST_F(SnapshotTest, NullPointersAndCountsBeyondReasonAreUnreadable) {
  FilterText noBlob("ALE_AUTH_CONNECT_V4 | BLOCK | EMPTY | - | ALE_APP_ID EQUAL BYTE_BLOB a");
  noBlob.Record().filterCondition->conditionValue.byteBlob = nullptr;
  EXPECT_EQ(Unreadable(noBlob), "ALE_APP_ID EQUAL BYTE_BLOB null");

  FilterText hugeBlob("ALE_AUTH_CONNECT_V4 | BLOCK | EMPTY | - | ALE_APP_ID EQUAL BYTE_BLOB a");
  hugeBlob.Record().filterCondition->conditionValue.byteBlob->size = 0xFFFFFFFF;
  EXPECT_EQ(Unreadable(hugeBlob), "ALE_APP_ID unreadable");

  FilterText noArray("ALE_AUTH_CONNECT_V4 | BLOCK | EMPTY | - | IP_REMOTE_PORT EQUAL UINT16 53");
  noArray.Record().filterCondition = nullptr;
  EXPECT_EQ(Unreadable(noArray), "unreadable conditions");

  FilterText hugeCount("ALE_AUTH_CONNECT_V4 | BLOCK | EMPTY | - | IP_REMOTE_PORT EQUAL UINT16 53");
  hugeCount.Record().numFilterConditions = 0xFFFFFFFF;
  EXPECT_EQ(Unreadable(hugeCount), "unreadable conditions");
}

TEST_F(SnapshotTest, BytesBeyondReasonAreNotShown) {
  UINT8 byte = 0;
  FWP_BYTE_BLOB blob{16 * 1024 * 1024 + 1, &byte};
  FilterText descriptor("ALE_AUTH_CONNECT_V4 | BLOCK | EMPTY | - | ALE_USER_ID EQUAL SECURITY_DESCRIPTOR a");
  descriptor.Record().filterCondition->conditionValue.sd = &blob;
  EXPECT_EQ(Unreadable(descriptor), "ALE_USER_ID unreadable");

  FilterText token("ALE_AUTH_CONNECT_V4 | BLOCK | EMPTY | - | ALE_USER_ID EQUAL SECURITY_DESCRIPTOR a");
  token.Record().filterCondition->conditionValue.type = FWP_TOKEN_ACCESS_INFORMATION_TYPE;
  token.Record().filterCondition->conditionValue.tokenAccessInformation = &blob;
  EXPECT_EQ(Unreadable(token), "ALE_USER_ID unreadable");

  FilterText range(
      "ALE_AUTH_CONNECT_V4 | BLOCK | EMPTY | - | IP_REMOTE_PORT RANGE RANGE UINT16 1 to UINT16 2");
  FWP_RANGE0& ends = *range.Record().filterCondition->conditionValue.rangeValue;
  ends.valueHigh.type = FWP_BYTE_BLOB_TYPE;
  ends.valueHigh.byteBlob = &blob;
  EXPECT_EQ(Unreadable(range), "IP_REMOTE_PORT unreadable");
}

TEST_F(SnapshotTest, AddressesAreReadAndWritten) {
  EXPECT_EQ(Policy::ParseAddress("10.0.0.1").value().number, Number(0x0A000001));
  EXPECT_EQ(Policy::ParseAddress("fe80::1").value().number, Number(0xFE80000000000000, 1));
  EXPECT_FALSE(Policy::ParseAddress("10.0.0").has_value());
  EXPECT_FALSE(Policy::ParseAddress("").has_value());
  EXPECT_EQ(Policy::FormatAddress(Policy::IpVersion::V4, 0x0A000001), "10.0.0.1");
  EXPECT_EQ(Policy::FormatAddress(Policy::IpVersion::V6, {0xFE80000000000000, 1}), "fe80::1");
}

TEST_F(SnapshotTest, AnApplicationIdIsTerminatedUtf16) {
  EXPECT_EQ(Policy::ApplicationBytes("a\xC3\xA9"), std::string("a\0\xE9\0\0\0", 6));
}

}  // namespace
