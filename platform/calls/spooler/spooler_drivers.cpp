#include "calls/spooler/spooler_handles.h"
#include "machine/text.h"

#include <winspool.h>

namespace {

using platform::session;

} // namespace

BOOL EnumPrinterDriversW(LPWSTR server, LPWSTR environment, DWORD level, LPBYTE records, DWORD size,
                         LPDWORD needed, LPDWORD returned) {
    platform::Call call("EnumPrinterDriversW", "level " + std::to_string(level));
    if (call.fails(RPC_S_SERVER_UNAVAILABLE))
        return FALSE;
    platform::refuse_servers(call, server);
    if (level == 3 || level == 4 || level == 5 || level == 8)
        call.refuse("drivers at levels other than 1, 2 and 6 aren't modelled");
    const std::u16string_view name = environment == nullptr ? platform::own_environment : environment;
    if (name != u"all" && !platform::known_environment(name))
        return platform::failed(ERROR_INVALID_ENVIRONMENT);
    if (!platform::good_enumeration(records, size, needed, returned) || platform::spooler_away())
        return FALSE;
    const std::lock_guard lock(platform::spooler_lock());
    const auto drivers = platform::drivers_of(session().machine.spooler, name);
    if (level == 1)
        return platform::deliver(platform::name_records<DRIVER_INFO_1W>(drivers), records, size, needed,
                                 returned);
    if (level == 2)
        return platform::deliver(platform::driver_records<DRIVER_INFO_2W>(drivers), records, size, needed,
                                 returned);
    if (level == 6)
        return platform::deliver(platform::driver_records<DRIVER_INFO_6W>(drivers), records, size, needed,
                                 returned);
    return platform::failed(ERROR_INVALID_LEVEL);
}

BOOL EnumPrintProcessorsW(LPWSTR server, LPWSTR environment, DWORD level, LPBYTE records, DWORD size,
                          LPDWORD needed, LPDWORD returned) {
    platform::Call call("EnumPrintProcessorsW", "level " + std::to_string(level));
    if (call.fails(RPC_S_SERVER_UNAVAILABLE))
        return FALSE;
    platform::refuse_servers(call, server);
    if (environment != nullptr && !platform::known_environment(environment))
        return platform::failed(ERROR_INVALID_ENVIRONMENT);
    if (level != 1)
        return platform::failed(ERROR_INVALID_LEVEL);
    if (!platform::good_enumeration(records, size, needed, returned) || platform::spooler_away())
        return FALSE;
    const std::lock_guard lock(platform::spooler_lock());
    const bool own = environment == nullptr || platform::same_name(environment, platform::own_environment);
    const auto found = platform::processor_records<PRINTPROCESSOR_INFO_1W>(
        own ? session().machine.spooler.processors : std::vector<std::u16string>());
    return platform::deliver(found, records, size, needed, returned);
}
