// Queues: opened, added, deleted, and which of them is the default.
#include "stand_in.h"

using stand_in::Call;
using stand_in::model_text;
using stand_in::shown;

namespace {

constexpr std::u16string_view monitor_prefix = u",XcvMonitor ";

bool given(const wchar_t* text) {
    return text != nullptr && *text != 0;
}

bool unmodelled(const PRINTER_INFO_2W& info) {
    return given(info.pServerName) || given(info.pShareName) || given(info.pComment) ||
           given(info.pLocation) || given(info.pSepFile) || given(info.pParameters) ||
           info.pDevMode != nullptr || info.pSecurityDescriptor != nullptr || info.Priority != 0 ||
           info.DefaultPriority != 0 || info.StartTime != 0 || info.UntilTime != 0;
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

BOOL open_monitor(Call& call, std::u16string_view name, std::uint32_t access, HANDLE* result) {
    if (platform::find_monitor(call.state(), name) == nullptr)
        return call.fail(ERROR_INVALID_PRINTER_NAME);
    *result = call.open({std::u16string(name), access, true});
    return TRUE;
}

} // namespace

extern "C" BOOL WINAPI OpenPrinterW(LPWSTR name, LPHANDLE printer, LPPRINTER_DEFAULTSW defaults) {
    Call call("OpenPrinterW", shown(name));
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
    ACCESS_MASK access = defaults == nullptr ? 0 : defaults->DesiredAccess;
    if (text.starts_with(monitor_prefix))
        return open_monitor(call, text.substr(monitor_prefix.size()), access, printer);
    if (text.find(u',') != text.npos)
        return call.refuse("names with options behind a comma aren't modelled");
    if (access == 0)
        access = PRINTER_ACCESS_USE;
    if (defaults != nullptr && defaults->pDatatype != nullptr &&
        !platform::known_datatype(model_text(defaults->pDatatype)))
        return call.fail(ERROR_INVALID_DATATYPE);
    if (const std::uint32_t error = platform::open_queue(call.state(), text, access); error != 0)
        return call.fail(error);
    *printer = call.open({text, access, false});
    return TRUE;
}

extern "C" BOOL WINAPI ClosePrinter(HANDLE printer) {
    Call call("ClosePrinter", "");
    if (call.close(printer))
        return TRUE;
    stand_in::note("ClosePrinter of a handle that isn't open");
    return call.fail(ERROR_INVALID_HANDLE);
}

extern "C" HANDLE WINAPI AddPrinterW(LPWSTR server, DWORD level, LPBYTE printer) {
    const auto* const info = reinterpret_cast<const PRINTER_INFO_2W*>(printer);
    Call call("AddPrinterW", info != nullptr && level == 2 ? shown(info->pPrinterName) : "");
    if (call.fails(ERROR_ACCESS_DENIED) || !call.local(server))
        return nullptr;
    if (level != 2 || info == nullptr) {
        call.fail(level != 2 ? ERROR_INVALID_LEVEL : ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    if (call.spooler_away())
        return nullptr;
    if (unmodelled(*info)) {
        call.refuse("a queue's name, port, driver, processor, datatype and attributes alone are modelled");
        return nullptr;
    }
    const platform::PrintQueue queue = described_queue(*info);
    if (!call.end(platform::add_queue(call.state(), queue)))
        return nullptr;
    return call.open({queue.name, PRINTER_ALL_ACCESS, false});
}

extern "C" BOOL WINAPI DeletePrinter(HANDLE printer) {
    Call call("DeletePrinter", "");
    const stand_in::Handle* const handle = call.find(printer, false);
    if (handle == nullptr)
        return FALSE;
    call.about(platform::to_utf8(handle->name));
    if (call.fails(ERROR_ACCESS_DENIED) || call.spooler_away() || call.queue(printer, 0) == nullptr)
        return FALSE;
    return call.end(platform::delete_queue(call.state(), handle->name, handle->access));
}

extern "C" BOOL WINAPI SetDefaultPrinterW(LPCWSTR name) {
    Call call("SetDefaultPrinterW", shown(name));
    if (call.fails(ERROR_INVALID_PRINTER_NAME) || call.spooler_away())
        return FALSE;
    return call.end(platform::set_default_printer(call.state(), model_text(name)));
}

extern "C" BOOL WINAPI GetDefaultPrinterW(LPWSTR name, LPDWORD characters) {
    Call call("GetDefaultPrinterW", "");
    if (call.fails(ERROR_FILE_NOT_FOUND))
        return FALSE;
    if (characters == nullptr)
        return call.fail(ERROR_INVALID_PARAMETER);
    if (call.machine_missing())
        return FALSE;
    const std::wstring text = stand_in::platform_text(call.state().default_printer);
    if (text.empty())
        return call.fail(ERROR_FILE_NOT_FOUND);
    const DWORD capacity = name == nullptr ? 0 : *characters;
    *characters = static_cast<DWORD>(text.size() + 1);
    if (capacity < *characters)
        return call.fail(ERROR_INSUFFICIENT_BUFFER);
    std::memcpy(name, text.c_str(), *characters * sizeof(wchar_t));
    return TRUE;
}
