/**
 * @file
 * The platform's basic types, with the widths that they have on 64-bit Windows.
 */
#pragma once

#include <guiddef.h>
#include <stddef.h>
#include <stdint.h>

#define WINAPI
#define CALLBACK

#define FALSE 0
#define TRUE 1
#define MAX_PATH 260

/// In C++ an enumeration with a fixed type may hold any value of that type, as on the platform.
#ifdef __cplusplus
#define SDK_SUBSET_ENUM(name) enum name : int
#else
#define SDK_SUBSET_ENUM(name) enum name
#endif

typedef uint8_t BYTE, UCHAR, UINT8, *PBYTE, *LPBYTE;
typedef uint16_t WORD, USHORT, UINT16;
typedef uint32_t DWORD, ULONG, UINT, UINT32, *PDWORD, *LPDWORD, *PULONG;
typedef uint64_t UINT64, ULONG64, DWORD64, ULONGLONG;
typedef int8_t INT8;
typedef int16_t INT16, SHORT;
typedef int32_t INT, INT32, LONG, BOOL, HRESULT;
typedef int64_t INT64, LONG64, LONGLONG;
typedef uintptr_t ULONG_PTR, DWORD_PTR, UINT_PTR;
typedef intptr_t LONG_PTR, LPARAM;
typedef size_t SIZE_T;

typedef char CHAR, *PSTR, *LPSTR;
typedef const char *PCSTR, *LPCSTR;
typedef wchar_t WCHAR, *PWSTR, *LPWSTR;
typedef const wchar_t *PCWSTR, *LPCWSTR;
typedef void *PVOID, *LPVOID, *HANDLE, *HLOCAL;
typedef const void* LPCVOID;
typedef struct HWND_* HWND;
typedef struct HKEY_* HKEY;

typedef struct FILETIME_ {
  DWORD dwLowDateTime;
  DWORD dwHighDateTime;
} FILETIME;
