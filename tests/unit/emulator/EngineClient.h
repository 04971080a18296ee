/**
 * @file
 * Codes as numbers, sessions and records for the tests of the emulator.
 */
#pragma once

#include <WfpPlatform.h>
#include <gtest/gtest.h>

#include "emulator/Control.h"
#include "support/EngineKeys.h"
#include "support/EngineTest.h"

inline constexpr DWORD kSuccess = 0;
inline constexpr DWORD kInvalidHandle = 6;
inline constexpr DWORD kConditionNotFound = 0x80320002;
inline constexpr DWORD kProviderNotFound = 0x80320005;
inline constexpr DWORD kSublayerNotFound = 0x80320007;
inline constexpr DWORD kFilterNotFound = 0x80320003;
inline constexpr DWORD kLayerNotFound = 0x80320004;
inline constexpr DWORD kNotFound = 0x80320008;
inline constexpr DWORD kAlreadyExists = 0x80320009;
inline constexpr DWORD kInUse = 0x8032000A;
inline constexpr DWORD kDynamicSessionInProgress = 0x8032000B;
inline constexpr DWORD kWrongSession = 0x8032000C;
inline constexpr DWORD kNoTransactionInProgress = 0x8032000D;
inline constexpr DWORD kTransactionInProgress = 0x8032000E;
inline constexpr DWORD kTransactionAborted = 0x8032000F;
inline constexpr DWORD kIncompatibleTransaction = 0x80320011;
inline constexpr DWORD kTimeout = 0x80320012;
inline constexpr DWORD kNetEventsDisabled = 0x80320013;
inline constexpr DWORD kLifetimeMismatch = 0x80320016;
inline constexpr DWORD kBuiltInObject = 0x80320017;
inline constexpr DWORD kNullPointer = 0x8032001C;
inline constexpr DWORD kInvalidEnumerator = 0x8032001D;
inline constexpr DWORD kInvalidFlags = 0x8032001E;
inline constexpr DWORD kNullDisplayName = 0x80320023;
inline constexpr DWORD kInvalidRange = 0x80320020;
inline constexpr DWORD kInvalidInterval = 0x80320021;
inline constexpr DWORD kMatchTypeMismatch = 0x80320026;
inline constexpr DWORD kTypeMismatch = 0x80320027;
inline constexpr DWORD kDuplicateCondition = 0x8032002A;
inline constexpr DWORD kInvalidParameter = 0x80320035;
inline constexpr DWORD kInvalidSecurityDescriptor = 1338;

inline constexpr UINT32 kDynamic = 1;
inline constexpr UINT32 kPersistent = 1;

inline constexpr GUID kProviderKey{0x0a000001, 0, 0, {}};
inline constexpr GUID kOtherProviderKey{0x0a000002, 0, 0, {}};
inline constexpr GUID kSublayerKey{0x0b000001, 0, 0, {}};
inline constexpr GUID kOtherSublayerKey{0x0b000002, 0, 0, {}};
inline constexpr GUID kFilterKey{0x0c000001, 0, 0, {}};
inline constexpr GUID kOtherFilterKey{0x0c000002, 0, 0, {}};
inline constexpr GUID kCalloutKey{0x0d000001, 0, 0, {}};

/// A session that the destructor closes.
class TestSession {
 public:
  explicit TestSession(UINT32 flags = 0, UINT32 lockWaitMilliseconds = 0) {
    FWPM_SESSION0 session{};
    session.flags = flags;
    session.txnWaitTimeoutInMSec = lockWaitMilliseconds;
    EXPECT_EQ(FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, &session, &handle_), kSuccess);
  }
  ~TestSession() { FwpmEngineClose0(handle_); }
  TestSession(const TestSession&) = delete;
  TestSession& operator=(const TestSession&) = delete;

  // NOLINTNEXTLINE(google-explicit-constructor): calls take the session as its handle.
  operator HANDLE() const { return handle_; }

 private:
  HANDLE handle_ = nullptr;
};

/// Not in the headers of MinGW-w64.
extern "C" DWORD WINAPI FwpmSubLayerSetSecurityInfoByKey0(HANDLE engineHandle, const GUID* key,
                                                          SECURITY_INFORMATION securityInfo,
                                                          const SID* sidOwner, const SID* sidGroup,
                                                          const ACL* dacl, const ACL* sacl);

inline wchar_t kName[] = L"Name";
inline wchar_t kDescription[] = L"Description";

inline FWPM_PROVIDER0 ProviderRecord(const GUID& key = kProviderKey) {
  FWPM_PROVIDER0 provider{};
  provider.providerKey = key;
  provider.displayData = {kName, kDescription};
  return provider;
}

inline FWPM_SUBLAYER0 SublayerRecord(const GUID& key = kSublayerKey) {
  FWPM_SUBLAYER0 sublayer{};
  sublayer.subLayerKey = key;
  sublayer.displayData = {kName, kDescription};
  return sublayer;
}

/// A block without conditions, in the layer's default sublayer.
inline FWPM_FILTER0 FilterRecord(const GUID& key = kFilterKey) {
  FWPM_FILTER0 filter{};
  filter.filterKey = key;
  filter.displayData = {kName, kDescription};
  filter.layerKey = kConnectV4;
  filter.action.type = FWP_ACTION_BLOCK;
  filter.weight.type = FWP_UINT8;
  filter.weight.uint8 = 14;
  return filter;
}

inline FWPM_CALLOUT0 CalloutRecord(const GUID& layer) {
  FWPM_CALLOUT0 callout{};
  callout.calloutKey = kCalloutKey;
  callout.displayData = {kName, kDescription};
  callout.applicableLayer = layer;
  return callout;
}

inline DWORD Add(HANDLE engine, const FWPM_PROVIDER0& provider) {
  return FwpmProviderAdd0(engine, &provider, nullptr);
}

inline DWORD Add(HANDLE engine, const FWPM_SUBLAYER0& sublayer) {
  return FwpmSubLayerAdd0(engine, &sublayer, nullptr);
}

inline DWORD Add(HANDLE engine, const FWPM_FILTER0& filter) {
  return FwpmFilterAdd0(engine, &filter, nullptr, nullptr);
}

template <class Record>
void Free(Record*& memory) {
  void* block = memory;
  FwpmFreeMemory0(&block);
  memory = static_cast<Record*>(block);
}
