// What a port monitor's own INF tells about it, from its reader to the spooler. Data only.
#pragma once

#include <windows.h>

// Capacities in characters. A value that doesn't fit is cut.
struct MonitorInfo {
    WCHAR folder[255]; // that was searched, with its closing backslash
    WCHAR name[64];
    WCHAR file[255]; // that was found, without folder
    WCHAR prefix[64];
    WCHAR DLL32[64]; // the monitor's file for 32-bit systems
    WCHAR DLL64[64];
};
