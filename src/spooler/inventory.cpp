#include "spooler/inventory.h"

#include <winspool.h>

#include "support/install_log.h"
#include "support/memory.h"

#include <failed_step.h>

namespace {

constexpr size_t line_capacity = 256;

using EnumerateCall = BOOL (*)(DWORD level, BYTE* records, DWORD size, DWORD* needed, DWORD* count);

// Asks for the size, then for the records. The platform's results aren't looked at: size and count tell. An
// opening line, if there is one, shows the first call's result and the size.
void* enumerate(EnumerateCall call, DWORD level, size_t record_size, const WCHAR* opening_line,
                DWORD* count) {
    *count = 0;
    if (record_size == 0)
        return nullptr;
    DWORD size = 0;
    const BOOL result = call(level, nullptr, 0, &size, count);
    if (opening_line != nullptr)
        log_line(opening_line, result, size);
    *count = 0; // it may have been set although nothing was delivered
    void* records = size != 0 ? allocate_bytes(size) : nullptr;
    if (records == nullptr) {
        if (size != 0 || !result) // an empty list has no size either
            step_failed(TEXT("asking the spooler for a list"));
        return nullptr;
    }
    DWORD needed = 0;
    if (!call(level, static_cast<BYTE*>(records), size, &needed, count))
        step_failed(TEXT("asking the spooler for a list"));
    if (*count > size / record_size)
        *count = static_cast<DWORD>(size / record_size);
    return records;
}

BOOL call_printers(DWORD level, BYTE* records, DWORD size, DWORD* needed, DWORD* count) {
    return EnumPrintersW(PRINTER_ENUM_LOCAL, nullptr, level, records, size, needed, count);
}

BOOL call_drivers(DWORD level, BYTE* records, DWORD size, DWORD* needed, DWORD* count) {
    return EnumPrinterDriversW(nullptr, nullptr, level, records, size, needed, count);
}

BOOL call_monitors(DWORD level, BYTE* records, DWORD size, DWORD* needed, DWORD* count) {
    return EnumMonitorsW(nullptr, level, records, size, needed, count);
}

BOOL call_ports(DWORD level, BYTE* records, DWORD size, DWORD* needed, DWORD* count) {
    return EnumPortsW(nullptr, level, records, size, needed, count);
}

BOOL call_processors(DWORD level, BYTE* records, DWORD size, DWORD* needed, DWORD* count) {
    return EnumPrintProcessorsW(nullptr, nullptr, level, records, size, needed, count);
}

// The field of an entry of a list that is compared; some log the entry.
using EntryName = const WCHAR* (*)(DWORD index, const void* records);

const WCHAR* show_name(DWORD index, const WCHAR* name) {
    log_line_within(line_capacity, TEXT("%d:%s\r\n"), index, name);
    return name;
}

const WCHAR* show_processor(DWORD index, const void* records) {
    return show_name(index, static_cast<const PRINTPROCESSOR_INFO_1W*>(records)[index].pName);
}

const WCHAR* show_monitor(DWORD index, const void* records) {
    return show_name(index, static_cast<const MONITOR_INFO_1W*>(records)[index].pName);
}

const WCHAR* show_port(DWORD index, const void* records) {
    const PORT_INFO_2W& port = static_cast<const PORT_INFO_2W*>(records)[index];
    log_line_within(line_capacity, TEXT("%d:%s,%s,%s\r\n"), index, port.pPortName, port.pMonitorName,
                    port.pDescription);
    return port.pPortName;
}

const WCHAR* show_queue_port(DWORD index, const void* records) {
    return show_name(index, static_cast<const PRINTER_INFO_2W*>(records)[index].pPortName);
}

const WCHAR* queue_name(DWORD index, const void* records) {
    return static_cast<const PRINTER_INFO_1W*>(records)[index].pName;
}

const WCHAR* driver_name_of(DWORD index, const void* records) {
    return static_cast<const DRIVER_INFO_6W*>(records)[index].pName;
}

// The index of the first entry of that name, or `count`.
DWORD find_entry(const void* records, DWORD count, EntryName name_of, const WCHAR* name) {
    DWORD index = 0;
    for (; index < count; ++index) {
        const WCHAR* const known = name_of(index, records);
        if (lstrcmpW(known != nullptr ? known : TEXT(""), name) == 0)
            break;
    }
    return index;
}

// Whether a list has an entry of that name; releases the list.
int has_entry(void* records, DWORD count, EntryName name_of, const WCHAR* name) {
    const int found = find_entry(records, count, name_of, name) < count;
    release_bytes(records);
    return found;
}

} // namespace

void* enumerate_printers(DWORD level, DWORD* count) {
    const size_t size = level == 1 ? sizeof(PRINTER_INFO_1W) : level == 2 ? sizeof(PRINTER_INFO_2W) : 0;
    return enumerate(call_printers, level, size, nullptr, count);
}

void* enumerate_drivers(DWORD level, DWORD* count) {
    return enumerate(call_drivers, level, level == 6 ? sizeof(DRIVER_INFO_6W) : 0, nullptr, count);
}

void* enumerate_monitors(DWORD level, DWORD* count) {
    return enumerate(call_monitors, level, level == 1 ? sizeof(MONITOR_INFO_1W) : 0,
                     TEXT("EnumMonitors %d %d\r\n"), count);
}

void* enumerate_ports(DWORD level, DWORD* count) {
    return enumerate(call_ports, level, level == 2 ? sizeof(PORT_INFO_2W) : 0, TEXT("EnumPorts %d %d\r\n"),
                     count);
}

void* enumerate_processors(DWORD level, DWORD* count) {
    return enumerate(call_processors, level, level == 1 ? sizeof(PRINTPROCESSOR_INFO_1W) : 0, nullptr, count);
}

int print_processor_exists(const WCHAR* name) {
    DWORD count = 0;
    void* const records = enumerate_processors(1, &count);
    return has_entry(records, count, show_processor, name);
}

int monitor_exists(const WCHAR* name) {
    DWORD count = 0;
    void* const records = enumerate_monitors(1, &count);
    return has_entry(records, count, show_monitor, name);
}

int port_exists(const WCHAR* name) {
    DWORD count = 0;
    void* const records = enumerate_ports(2, &count);
    return has_entry(records, count, show_port, name);
}

int queue_on_port_exists(const WCHAR* port_name) {
    DWORD count = 0;
    void* const records = enumerate_printers(2, &count);
    return has_entry(records, count, show_queue_port, port_name);
}

int printer_exists(const WCHAR* name) {
    DWORD count = 0;
    void* const records = enumerate_printers(1, &count);
    return has_entry(records, count, queue_name, name);
}

int find_installed_driver(const WCHAR* driver_name, DriverVersion* version_out) {
    DWORD count = 0;
    void* const records = enumerate_drivers(6, &count);
    const DWORD index = find_entry(records, count, driver_name_of, driver_name);
    if (index < count && version_out != nullptr)
        *version_out = static_cast<const DRIVER_INFO_6W*>(records)[index].dwlDriverVersion;
    release_bytes(records);
    return index < count;
}
