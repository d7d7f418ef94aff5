#include "calls/spooler/spooler_handles.h"
#include "calls/text/filled_text.h"
#include "machine/text.h"

#include <winspool.h>

namespace {

using platform::session;

std::u16string text_or_empty(const WCHAR* text) {
    return text == nullptr ? u"" : text;
}

bool given(const WCHAR* text) {
    return text != nullptr && *text != 0;
}

void refuse_unmodelled(const platform::Call& call, const PRINTER_INFO_2W& info) {
    if (given(info.pServerName) || given(info.pShareName) || given(info.pComment) || given(info.pLocation) ||
        given(info.pSepFile) || given(info.pParameters) || info.pDevMode != nullptr ||
        info.pSecurityDescriptor != nullptr)
        call.refuse(
            "the server, share, comment, location, separator file, parameters, device mode and security "
            "descriptor of a queue aren't modelled");
    if (info.Priority != 0 || info.DefaultPriority != 0 || info.StartTime != 0 || info.UntilTime != 0)
        call.refuse("priorities and times of a queue aren't modelled");
}

} // namespace

BOOL EnumPrintersW(DWORD flags, LPWSTR name, DWORD level, LPBYTE records, DWORD size, LPDWORD needed,
                   LPDWORD returned) {
    platform::Call call("EnumPrintersW", "level " + std::to_string(level));
    if (call.fails(RPC_S_SERVER_UNAVAILABLE))
        return FALSE;
    if (flags != PRINTER_ENUM_LOCAL || level == 4 || level == 5)
        call.refuse("only local queues at levels 1 and 2 are modelled");
    platform::refuse_servers(call, name);
    if (!platform::good_enumeration(records, size, needed, returned) || platform::spooler_away())
        return FALSE;
    const std::lock_guard lock(platform::spooler_lock());
    if (level == 1)
        return platform::deliver(
            platform::brief_queue_records<PRINTER_INFO_1W>(session().machine.spooler.queues), records, size,
            needed, returned);
    if (level == 2)
        return platform::deliver(platform::queue_records<PRINTER_INFO_2W>(session().machine.spooler.queues),
                                 records, size, needed, returned);
    return platform::failed(ERROR_INVALID_LEVEL);
}

HANDLE AddPrinterW(LPWSTR server, DWORD level, LPBYTE printer) {
    const auto* const info = reinterpret_cast<const PRINTER_INFO_2W*>(printer);
    platform::Call call("AddPrinterW",
                        info != nullptr && level == 2 ? platform::shown(info->pPrinterName) : "");
    if (call.fails(ERROR_ACCESS_DENIED))
        return nullptr;
    platform::refuse_servers(call, server);
    std::uint32_t error = level != 2 ? ERROR_INVALID_LEVEL : ERROR_INVALID_PARAMETER;
    if (level != 2 || info == nullptr) {
        platform::set_last_error(error);
        return nullptr;
    }
    if (platform::spooler_away())
        return nullptr;
    refuse_unmodelled(call, *info);
    platform::PrintQueue queue;
    queue.name = text_or_empty(info->pPrinterName);
    queue.port = text_or_empty(info->pPortName);
    queue.driver = text_or_empty(info->pDriverName);
    queue.processor = text_or_empty(info->pPrintProcessor);
    queue.datatype = text_or_empty(info->pDatatype);
    queue.attributes = info->Attributes;
    const std::u16string name = queue.name;
    const std::lock_guard lock(platform::spooler_lock());
    error = platform::add_queue(session().machine.spooler, std::move(queue));
    if (error != 0) {
        platform::set_last_error(error);
        return nullptr;
    }
    return session().handles.open(std::make_shared<platform::SpoolerHandle>(name, PRINTER_ALL_ACCESS, false));
}

BOOL DeletePrinter(HANDLE printer) {
    const auto behind = std::dynamic_pointer_cast<platform::SpoolerHandle>(session().handles.peek(printer));
    platform::Call call("DeletePrinter", behind ? platform::to_utf8(behind->name) : "");
    if (call.fails(ERROR_ACCESS_DENIED))
        return FALSE;
    if (platform::spooler_away())
        return FALSE;
    const std::lock_guard lock(platform::spooler_lock());
    std::shared_ptr<platform::SpoolerHandle> opened;
    const platform::PrintQueue* queue = platform::queue_behind(printer, opened);
    if (queue == nullptr)
        return FALSE;
    const std::uint32_t error =
        platform::delete_queue(session().machine.spooler, opened->name, opened->access);
    return error == 0 ? TRUE : platform::failed(error);
}

BOOL SetDefaultPrinterW(LPCWSTR name) {
    platform::Call call("SetDefaultPrinterW", platform::shown(name));
    if (call.fails(ERROR_INVALID_PRINTER_NAME) || platform::spooler_away())
        return FALSE;
    const std::lock_guard lock(platform::spooler_lock());
    const std::uint32_t error = platform::set_default_printer(session().machine.spooler, text_or_empty(name));
    return error == 0 ? TRUE : platform::failed(error);
}

BOOL GetDefaultPrinterW(LPWSTR name, LPDWORD characters) {
    platform::Call call("GetDefaultPrinterW");
    if (call.fails(ERROR_FILE_NOT_FOUND))
        return FALSE;
    if (characters == nullptr)
        return platform::failed(ERROR_INVALID_PARAMETER);
    const std::lock_guard lock(platform::spooler_lock());
    const std::u16string& text = session().machine.spooler.default_printer;
    if (text.empty())
        return platform::failed(ERROR_FILE_NOT_FOUND);
    const DWORD capacity = name == nullptr ? 0 : *characters;
    *characters = static_cast<DWORD>(text.size() + 1);
    if (capacity < *characters) {
        platform::poison_text(name, capacity);
        return platform::failed(ERROR_INSUFFICIENT_BUFFER);
    }
    platform::fill_text(text, name, capacity);
    return TRUE;
}
