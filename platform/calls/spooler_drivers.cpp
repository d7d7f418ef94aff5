#include "calls/spooler_handles.h"
#include "machine/text.h"

#include <winspool.h>

namespace {

using platform::RecordBuffer;
using platform::session;

constexpr DWORD user_mode_driver = 3;

// The drivers of one environment, or of all for the name "all".
std::vector<platform::PrinterDriver> drivers_of(std::u16string_view environment) {
    std::vector<platform::PrinterDriver> found;
    for (const platform::PrinterDriver& driver : session().machine.spooler.drivers) {
        if (environment == u"all" || platform::same_name(driver.environment, environment))
            found.push_back(driver);
    }
    return found;
}

RecordBuffer<DRIVER_INFO_1W> names(const std::vector<platform::PrinterDriver>& drivers) {
    RecordBuffer<DRIVER_INFO_1W> records;
    for (const platform::PrinterDriver& driver : drivers) {
        records.add();
        records.text(&DRIVER_INFO_1W::pName, driver.name);
    }
    return records;
}

// The driver's files, dates and makers aren't modelled; as with a driver that lacks them the fields stay
// null.
template<class Record>
RecordBuffer<Record> full_records(const std::vector<platform::PrinterDriver>& drivers) {
    RecordBuffer<Record> records;
    for (const platform::PrinterDriver& driver : drivers) {
        Record& record = records.add();
        record.cVersion = user_mode_driver;
        if constexpr (requires { record.dwlDriverVersion; })
            record.dwlDriverVersion = driver.version;
        records.text(&Record::pName, driver.name);
        records.text(&Record::pEnvironment, driver.environment);
    }
    return records;
}

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
    const auto drivers = drivers_of(name);
    if (level == 1)
        return platform::deliver(names(drivers), records, size, needed, returned);
    if (level == 2)
        return platform::deliver(full_records<DRIVER_INFO_2W>(drivers), records, size, needed, returned);
    if (level == 6)
        return platform::deliver(full_records<DRIVER_INFO_6W>(drivers), records, size, needed, returned);
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
    RecordBuffer<PRINTPROCESSOR_INFO_1W> found;
    if (environment == nullptr || platform::same_name(environment, platform::own_environment)) {
        for (const std::u16string& processor : session().machine.spooler.processors) {
            found.add();
            found.text(&PRINTPROCESSOR_INFO_1W::pName, processor);
        }
    }
    return platform::deliver(found, records, size, needed, returned);
}
