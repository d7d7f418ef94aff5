// What every port monitor understands, whichever made it: the way in, and the command that makes a port.
#pragma once

#include "support/platform_gaps.h"

#include <windows.h>

// Opens a monitor's transceive interface under its handle name, ",XcvMonitor <monitor>", with the right to
// manage it. Null with the last error set when it can't be reached.
HANDLE open_port_monitor(const WCHAR* handle_name);

// Sends "AddPort" with the filled block, whose version, protocol (RAW) and size are set here. What the
// monitor answers goes to the log alone.
void send_add_port(HANDLE monitor, PORT_DATA_1* port);
