// The configuration manager's device tree, as far as this program uses it.
#pragma once

#include "windef.h"

using CONFIGRET = DWORD;
using DEVINST = DWORD;
using PDEVINST = DEVINST*;

#define CR_SUCCESS 0x00000000
#define CR_INVALID_POINTER 0x00000003
#define CR_INVALID_FLAG 0x00000004
#define CR_INVALID_DEVNODE 0x00000005
#define CR_NO_SUCH_DEVNODE 0x0000000D
#define CR_BUFFER_SMALL 0x0000001A

CONFIGRET WINAPI CM_Get_Parent(PDEVINST parent, DEVINST device, ULONG flags);
CONFIGRET WINAPI CM_Get_Device_ID_Size(PULONG length, DEVINST device, ULONG flags); // without terminator
// A buffer without room for the terminator gets the text without one.
CONFIGRET WINAPI CM_Get_Device_IDW(DEVINST device, LPWSTR text, ULONG characters, ULONG flags);
