#include "calls/spooler/spooler_handles.h"
#include "machine/text.h"

#include <winspool.h>

namespace {

using platform::session;

} // namespace

BOOL EnumPortsW(LPWSTR server, DWORD level, LPBYTE records, DWORD size, LPDWORD needed, LPDWORD returned) {
    platform::Call call("EnumPortsW", "level " + std::to_string(level));
    if (call.fails(RPC_S_SERVER_UNAVAILABLE))
        return FALSE;
    platform::refuse_servers(call, server);
    if (level != 1 && level != 2)
        return platform::failed(ERROR_INVALID_LEVEL);
    if (!platform::good_enumeration(records, size, needed, returned) || platform::spooler_away())
        return FALSE;
    const std::lock_guard lock(platform::spooler_lock());
    if (level == 2)
        return platform::deliver(platform::port_records<PORT_INFO_2W>(session().machine.spooler.ports),
                                 records, size, needed, returned);
    return platform::deliver(platform::name_records<PORT_INFO_1W>(session().machine.spooler.ports), records,
                             size, needed, returned);
}

BOOL EnumMonitorsW(LPWSTR server, DWORD level, LPBYTE records, DWORD size, LPDWORD needed, LPDWORD returned) {
    platform::Call call("EnumMonitorsW", "level " + std::to_string(level));
    if (call.fails(RPC_S_SERVER_UNAVAILABLE))
        return FALSE;
    platform::refuse_servers(call, server);
    if (level != 1 && level != 2)
        return platform::failed(ERROR_INVALID_LEVEL);
    if (!platform::good_enumeration(records, size, needed, returned) || platform::spooler_away())
        return FALSE;
    const std::lock_guard lock(platform::spooler_lock());
    if (level == 2)
        return platform::deliver(
            platform::monitor_records<MONITOR_INFO_2W>(session().machine.spooler.monitors), records, size,
            needed, returned);
    return platform::deliver(platform::name_records<MONITOR_INFO_1W>(session().machine.spooler.monitors),
                             records, size, needed, returned);
}

BOOL AddMonitorW(LPWSTR server, DWORD level, LPBYTE monitor) {
    const auto* const info = reinterpret_cast<const MONITOR_INFO_2W*>(monitor);
    platform::Call call("AddMonitorW", info != nullptr && level == 2 ? platform::shown(info->pName) : "");
    if (call.fails(ERROR_ACCESS_DENIED))
        return FALSE;
    platform::refuse_servers(call, server);
    if (level != 2)
        return platform::failed(ERROR_INVALID_LEVEL);
    if (info == nullptr || info->pName == nullptr || info->pDLLName == nullptr)
        return platform::failed(ERROR_INVALID_PARAMETER);
    if (platform::spooler_away())
        return FALSE;
    const std::lock_guard lock(platform::spooler_lock());
    const std::uint32_t error = platform::add_monitor(
        session().machine.spooler, info->pName,
        info->pEnvironment == nullptr ? platform::own_environment : info->pEnvironment, info->pDLLName);
    return error == 0 ? TRUE : platform::failed(error);
}
