// The process's current folder, which is the root of the distribution.
#pragma once

#include <windows.h>

// The current folder into `out` of `size` characters: 1, or 0 with an empty text when it can't be had or
// doesn't fit. Nothing may be opened under an empty folder.
int get_current_folder(WCHAR* out, DWORD size);
