// Texts in the registry, which keeps them with or without a terminator.
#pragma once

#include <windows.h>

// Reads a value as text, whatever its type, offering `bytes` bytes for it. `out` has room for these and one
// character more; the text is terminated there, an odd last byte is dropped, and on failure it is empty. The
// registry's result: 0, or a code.
LONG read_registry_text(HKEY key, const WCHAR* name, WCHAR* out, DWORD bytes);

// Reads a value of `least_bytes` to 4 bytes, of which those that are missing count as 0: 1, or 0 when it
// isn't there or has another size.
int read_registry_number(HKEY key, const WCHAR* name, DWORD least_bytes, DWORD* number);
