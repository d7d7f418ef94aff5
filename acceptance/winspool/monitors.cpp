// Port monitors: added, and spoken to.
#include "machine/monitor_ports.h"

#include "stand_in.h"

using stand_in::Call;
using stand_in::model_text;
using stand_in::shown;

extern "C" BOOL WINAPI AddMonitorW(LPWSTR server, DWORD level, LPBYTE monitor) {
    const auto* const info = reinterpret_cast<const MONITOR_INFO_2W*>(monitor);
    Call call("AddMonitorW", info != nullptr && level == 2 ? shown(info->pName) : "");
    if (call.fails(ERROR_ACCESS_DENIED) || !call.local(server))
        return FALSE;
    if (level != 2)
        return call.fail(ERROR_INVALID_LEVEL);
    if (info == nullptr || info->pName == nullptr || info->pDLLName == nullptr)
        return call.fail(ERROR_INVALID_PARAMETER);
    if (call.spooler_away())
        return FALSE;
    const std::u16string environment = info->pEnvironment == nullptr
                                           ? std::u16string(platform::own_environment)
                                           : model_text(info->pEnvironment);
    return call.end(platform::add_monitor(call.state(), model_text(info->pName), environment,
                                          model_text(info->pDLLName)));
}

// The result tells whether the monitor was reached; what it has to say about the command stands in `status`.
extern "C" BOOL WINAPI XcvDataW(HANDLE monitor, PCWSTR command, PBYTE input, DWORD input_size, PBYTE output,
                                DWORD output_size, PDWORD needed, PDWORD status) {
    Call call("XcvDataW", shown(command));
    if (call.fails(RPC_S_SERVER_UNAVAILABLE))
        return FALSE;
    if (command == nullptr || needed == nullptr || status == nullptr ||
        (input == nullptr && input_size != 0) || (output == nullptr && output_size != 0))
        return call.fail(ERROR_INVALID_PARAMETER);
    if (call.spooler_away())
        return FALSE;
    const stand_in::Handle* const opened = call.find(monitor, true);
    if (opened == nullptr)
        return FALSE;
    const platform::PortMonitor* const known = platform::find_monitor(call.state(), opened->name);
    if (known == nullptr)
        return call.fail(ERROR_INVALID_HANDLE);
    if (!platform::has_transceive_interface(*known))
        return call.refuse("the commands of this monitor aren't modelled");
    const platform::MonitorAnswer answer = platform::answer_monitor(
        call.state(), *known, opened->access, model_text(command), {input, input_size}, output_size);
    if (!answer.output.empty())
        std::memcpy(output, answer.output.data(), answer.output.size());
    *needed = answer.needed;
    *status = answer.status;
    call.clear_error(); // as the remote call beneath leaves it
    return call.end(0);
}
