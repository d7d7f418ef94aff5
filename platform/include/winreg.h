// The registry, as far as the program reads it.
#pragma once

#include "windef.h"

// The platform makes this value by sign extension, so that it is the same key for 32-bit programs.
#define HKEY_LOCAL_MACHINE (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(static_cast<LONG>(0x80000002u))))
#define HKEY_CURRENT_USER (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(static_cast<LONG>(0x80000001u))))

#define KEY_QUERY_VALUE 0x0001
#define KEY_READ 0x20019

#define REG_SZ 1
#define REG_EXPAND_SZ 2
#define REG_DWORD 4

// Both results are error codes. A value is given as it is stored: a text may lack its terminator.
LSTATUS WINAPI RegOpenKeyExW(HKEY key, LPCWSTR path, DWORD options, REGSAM access, PHKEY result);
LSTATUS WINAPI RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data,
                                LPDWORD size);
LSTATUS WINAPI RegCloseKey(HKEY key);
