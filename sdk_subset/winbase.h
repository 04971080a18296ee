/**
 * @file
 * Last error, messages of the system, processes.
 */
#pragma once

#include <stdarg.h>
#include <winnt.h>

#define INVALID_HANDLE_VALUE ((HANDLE)(LONG_PTR)-1)
#define INFINITE 0xFFFFFFFF

#define FORMAT_MESSAGE_ALLOCATE_BUFFER 0x100
#define FORMAT_MESSAGE_IGNORE_INSERTS 0x200
#define FORMAT_MESSAGE_FROM_SYSTEM 0x1000

#ifdef __cplusplus
extern "C" {
#endif

/// One for each thread, 0 at first.
DWORD WINAPI GetLastError(void);
void WINAPI SetLastError(DWORD code);

DWORD WINAPI GetCurrentProcessId(void);

DWORD WINAPI FormatMessageA(DWORD flags, LPCVOID source, DWORD code, DWORD language, LPSTR buffer, DWORD size,
                            va_list* arguments);
HLOCAL WINAPI LocalFree(HLOCAL memory);

#ifdef __cplusplus
}
#endif
