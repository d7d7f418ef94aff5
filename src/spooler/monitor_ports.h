// Port monitors that a packaging brings along, and the ports in them.
#pragma once

#include "state/monitor_info.h"

#include <windows.h>

#include <cstddef>

// Adds a monitor to the spooler, always for the 32-bit environment: 1 when it was added, else 0.
int install_monitor(const MonitorInfo* info);
int install_dryx_monitor(); // the fixed sibling "DRYX Port"

// Creates a port through the monitor's transceive interface and gives it its settings. 0 when the monitor
// can't be reached or can't take a name of more than 63 characters; 1 in every other case, with each answer
// in the log. The address is cut to its field: 15 characters with short_address, else 511.
int add_port(const WCHAR* monitor_name, const WCHAR* port_name, const char* address, const WCHAR* folder,
             const WCHAR* subfolder, DWORD short_address);
int add_dryx_port(const WCHAR* monitor_name, const WCHAR* port_name, const char* address); // cut at 512

constexpr size_t program_files_path_capacity = 512;

// <Program Files>\<folder>\<subfolder>: 1, or 0 with an empty text when the system gives no path or it is too
// long.
int build_program_files_path(WCHAR* out /*program_files_path_capacity*/, const WCHAR* folder,
                             const WCHAR* subfolder);
