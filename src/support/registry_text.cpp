#include "support/registry_text.h"

#include <algorithm>

LONG read_registry_text(HKEY key, const WCHAR* name, WCHAR* out, DWORD bytes) {
    DWORD size = bytes;
    const LONG result = RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(out), &size);
    out[result == ERROR_SUCCESS ? std::min(size, bytes) / sizeof(WCHAR) : 0] = 0;
    return result;
}

int read_registry_number(HKEY key, const WCHAR* name, DWORD least_bytes, DWORD* number) {
    DWORD size = sizeof *number;
    *number = 0;
    return RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(number), &size) ==
               ERROR_SUCCESS &&
           size >= least_bytes;
}
