// What a packaging with a port monitor of its own tells about it: monitor.inf, and the port number in any
// text file. Both are 8-bit text. monitor.inf has four keys, sought in this order, each behind the value
// before, of which only the first 4,095 bytes of the file count; a value runs to the end of its line:
//
//     name=Label Port
//     prefix=LBL
//     DLL32=lblmon.dll
//     DLL64=lblmon64.dll
#pragma once

#include "state/monitor_info.h"

#include <windows.h>

// Reads monitor.inf of the current folder, or, with `use_monitor_folder`, the first *.inf of its folder
// monitor. 1 when a file was found and opened, whatever it holds, else 0. A field whose key isn't there keeps
// what it held, so the caller clears the record first.
int read_monitor_inf(MonitorInfo* info, int use_monitor_folder);

// The four values of a text; logs the name.
void scan_monitor_info(const char* text, MonitorInfo* info);

// The number behind the first "Port=" of the file: 1, or 0 without one, and then `port` is left alone. A
// "Port=" without digits gives 0 as number.
int read_port_number(const WCHAR* path, int* port);
