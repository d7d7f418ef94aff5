// What the local spooler holds: whole lists of its records, and questions about single names.
#pragma once

#include <windows.h>

// One of the spooler's lists at one level: the published records, from the start of the buffer, with their
// texts behind them. `count` gets their number, never more than the buffer has room for. Null, with a count
// of 0, when the spooler has nothing or the level isn't one of those named; released with release_bytes.
void* enumerate_printers(DWORD level, DWORD* count);   // local queues; levels 1 and 2
void* enumerate_drivers(DWORD level, DWORD* count);    // of the machine's own environment; level 6
void* enumerate_monitors(DWORD level, DWORD* count);   // level 1; first logs "EnumMonitors <result> <bytes>"
void* enumerate_ports(DWORD level, DWORD* count);      // level 2; first logs "EnumPorts <result> <bytes>"
void* enumerate_processors(DWORD level, DWORD* count); // level 1

// Whether the spooler has an entry of exactly this name, case included: 1 or 0. Each entry that is looked at
// gets a line in the log, up to the match.
int print_processor_exists(const WCHAR* name);
int monitor_exists(const WCHAR* name);
int port_exists(const WCHAR* name);
int queue_on_port_exists(const WCHAR* port_name); // whether a local queue prints to that port
