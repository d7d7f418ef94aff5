#include "calls/spooler/spooler_handles.h"
#include "machine/monitor_ports.h"
#include "machine/text.h"

#include <winspool.h>

#include <cstring>

// The result tells whether the monitor was reached; what it has to say about the command stands in `status`.
BOOL XcvDataW(HANDLE monitor, PCWSTR command, PBYTE input, DWORD input_size, PBYTE output, DWORD output_size,
              PDWORD needed, PDWORD status) {
    platform::Call call("XcvDataW", platform::shown(command));
    if (call.fails(RPC_S_SERVER_UNAVAILABLE))
        return FALSE;
    if (command == nullptr || needed == nullptr || status == nullptr ||
        (input == nullptr && input_size != 0) || (output == nullptr && output_size != 0))
        return platform::failed(ERROR_INVALID_PARAMETER);
    if (platform::spooler_away())
        return FALSE;
    const auto opened = platform::session().handles.find<platform::SpoolerHandle>(monitor);
    if (!opened || !opened->monitor)
        return platform::failed(ERROR_INVALID_HANDLE);
    const std::lock_guard lock(platform::spooler_lock());
    platform::SpoolerState& spooler = platform::session().machine.spooler;
    const platform::PortMonitor* known = platform::find_monitor(spooler, opened->name);
    if (known == nullptr)
        return platform::failed(ERROR_INVALID_HANDLE);
    if (!platform::has_transceive_interface(*known))
        call.refuse("the commands of " + platform::to_utf8(known->name) + " aren't modelled");
    const platform::MonitorAnswer answer =
        platform::answer_monitor(spooler, *known, opened->access, command, {input, input_size}, output_size);
    if (!answer.output.empty())
        std::memcpy(output, answer.output.data(), answer.output.size());
    *needed = answer.needed;
    *status = answer.status;
    platform::set_last_error(ERROR_SUCCESS); // as the remote call beneath leaves it
    return TRUE;
}
