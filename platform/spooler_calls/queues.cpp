// Queues: listed, opened, added, deleted, and which of them is the default.
#include "spooler_calls/spooler_call.h"

#include <cstring>

using platform::given;
using platform::model_text;
using platform::SpoolerCall;

namespace {

constexpr std::u16string_view monitor_prefix = u",XcvMonitor ";

// What isn't modelled of a queue to be added; null when there is nothing of that.
const char* unmodelled_part(const PRINTER_INFO_2W& info) {
    if (given(info.pServerName) || given(info.pShareName) || given(info.pComment) || given(info.pLocation) ||
        given(info.pSepFile) || given(info.pParameters) || info.pDevMode != nullptr ||
        info.pSecurityDescriptor != nullptr)
        return "the server, share, comment, location, separator file, parameters, device mode and security "
               "descriptor of a queue aren't modelled";
    if (info.Priority != 0 || info.DefaultPriority != 0 || info.StartTime != 0 || info.UntilTime != 0)
        return "priorities and times of a queue aren't modelled";
    return nullptr;
}

platform::PrintQueue described_queue(const PRINTER_INFO_2W& info) {
    platform::PrintQueue queue;
    queue.name = model_text(info.pPrinterName);
    queue.port = model_text(info.pPortName);
    queue.driver = model_text(info.pDriverName);
    queue.processor = model_text(info.pPrintProcessor);
    queue.datatype = model_text(info.pDatatype);
    queue.attributes = info.Attributes;
    return queue;
}

BOOL open_monitor(SpoolerCall& call, std::u16string_view name, std::uint32_t access, HANDLE* result) {
    if (platform::find_monitor(call.state(), name) == nullptr)
        return call.fail(ERROR_INVALID_PRINTER_NAME);
    *result = call.open({std::u16string(name), access, true});
    return TRUE;
}

BOOL open_queue(SpoolerCall& call, const std::u16string& name, const PRINTER_DEFAULTSW* defaults,
                HANDLE* result) {
    if (name.find(u',') != name.npos)
        return call.refuse("names with options behind a comma aren't modelled");
    const bool asks = defaults != nullptr && defaults->DesiredAccess != 0;
    const std::uint32_t access = asks ? defaults->DesiredAccess : PRINTER_ACCESS_USE;
    if (defaults != nullptr && defaults->pDatatype != nullptr &&
        !platform::known_datatype(model_text(defaults->pDatatype)))
        return call.fail(ERROR_INVALID_DATATYPE);
    if (const std::uint32_t error = platform::open_queue(call.state(), name, access); error != 0)
        return call.fail(error);
    *result = call.open({name, access, false});
    return TRUE;
}

} // namespace

BOOL WINAPI EnumPrintersW(DWORD flags, LPWSTR name, DWORD level, LPBYTE records, DWORD size, LPDWORD needed,
                          LPDWORD returned) {
    SpoolerCall call("EnumPrintersW", "level " + std::to_string(level));
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

BOOL WINAPI OpenPrinterW(LPWSTR name, LPHANDLE printer, LPPRINTER_DEFAULTSW defaults) {
    SpoolerCall call("OpenPrinterW", platform::shown_text(name));
    if (call.fails(ERROR_INVALID_PRINTER_NAME))
        return FALSE;
    if (printer == nullptr)
        return call.fail(ERROR_INVALID_PARAMETER);
    *printer = nullptr;
    if (call.spooler_away())
        return FALSE;
    if (!given(name))
        return call.refuse("the print server itself isn't modelled");
    if (defaults != nullptr && defaults->pDevMode != nullptr)
        return call.refuse("device modes aren't modelled");
    const std::u16string text = model_text(name);
    if (text.starts_with(monitor_prefix))
        return open_monitor(call, text.substr(monitor_prefix.size()),
                            defaults == nullptr ? 0 : defaults->DesiredAccess, printer);
    return open_queue(call, text, defaults, printer);
}

// Closing can't be made to fail on demand: nobody could close the handle after that.
BOOL WINAPI ClosePrinter(HANDLE printer) {
    SpoolerCall call("ClosePrinter", platform::handle_kind(printer));
    return call.close(printer);
}

HANDLE WINAPI AddPrinterW(LPWSTR server, DWORD level, LPBYTE printer) {
    const auto* const info = reinterpret_cast<const PRINTER_INFO_2W*>(printer);
    SpoolerCall call("AddPrinterW",
                     info != nullptr && level == 2 ? platform::shown_text(info->pPrinterName) : "");
    if (call.fails(ERROR_ACCESS_DENIED) || !call.local(server))
        return nullptr;
    if (level != 2 || info == nullptr) {
        call.fail(level != 2 ? ERROR_INVALID_LEVEL : ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    if (call.spooler_away())
        return nullptr;
    if (const char* const part = unmodelled_part(*info); part != nullptr) {
        call.refuse(part);
        return nullptr;
    }
    const platform::PrintQueue queue = described_queue(*info);
    if (!call.end(platform::add_queue(call.state(), queue)))
        return nullptr;
    return call.open({queue.name, PRINTER_ALL_ACCESS, false});
}

BOOL WINAPI DeletePrinter(HANDLE printer) {
    SpoolerCall call("DeletePrinter", platform::to_utf8(platform::handle_name(printer)));
    if (call.fails(ERROR_ACCESS_DENIED) || call.spooler_away() || call.queue(printer, 0) == nullptr)
        return FALSE;
    const auto opened = call.find(printer, false);
    return call.end(platform::delete_queue(call.state(), opened->name, opened->access));
}

BOOL WINAPI SetDefaultPrinterW(LPCWSTR name) {
    SpoolerCall call("SetDefaultPrinterW", platform::shown_text(name));
    if (call.fails(ERROR_INVALID_PRINTER_NAME) || call.spooler_away())
        return FALSE;
    return call.end(platform::set_default_printer(call.state(), model_text(name)));
}

BOOL WINAPI GetDefaultPrinterW(LPWSTR name, LPDWORD characters) {
    SpoolerCall call("GetDefaultPrinterW");
    if (call.fails(ERROR_FILE_NOT_FOUND))
        return FALSE;
    if (characters == nullptr)
        return call.fail(ERROR_INVALID_PARAMETER);
    const std::u16string& text = call.state().default_printer;
    if (text.empty())
        return call.fail(ERROR_FILE_NOT_FOUND);
    const DWORD capacity = name == nullptr ? 0 : *characters;
    *characters = static_cast<DWORD>(text.size() + 1);
    if (capacity < *characters) {
        if (name != nullptr)
            std::memset(name, 0xCD, capacity * sizeof(WCHAR));
        return call.fail(ERROR_INSUFFICIENT_BUFFER);
    }
    std::memcpy(name, text.c_str(), *characters * sizeof(WCHAR));
    return TRUE;
}
