/*
 * A client in C that checks transactions: all or nothing, visible to others after the commit, one writer at a
 * time. Its sessions are dynamic, so nothing stays in the engine, however the program ends.
 */
#include <winsock2.h>

#include <fwpmu.h>
#include <stdio.h>
#include <stdlib.h>

/* Not in the headers of MinGW-w64. */
#ifndef FWPM_SESSION_FLAG_DYNAMIC
#define FWPM_SESSION_FLAG_DYNAMIC 0x00000001
#endif
#ifndef FWPM_TXN_READ_ONLY
#define FWPM_TXN_READ_ONLY 0x00000001
#endif

static const GUID kFirst = {0x7c100001, 0x2b1f, 0x4d63, {0x9a, 0x04, 0x5e, 0x0d, 0xc2, 0x7b, 0x11, 0x01}};
static const GUID kSecond = {0x7c100002, 0x2b1f, 0x4d63, {0x9a, 0x04, 0x5e, 0x0d, 0xc2, 0x7b, 0x11, 0x02}};

#define EXPECT(call, code) Expect((call), (DWORD)(code), #call, __LINE__)

static void Expect(DWORD result, DWORD expected, const char* call, int line) {
  if (result != expected) {
    fprintf(stderr, "Transactions.c:%d: %s gave 0x%08lx instead of 0x%08lx\n", line, call, result, expected);
    exit(1);
  }
}

static HANDLE Open(UINT32 lockWaitMilliseconds) {
  FWPM_SESSION0 session = {0};
  HANDLE engine = NULL;
  session.flags = FWPM_SESSION_FLAG_DYNAMIC;
  session.txnWaitTimeoutInMSec = lockWaitMilliseconds;
  EXPECT(FwpmEngineOpen0(NULL, RPC_C_AUTHN_WINNT, NULL, &session, &engine), ERROR_SUCCESS);
  return engine;
}

static DWORD AddProvider(HANDLE engine, const GUID* key) {
  wchar_t name[] = L"Transactions client";
  FWPM_PROVIDER0 provider = {0};
  provider.providerKey = *key;
  provider.displayData.name = name;
  return FwpmProviderAdd0(engine, &provider, NULL);
}

/* ERROR_SUCCESS if the engine has a provider with this key. */
static DWORD FindProvider(HANDLE engine, const GUID* key) {
  FWPM_PROVIDER0* provider = NULL;
  const DWORD result = FwpmProviderGetByKey0(engine, key, &provider);
  FwpmFreeMemory0((void**)&provider);
  return result;
}

static void CommitShowsChangesToOthers(void) {
  HANDLE writer = Open(0);
  HANDLE reader = Open(0);
  EXPECT(FwpmTransactionBegin0(writer, 0), ERROR_SUCCESS);
  EXPECT(AddProvider(writer, &kFirst), ERROR_SUCCESS);
  EXPECT(FindProvider(writer, &kFirst), ERROR_SUCCESS);
  EXPECT(FindProvider(reader, &kFirst), FWP_E_PROVIDER_NOT_FOUND);
  EXPECT(FwpmTransactionCommit0(writer), ERROR_SUCCESS);
  EXPECT(FindProvider(reader, &kFirst), ERROR_SUCCESS);
  EXPECT(FwpmEngineClose0(reader), ERROR_SUCCESS);
  EXPECT(FwpmEngineClose0(writer), ERROR_SUCCESS);
}

static void AbortUndoesEverything(void) {
  HANDLE engine = Open(0);
  EXPECT(AddProvider(engine, &kFirst), ERROR_SUCCESS);
  EXPECT(FwpmTransactionBegin0(engine, 0), ERROR_SUCCESS);
  EXPECT(FwpmProviderDeleteByKey0(engine, &kFirst), ERROR_SUCCESS);
  EXPECT(AddProvider(engine, &kSecond), ERROR_SUCCESS);
  EXPECT(FwpmTransactionAbort0(engine), ERROR_SUCCESS);
  EXPECT(FindProvider(engine, &kFirst), ERROR_SUCCESS);
  EXPECT(FindProvider(engine, &kSecond), FWP_E_PROVIDER_NOT_FOUND);
  EXPECT(FwpmEngineClose0(engine), ERROR_SUCCESS);
}

