// Results of an enumeration that the emulated engine never gives. This program has its own engine functions.
#include <gmock/gmock.h>

#include <array>

#include "engine/Engine.h"
#include "filtering/EngineKeys.h"
#include "unit/engine/FailsWith.h"

namespace {

/// The answer of FwpmFilterEnum0, and the arguments that it got.
struct Enumeration {
  DWORD result = ERROR_SUCCESS;
  FWPM_FILTER0** records = nullptr;
  UINT32 count = 0;
  UINT32 requested = 0;
  const FWPM_FILTER_ENUM_TEMPLATE0* enumTemplate = nullptr;
  UINT32 sessionFlags = 0;
  int calls = 0;
  int freed = 0;
};
Enumeration enumeration;

int engineHandle = 0;
int enumerationHandle = 0;

}  // namespace

extern "C" {

DWORD WINAPI FwpmEngineOpen0(const wchar_t*, UINT32, SEC_WINNT_AUTH_IDENTITY_W*, const FWPM_SESSION0* session,
                             HANDLE* handle) {
  enumeration.sessionFlags = session->flags;
  *handle = &engineHandle;
  return ERROR_SUCCESS;
}

DWORD WINAPI FwpmEngineClose0(HANDLE) { return ERROR_SUCCESS; }

DWORD WINAPI FwpmFilterCreateEnumHandle0(HANDLE, const FWPM_FILTER_ENUM_TEMPLATE0* enumTemplate,
                                         HANDLE* handle) {
  enumeration.enumTemplate = enumTemplate;
  *handle = &enumerationHandle;
  return ERROR_SUCCESS;
}

DWORD WINAPI FwpmFilterEnum0(HANDLE, HANDLE, UINT32 requested, FWPM_FILTER0*** records, UINT32* count) {
  ++enumeration.calls;
  enumeration.requested = requested;
  *records = enumeration.records;
  *count = enumeration.count;
  return enumeration.result;
}

DWORD WINAPI FwpmFilterDestroyEnumHandle0(HANDLE, HANDLE) { return ERROR_SUCCESS; }

DWORD WINAPI FwpmGetAppIdFromFileName0(const wchar_t*, FWP_BYTE_BLOB**) { return ERROR_NOT_SUPPORTED; }

void WINAPI FwpmFreeMemory0(void**) { ++enumeration.freed; }

}  // extern "C"

namespace WfpFirewall {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

/// An engine with one application block.
class EnumerationResult : public testing::Test {
 protected:
  EnumerationResult() {
    condition_.fieldKey = Filtering::kConditionAleAppId;
    condition_.conditionValue.type = FWP_BYTE_BLOB_TYPE;
    condition_.conditionValue.byteBlob = &blob_;
    record_.layerKey = Filtering::kLayerAleAuthConnectV4;
    record_.action.type = FWP_ACTION_BLOCK;
    record_.numFilterConditions = 1;
    record_.filterCondition = &condition_;
    enumeration = {.records = records_.data(), .count = 1};
  }

