// What the conditions of an enumeration's template select.
#include <future>
#include <string>

#include "EngineClient.h"
#include "support/FilterText.h"

namespace {

constexpr auto kFullyContained = FWP_FILTER_ENUM_FULLY_CONTAINED;
constexpr auto kOverlapping = FWP_FILTER_ENUM_OVERLAPPING;

class EnumerationConditions : public EngineTest {
 protected:
  /// Conditions as Catalog::DescribeFilter shows them, "-" for none.
  static bool Selects(FWP_FILTER_ENUM_TYPE type, const std::string& wanted, const std::string& filter,
                      const std::string& layer = "ALE_AUTH_CONNECT_V4") {
    const TestSession session(kDynamic);
    wchar_t name[] = L"Filter";
    FilterText own(layer + " | BLOCK | EMPTY | - | " + filter);
    own.Record().displayData.name = name;
    EXPECT_EQ(Add(session, own.Record()), kSuccess) << EngineEmulator::LastRefusal();
    FilterText text(layer + " | BLOCK | EMPTY | - | " + wanted);
    FWPM_FILTER_ENUM_TEMPLATE0 criteria{};
    criteria.layerKey = text.Record().layerKey;
    criteria.enumType = type;
    criteria.numFilterConditions = text.Record().numFilterConditions;
    criteria.filterCondition = text.Record().filterCondition;
    criteria.actionMask = 0xFFFFFFFF;
    HANDLE enumHandle = nullptr;
    EXPECT_EQ(FwpmFilterCreateEnumHandle0(session, &criteria, &enumHandle), kSuccess)
        << EngineEmulator::LastRefusal();
    FWPM_FILTER0** entries = nullptr;
    UINT32 returned = 0;
    EXPECT_EQ(FwpmFilterEnum0(session, enumHandle, INFINITE, &entries, &returned), kSuccess);
    Free(entries);
    return returned == 1;
  }
};

TEST_F(EnumerationConditions, NoneSelectAll) {
  EXPECT_TRUE(Selects(kFullyContained, "-", "IP_REMOTE_PORT EQUAL UINT16 53"));
  EXPECT_TRUE(Selects(kOverlapping, "-", "IP_REMOTE_PORT EQUAL UINT16 53"));
}

TEST_F(EnumerationConditions, SelectFiltersWithoutAny) {
  EXPECT_TRUE(Selects(kFullyContained, "IP_REMOTE_PORT EQUAL UINT16 53", "-"));
  EXPECT_TRUE(Selects(kOverlapping, "IP_REMOTE_PORT EQUAL UINT16 53", "-"));
}

TEST_F(EnumerationConditions, OnAFieldThatTheFilterDoesNotTestNarrowNothing) {
  const std::string wanted = "IP_REMOTE_PORT EQUAL UINT16 53 & IP_PROTOCOL EQUAL UINT8 17";
  EXPECT_TRUE(Selects(kFullyContained, wanted, "IP_PROTOCOL EQUAL UINT8 17"));
  EXPECT_TRUE(Selects(kOverlapping, wanted, "IP_PROTOCOL EQUAL UINT8 17"));
}

TEST_F(EnumerationConditions, AreNotContainedInAFilterThatTestsAnotherField) {
  const std::string filter = "IP_REMOTE_PORT EQUAL UINT16 53 & IP_PROTOCOL EQUAL UINT8 17";
  EXPECT_FALSE(Selects(kFullyContained, "IP_REMOTE_PORT EQUAL UINT16 53", filter));
  EXPECT_TRUE(Selects(kOverlapping, "IP_REMOTE_PORT EQUAL UINT16 53", filter));
}

/// A template's condition, a filter's conditions, and what of the two is selected.
struct Pair {
  const char* wanted;
  const char* filter;
  bool contained;
  bool overlapping;
  const char* layer = "ALE_AUTH_CONNECT_V4";
};

constexpr Pair kPairs[]{
    {"IP_REMOTE_PORT EQUAL UINT16 53", "IP_REMOTE_PORT EQUAL UINT16 53", true, true},
    {"IP_REMOTE_PORT EQUAL UINT16 53", "IP_REMOTE_PORT EQUAL UINT16 54", false, false},
    {"IP_REMOTE_PORT EQUAL UINT16 53", "IP_REMOTE_PORT EQUAL UINT16 54 & IP_REMOTE_PORT EQUAL UINT16 53",
     true, true},
    {"IP_REMOTE_PORT EQUAL UINT16 53", "IP_REMOTE_PORT NOT_EQUAL UINT16 53", false, false},
    {"IP_REMOTE_PORT EQUAL UINT16 53", "IP_REMOTE_PORT NOT_EQUAL UINT16 54", true, true},
    {"IP_REMOTE_PORT NOT_EQUAL UINT16 53", "IP_REMOTE_PORT EQUAL UINT16 54", false, true},
    {"IP_REMOTE_PORT NOT_EQUAL UINT16 53", "IP_REMOTE_PORT NOT_EQUAL UINT16 54", false, true},
    {"IP_REMOTE_PORT EQUAL UINT16 0", "IP_REMOTE_PORT GREATER UINT16 0", false, false},
    {"IP_REMOTE_PORT EQUAL UINT16 0", "IP_REMOTE_PORT LESS UINT16 1", true, true},
    {"IP_REMOTE_PORT EQUAL UINT16 0", "IP_REMOTE_PORT LESS UINT16 0", false, false},
    {"IP_REMOTE_PORT EQUAL UINT16 65535", "IP_REMOTE_PORT GREATER UINT16 65535", false, false},
    {"IP_REMOTE_PORT EQUAL UINT16 65535", "IP_REMOTE_PORT GREATER_OR_EQUAL UINT16 65535", true, true},
    {"IP_REMOTE_PORT EQUAL UINT16 7", "IP_REMOTE_PORT LESS_OR_EQUAL UINT16 6", false, false},
    {"IP_REMOTE_PORT RANGE RANGE UINT16 5 to UINT16 9", "IP_REMOTE_PORT RANGE RANGE UINT16 1 to UINT16 9",
     true, true},
    {"IP_REMOTE_PORT RANGE RANGE UINT16 5 to UINT16 9", "IP_REMOTE_PORT RANGE RANGE UINT16 6 to UINT16 99",
     false, true},
    {"IP_REMOTE_PORT RANGE RANGE UINT16 5 to UINT16 9", "IP_REMOTE_PORT RANGE RANGE UINT16 10 to UINT16 99",
     false, false},
    {"IP_REMOTE_PORT RANGE RANGE UINT16 5 to UINT16 9",
     "IP_REMOTE_PORT RANGE RANGE UINT16 8 to UINT16 9 & IP_REMOTE_PORT RANGE RANGE UINT16 2 to UINT16 7",
     true, true},
    {"IP_REMOTE_PORT RANGE RANGE UINT16 5 to UINT16 9",
     "IP_REMOTE_PORT RANGE RANGE UINT16 8 to UINT16 9 & IP_REMOTE_PORT RANGE RANGE UINT16 2 to UINT16 6",
     false, true},
    {"IP_REMOTE_ADDRESS EQUAL UINT32 10.0.0.7", "IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 10.9.9.9/255.0.0.0",
     true, true},
    {"IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 10.0.0.0/255.0.0.0", "IP_REMOTE_ADDRESS EQUAL UINT32 10.0.0.7",
     false, true},
    {"IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 10.0.0.0/255.0.0.0",
     "IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 11.0.0.0/255.0.0.0", false, false},
    {"IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 10.0.0.0/255.0.0.0",
     "IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 0.0.0.0/0.0.0.0", true, true},
    {"IP_REMOTE_ADDRESS EQUAL BYTE_ARRAY16 fe80::7", "IP_REMOTE_ADDRESS EQUAL V6_ADDR_MASK fe80::/10", true,
     true, "ALE_AUTH_CONNECT_V6"},
    {"IP_REMOTE_ADDRESS EQUAL V6_ADDR_MASK fe80::/63", "IP_REMOTE_ADDRESS EQUAL V6_ADDR_MASK fe80:0:0:1::/64",
     false, true, "ALE_AUTH_CONNECT_V6"},
    {"IP_REMOTE_ADDRESS EQUAL V6_ADDR_MASK fe80::/64", "IP_REMOTE_ADDRESS EQUAL V6_ADDR_MASK fe80:0:0:1::/64",
     false, false, "ALE_AUTH_CONNECT_V6"},
    {"IP_REMOTE_ADDRESS EQUAL V6_ADDR_MASK ::/0", "IP_REMOTE_ADDRESS EQUAL BYTE_ARRAY16 ::1", false, true,
     "ALE_AUTH_CONNECT_V6"},
    {"IP_LOCAL_INTERFACE EQUAL UINT64 7", "IP_LOCAL_INTERFACE NOT_EQUAL UINT64 8", true, true},
    {"ALE_APP_ID EQUAL BYTE_BLOB a", "ALE_APP_ID EQUAL BYTE_BLOB a", true, true},
    {"ALE_APP_ID EQUAL BYTE_BLOB a", "ALE_APP_ID EQUAL BYTE_BLOB b", false, false},
    {"ALE_APP_ID EQUAL BYTE_BLOB a", "ALE_APP_ID NOT_EQUAL BYTE_BLOB b", false, true},
    {"FLAGS FLAGS_ALL_SET UINT32 1", "FLAGS FLAGS_ALL_SET UINT32 1", true, true},
    {"FLAGS FLAGS_ALL_SET UINT32 1", "FLAGS FLAGS_NONE_SET UINT32 1", false, true},
};

TEST_F(EnumerationConditions, ContainOrOverlapAsSetsOfWhatTheyMatch) {
  for (const auto& [wanted, filter, contained, overlapping, layer] : kPairs) {
    EXPECT_EQ(Selects(kFullyContained, wanted, filter, layer), contained) << wanted << " of " << filter;
    EXPECT_EQ(Selects(kOverlapping, wanted, filter, layer), overlapping) << wanted << " of " << filter;
  }
}

TEST_F(EnumerationConditions, NarrowWhatASubscriptionHears) {
  const TestSession session;
  FilterText text("ALE_AUTH_CONNECT_V4 | BLOCK | EMPTY | - | IP_REMOTE_PORT EQUAL UINT16 53");
  FWPM_FILTER_ENUM_TEMPLATE0 criteria{};
  criteria.layerKey = kConnectV4;
  criteria.numFilterConditions = 1;
  criteria.filterCondition = text.Record().filterCondition;
  criteria.actionMask = 0xFFFFFFFF;
  FWPM_FILTER_SUBSCRIPTION0 wanted{&criteria, 1, {}};
  std::promise<GUID> told;
  const auto hear = [](void* context, const FWPM_FILTER_CHANGE0* change) {
    static_cast<std::promise<GUID>*>(context)->set_value(change->filterKey);
  };
  HANDLE handle = nullptr;
  ASSERT_EQ(FwpmFilterSubscribeChanges0(session, &wanted, hear, &told, &handle), kSuccess);
  FWPM_FILTER_CONDITION0 other = *text.Record().filterCondition;
  other.conditionValue.uint16 = 54;
  FWPM_FILTER0 filter = FilterRecord(kFilterKey);
  filter.numFilterConditions = 1;
  filter.filterCondition = &other;
  ASSERT_EQ(Add(session, filter), kSuccess);
  ASSERT_EQ(Add(session, FilterRecord(kOtherFilterKey)), kSuccess);
  EXPECT_TRUE(told.get_future().get() == kOtherFilterKey);
  EXPECT_EQ(FwpmFilterUnsubscribeChanges0(session, handle), kSuccess);
}

TEST_F(EnumerationConditions, NeedALayerEvenIfTemplatesDoNot) {
  const TestSession session;
  EngineEmulator::SetSwitches(EngineEmulator::LenientSwitches());
  FWPM_FILTER_CONDITION0 condition{};
  condition.conditionValue.type = FWP_SID;
  FWPM_FILTER_ENUM_TEMPLATE0 criteria{};
  criteria.numFilterConditions = 1;
  criteria.filterCondition = &condition;
  HANDLE enumHandle = nullptr;
  EXPECT_EQ(FwpmFilterCreateEnumHandle0(session, &criteria, &enumHandle), kLayerNotFound);
}

TEST_F(EnumerationConditions, AreComparedInOneOfTwoWays) {
  const TestSession session;
  int unknown = 2;
  FWPM_FILTER_ENUM_TEMPLATE0 criteria{};
  criteria.layerKey = kConnectV4;
  criteria.enumType = static_cast<FWP_FILTER_ENUM_TYPE>(unknown);
  HANDLE enumHandle = nullptr;
  EXPECT_EQ(FwpmFilterCreateEnumHandle0(session, &criteria, &enumHandle), kInvalidEnumerator);
}

}  // namespace
