#include "machine/printer_data.h"

#include "calls/spooler/spooler_handles.h"
#include "calls/text/ansi_text.h"
#include "machine/text.h"

#include <winspool.h>

#include <cstring>

namespace {

using platform::session;

// The queue behind a handle that was opened with the access; null, and the error in `error`.
platform::PrintQueue* queue_for(HANDLE printer, std::uint32_t access, DWORD& error) {
    std::shared_ptr<platform::SpoolerHandle> opened;
    platform::PrintQueue* queue = platform::queue_behind(printer, opened);
    if (queue == nullptr)
        error = platform::last_error();
    else if ((opened->access & access) != access)
        error = ERROR_ACCESS_DENIED;
    return error == 0 ? queue : nullptr;
}

// Behind the last name stands one more terminator.
std::u16string joined(const std::vector<std::u16string>& names) {
    std::u16string text;
    for (const std::u16string& name : names)
        text.append(name).push_back(u'\0');
    return text;
}

std::vector<std::uint8_t> text_bytes(std::u16string_view text) {
    std::vector<std::uint8_t> bytes;
    for (const char16_t unit : text) {
        bytes.push_back(static_cast<std::uint8_t>(unit & 0xFF));
        bytes.push_back(static_cast<std::uint8_t>(unit >> 8));
    }
    return bytes;
}

std::string narrow(const char* text) {
    return text == nullptr ? "(null)" : platform::to_utf8(platform::from_ansi(text));
}

DWORD set_value(HANDLE printer, std::u16string_view key, std::u16string_view name,
                platform::PrinterDataValue value) {
    if (platform::spooler_away())
        return RPC_S_SERVER_UNAVAILABLE;
    const std::lock_guard lock(platform::spooler_lock());
    DWORD error = 0;
    platform::PrintQueue* queue = queue_for(printer, PRINTER_ACCESS_ADMINISTER, error);
    return queue == nullptr ? error : platform::set_printer_value(*queue, key, name, std::move(value));
}

} // namespace

DWORD EnumPrinterKeyW(HANDLE printer, LPCWSTR key, LPWSTR subkeys, DWORD size, LPDWORD needed) {
    platform::Call call("EnumPrinterKeyW", platform::shown(key));
    if (call.fails(ERROR_FILE_NOT_FOUND))
        return call.error();
    if (key == nullptr || needed == nullptr || (subkeys == nullptr && size != 0))
        return ERROR_INVALID_PARAMETER;
    *needed = 0;
    if (platform::spooler_away())
        return RPC_S_SERVER_UNAVAILABLE;
    const std::lock_guard lock(platform::spooler_lock());
    DWORD error = 0;
    const platform::PrintQueue* queue = queue_for(printer, PRINTER_ACCESS_USE, error);
    if (queue == nullptr)
        return error;
    const auto names = platform::printer_sub_keys(*queue, key);
    if (!names)
        return ERROR_FILE_NOT_FOUND;
    // A key without keys below it is no reason to ask for a buffer.
    if (names->empty() && size < sizeof(WCHAR))
        return ERROR_SUCCESS;
    const std::u16string text = joined(*names);
    *needed = static_cast<DWORD>((text.size() + 1) * sizeof(WCHAR));
    if (size < *needed) {
        if (size != 0)
            std::memset(subkeys, 0xCD, size);
        return ERROR_MORE_DATA;
    }
    std::memcpy(subkeys, text.c_str(), *needed);
    return ERROR_SUCCESS;
}

DWORD SetPrinterDataExW(HANDLE printer, LPCWSTR key, LPCWSTR value, DWORD type, LPBYTE data, DWORD size) {
    platform::Call call("SetPrinterDataExW", platform::shown(key) + " " + platform::shown(value));
    if (call.fails(ERROR_ACCESS_DENIED))
        return call.error();
    if (key == nullptr || value == nullptr || (data == nullptr && size != 0))
        return ERROR_INVALID_PARAMETER;
    return set_value(printer, key, value, {type, std::vector<std::uint8_t>(data, data + size)});
}

// Names and texts come in the ANSI code page; the queue keeps 16-bit text.
DWORD SetPrinterDataExA(HANDLE printer, LPCSTR key, LPCSTR value, DWORD type, LPBYTE data, DWORD size) {
    platform::Call call("SetPrinterDataExA", narrow(key) + " " + narrow(value));
    if (call.fails(ERROR_ACCESS_DENIED))
        return call.error();
    if (key == nullptr || value == nullptr || (data == nullptr && size != 0))
        return ERROR_INVALID_PARAMETER;
    platform::PrinterDataValue kept{type, {}};
    if (platform::is_text_type(type))
        kept.data = text_bytes(platform::from_ansi({reinterpret_cast<const char*>(data), size}));
    else
        kept.data.assign(data, data + size);
    return set_value(printer, platform::from_ansi(key), platform::from_ansi(value), std::move(kept));
}

DWORD GetPrinterDataExW(HANDLE printer, LPCWSTR key, LPCWSTR value, LPDWORD type, LPBYTE data, DWORD size,
                        LPDWORD needed) {
    platform::Call call("GetPrinterDataExW", platform::shown(key) + " " + platform::shown(value));
    if (call.fails(ERROR_FILE_NOT_FOUND))
        return call.error();
    if (key == nullptr || value == nullptr || needed == nullptr || (data == nullptr && size != 0))
        return ERROR_INVALID_PARAMETER;
    *needed = 0;
    if (platform::spooler_away())
        return RPC_S_SERVER_UNAVAILABLE;
    const std::lock_guard lock(platform::spooler_lock());
    DWORD error = 0;
    const platform::PrintQueue* queue = queue_for(printer, PRINTER_ACCESS_USE, error);
    if (queue == nullptr)
        return error;
    const platform::PrinterDataValue* found = platform::find_printer_value(*queue, key, value);
    if (found == nullptr)
        return ERROR_FILE_NOT_FOUND;
    if (type != nullptr)
        *type = found->type;
    *needed = static_cast<DWORD>(found->data.size());
    if (size < *needed) {
        if (size != 0)
            std::memset(data, 0xCD, size);
        return ERROR_MORE_DATA;
    }
    if (!found->data.empty())
        std::memcpy(data, found->data.data(), found->data.size());
    return ERROR_SUCCESS;
}
