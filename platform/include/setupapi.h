// The set-up interface's device sets, as far as this program uses them.
#pragma once

#include "windef.h"

#define DIGCF_PRESENT 0x00000002
#define DIGCF_ALLCLASSES 0x00000004
#define DIGCF_DEVICEINTERFACE 0x00000010

#define SPINT_ACTIVE 0x00000001
#define SPDIT_COMPATDRIVER 0x00000002
#define LINE_LEN 256
#define ANYSIZE_ARRAY 1

using HDEVINFO = PVOID;

struct SP_DEVINFO_DATA {
    DWORD cbSize;
    GUID ClassGuid;
    DWORD DevInst;
    ULONG_PTR Reserved;
};
using PSP_DEVINFO_DATA = SP_DEVINFO_DATA*;

struct SP_DEVICE_INTERFACE_DATA {
    DWORD cbSize;
    GUID InterfaceClassGuid;
    DWORD Flags;
    ULONG_PTR Reserved;
};
using PSP_DEVICE_INTERFACE_DATA = SP_DEVICE_INTERFACE_DATA*;

// cbSize is the size of this fixed part, whatever the path's length.
struct SP_DEVICE_INTERFACE_DETAIL_DATA_W {
    DWORD cbSize;
    WCHAR DevicePath[ANYSIZE_ARRAY];
};
using PSP_DEVICE_INTERFACE_DETAIL_DATA_W = SP_DEVICE_INTERFACE_DETAIL_DATA_W*;

struct SP_DRVINFO_DATA_W {
    DWORD cbSize;
    DWORD DriverType;
    ULONG_PTR Reserved;
    WCHAR Description[LINE_LEN];
    WCHAR MfgName[LINE_LEN];
    WCHAR ProviderName[LINE_LEN];
    FILETIME DriverDate;
    DWORDLONG DriverVersion;
};
using PSP_DRVINFO_DATA_W = SP_DRVINFO_DATA_W*;

HDEVINFO WINAPI SetupDiGetClassDevsW(const GUID* device_class, PCWSTR enumerator, HWND parent, DWORD flags);
BOOL WINAPI SetupDiEnumDeviceInterfaces(HDEVINFO set, PSP_DEVINFO_DATA device, const GUID* interface_class,
                                        DWORD index, PSP_DEVICE_INTERFACE_DATA data);
BOOL WINAPI SetupDiGetDeviceInterfaceDetailW(HDEVINFO set, PSP_DEVICE_INTERFACE_DATA data,
                                             PSP_DEVICE_INTERFACE_DETAIL_DATA_W detail, DWORD size,
                                             PDWORD required, PSP_DEVINFO_DATA device);
BOOL WINAPI SetupDiEnumDriverInfoW(HDEVINFO set, PSP_DEVINFO_DATA device, DWORD type, DWORD index,
                                   PSP_DRVINFO_DATA_W driver);
BOOL WINAPI SetupDiDestroyDriverInfoList(HDEVINFO set, PSP_DEVINFO_DATA device, DWORD type);
BOOL WINAPI SetupDiDestroyDeviceInfoList(HDEVINFO set);
