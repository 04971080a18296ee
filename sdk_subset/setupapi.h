/**
 * @file
 * The device installer.
 */
#pragma once

#include <winreg.h>

#define DIGCF_PRESENT 0x02
#define DIGCF_DEVICEINTERFACE 0x10
#define SPDRP_DEVICEDESC 0
#define SPDRP_FRIENDLYNAME 12
#define DICS_FLAG_GLOBAL 1
#define DIREG_DRV 2

typedef PVOID HDEVINFO;

typedef struct SP_DEVINFO_DATA_ {
  DWORD cbSize;
  GUID ClassGuid;
  DWORD DevInst;
  ULONG_PTR Reserved;
} SP_DEVINFO_DATA, *PSP_DEVINFO_DATA;

#ifdef __cplusplus
extern "C" {
#endif

HDEVINFO WINAPI SetupDiGetClassDevsW(const GUID* classGuid, PCWSTR enumerator, HWND window, DWORD flags);
BOOL WINAPI SetupDiEnumDeviceInfo(HDEVINFO set, DWORD index, PSP_DEVINFO_DATA device);
BOOL WINAPI SetupDiGetDeviceRegistryPropertyW(HDEVINFO set, PSP_DEVINFO_DATA device, DWORD property,
                                              PDWORD type, PBYTE buffer, DWORD size, PDWORD requiredSize);
HKEY WINAPI SetupDiOpenDevRegKey(HDEVINFO set, PSP_DEVINFO_DATA device, DWORD scope, DWORD profile,
                                 DWORD keyType, REGSAM access);
BOOL WINAPI SetupDiDestroyDeviceInfoList(HDEVINFO set);

#ifdef __cplusplus
}
#endif
