#include "spooler/tcp_port.h"

#include <winspool.h>

#include "spooler/port_monitor.h"
#include "support/install_log.h"
#include "support/text.h"

#include <iterator>

namespace {

constexpr DWORD raw_port_number = 9100;
constexpr WCHAR monitor_handle_name[] = TEXT(",XcvMonitor Standard TCP/IP Port");

// 0 when the name or the address doesn't fit. Both address fields carry the one text; SNMP stays off.
int fill_port(PORT_DATA_1* port, const WCHAR* port_name, const char* address) {
    port->dwPortNumber = raw_port_number;
    return copy_text(port->sztPortName, std::size(port->sztPortName), port_name) &&
           widen(port->sztHostAddress, std::size(port->sztHostAddress), address) &&
           widen(port->sztIPAddress, std::size(port->sztIPAddress), address);
}

int send_deletion(HANDLE monitor, DELETE_PORT_DATA_1* port, DWORD* error) {
    DWORD needed = 0;
    DWORD status = 0;
    BYTE nothing = 0; // the output's address must be valid, although none is wanted
    if (XcvDataW(monitor, TEXT("DeletePort"), reinterpret_cast<BYTE*>(port), sizeof *port, &nothing, 0,
                 &needed, &status))
        return 1;
    *error = GetLastError();
    log_failure(TEXT("Error in XcvData. %x %x\r\n"), *error, status);
    return 0;
}

} // namespace

int add_tcp_port(const WCHAR* port_name, const char* address) {
    PORT_DATA_1 port = {};
    log_line(TEXT("%s\r\n"), monitor_handle_name);
    const int fits = fill_port(&port, port_name, address);
    HANDLE monitor = fits ? open_port_monitor(monitor_handle_name) : nullptr;
    if (monitor == nullptr) {
        log_failure(TEXT("failed to open printer for port %s\r\n"), port_name);
        return 0;
    }
    send_add_port(monitor, &port);
    ClosePrinter(monitor);
    return 1;
}

int delete_tcp_port(const char* port_name) {
    DELETE_PORT_DATA_1 port = {};
    port.dwVersion = 1;
    HANDLE monitor = nullptr;
    if (widen(port.psztPortName, std::size(port.psztPortName), port_name))
        monitor = open_port_monitor(monitor_handle_name);
    else
        SetLastError(ERROR_BUFFER_OVERFLOW);
    if (monitor == nullptr) {
        const DWORD error = GetLastError();
        log_failure(TEXT("failed to open printer for delete port %S %x\r\n"), port_name, error);
        SetLastError(error);
        return 0;
    }
    DWORD error = ERROR_SUCCESS;
    const int deleted = send_deletion(monitor, &port, &error);
    ClosePrinter(monitor);
    SetLastError(error);
    return deleted;
}
