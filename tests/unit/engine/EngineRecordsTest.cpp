// The arguments of engine calls, with the fields that cannot be read back from the emulated engine, and the
// memory that filters take. This program has its own engine functions and its own new.
#include <gmock/gmock.h>

#include <cstdlib>
#include <new>
#include <vector>

#include "engine/Engine.h"
#include "engine/Firewall.h"
#include "filtering/FilterBuilder.h"
#include "filtering/Values.h"
#include "unit/engine/Samples.h"

namespace {

struct Opening {
  const wchar_t* server;
  UINT32 authnService;
  const SEC_WINNT_AUTH_IDENTITY_W* identity;
  FWPM_SESSION0 session;
};

/// The security descriptor and the provider data that were given with an object.
struct Attachments {
  const void* securityDescriptor;
  FWP_BYTE_BLOB providerData;
};

struct Given {
  std::vector<Opening> openings;
  std::vector<Attachments> providers;
  std::vector<Attachments> sublayers;
  std::vector<Attachments> filters;
  std::vector<UINT64> deletedFilters;
};
Given given;

int engineHandle = 0;
FWPM_SUBLAYER0 installedSublayer{};

bool memoryEndsWithAFilter = false;
bool memoryHasEnded = false;
int allocations = 0;

}  // namespace

void* operator new(std::size_t size) {
  ++allocations;
  // NOLINTNEXTLINE(cppcoreguidelines-no-malloc): this is operator new.
  void* memory = memoryHasEnded ? nullptr : std::malloc(size);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}

void operator delete(void* memory) noexcept {
  std::free(memory);  // NOLINT(cppcoreguidelines-no-malloc): this is operator delete.
}

void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }

extern "C" {

DWORD WINAPI FwpmEngineOpen0(const wchar_t* server, UINT32 authnService, SEC_WINNT_AUTH_IDENTITY_W* identity,
                             const FWPM_SESSION0* session, HANDLE* handle) {
  given.openings.push_back({server, authnService, identity, *session});
  *handle = &engineHandle;
  return ERROR_SUCCESS;
}

DWORD WINAPI FwpmEngineClose0(HANDLE) { return ERROR_SUCCESS; }

DWORD WINAPI FwpmTransactionBegin0(HANDLE, UINT32) { return ERROR_NOT_SUPPORTED; }

DWORD WINAPI FwpmTransactionCommit0(HANDLE) { return ERROR_NOT_SUPPORTED; }

DWORD WINAPI FwpmProviderGetByKey0(HANDLE, const GUID*, FWPM_PROVIDER0**) {
  return static_cast<DWORD>(FWP_E_PROVIDER_NOT_FOUND);
}

DWORD WINAPI FwpmProviderAdd0(HANDLE, const FWPM_PROVIDER0* provider, PSECURITY_DESCRIPTOR descriptor) {
  given.providers.push_back({descriptor, provider->providerData});
  return ERROR_SUCCESS;
}

DWORD WINAPI FwpmProviderDeleteByKey0(HANDLE, const GUID*) { return ERROR_NOT_SUPPORTED; }

DWORD WINAPI FwpmSubLayerGetByKey0(HANDLE, const GUID*, FWPM_SUBLAYER0** sublayer) {
  *sublayer = &installedSublayer;
  return given.sublayers.empty() ? static_cast<DWORD>(FWP_E_SUBLAYER_NOT_FOUND) : ERROR_SUCCESS;
}

DWORD WINAPI FwpmSubLayerAdd0(HANDLE, const FWPM_SUBLAYER0* sublayer, PSECURITY_DESCRIPTOR descriptor) {
  given.sublayers.push_back({descriptor, sublayer->providerData});
  return ERROR_SUCCESS;
}

DWORD WINAPI FwpmSubLayerDeleteByKey0(HANDLE, const GUID*) { return ERROR_SUCCESS; }

DWORD WINAPI FwpmFilterAdd0(HANDLE, const FWPM_FILTER0* filter, PSECURITY_DESCRIPTOR descriptor, UINT64* id) {
  memoryHasEnded = false;
  given.filters.push_back({descriptor, filter->providerData});
  *id = given.filters.size();
  memoryHasEnded = memoryEndsWithAFilter;
  return ERROR_SUCCESS;
}

DWORD WINAPI FwpmFilterDeleteById0(HANDLE, UINT64 id) {
  given.deletedFilters.push_back(id);
  return ERROR_SUCCESS;
}

DWORD WINAPI FwpmFilterCreateEnumHandle0(HANDLE, const FWPM_FILTER_ENUM_TEMPLATE0*, HANDLE*) {
  return ERROR_NOT_SUPPORTED;
}

DWORD WINAPI FwpmFilterEnum0(HANDLE, HANDLE, UINT32, FWPM_FILTER0***, UINT32*) { return ERROR_NOT_SUPPORTED; }

DWORD WINAPI FwpmFilterDestroyEnumHandle0(HANDLE, HANDLE) { return ERROR_SUCCESS; }

DWORD WINAPI FwpmGetAppIdFromFileName0(const wchar_t*, FWP_BYTE_BLOB**) { return ERROR_NOT_SUPPORTED; }

void WINAPI FwpmFreeMemory0(void**) {}

}  // extern "C"

