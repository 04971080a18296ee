// The full text of the reason for each record that the emulator refuses.
#include <string>
#include <vector>

#include "EngineClient.h"

namespace {

DWORD Add(HANDLE engine, const FWPM_CALLOUT0& callout) {
  return FwpmCalloutAdd0(engine, &callout, nullptr, nullptr);
}

class Refusal : public EngineTest {
 protected:
  /// The reason why a record is refused.
  template <class Record>
  static std::string Of(const Record& record) {
    const TestSession session;
    EXPECT_NE(Add(session, record), kSuccess);
    return EngineEmulator::LastRefusal();
  }

  /// The reason why a filter is refused of which only the conditions are wrong.
  static std::string OfFilterWith(std::vector<FWPM_FILTER_CONDITION0> conditions) {
    FWPM_FILTER0 filter = FilterRecord();
    filter.numFilterConditions = static_cast<UINT32>(conditions.size());
    filter.filterCondition = conditions.data();
    return Of(filter);
  }

  static void SetSwitch(UINT32 EngineEmulator::Switches::*member, UINT32 value) {
    EngineEmulator::Switches switches = EngineEmulator::GetSwitches();
    switches.*member = value;
    EngineEmulator::SetSwitches(switches);
  }
};

/// One fault in a record that the engine would otherwise accept.
template <class Record>
struct Fault {
  const char* reason;
  void (*spoil)(Record&);
};

wchar_t* HalfAPair() {
  static wchar_t text[]{L'a', static_cast<wchar_t>(0xDBFF), L'\0'};
  return text;
}

wchar_t* OtherHalfOfAPair() {
  static wchar_t text[]{static_cast<wchar_t>(0xDC00), L'\0'};
  return text;
}

UINT8 byte = 0;
GUID missingKey{0x0e000001, 0, 0, {}};

constexpr Fault<FWPM_PROVIDER0> kFaultsOfProviders[]{
    {"the display name is null", [](auto& record) { record.displayData.name = nullptr; }},
    {"a text holds half a surrogate pair", [](auto& record) { record.displayData.name = HalfAPair(); }},
    {"a text holds half a surrogate pair",
     [](auto& record) { record.displayData.description = OtherHalfOfAPair(); }},
    {"a text holds half a surrogate pair", [](auto& record) { record.serviceName = HalfAPair(); }},
    {"DISABLED is a flag that only the engine sets", [](auto& record) { record.flags = 0x10; }},
    {"there is a flag other than PERSISTENT", [](auto& record) { record.flags = 2; }},
    {"a blob has a size but no data",
     [](auto& record) {
       record.providerData = {1, nullptr};
     }},
    {"a blob has 16777217 bytes",
     [](auto& record) {
       record.providerData = {16'777'217, &byte};
     }},
};

TEST_F(Refusal, OfAProvider) {
  for (const auto& [reason, spoil] : kFaultsOfProviders) {
    FWPM_PROVIDER0 provider = ProviderRecord();
    spoil(provider);
    EXPECT_EQ(Of(provider), reason);
  }
  SetSwitch(&EngineEmulator::Switches::refuseEmptyNames, 1);
  wchar_t empty[] = L"";
  FWPM_PROVIDER0 provider = ProviderRecord();
  provider.displayData.name = empty;
  EXPECT_EQ(Of(provider), "the display name is empty");
}

constexpr Fault<FWPM_SUBLAYER0> kFaultsOfSublayers[]{
    {"the display name is null", [](auto& record) { record.displayData.name = nullptr; }},
    {"DISABLED is a flag that only the engine sets", [](auto& record) { record.flags = 0x10; }},
    {"there is a flag other than PERSISTENT", [](auto& record) { record.flags = 2; }},
    {"a blob has a size but no data",
     [](auto& record) {
       record.providerData = {1, nullptr};
     }},
    {"the provider 0e000001-0000-0000-0000-000000000000 does not exist",
     [](auto& record) { record.providerKey = &missingKey; }},
};

TEST_F(Refusal, OfASublayer) {
  for (const auto& [reason, spoil] : kFaultsOfSublayers) {
    FWPM_SUBLAYER0 sublayer = SublayerRecord();
    spoil(sublayer);
    EXPECT_EQ(Of(sublayer), reason);
  }
}

constexpr Fault<FWPM_CALLOUT0> kFaultsOfCallouts[]{
    {"the display name is null", [](auto& record) { record.displayData.name = nullptr; }},
    {"there is a flag that clients cannot set", [](auto& record) { record.flags = 0x40000; }},
    {"a blob has a size but no data",
     [](auto& record) {
       record.providerData = {1, nullptr};
     }},
    {"the layer 0e000001-0000-0000-0000-000000000000 does not exist",
     [](auto& record) { record.applicableLayer = missingKey; }},
    {"the provider 0e000001-0000-0000-0000-000000000000 does not exist",
     [](auto& record) { record.providerKey = &missingKey; }},
};

TEST_F(Refusal, OfACallout) {
  for (const auto& [reason, spoil] : kFaultsOfCallouts) {
    FWPM_CALLOUT0 callout = CalloutRecord(kConnectV6);
    spoil(callout);
    EXPECT_EQ(Of(callout), reason);
  }
}

constexpr Fault<FWPM_FILTER0> kFaultsOfFilters[]{
    {"there is a number of conditions but no array of them",
     [](auto& record) { record.numFilterConditions = 1; }},
    {"100001 conditions are too many to be meant",
     [](auto& record) {
       static FWPM_FILTER_CONDITION0 condition{};
       record.numFilterConditions = 100'001;
       record.filterCondition = &condition;
     }},
    {"the reserved pointer is not null", [](auto& record) { record.reserved = &missingKey; }},
    {"a blob has a size but no data",
     [](auto& record) {
       record.providerData = {1, nullptr};
     }},
    {"DISABLED is for the engine to set", [](auto& record) { record.flags = 0x28; }},
    {"there are flags without a meaning: 0x00018000", [](auto& record) { record.flags = 0x18188; }},
    {"PERSISTENT and BOOTTIME exclude each other", [](auto& record) { record.flags = 3; }},
    {"PERMIT_IF_CALLOUT_UNREGISTERED does not go with BLOCK", [](auto& record) { record.flags = 0x10; }},
    {"PERMIT_IF_CALLOUT_UNREGISTERED does not go with CALLOUT_INSPECTION",
     [](auto& record) {
       record.flags = 0x10;
       record.action.type = FWP_ACTION_CALLOUT_INSPECTION;
     }},
    {"CONTINUE is not an action of filters", [](auto& record) { record.action.type = 0x2006; }},
    {"4099 is not an action of filters", [](auto& record) { record.action.type = 0x1003; }},
    {"the display name is null", [](auto& record) { record.displayData.name = nullptr; }},
    {"the layer 0e000001-0000-0000-0000-000000000000 does not exist",
     [](auto& record) { record.layerKey = missingKey; }},
    {"the sublayer 0e000001-0000-0000-0000-000000000000 does not exist",
     [](auto& record) { record.subLayerKey = missingKey; }},
    {"BLOCK is no action for the sublayer INSPECTION",
     [](auto& record) { record.subLayerKey = kInspectionSublayer; }},
    {"the provider 0e000001-0000-0000-0000-000000000000 does not exist",
     [](auto& record) { record.providerKey = &missingKey; }},
    {"the callout 0e000001-0000-0000-0000-000000000000 does not exist",
     [](auto& record) {
       record.action.type = FWP_ACTION_CALLOUT_UNKNOWN;
       record.action.calloutKey = missingKey;
     }},
    {"the provider context 0e000001-0000-0000-0000-000000000000 does not exist",
     [](auto& record) {
       record.flags = 4;
       record.providerContextKey = missingKey;
     }},
    {"the weight range 16 is above 15", [](auto& record) { record.weight.uint8 = 16; }},
    {"the weight is null",
     [](auto& record) {
       record.weight.type = FWP_UINT64;
       record.weight.uint64 = nullptr;
     }},
    {"a weight cannot be of type UINT32", [](auto& record) { record.weight.type = FWP_UINT32; }},
};

TEST_F(Refusal, OfAFilter) {
  for (const auto& [reason, spoil] : kFaultsOfFilters) {
    FWPM_FILTER0 filter = FilterRecord();
    spoil(filter);
    EXPECT_EQ(Of(filter), reason);
  }
}

TEST_F(Refusal, OfAFilterForItsCallout) {
  const TestSession session;
  const TestSession dynamic(kDynamic);
  FWPM_FILTER0 filter = FilterRecord();
  filter.action.type = FWP_ACTION_CALLOUT_TERMINATING;
  filter.action.calloutKey = kCalloutKey;
  ASSERT_EQ(Add(dynamic, CalloutRecord(kConnectV6)), kSuccess);
  EXPECT_EQ(Of(filter), "the callout 0d000001-0000-0000-0000-000000000000 may end before the filter");
  ASSERT_EQ(FwpmCalloutDeleteByKey0(dynamic, &kCalloutKey), kSuccess);
  ASSERT_EQ(Add(session, CalloutRecord(kConnectV6)), kSuccess);
  EXPECT_EQ(Of(filter), "the callout 0d000001-0000-0000-0000-000000000000 is not for ALE_AUTH_CONNECT_V4");
}

TEST_F(Refusal, OfAFilterForItsSublayer) {
  const TestSession session;
  const TestSession dynamic(kDynamic);
  FWPM_FILTER0 filter = FilterRecord();
  filter.subLayerKey = kSublayerKey;
  ASSERT_EQ(Add(dynamic, SublayerRecord()), kSuccess);
  EXPECT_EQ(Of(filter), "the sublayer 0b000001-0000-0000-0000-000000000000 may end before the filter");
  ASSERT_EQ(FwpmSubLayerDeleteByKey0(dynamic, &kSublayerKey), kSuccess);
  GUID providerKey = kProviderKey;
  FWPM_PROVIDER0 provider = ProviderRecord();
  provider.flags = kPersistent;
  FWPM_SUBLAYER0 sublayer = SublayerRecord();
  sublayer.providerKey = &providerKey;
  sublayer.flags = kPersistent;
  filter.flags = kPersistent;
  ASSERT_EQ(Add(session, provider), kSuccess);
  ASSERT_EQ(Add(session, sublayer), kSuccess);
  EXPECT_EQ(Of(filter),
            "the sublayer 0b000001-0000-0000-0000-000000000000 is persistent like the filter, but of another "
            "provider");
}

TEST_F(Refusal, OfAVerdictWhereFlowsAreEstablished) {
  SetSwitch(&EngineEmulator::Switches::refuseVerdictsAtFlowEstablished, 1);
  FWPM_FILTER0 filter = FilterRecord();
  filter.layerKey = kFlowEstablishedV4;
  EXPECT_EQ(Of(filter), "BLOCK is no action for ALE_FLOW_ESTABLISHED_V4");
}

TEST_F(Refusal, OfWhatMayOutlastItsProvider) {
  const TestSession dynamic(kDynamic);
  ASSERT_EQ(Add(dynamic, ProviderRecord()), kSuccess);
  GUID providerKey = kProviderKey;
  FWPM_SUBLAYER0 sublayer = SublayerRecord();
  sublayer.providerKey = &providerKey;
  EXPECT_EQ(Of(sublayer), "the provider 0a000001-0000-0000-0000-000000000000 may end before the object");
}

/// A range with these types and ends.
FWP_RANGE0 RangeOf(FWP_DATA_TYPE lowType, UINT16 low, FWP_DATA_TYPE highType, UINT16 high) {
  FWP_RANGE0 range{};
  range.valueLow.type = lowType;
  range.valueLow.uint16 = low;
  range.valueHigh.type = highType;
  range.valueHigh.uint16 = high;
  return range;
}

template <class Value, class Pointer>
void Set(FWPM_FILTER_CONDITION0& condition, FWP_DATA_TYPE type, Pointer FWP_CONDITION_VALUE0::*member,
         Value& value) {
  condition.conditionValue.type = type;
  condition.conditionValue.*member = &value;
}

constexpr Fault<FWPM_FILTER_CONDITION0> kFaultsOfConditions[]{
    {"there is no match type 13",
     [](auto& condition) { condition.matchType = static_cast<FWP_MATCH_TYPE>(13); }},
    {"there is no data type 19",
     [](auto& condition) { condition.conditionValue.type = static_cast<FWP_DATA_TYPE>(19); }},
    {"a value of type UNICODE_STRING is null",
     [](auto& condition) {
       condition.conditionValue.type = FWP_UNICODE_STRING_TYPE;
       condition.conditionValue.unicodeString = nullptr;
     }},
    {"a SID is none",
     [](auto& condition) {
       static SID sid{1, 16, {}, {}};
       Set(condition, FWP_SID, &FWP_CONDITION_VALUE0::sid, sid);
     }},
    {"a token has a number of SIDs but no array of them",
     [](auto& condition) {
       static FWP_TOKEN_INFORMATION token{1, nullptr, 0, nullptr};
       Set(condition, FWP_TOKEN_INFORMATION_TYPE, &FWP_CONDITION_VALUE0::tokenInformation, token);
     }},
    {"10001 SIDs are too many to be meant",
     [](auto& condition) {
       static SID_AND_ATTRIBUTES sid{};
       static FWP_TOKEN_INFORMATION token{0, nullptr, 10'001, &sid};
       Set(condition, FWP_TOKEN_INFORMATION_TYPE, &FWP_CONDITION_VALUE0::tokenInformation, token);
     }},
    {"a SID is none",
     [](auto& condition) {
       static SID_AND_ATTRIBUTES sid{};
       static FWP_TOKEN_INFORMATION token{1, &sid, 0, nullptr};
       Set(condition, FWP_TOKEN_INFORMATION_TYPE, &FWP_CONDITION_VALUE0::tokenInformation, token);
     }},
    {"a range goes from UINT16 to UINT32",
     [](auto& condition) {
       static FWP_RANGE0 range = RangeOf(FWP_UINT16, 1, FWP_UINT32, 2);
       Set(condition, FWP_RANGE_TYPE, &FWP_CONDITION_VALUE0::rangeValue, range);
     }},
    {"a range goes from V4_ADDR_MASK to V4_ADDR_MASK",
     [](auto& condition) {
       static FWP_RANGE0 range = RangeOf(static_cast<FWP_DATA_TYPE>(FWP_V4_ADDR_MASK), 1,
                                         static_cast<FWP_DATA_TYPE>(FWP_V4_ADDR_MASK), 2);
       Set(condition, FWP_RANGE_TYPE, &FWP_CONDITION_VALUE0::rangeValue, range);
     }},
    {"a range ends below its beginning",
     [](auto& condition) {
       static FWP_RANGE0 range = RangeOf(FWP_UINT16, 2, FWP_UINT16, 1);
       Set(condition, FWP_RANGE_TYPE, &FWP_CONDITION_VALUE0::rangeValue, range);
     }},
    {"the network mask has holes",
     [](auto& condition) {
       static FWP_V4_ADDR_AND_MASK network{0, 0xFF00FF00};
       Set(condition, FWP_V4_ADDR_MASK, &FWP_CONDITION_VALUE0::v4AddrMask, network);
     }},
    {"the prefix length 129 is above 128",
     [](auto& condition) {
       static FWP_V6_ADDR_AND_MASK network{{}, 129};
       Set(condition, FWP_V6_ADDR_MASK, &FWP_CONDITION_VALUE0::v6AddrMask, network);
     }},
    {"a blob has a size but no data",
     [](auto& condition) {
       static FWP_BYTE_BLOB blob{1, nullptr};
       Set(condition, FWP_BYTE_BLOB_TYPE, &FWP_CONDITION_VALUE0::byteBlob, blob);
     }},
    {"the security descriptor is not a self-relative one",
     [](auto& condition) {
       static FWP_BYTE_BLOB blob{1, &byte};
       Set(condition, FWP_SECURITY_DESCRIPTOR_TYPE, &FWP_CONDITION_VALUE0::sd, blob);
     }},
    {"0e000001-0000-0000-0000-000000000000 is not a field of ALE_AUTH_CONNECT_V4",
     [](auto& condition) { condition.fieldKey = missingKey; }},
    {"IP_REMOTE_PORT at ALE_AUTH_CONNECT_V4 is of type UINT16, not UINT8",
     [](auto& condition) { condition.conditionValue.type = FWP_UINT8; }},
    {"PREFIX does not go with the type UINT16 of IP_REMOTE_PORT",
     [](auto& condition) { condition.matchType = static_cast<FWP_MATCH_TYPE>(11); }},
};

TEST_F(Refusal, OfACondition) {
  FWPM_FILTER_CONDITION0 sound{};
  sound.fieldKey = kRemotePort;
  sound.matchType = FWP_MATCH_EQUAL;
  sound.conditionValue.type = FWP_UINT16;
  for (const auto& [reason, spoil] : kFaultsOfConditions) {
    FWPM_FILTER_CONDITION0 condition = sound;
    spoil(condition);
    EXPECT_EQ(OfFilterWith({condition}), reason);
  }
  SetSwitch(&EngineEmulator::Switches::refuseExactDuplicates, 1);
  EXPECT_EQ(OfFilterWith({sound, sound}), "IP_REMOTE_PORT EQUAL UINT16 0 is there twice");
  SetSwitch(&EngineEmulator::Switches::refuseEmptyBlobs, 1);
  FWP_BYTE_BLOB empty{0, &byte};
  Set(sound, FWP_BYTE_BLOB_TYPE, &FWP_CONDITION_VALUE0::byteBlob, empty);
  EXPECT_EQ(OfFilterWith({sound}), "a blob has no bytes");
}

}  // namespace
