/**
 * @file
 * The registry.
 */
#pragma once

#include <winnt.h>

#ifdef __cplusplus
extern "C" {
#endif

LONG WINAPI RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE buffer,
                             LPDWORD size);
LONG WINAPI RegCloseKey(HKEY key);

#ifdef __cplusplus
}
#endif
