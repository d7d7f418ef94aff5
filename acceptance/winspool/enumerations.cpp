// What the spooler lists.
#include "stand_in.h"

using stand_in::Call;
using stand_in::model_text;

namespace {

std::string level_text(DWORD level) {
    return "level " + std::to_string(level);
}

std::u16string environment_or_own(const wchar_t* environment) {
    return environment == nullptr ? std::u16string(platform::own_environment) : model_text(environment);
}

} // namespace

extern "C" BOOL WINAPI EnumPrinterDriversW(LPWSTR server, LPWSTR environment, DWORD level, LPBYTE records,
                                           DWORD size, LPDWORD needed, LPDWORD returned) {
    Call call("EnumPrinterDriversW", level_text(level));
    if (call.fails(RPC_S_SERVER_UNAVAILABLE) || !call.local(server))
        return FALSE;
    if (level == 3 || level == 4 || level == 5 || level == 8)
        return call.refuse("drivers at levels other than 1, 2 and 6 aren't modelled");
    const std::u16string name = environment_or_own(environment);
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

extern "C" BOOL WINAPI EnumPrintProcessorsW(LPWSTR server, LPWSTR environment, DWORD level, LPBYTE records,
                                            DWORD size, LPDWORD needed, LPDWORD returned) {
    Call call("EnumPrintProcessorsW", level_text(level));
    if (call.fails(RPC_S_SERVER_UNAVAILABLE) || !call.local(server))
        return FALSE;
    const std::u16string name = environment_or_own(environment);
    if (!platform::known_environment(name))
        return call.fail(ERROR_INVALID_ENVIRONMENT);
    if (level != 1)
        return call.fail(ERROR_INVALID_LEVEL);
    if (!call.good_enumeration(records, size, needed, returned) || call.spooler_away())
        return FALSE;
    const bool own = platform::same_name(name, platform::own_environment);
    const auto found = platform::processor_records<PRINTPROCESSOR_INFO_1W>(
        own ? call.state().processors : std::vector<std::u16string>());
    return call.deliver(found, records, size, needed, returned);
}

extern "C" BOOL WINAPI EnumPortsW(LPWSTR server, DWORD level, LPBYTE records, DWORD size, LPDWORD needed,
                                  LPDWORD returned) {
    Call call("EnumPortsW", level_text(level));
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

extern "C" BOOL WINAPI EnumMonitorsW(LPWSTR server, DWORD level, LPBYTE records, DWORD size, LPDWORD needed,
                                     LPDWORD returned) {
    Call call("EnumMonitorsW", level_text(level));
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

extern "C" BOOL WINAPI EnumPrintersW(DWORD flags, LPWSTR name, DWORD level, LPBYTE records, DWORD size,
                                     LPDWORD needed, LPDWORD returned) {
    Call call("EnumPrintersW", level_text(level));
    if (call.fails(RPC_S_SERVER_UNAVAILABLE))
        return FALSE;
    if (flags != PRINTER_ENUM_LOCAL || level == 4 || level == 5)
        return call.refuse("only local queues at levels 1 and 2 are modelled");
    if (!call.local(name) || !call.good_enumeration(records, size, needed, returned) || call.spooler_away())
        return FALSE;
    const auto& queues = call.state().queues;
    if (level == 1)
        return call.deliver(platform::brief_queue_records<PRINTER_INFO_1W>(queues), records, size, needed,
                            returned);
    if (level == 2)
        return call.deliver(platform::queue_records<PRINTER_INFO_2W>(queues), records, size, needed,
                            returned);
    return call.fail(ERROR_INVALID_LEVEL);
}