namespace WfpFirewall {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

class EngineRecords : public testing::Test {
 protected:
  EngineRecords() { given = {}; }

  /// Installs three filters in one sublayer, and their provider.
  static void Install() {
    Firewall firewall(Samples::MakeProvider());
    Sublayer sublayer = Samples::ThreeFilters();
    firewall.AddSublayer(sublayer).Apply();
  }
};

void ExpectNothingButTheDynamicFlag(const FWPM_SESSION0& session) {
  EXPECT_EQ(session.flags, 1U);
  EXPECT_EQ(session.sessionKey, GUID{});
  EXPECT_EQ(session.displayData.name, nullptr);
  EXPECT_EQ(session.displayData.description, nullptr);
  EXPECT_EQ(session.txnWaitTimeoutInMSec, 0U);
  EXPECT_EQ(session.processId, 0U);
  EXPECT_EQ(session.sid, nullptr);
  EXPECT_EQ(session.username, nullptr);
  EXPECT_EQ(session.kernelMode, 0);
}

TEST_F(EngineRecords, EverySessionIsALocalDynamicOneOfTheCallingUser) {
  Install();
  Engine::OpenEngine();
  ASSERT_THAT(given.openings, SizeIs(2));
  for (const Opening& opening : given.openings) {
    EXPECT_EQ(opening.server, nullptr);
    EXPECT_EQ(opening.authnService, 10U);  // RPC_C_AUTHN_WINNT
    EXPECT_EQ(opening.identity, nullptr);
    ExpectNothingButTheDynamicFlag(opening.session);
  }
}

void ExpectNothingAttached(const std::vector<Attachments>& objects) {
  for (const Attachments& object : objects) {
    EXPECT_EQ(object.securityDescriptor, nullptr);
    EXPECT_EQ(object.providerData.size, 0U);
    EXPECT_EQ(object.providerData.data, nullptr);
  }
}

TEST_F(EngineRecords, ObjectsHaveTheEnginesOwnSecurityAndNoDataOfTheProvider) {
  Install();
  ASSERT_THAT(given.providers, SizeIs(1));
  ASSERT_THAT(given.sublayers, SizeIs(1));
  ASSERT_THAT(given.filters, SizeIs(3));
  ExpectNothingAttached(given.providers);
  ExpectNothingAttached(given.sublayers);
  ExpectNothingAttached(given.filters);
}

TEST_F(EngineRecords, FilterOfThreeConditionsTakesAtMostSixAllocationsFromNothingToTheEngine) {
  using namespace Filtering;
  constexpr int kFilters = 100;
  const Provider provider = Samples::MakeProvider();
  Sublayer sublayer(GUID{}, L"", L"");
  given.filters.reserve(kFilters);
  const int before = allocations;
  for (int i = 0; i < kFilters; ++i) {
    sublayer.AddFilter(FilterBuilder()
                           .CreateFilter(Action::Permit)
                           .InLayer(LayerType::AleAuthConnectV4)
                           .WithCondition(ConditionEqual(new Values::Protocol(IPPROTO_UDP)))
                           .WithCondition(ConditionEqual(new Values::RemotePort(53)))
                           .WithCondition(ConditionEqual(new Values::LocalInterfaceLuid(42)))
                           .Get());
  }
  sublayer.Apply(&engineHandle, provider);
  EXPECT_LE(allocations - before, 6 * kFilters);
  EXPECT_THAT(given.filters, SizeIs(kFilters));
}

TEST_F(EngineRecords, FilterNeverStaysInTheEngineWithoutItsId) {
  Sublayer sublayer = Samples::ThreeFilters();
  memoryEndsWithAFilter = true;
  try {
    sublayer.Apply(&engineHandle, Samples::MakeProvider());
  } catch (const std::bad_alloc&) {
    // The filters that were added must still be known, so that Destroy removes them.
  }
  memoryEndsWithAFilter = false;
  memoryHasEnded = false;
  EXPECT_THAT(given.filters, SizeIs(3));
  sublayer.Destroy(&engineHandle);
  EXPECT_THAT(given.deletedFilters, ElementsAre(1, 2, 3));
}

}  // namespace
}  // namespace WfpFirewall