static void FailingCallUndoesOnlyItself(void) {
  HANDLE engine = Open(0);
  EXPECT(FwpmTransactionBegin0(engine, 0), ERROR_SUCCESS);
  EXPECT(AddProvider(engine, &kFirst), ERROR_SUCCESS);
  EXPECT(AddProvider(engine, &kFirst), FWP_E_ALREADY_EXISTS);
  EXPECT(AddProvider(engine, &kSecond), ERROR_SUCCESS);
  EXPECT(FwpmTransactionCommit0(engine), ERROR_SUCCESS);
  EXPECT(FindProvider(engine, &kFirst), ERROR_SUCCESS);
  EXPECT(FindProvider(engine, &kSecond), ERROR_SUCCESS);
  EXPECT(FwpmEngineClose0(engine), ERROR_SUCCESS);
}

static void TransactionsDoNotNest(void) {
  HANDLE engine = Open(0);
  EXPECT(FwpmTransactionCommit0(engine), FWP_E_NO_TXN_IN_PROGRESS);
  EXPECT(FwpmTransactionAbort0(engine), FWP_E_NO_TXN_IN_PROGRESS);
  EXPECT(FwpmTransactionBegin0(engine, 0), ERROR_SUCCESS);
  EXPECT(FwpmTransactionBegin0(engine, 0), FWP_E_TXN_IN_PROGRESS);
  EXPECT(FwpmTransactionCommit0(engine), ERROR_SUCCESS);
  EXPECT(FwpmTransactionCommit0(engine), FWP_E_NO_TXN_IN_PROGRESS);
  EXPECT(FwpmEngineClose0(engine), ERROR_SUCCESS);
}

static void ReadOnlyTransactionChangesNothing(void) {
  HANDLE engine = Open(0);
  EXPECT(FwpmTransactionBegin0(engine, FWPM_TXN_READ_ONLY), ERROR_SUCCESS);
  EXPECT(FindProvider(engine, &kFirst), FWP_E_PROVIDER_NOT_FOUND);
  EXPECT(AddProvider(engine, &kFirst), FWP_E_INCOMPATIBLE_TXN);
  EXPECT(FwpmTransactionCommit0(engine), ERROR_SUCCESS);
  EXPECT(FindProvider(engine, &kFirst), FWP_E_PROVIDER_NOT_FOUND);
  EXPECT(FwpmEngineClose0(engine), ERROR_SUCCESS);
}

static void OneWriterAtATime(void) {
  HANDLE writer = Open(0);
  HANDLE impatient = Open(1);
  EXPECT(FwpmTransactionBegin0(writer, 0), ERROR_SUCCESS);
  EXPECT(FwpmTransactionBegin0(impatient, 0), FWP_E_TIMEOUT);
  EXPECT(AddProvider(impatient, &kFirst), FWP_E_TIMEOUT);
  EXPECT(FwpmTransactionAbort0(writer), ERROR_SUCCESS);
  EXPECT(AddProvider(impatient, &kFirst), ERROR_SUCCESS);
  EXPECT(FwpmEngineClose0(impatient), ERROR_SUCCESS);
  EXPECT(FwpmEngineClose0(writer), ERROR_SUCCESS);
}

static void CloseIsAbort(void) {
  HANDLE writer = Open(0);
  HANDLE other = Open(1);
  EXPECT(FwpmTransactionBegin0(writer, 0), ERROR_SUCCESS);
  EXPECT(AddProvider(writer, &kFirst), ERROR_SUCCESS);
  EXPECT(FwpmEngineClose0(writer), ERROR_SUCCESS);
  EXPECT(FindProvider(other, &kFirst), FWP_E_PROVIDER_NOT_FOUND);
  EXPECT(AddProvider(other, &kFirst), ERROR_SUCCESS);
  EXPECT(FwpmEngineClose0(other), ERROR_SUCCESS);
}

int main(void) {
  CommitShowsChangesToOthers();
  AbortUndoesEverything();
  FailingCallUndoesOnlyItself();
  TransactionsDoNotNest();
  ReadOnlyTransactionChangesNothing();
  OneWriterAtATime();
  CloseIsAbort();
  return 0;
}
