#include "spooler/port_monitor.h"

#include <winspool.h>

#include "support/install_log.h"
#include "support/text.h"

#include <failed_step.h>

#include <iterator>

HANDLE open_port_monitor(const WCHAR* handle_name) {
    WCHAR name[256]; // the call takes a name that it may write to
    if (!copy_text(name, std::size(name), handle_name)) {
        SetLastError(ERROR_BUFFER_OVERFLOW);
        return nullptr;
    }
    PRINTER_DEFAULTSW access = {};
    access.DesiredAccess = SERVER_ACCESS_ADMINISTER;
    HANDLE monitor = nullptr;
    return OpenPrinterW(name, &monitor, &access) ? monitor : nullptr;
}

void send_add_port(HANDLE monitor, PORT_DATA_1* port) {
    port->dwVersion = 1;
    port->dwProtocol = PROTOCOL_RAWTCP_TYPE;
    port->cbSize = sizeof *port;
    log_line(TEXT("sztPortName [%ls]\r\n"), port->sztPortName);
    DWORD needed = 0;
    DWORD status = 0;
    SetLastError(ERROR_SUCCESS); // what stands there is from another call
    const BOOL result = XcvDataW(monitor, TEXT("AddPort"), reinterpret_cast<BYTE*>(port), sizeof *port,
                                 nullptr, 0, &needed, &status);
    log_line(TEXT("XcvData AddPort %d %d %x %x [%ls]\r\n"), result, needed, status, GetLastError(),
             port->sztPortName);
    // A port that is there from an earlier install serves as it is.
    if (!result || (status != ERROR_SUCCESS && status != ERROR_ALREADY_EXISTS))
        line_failed();
}
