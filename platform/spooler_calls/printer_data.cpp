// Printer data: values under a queue's keys. The results are error codes.
#include "machine/printer_data.h"

#include "machine/little_endian.h"
#include "spooler_calls/spooler_call.h"

#include <cstring>

using platform::from_ansi;
using platform::model_text;
using platform::shown_text;
using platform::SpoolerCall;

namespace {

std::string shown_ansi(const char* text) {
    return text == nullptr ? "(null)" : platform::to_utf8(from_ansi(text));
}

DWORD set_value(SpoolerCall& call, HANDLE printer, std::u16string_view key, std::u16string_view name,
                platform::PrinterDataValue value) {
    if (call.spooler_away())
        return call.error();
    platform::PrintQueue* const queue = call.queue(printer, PRINTER_ACCESS_ADMINISTER);
    if (queue != nullptr)
        call.end(platform::set_printer_value(*queue, key, name, std::move(value)));
    return call.error();
}

// Behind the last name stands one more terminator.
std::u16string joined(const std::vector<std::u16string>& names) {
    std::u16string text;
    for (const std::u16string& name : names)
        text.append(name).push_back(u'\0');
    text.push_back(u'\0');
    return text;
}

DWORD give(const void* data, std::size_t size, void* buffer, DWORD capacity, DWORD* needed) {
    *needed = static_cast<DWORD>(size);
    if (capacity < size) {
        if (capacity != 0)
            std::memset(buffer, 0xCD, capacity);
        return ERROR_MORE_DATA;
    }
    if (size != 0)
        std::memcpy(buffer, data, size);
    return ERROR_SUCCESS;
}

} // namespace

DWORD WINAPI EnumPrinterKeyW(HANDLE printer, LPCWSTR key, LPWSTR subkeys, DWORD size, LPDWORD needed) {
    SpoolerCall call("EnumPrinterKeyW", shown_text(key));
    if (call.fails(ERROR_FILE_NOT_FOUND))
        return call.error();
    if (key == nullptr || needed == nullptr || (subkeys == nullptr && size != 0))
        return ERROR_INVALID_PARAMETER;
    *needed = 0;
    if (call.spooler_away())
        return call.error();
    const platform::PrintQueue* const queue = call.queue(printer, PRINTER_ACCESS_USE);
    if (queue == nullptr)
        return call.error();
    const auto names = platform::printer_sub_keys(*queue, model_text(key));
    if (!names)
        return ERROR_FILE_NOT_FOUND;
    // A key without keys below it is no reason to ask for a buffer.
    if (names->empty() && size < sizeof(WCHAR))
        return ERROR_SUCCESS;
    const std::u16string text = joined(*names);
    return give(text.data(), text.size() * sizeof(WCHAR), subkeys, size, needed);
}

// Names and texts come in the ANSI code page; the queue keeps 16-bit text.
DWORD WINAPI SetPrinterDataExA(HANDLE printer, LPCSTR key, LPCSTR value, DWORD type, LPBYTE data,
                               DWORD size) {
    SpoolerCall call("SetPrinterDataExA", shown_ansi(key) + " " + shown_ansi(value));
    if (call.fails(ERROR_ACCESS_DENIED))
        return call.error();
    if (key == nullptr || value == nullptr || (data == nullptr && size != 0))
        return ERROR_INVALID_PARAMETER;
    platform::PrinterDataValue kept{type, {}};
    if (platform::is_text_type(type))
        kept.data = platform::utf16_bytes(from_ansi({reinterpret_cast<const char*>(data), size}));
    else
        kept.data.assign(data, data + size);
    return set_value(call, printer, from_ansi(key), from_ansi(value), std::move(kept));
}

DWORD WINAPI GetPrinterDataExW(HANDLE printer, LPCWSTR key, LPCWSTR value, LPDWORD type, LPBYTE data,
                               DWORD size, LPDWORD needed) {
    SpoolerCall call("GetPrinterDataExW", shown_text(key) + " " + shown_text(value));
    if (call.fails(ERROR_FILE_NOT_FOUND))
        return call.error();
    if (key == nullptr || value == nullptr || needed == nullptr || (data == nullptr && size != 0))
        return ERROR_INVALID_PARAMETER;
    *needed = 0;
    if (call.spooler_away())
        return call.error();
    const platform::PrintQueue* const queue = call.queue(printer, PRINTER_ACCESS_USE);
    if (queue == nullptr)
        return call.error();
    const auto* const found = platform::find_printer_value(*queue, model_text(key), model_text(value));
    if (found == nullptr)
        return ERROR_FILE_NOT_FOUND;
    if (type != nullptr)
        *type = found->type;
    return give(found->data.data(), found->data.size(), data, size, needed);
}
