// Ports of the system's Standard TCP/IP Port monitor, in RAW mode on TCP port 9100.
#pragma once

#include <windows.h>

// Creates the port. 1 in every case but one: 0 when the monitor can't be reached, or can't take a name of
// more than 63 or an address of more than 15 characters. What the monitor answered stands in the log only.
int add_tcp_port(const WCHAR* port_name, const char* address);

// Removes the port: 1, or 0 with the reason in the log and as the thread's last error.
int delete_tcp_port(const char* port_name);
