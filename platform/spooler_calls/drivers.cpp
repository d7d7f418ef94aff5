// Drivers and print processors, listed.
#include "spooler_calls/spooler_call.h"

using platform::SpoolerCall;

BOOL WINAPI EnumPrinterDriversW(LPWSTR server, LPWSTR environment, DWORD level, LPBYTE records, DWORD size,
                                LPDWORD needed, LPDWORD returned) {
    SpoolerCall call("EnumPrinterDriversW", "level " + std::to_string(level));
    if (call.fails(RPC_S_SERVER_UNAVAILABLE) || !call.local(server))
        return FALSE;
    if (level == 3 || level == 4 || level == 5 || level == 8)
        return call.refuse("drivers at levels other than 1, 2 and 6 aren't modelled");
    const std::u16string name = platform::environment_or_own(call.state(), environment);
    if (name != u"all" && !platform::known_environment(name))
        return call.fail(ERROR_INVALID_ENVIRONMENT);
    if (!call.good_enumeration(records, size, needed, returned) || call.spooler_away())
        return FALSE;
    const auto drivers = platform::drivers_of(call.state(), name);
    if (level == 1)
        return call.deliver(platform::name_records<DRIVER_INFO_1W>(drivers), records, size, needed, returned);
    if (level == 2)
        return call.deliver(platform::driver_records<DRIVER_INFO_2W>(drivers), records, size, needed,
                            returned);
    if (level == 6)
        return call.deliver(platform::driver_records<DRIVER_INFO_6W>(drivers), records, size, needed,
                            returned);
    return call.fail(ERROR_INVALID_LEVEL);
}

BOOL WINAPI EnumPrintProcessorsW(LPWSTR server, LPWSTR environment, DWORD level, LPBYTE records, DWORD size,
                                 LPDWORD needed, LPDWORD returned) {
    SpoolerCall call("EnumPrintProcessorsW", "level " + std::to_string(level));
    if (call.fails(RPC_S_SERVER_UNAVAILABLE) || !call.local(server))
        return FALSE;
    const std::u16string name = platform::environment_or_own(call.state(), environment);
    if (!platform::known_environment(name))
        return call.fail(ERROR_INVALID_ENVIRONMENT);
    if (level != 1)
        return call.fail(ERROR_INVALID_LEVEL);
    if (!call.good_enumeration(records, size, needed, returned) || call.spooler_away())
        return FALSE;
    const bool own = platform::same_name(name, call.state().environment);
    const auto found = platform::processor_records<PRINTPROCESSOR_INFO_1W>(
        own ? call.state().processors : std::vector<std::u16string>());
    return call.deliver(found, records, size, needed, returned);
}
