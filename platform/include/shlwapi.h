#pragma once

#include "windef.h"

// Leaves of the path what stands behind its last backslash, in place.
void WINAPI PathStripPathW(LPWSTR path);
