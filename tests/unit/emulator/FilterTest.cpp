#include "EngineClient.h"

#include <gmock/gmock.h>

#include <array>

namespace {

using testing::ElementsAre;
using FilterObject = EngineTest;

FWPM_FILTER_CONDITION0 Condition(const GUID& field, FWP_MATCH_TYPE match, FWP_DATA_TYPE type) {
  FWPM_FILTER_CONDITION0 condition{};
  condition.fieldKey = field;
  condition.matchType = match;
  condition.conditionValue.type = type;
  return condition;
}

/// Adds a filter with these conditions, then clears them and lets `spoil` change what they pointed at. Gives
/// the filter as it is in the engine.
template <std::size_t kCount, class Spoil>
FWPM_FILTER0* AddAndGet(HANDLE engine, const GUID& layer,
                        std::array<FWPM_FILTER_CONDITION0, kCount> conditions, Spoil spoil) {
  FWPM_FILTER0 record = FilterRecord();
  record.layerKey = layer;
  record.numFilterConditions = kCount;
  record.filterCondition = conditions.data();
  UINT64 id = 0;
  EXPECT_EQ(FwpmFilterAdd0(engine, &record, nullptr, &id), kSuccess);
  conditions.fill({});
  spoil();
  FWPM_FILTER0* found = nullptr;
  EXPECT_EQ(FwpmFilterGetById0(engine, id, &found), kSuccess);
  return found;
}

TEST_F(FilterObject, ComesBackAsItWasAdded) {
  const TestSession session;
  GUID providerKey = kProviderKey;
  UINT8 data[]{4, 5};
  FWPM_FILTER0 record = FilterRecord();
  record.flags = 8;
  record.providerKey = &providerKey;
  record.providerData = {2, data};
  record.subLayerKey = kSublayerKey;
  record.action.type = FWP_ACTION_PERMIT;
  record.rawContext = 77;
  ASSERT_EQ(Add(session, ProviderRecord()), kSuccess);
  ASSERT_EQ(Add(session, SublayerRecord()), kSuccess);
  ASSERT_EQ(Add(session, record), kSuccess);
  providerKey = GUID{};
  data[0] = 9;

  FWPM_FILTER0* found = nullptr;
  ASSERT_EQ(FwpmFilterGetByKey0(session, &kFilterKey, &found), kSuccess);
  EXPECT_TRUE(found->filterKey == kFilterKey);
  EXPECT_STREQ(found->displayData.name, L"Name");
  EXPECT_STREQ(found->displayData.description, L"Description");
  EXPECT_EQ(found->flags, 8U);
  EXPECT_TRUE(*found->providerKey == kProviderKey);
  EXPECT_EQ(found->providerData.data[0], 4);
  EXPECT_TRUE(found->layerKey == kConnectV4);
  EXPECT_TRUE(found->subLayerKey == kSublayerKey);
  EXPECT_EQ(found->weight.type, FWP_UINT8);
  EXPECT_EQ(found->weight.uint8, 14);
  EXPECT_EQ(found->numFilterConditions, 0U);
  EXPECT_EQ(found->action.type, 0x1002U);
  EXPECT_EQ(found->rawContext, 77U);
  Free(found);
}

TEST_F(FilterObject, IdsRiseAndAreNeverZero) {
  const TestSession session;
  const FWPM_FILTER0 record = FilterRecord(GUID{});
  UINT64 first = 0;
  UINT64 second = 0;
  UINT64 third = 0;
  ASSERT_EQ(FwpmFilterAdd0(session, &record, nullptr, &first), kSuccess);
  ASSERT_EQ(FwpmFilterAdd0(session, &record, nullptr, &second), kSuccess);
  ASSERT_EQ(FwpmFilterDeleteById0(session, second), kSuccess);
  ASSERT_EQ(FwpmFilterAdd0(session, &record, nullptr, &third), kSuccess);
  EXPECT_GT(first, 0U);
  EXPECT_GT(second, first);
  EXPECT_GT(third, second);
}

TEST_F(FilterObject, IdDoesNotFitIntoHalfItsWidth) {
  const TestSession session;
  const FWPM_FILTER0 record = FilterRecord();
  UINT64 id = 0;
  ASSERT_EQ(FwpmFilterAdd0(session, &record, nullptr, &id), kSuccess);
  EXPECT_EQ(FwpmFilterDeleteById0(session, static_cast<UINT32>(id)), kFilterNotFound);
}

TEST_F(FilterObject, IdAndEffectiveWeightOfTheRecordAreIgnored) {
  const TestSession session;
  FWPM_FILTER0 record = FilterRecord();
  record.filterId = 1;
  record.effectiveWeight.type = FWP_UINT64;
  ASSERT_EQ(Add(session, record), kSuccess);
  FWPM_FILTER0* found = nullptr;
  EXPECT_EQ(FwpmFilterGetById0(session, 1, &found), kFilterNotFound);
  ASSERT_EQ(FwpmFilterGetByKey0(session, &kFilterKey, &found), kSuccess);
  EXPECT_EQ(found->filterId, EngineEmulator::TakeSnapshot().filters.at(0).id);
  Free(found);
}

TEST_F(FilterObject, KeyIsGeneratedAndFoundThroughTheId) {
  const TestSession session;
  const FWPM_FILTER0 record = FilterRecord(GUID{});
  UINT64 id = 0;
  ASSERT_EQ(FwpmFilterAdd0(session, &record, nullptr, &id), kSuccess);
  FWPM_FILTER0* found = nullptr;
  ASSERT_EQ(FwpmFilterGetById0(session, id, &found), kSuccess);
  const GUID key = found->filterKey;
  Free(found);
  EXPECT_FALSE(key == GUID{});
  EXPECT_EQ(FwpmFilterDeleteByKey0(session, &key), kSuccess);
}

TEST_F(FilterObject, GeneratedKeyIsNotOneThatAnEarlierEngineGeneratedAndThisOneHolds) {
  const auto addWithoutKey = [](const TestSession& session) {
    const FWPM_FILTER0 record = FilterRecord(GUID{});
    return FwpmFilterAdd0(session, &record, nullptr, nullptr);
  };
  {
    const TestSession session;
    ASSERT_EQ(addWithoutKey(session), kSuccess);
  }
  const GUID earlier = EngineEmulator::TakeSnapshot().filters.at(0).key;
  EngineEmulator::Reset();
  const TestSession session;
  ASSERT_EQ(Add(session, FilterRecord(earlier)), kSuccess);
  EXPECT_EQ(addWithoutKey(session), kSuccess);
}

TEST_F(FilterObject, KeyIsUnique) {
  const TestSession session;
  ASSERT_EQ(Add(session, FilterRecord()), kSuccess);
  EXPECT_EQ(Add(session, FilterRecord()), kAlreadyExists);
}

TEST_F(FilterObject, IsGoneAfterDeletion) {
  const TestSession session;
  const FWPM_FILTER0 record = FilterRecord();
  UINT64 id = 0;
  ASSERT_EQ(FwpmFilterAdd0(session, &record, nullptr, &id), kSuccess);
  EXPECT_EQ(FwpmFilterDeleteById0(session, id), kSuccess);
  EXPECT_EQ(FwpmFilterDeleteById0(session, id), kFilterNotFound);
  EXPECT_EQ(FwpmFilterDeleteByKey0(session, &kFilterKey), kFilterNotFound);
  EXPECT_TRUE(EngineEmulator::TakeSnapshot().filters.empty());
}

TEST_F(FilterObject, WithoutASublayerGoesToThatOfTheLayer) {
  const TestSession session;
  ASSERT_EQ(Add(session, FilterRecord()), kSuccess);
  EXPECT_TRUE(EngineEmulator::TakeSnapshot().filters.at(0).subLayerKey == kUniversalSublayer);
}

TEST_F(FilterObject, EffectiveWeightStartsWithTheRange) {
  const TestSession session;
  ASSERT_EQ(Add(session, FilterRecord()), kSuccess);
  FWPM_FILTER0* found = nullptr;
  ASSERT_EQ(FwpmFilterGetByKey0(session, &kFilterKey, &found), kSuccess);
  EXPECT_EQ(found->effectiveWeight.type, FWP_UINT64);
  EXPECT_EQ(*found->effectiveWeight.uint64, 0xE000000000000000U);
  Free(found);
}

TEST_F(FilterObject, EffectiveWeightIsTheOneGivenInFull) {
  const TestSession session;
  UINT64 weight = 0x123456789ABCDEF0;
  FWPM_FILTER0 record = FilterRecord();
  record.weight.type = FWP_UINT64;
  record.weight.uint64 = &weight;
  ASSERT_EQ(Add(session, record), kSuccess);
  weight = 0;
  FWPM_FILTER0* found = nullptr;
  ASSERT_EQ(FwpmFilterGetByKey0(session, &kFilterKey, &found), kSuccess);
  EXPECT_EQ(*found->weight.uint64, 0x123456789ABCDEF0U);
  EXPECT_EQ(*found->effectiveWeight.uint64, 0x123456789ABCDEF0U);
  Free(found);
}

TEST_F(FilterObject, KeepsNumbersOfConditions) {
  const TestSession session;
  auto port = Condition(kRemotePort, FWP_MATCH_NOT_EQUAL, FWP_UINT16);
  port.conditionValue.uint16 = 53;
  UINT64 luid = 0x0006000000000000;
  auto interfaceLuid = Condition(kLocalInterface, FWP_MATCH_EQUAL, FWP_UINT64);
  interfaceLuid.conditionValue.uint64 = &luid;
  FWPM_FILTER0* found = AddAndGet(session, kConnectV4, std::array{port, interfaceLuid}, [&] { luid = 0; });
  ASSERT_EQ(found->numFilterConditions, 2U);
  EXPECT_TRUE(found->filterCondition[0].fieldKey == kRemotePort);
  EXPECT_EQ(found->filterCondition[0].matchType, FWP_MATCH_NOT_EQUAL);
  EXPECT_EQ(found->filterCondition[0].conditionValue.uint16, 53);
  EXPECT_EQ(*found->filterCondition[1].conditionValue.uint64, 0x0006000000000000U);
  Free(found);
}

TEST_F(FilterObject, KeepsIpV4NetworksOfConditions) {
  const TestSession session;
  FWP_V4_ADDR_AND_MASK network{0x0A000000, 0xFF000000};
  auto remote = Condition(kRemoteAddress, FWP_MATCH_EQUAL, FWP_V4_ADDR_MASK);
  remote.conditionValue.v4AddrMask = &network;
  FWPM_FILTER0* found = AddAndGet(session, kConnectV4, std::array{remote}, [&] { network = {}; });
  EXPECT_EQ(found->filterCondition[0].conditionValue.v4AddrMask->addr, 0x0A000000U);
  EXPECT_EQ(found->filterCondition[0].conditionValue.v4AddrMask->mask, 0xFF000000U);
  Free(found);
}

TEST_F(FilterObject, KeepsIpV6AddressesOfConditions) {
  const TestSession session;
  FWP_V6_ADDR_AND_MASK network{{0xFE, 0x80}, 10};
  auto remote = Condition(kRemoteAddress, FWP_MATCH_EQUAL, FWP_V6_ADDR_MASK);
  remote.conditionValue.v6AddrMask = &network;
  FWP_BYTE_ARRAY16 address{{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}};
  auto local = Condition(kLocalAddress, FWP_MATCH_EQUAL, FWP_BYTE_ARRAY16_TYPE);
  local.conditionValue.byteArray16 = &address;
  FWPM_FILTER0* found = AddAndGet(session, kConnectV6, std::array{remote, local}, [&] {
    network = {};
    address = {};
  });
  EXPECT_EQ(found->filterCondition[0].conditionValue.v6AddrMask->addr[0], 0xFE);
  EXPECT_EQ(found->filterCondition[0].conditionValue.v6AddrMask->addr[1], 0x80);
  EXPECT_EQ(found->filterCondition[0].conditionValue.v6AddrMask->prefixLength, 10);
  EXPECT_EQ(found->filterCondition[1].conditionValue.byteArray16->byteArray16[15], 1);
  Free(found);
}

TEST_F(FilterObject, KeepsBytesOfConditions) {
  const TestSession session;
  UINT8 name[]{'a', 0, 0, 0};
  FWP_BYTE_BLOB app{4, name};
  auto appId = Condition(kAppId, FWP_MATCH_EQUAL, FWP_BYTE_BLOB_TYPE);
  appId.conditionValue.byteBlob = &app;
  // An empty descriptor in its self-relative form.
  UINT8 bytes[20]{1, 0, 0, 0x80};
  FWP_BYTE_BLOB descriptor{20, bytes};
  auto user = Condition(kUserId, FWP_MATCH_EQUAL, FWP_SECURITY_DESCRIPTOR_TYPE);
  user.conditionValue.sd = &descriptor;
  FWPM_FILTER0* found = AddAndGet(session, kConnectV4, std::array{appId, user}, [&] {
    name[0] = bytes[3] = 0;
    app.size = descriptor.size = 0;
  });
  EXPECT_EQ(found->filterCondition[0].conditionValue.byteBlob->size, 4U);
  EXPECT_EQ(found->filterCondition[0].conditionValue.byteBlob->data[0], 'a');
  EXPECT_EQ(found->filterCondition[1].conditionValue.sd->size, 20U);
  EXPECT_EQ(found->filterCondition[1].conditionValue.sd->data[3], 0x80);
  Free(found);
}

TEST_F(FilterObject, KeepsWholeSidsOfConditions) {
  const TestSession session;
  struct {
    UINT8 head[8]{1, 3, 0, 0, 0, 0, 0, 15};
    DWORD subAuthorities[3]{2, 7, 0xFFFFFFFF};
  } sid;
  auto package = Condition(kPackageId, FWP_MATCH_EQUAL, FWP_SID);
  package.conditionValue.sid = reinterpret_cast<SID*>(&sid);
  FWPM_FILTER0* found =
      AddAndGet(session, kConnectV4, std::array{package}, [&] { sid.subAuthorities[2] = 0; });
  const SID& kept = *found->filterCondition[0].conditionValue.sid;
  EXPECT_EQ(kept.SubAuthorityCount, 3);
  EXPECT_EQ(kept.IdentifierAuthority.Value[5], 15);
  EXPECT_EQ((&kept.SubAuthority[0])[2], 0xFFFFFFFFU);
  Free(found);
}

TEST_F(FilterObject, KeepsRangesOfConditions) {
  const TestSession session;
  FWP_RANGE0 ports{};
  ports.valueLow.type = ports.valueHigh.type = FWP_UINT16;
  ports.valueLow.uint16 = 67;
  ports.valueHigh.uint16 = 68;
  auto port = Condition(kRemotePort, FWP_MATCH_RANGE, FWP_RANGE_TYPE);
  port.conditionValue.rangeValue = &ports;
  FWPM_FILTER0* found = AddAndGet(session, kConnectV4, std::array{port}, [&] { ports = {}; });
  EXPECT_EQ(found->filterCondition[0].conditionValue.rangeValue->valueLow.uint16, 67);
  EXPECT_EQ(found->filterCondition[0].conditionValue.rangeValue->valueHigh.uint16, 68);
  Free(found);
}

/// The flags that a filter with one condition reads back with.
UINT32 FlagsReadBack(const GUID& layer, const FWPM_FILTER_CONDITION0& condition, UINT32 flags = 0) {
  const TestSession session(kDynamic);
  FWPM_FILTER0 record = FilterRecord();
  record.flags = flags;
  record.layerKey = layer;
  record.numFilterConditions = 1;
  FWPM_FILTER_CONDITION0 copy = condition;
  record.filterCondition = &copy;
  EXPECT_EQ(Add(session, record), kSuccess) << EngineEmulator::LastRefusal();
  FWPM_FILTER0* found = nullptr;
  EXPECT_EQ(FwpmFilterGetByKey0(session, &kFilterKey, &found), kSuccess);
  const UINT32 readBack = found == nullptr ? 0 : found->flags;
  Free(found);
  return readBack;
}

TEST_F(FilterObject, IsIndexedByItsApplicationOrLocalPortWhereConnectionsAreAuthorised) {
  UINT8 bytes[]{1};
  FWP_BYTE_BLOB blob{1, bytes};
  auto application = Condition(kAppId, FWP_MATCH_EQUAL, FWP_BYTE_BLOB_TYPE);
  application.conditionValue.byteBlob = &blob;
  const auto port = Condition(kLocalPort, FWP_MATCH_EQUAL, FWP_UINT16);
  for (const GUID& layer : {kConnectV4, kConnectV6, kReceiveAcceptV4, kReceiveAcceptV6}) {
    EXPECT_EQ(FlagsReadBack(layer, application), 0x40U);
    EXPECT_EQ(FlagsReadBack(layer, port, 0x8), 0x48U);
  }
  EXPECT_EQ(FlagsReadBack(kFlowEstablishedV4, application), 0U);
  EXPECT_EQ(FlagsReadBack(kConnectV4Discard, application), 0U);
}

TEST_F(FilterObject, IsNotIndexedByAnythingElse) {
  FWP_RANGE0 ports{};
  ports.valueLow.type = ports.valueHigh.type = FWP_UINT16;
  auto range = Condition(kLocalPort, FWP_MATCH_EQUAL, FWP_RANGE_TYPE);
  range.conditionValue.rangeValue = &ports;
  EXPECT_EQ(FlagsReadBack(kConnectV4, range), 0U);
  EXPECT_EQ(FlagsReadBack(kConnectV4, Condition(kLocalPort, FWP_MATCH_NOT_EQUAL, FWP_UINT16)), 0U);
  EXPECT_EQ(FlagsReadBack(kConnectV4, Condition(kRemotePort, FWP_MATCH_EQUAL, FWP_UINT16), 0x40), 0U);
}

TEST_F(FilterObject, KeepsFlagsThatHaveANameAsTheyWereGiven) {
  const auto port = Condition(kRemotePort, FWP_MATCH_EQUAL, FWP_UINT16);
  EXPECT_EQ(FlagsReadBack(kConnectV4, port, 0x7F88), 0x7F88U);
}

TEST_F(FilterObject, WeighsARangeInEqualAsInRange) {
  const TestSession session;
  FWP_RANGE0 ports{};
  ports.valueLow.type = ports.valueHigh.type = FWP_UINT16;
  ports.valueHigh.uint16 = 0x7FFF;
  const auto weight = [&](FWP_MATCH_TYPE match) {
    auto port = Condition(kRemotePort, match, FWP_RANGE_TYPE);
    port.conditionValue.rangeValue = &ports;
    FWPM_FILTER0 record = FilterRecord(GUID{});
    record.weight.type = FWP_EMPTY;
    record.numFilterConditions = 1;
    record.filterCondition = &port;
    UINT64 id = 0;
    EXPECT_EQ(FwpmFilterAdd0(session, &record, nullptr, &id), kSuccess);
    FWPM_FILTER0* found = nullptr;
    EXPECT_EQ(FwpmFilterGetById0(session, id, &found), kSuccess);
    const UINT64 effective = *found->effectiveWeight.uint64;
    Free(found);
    return effective;
  };
  EXPECT_EQ(weight(FWP_MATCH_EQUAL), weight(FWP_MATCH_RANGE));
}

TEST_F(FilterObject, IsShownInWords) {
  const TestSession session;
  FWPM_FILTER_CONDITION0 port = Condition(kRemotePort, FWP_MATCH_NOT_EQUAL, FWP_UINT16);
  port.conditionValue.uint16 = 53;
  FWPM_FILTER0 record = FilterRecord();
  record.flags = 8;
  record.numFilterConditions = 1;
  record.filterCondition = &port;
  ASSERT_EQ(Add(session, record), kSuccess);
  ASSERT_EQ(Add(session, FilterRecord(kOtherFilterKey)), kSuccess);
  EXPECT_THAT(FilterTexts(), ElementsAre("ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 14 | CLEAR_ACTION_RIGHT | "
                                         "IP_REMOTE_PORT NOT_EQUAL UINT16 53",
                                         "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 14 | - | -"));
}

}  // namespace