  std::array<UINT8, 2> bytes_{'a', 0};
  FWP_BYTE_BLOB blob_{2, bytes_.data()};
  FWPM_FILTER_CONDITION0 condition_{};
  FWPM_FILTER0 record_{};
  std::array<FWPM_FILTER0*, 1> records_{&record_};
};

TEST_F(EnumerationResult, IsAskedForOnceAndWholeOfEveryFilter) {
  EXPECT_THAT(Engine::GetAllBlockedAppsFilters(), SizeIs(1));
  EXPECT_EQ(enumeration.calls, 1);
  EXPECT_EQ(enumeration.requested, 0xFFFFFFFF);
  EXPECT_EQ(enumeration.enumTemplate, nullptr);
  EXPECT_EQ(enumeration.sessionFlags, 1U);
  EXPECT_EQ(enumeration.freed, 0);
}

TEST_F(EnumerationResult, GivesCopiesThatPointAtTheEnginesBytes) {
  std::vector<Filter> filters = Engine::GetAllBlockedAppsFilters();
  ASSERT_THAT(filters, SizeIs(1));
  const FWPM_FILTER0 native = filters[0].ToNativeFilter();
  ASSERT_EQ(native.numFilterConditions, 1U);
  EXPECT_EQ(native.filterCondition[0].conditionValue.byteBlob->size, 2U);
  EXPECT_EQ(native.filterCondition[0].conditionValue.byteBlob->data, bytes_.data());
}

TEST_F(EnumerationResult, CountsWhateverTheCallReports) {
  enumeration.result = 5;
  EXPECT_THAT(Engine::GetAllBlockedAppsFilters(), SizeIs(1));
}

TEST_F(EnumerationResult, WithoutAnArrayIsEmptyWhateverItsCount) {
  enumeration.records = nullptr;
  enumeration.count = 7;
  EXPECT_THAT(Engine::GetAllBlockedAppsFilters(), IsEmpty());
}

TEST_F(EnumerationResult, MayHaveHolesAmongItsRecords) {
  std::array<FWPM_FILTER0*, 3> records{nullptr, &record_, nullptr};
  enumeration.records = records.data();
  enumeration.count = 3;
  EXPECT_THAT(Engine::GetAllBlockedAppsFilters(), SizeIs(1));
}

TEST_F(EnumerationResult, MayCountAConditionThatIsNotThere) {
  record_.filterCondition = nullptr;
  EXPECT_THAT(Engine::GetAllBlockedAppsFilters(), IsEmpty());
}

TEST_F(EnumerationResult, WithAnIdentifierThatIsNullIsRefused) {
  condition_.conditionValue.byteBlob = nullptr;
  EXPECT_THAT([] { Engine::GetAllBlockedAppsFilters(); }, FailsWith("Not yet supported condition"));
}

TEST_F(EnumerationResult, HasNoBlocksAmongCallouts) {
  record_.action.type = FWP_ACTION_CALLOUT_TERMINATING;
  EXPECT_THAT(Engine::GetAllBlockedAppsFilters(), IsEmpty());
}

TEST_F(EnumerationResult, MayHoldALayerThatCanBeReadButNotWritten) {
  record_.layerKey = Filtering::kLayerIpForwardV6;
  std::vector<Filter> filters = Engine::GetAllBlockedAppsFilters();
  ASSERT_THAT(filters, SizeIs(1));
  EXPECT_EQ(filters[0].GetLayer().GetLayerType(), Filtering::LayerType::IpForwardV6);
  EXPECT_THAT([&] { filters[0].ToNativeFilter(); }, FailsWith("Not supported Layer type."));
}

TEST_F(EnumerationResult, GivesTheFirstByteOfAWeightOfAnyType) {
  constexpr UINT64 kNumber = 0x0102;
  record_.weight.type = FWP_UINT32;
  record_.weight.uint32 = kNumber;
  std::vector<Filter> filters = Engine::GetAllBlockedAppsFilters();
  ASSERT_THAT(filters, SizeIs(1));
  FWP_VALUE0 weight = filters[0].ToNativeFilter().weight;
  EXPECT_EQ(weight.type, FWP_UINT8);
  EXPECT_EQ(weight.uint8, 2);

  // A weight of 64 bits is a pointer. The library takes its lowest byte as the weight and does not follow it.
  record_.weight.type = FWP_UINT64;
  record_.weight.uint64 = reinterpret_cast<UINT64*>(std::uintptr_t{0x1230});
  filters = Engine::GetAllBlockedAppsFilters();
  ASSERT_THAT(filters, SizeIs(1));
  weight = filters[0].ToNativeFilter().weight;
  EXPECT_EQ(weight.type, FWP_UINT8);
  EXPECT_EQ(weight.uint8, 0x30);
}

}  // namespace
}  // namespace WfpFirewall
