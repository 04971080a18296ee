/**
 * @file
 * Codes as numbers, sessions and records for the tests of the emulator.
 */
#pragma once

#include <WfpPlatform.h>
#include <gtest/gtest.h>

#include "emulator/Control.h"
#include "support/EngineTest.h"

inline constexpr DWORD kSuccess = 0;
inline constexpr DWORD kInvalidHandle = 6;
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
inline constexpr DWORD kLifetimeMismatch = 0x80320016;
inline constexpr DWORD kBuiltInObject = 0x80320017;
inline constexpr DWORD kNullPointer = 0x8032001C;
inline constexpr DWORD kInvalidEnumerator = 0x8032001D;
inline constexpr DWORD kInvalidFlags = 0x8032001E;
inline constexpr DWORD kNullDisplayName = 0x80320023;
inline constexpr DWORD kInvalidParameter = 0x80320035;

inline constexpr UINT32 kDynamic = 1;
inline constexpr UINT32 kPersistent = 1;

inline constexpr GUID kProviderKey{0x0a000001, 0, 0, {}};
inline constexpr GUID kOtherProviderKey{0x0a000002, 0, 0, {}};
inline constexpr GUID kSublayerKey{0x0b000001, 0, 0, {}};
inline constexpr GUID kOtherSublayerKey{0x0b000002, 0, 0, {}};
inline constexpr GUID kFilterKey{0x0c000001, 0, 0, {}};
inline constexpr GUID kOtherFilterKey{0x0c000002, 0, 0, {}};

inline constexpr GUID kUniversalSublayerKey{
    0xeebecc03, 0xced4, 0x4380, {0x81, 0x9a, 0x27, 0x34, 0x39, 0x7b, 0x2b, 0x74}};
inline constexpr GUID kConnectV4{
    0xc38d57d1, 0x05a7, 0x4c33, {0x90, 0x4f, 0x7f, 0xbc, 0xee, 0xe6, 0x0e, 0x82}};
inline constexpr GUID kConnectV6{
    0x4a72393b, 0x319f, 0x44bc, {0x84, 0xc3, 0xba, 0x54, 0xdc, 0xb3, 0xb6, 0xb4}};
inline constexpr GUID kFlowEstablishedV4{
    0xaf80470a, 0x5596, 0x4c13, {0x99, 0x92, 0x53, 0x9e, 0x6f, 0xe5, 0x79, 0x67}};
inline constexpr GUID kRemoteAddress{
    0xb235ae9a, 0x1d64, 0x49b8, {0xa4, 0x4c, 0x5f, 0xf3, 0xd9, 0x09, 0x50, 0x45}};
inline constexpr GUID kProtocol{0x3971ef2b, 0x623e, 0x4f9a, {0x8c, 0xb1, 0x6e, 0x79, 0xb8, 0x06, 0xb9, 0xa7}};
inline constexpr GUID kArrivalInterface{
    0x618a9b6d, 0x386b, 0x4136, {0xad, 0x6e, 0xb5, 0x15, 0x87, 0xcf, 0xb1, 0xcd}};
inline constexpr GUID kLocalInterface{
    0x4cd62a49, 0x59c3, 0x4969, {0xb7, 0xf3, 0xbd, 0xa5, 0xd3, 0x28, 0x90, 0xa4}};
inline constexpr GUID kAppId{0xd78e1e87, 0x8644, 0x4ea5, {0x94, 0x37, 0xd8, 0x09, 0xec, 0xef, 0xc9, 0x71}};
inline constexpr GUID kPackageId{
    0x71bc78fa, 0xf17c, 0x4997, {0xa6, 0x02, 0x6a, 0xbb, 0x26, 0x1f, 0x35, 0x1c}};
inline constexpr GUID kUserId{0xaf043a0a, 0xb34d, 0x4f86, {0x97, 0x9c, 0xc9, 0x03, 0x71, 0xaf, 0x6e, 0x66}};
inline constexpr GUID kRemotePort{
    0xc35a604d, 0xd22b, 0x4e1a, {0x91, 0xb4, 0x68, 0xf6, 0x74, 0xee, 0x67, 0x4b}};

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
