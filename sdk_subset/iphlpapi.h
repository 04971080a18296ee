/**
 * @file
 * IP Helper.
 */
#pragma once

#include <ipifcons.h>
#include <iptypes.h>
#include <netioapi.h>

#ifdef __cplusplus
extern "C" {
#endif

ULONG WINAPI GetAdaptersAddresses(ULONG family, ULONG flags, PVOID reserved, PIP_ADAPTER_ADDRESSES buffer,
                                  PULONG size);

#ifdef __cplusplus
}
#endif
