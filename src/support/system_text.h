// The system's own words for an error code.
#pragma once

#include <windows.h>

// The text for a code in the user's language, which mostly ends in CR LF; null when there is none. The caller
// releases it with LocalFree.
WCHAR* system_text(DWORD code);
