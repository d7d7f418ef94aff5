// Ports and their monitors: listed, added, spoken to.
#include "machine/monitor_ports.h"
#include "spooler_calls/spooler_call.h"

#include <cstring>

using platform::SpoolerCall;

BOOL WINAPI EnumPortsW(LPWSTR server, DWORD level, LPBYTE records, DWORD size, LPDWORD needed,
                       LPDWORD returned) {
    SpoolerCall call("EnumPortsW", "level " + std::to_string(level));
    if (call.fails(RPC_S_SERVER_UNAVAILABLE) || !call.local(server))
        return FALSE;
    if (level != 1 && level != 2)
        return call.fail(ERROR_INVALID_LEVEL);
    if (!call.good_enumeration(records, size, needed, returned) || call.spooler_away())
        return FALSE;
    const auto& ports = call.state().ports;
    if (level == 2)
        return call.deliver(platform::port_records<PORT_INFO_2W>(ports), records, size, needed, returned);
    return call.deliver(platform::name_records<PORT_INFO_1W>(ports), records, size, needed, returned);
}

BOOL WINAPI EnumMonitorsW(LPWSTR server, DWORD level, LPBYTE records, DWORD size, LPDWORD needed,
                          LPDWORD returned) {
    SpoolerCall call("EnumMonitorsW", "level " + std::to_string(level));
    if (call.fails(RPC_S_SERVER_UNAVAILABLE) || !call.local(server))
        return FALSE;
    if (level != 1 && level != 2)
        return call.fail(ERROR_INVALID_LEVEL);
    if (!call.good_enumeration(records, size, needed, returned) || call.spooler_away())
        return FALSE;
    const auto& monitors = call.state().monitors;
    if (level == 2)
        return call.deliver(platform::monitor_records<MONITOR_INFO_2W>(monitors), records, size, needed,
                            returned);
    return call.deliver(platform::name_records<MONITOR_INFO_1W>(monitors), records, size, needed, returned);
}

BOOL WINAPI AddMonitorW(LPWSTR server, DWORD level, LPBYTE monitor) {
    const auto* const info = reinterpret_cast<const MONITOR_INFO_2W*>(monitor);
    SpoolerCall call("AddMonitorW", info != nullptr && level == 2 ? platform::shown_text(info->pName) : "");
    if (call.fails(ERROR_ACCESS_DENIED) || !call.local(server))
        return FALSE;
    if (level != 2)
        return call.fail(ERROR_INVALID_LEVEL);
    if (info == nullptr || info->pName == nullptr || info->pDLLName == nullptr)
        return call.fail(ERROR_INVALID_PARAMETER);
    if (call.spooler_away())
        return FALSE;
    return call.end(platform::add_monitor(call.state(), platform::model_text(info->pName),
                                          platform::environment_or_own(call.state(), info->pEnvironment),
                                          platform::model_text(info->pDLLName)));
}

// The result tells whether the monitor was reached; what it has to say about the command stands in `status`.
BOOL WINAPI XcvDataW(HANDLE monitor, PCWSTR command, PBYTE input, DWORD input_size, PBYTE output,
                     DWORD output_size, PDWORD needed, PDWORD status) {
    SpoolerCall call("XcvDataW", platform::shown_text(command));
    if (call.fails(RPC_S_SERVER_UNAVAILABLE))
        return FALSE;
    if (command == nullptr || needed == nullptr || status == nullptr ||
        (input == nullptr && input_size != 0) || (output == nullptr && output_size != 0))
        return call.fail(ERROR_INVALID_PARAMETER);
    if (call.spooler_away())
        return FALSE;
    const auto opened = call.find(monitor, true);
    if (!opened)
        return FALSE;
    const platform::PortMonitor* const known = platform::find_monitor(call.state(), opened->name);
    if (known == nullptr)
        return call.fail(ERROR_INVALID_HANDLE);
    if (!platform::has_transceive_interface(*known))
        return call.refuse("the commands of " + platform::to_utf8(known->name) + " aren't modelled");
    const platform::MonitorAnswer answer =
        platform::answer_monitor(call.state(), *known, opened->access, platform::model_text(command),
                                 {input, input_size}, output_size);
    if (!answer.output.empty())
        std::memcpy(output, answer.output.data(), answer.output.size());
    *needed = answer.needed;
    *status = answer.status;
    return call.end(0);
}
