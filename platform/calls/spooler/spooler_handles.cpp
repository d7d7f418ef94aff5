#include "calls/spooler/spooler_handles.h"

#include "calls/system/service_state.h"
#include "machine/text.h"

#include <winspool.h>

namespace platform {
namespace {

struct SpoolerArea {
    std::mutex lock;
};

constexpr std::u16string_view monitor_prefix = u",XcvMonitor ";

BOOL opened(std::u16string_view name, std::uint32_t access, bool monitor, LPHANDLE result) {
    *result = session().handles.open(std::make_shared<SpoolerHandle>(name, access, monitor));
    return TRUE;
}

} // namespace

std::mutex& spooler_lock() {
    return session().area<SpoolerArea>().lock;
}

bool spooler_away() {
    const std::uint32_t state = service_state(u"Spooler");
    if (state == 0 || state == SERVICE_RUNNING)
        return false;
    set_last_error(RPC_S_SERVER_UNAVAILABLE);
    return true;
}

void refuse_servers(const Call& call, const char16_t* server) {
    if (server != nullptr && *server != 0)
        call.refuse("only the local spooler is there");
}

PrintQueue* queue_behind(HANDLE handle, std::shared_ptr<SpoolerHandle>& opened) {
    opened = session().handles.find<SpoolerHandle>(handle);
    if (!opened || opened->monitor) {
        set_last_error(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    PrintQueue* queue = find_queue(session().machine.spooler, opened->name);
    if (queue == nullptr)
        set_last_error(ERROR_PRINTER_DELETED);
    return queue;
}

bool good_enumeration(const BYTE* buffer, DWORD size, const DWORD* needed, const DWORD* returned) {
    std::uint32_t error = 0;
    if (needed == nullptr || returned == nullptr)
        error = RPC_X_NULL_REF_POINTER;
    else if (buffer == nullptr && size != 0)
        error = ERROR_INVALID_USER_BUFFER;
    if (error != 0)
        set_last_error(error);
    return error == 0;
}

} // namespace platform

BOOL OpenPrinterW(LPWSTR name, LPHANDLE printer, LPPRINTER_DEFAULTSW defaults) {
    platform::Call call("OpenPrinterW", platform::shown(name));
    if (call.fails(ERROR_INVALID_PRINTER_NAME))
        return FALSE;
    if (printer == nullptr)
        return platform::failed(ERROR_INVALID_PARAMETER);
    *printer = nullptr;
    if (platform::spooler_away())
        return FALSE;
    if (name == nullptr || *name == 0)
        call.refuse("the print server itself isn't modelled");
    const std::u16string_view text = name;
    ACCESS_MASK access = defaults == nullptr ? 0 : defaults->DesiredAccess;
    if (defaults != nullptr && defaults->pDevMode != nullptr)
        call.refuse("device modes aren't modelled");
    const std::lock_guard lock(platform::spooler_lock());
    platform::SpoolerState& spooler = platform::session().machine.spooler;
    if (text.starts_with(platform::monitor_prefix)) {
        const std::u16string_view monitor = text.substr(platform::monitor_prefix.size());
        if (platform::find_monitor(spooler, monitor) == nullptr)
            return platform::failed(ERROR_INVALID_PRINTER_NAME);
        return platform::opened(monitor, access, true, printer);
    }
    if (text.find(u',') != text.npos)
        call.refuse("names with options behind a comma aren't modelled");
    if (access == 0)
        access = PRINTER_ACCESS_USE;
    if (defaults != nullptr && defaults->pDatatype != nullptr &&
        !platform::known_datatype(defaults->pDatatype))
        return platform::failed(ERROR_INVALID_DATATYPE);
    if (const std::uint32_t error = platform::open_queue(spooler, text, access); error != 0)
        return platform::failed(error);
    return platform::opened(text, access, false, printer);
}

// Closing can't be made to fail on demand: nobody could close the handle after that.
BOOL ClosePrinter(HANDLE printer) {
    platform::Session& session = platform::session();
    const auto open = session.handles.peek(printer);
    platform::Call call("ClosePrinter", open ? open->kind() : "");
    if (open && std::dynamic_pointer_cast<platform::SpoolerHandle>(open) == nullptr)
        session.gate.misuse(std::string("ClosePrinter of a ") + open->kind());
    else if (session.handles.close(printer))
        return TRUE;
    return platform::failed(ERROR_INVALID_HANDLE);
}
