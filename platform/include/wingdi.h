// What a device context draws with.
#pragma once

#include "windef.h"

// Gives what was there before; null for a context or an object that doesn't exist.
HGDIOBJ WINAPI SelectObject(HDC context, HGDIOBJ object);
