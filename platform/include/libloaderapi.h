// Modules and functions that are looked up at run time.
#pragma once

#include "windef.h"

// The running program is the module of the null name. Other modules are known by name only, upper and lower
// case alike, with or without ".dll"; what isn't known gives null and ERROR_MOD_NOT_FOUND.
HMODULE WINAPI GetModuleHandleW(LPCWSTR name);
HMODULE WINAPI LoadLibraryW(LPCWSTR name);
FARPROC WINAPI GetProcAddress(HMODULE module, LPCSTR name);

// The length without terminator; a path that doesn't fit is cut, and the result is then the size.
DWORD WINAPI GetModuleFileNameW(HMODULE module, LPWSTR path, DWORD size);
