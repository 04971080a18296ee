/**
 * @file
 * The headers of the Windows Filtering Platform in the order that they need, with definitions that some
 * toolchains do not have. Where the headers have a definition, it is used.
 */
#pragma once

// winsock2.h must come before windows.h.
// clang-format off
#include <winsock2.h>
#include <windows.h>
#include <ws2tcpip.h>
// clang-format on
#include <fwpmu.h>
#include <nldef.h>

#ifndef FWPM_SESSION_FLAG_DYNAMIC
#define FWPM_SESSION_FLAG_DYNAMIC (0x00000001)
#endif
#ifndef FWPM_TXN_READ_ONLY
#define FWPM_TXN_READ_ONLY (0x00000001)
#endif
#ifndef FWPM_PROVIDER_FLAG_PERSISTENT
#define FWPM_PROVIDER_FLAG_PERSISTENT (0x00000001)
#endif
#ifndef FWPM_PROVIDER_FLAG_DISABLED
#define FWPM_PROVIDER_FLAG_DISABLED (0x00000010)
#endif
#ifndef FWPM_SUBLAYER_FLAG_PERSISTENT
#define FWPM_SUBLAYER_FLAG_PERSISTENT (0x00000001)
#endif
#ifndef FWPM_FILTER_FLAG_NONE
#define FWPM_FILTER_FLAG_NONE (0x00000000)
#endif
#ifndef FWPM_FILTER_FLAG_PERSISTENT
#define FWPM_FILTER_FLAG_PERSISTENT (0x00000001)
#endif
#ifndef FWPM_FILTER_FLAG_BOOTTIME
#define FWPM_FILTER_FLAG_BOOTTIME (0x00000002)
#endif
#ifndef FWPM_FILTER_FLAG_HAS_PROVIDER_CONTEXT
#define FWPM_FILTER_FLAG_HAS_PROVIDER_CONTEXT (0x00000004)
#endif
#ifndef FWPM_FILTER_FLAG_CLEAR_ACTION_RIGHT
#define FWPM_FILTER_FLAG_CLEAR_ACTION_RIGHT (0x00000008)
#endif
#ifndef FWPM_FILTER_FLAG_PERMIT_IF_CALLOUT_UNREGISTERED
#define FWPM_FILTER_FLAG_PERMIT_IF_CALLOUT_UNREGISTERED (0x00000010)
#endif
#ifndef FWPM_FILTER_FLAG_DISABLED
#define FWPM_FILTER_FLAG_DISABLED (0x00000020)
#endif
#ifndef FWPM_FILTER_FLAG_INDEXED
#define FWPM_FILTER_FLAG_INDEXED (0x00000040)
#endif

#if defined(__MINGW64_VERSION_MAJOR)
/// The Windows SDK has an enumeration of this name; MinGW-w64 has only the constants.
using IPPROTO = int;

/// Not in the headers of MinGW-w64, which by mistake declare the function for callouts twice.
extern "C" DWORD WINAPI FwpmSubLayerSetSecurityInfoByKey0(HANDLE engine, const GUID* key,
                                                          SECURITY_INFORMATION information, const SID* owner,
                                                          const SID* group, const ACL* dacl, const ACL* sacl);
#endif
