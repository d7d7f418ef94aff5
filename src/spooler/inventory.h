// What the local spooler holds: whole lists of its records, and questions about single names.
#pragma once

#include "state/app_state.h"

#include <windows.h>

// One of the spooler's lists at one level: the published records, from the start of the buffer, with their
// texts behind them. `count` gets their number, never more than the buffer has room for. Null, with a count
// of 0, when the spooler has nothing or the level isn't one of those named; released with release_bytes
// (support/memory.h).
void* enumerate_printers(DWORD level, DWORD* count);   // local queues; levels 1 and 2
void* enumerate_drivers(DWORD level, DWORD* count);    // of the machine's own environment; level 6
void* enumerate_monitors(DWORD level, DWORD* count);   // level 1; first logs "EnumMonitors <result> <bytes>"
void* enumerate_ports(DWORD level, DWORD* count);      // level 2; first logs "EnumPorts <result> <bytes>"
void* enumerate_processors(DWORD level, DWORD* count); // level 1

// 1 when the spooler has a driver of exactly that name, else 0. With a match its version goes to version_out,
// which may be null; without one it isn't touched.
int find_installed_driver(const WCHAR* driver_name, DriverVersion* version_out);

int printer_exists(const WCHAR* name); // 1 when a local queue of exactly that name exists, else 0

// Whether the spooler has an entry of exactly this name, case included: 1 or 0. Each entry that is looked at
// gets a line in the log, up to the match.
int print_processor_exists(const WCHAR* name);
int monitor_exists(const WCHAR* name);
int port_exists(const WCHAR* name);
int queue_on_port_exists(const WCHAR* port_name); // whether a local queue prints to that port
