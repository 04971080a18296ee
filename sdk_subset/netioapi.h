/**
 * @file
 * Conversion between the identities of a network interface.
 */
#pragma once

#include <ifdef.h>

typedef DWORD NETIO_STATUS;

#ifdef __cplusplus
extern "C" {
#endif

NETIO_STATUS WINAPI ConvertInterfaceLuidToIndex(const NET_LUID* luid, PNET_IFINDEX index);

#ifdef __cplusplus
}
#endif
