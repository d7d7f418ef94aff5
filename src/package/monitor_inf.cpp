#include "package/monitor_inf.h"

#include "package/package_file.h"
#include "state/app_state.h"
#include "support/current_folder.h"
#include "support/install_log.h"
#include "support/text.h"

#include <iterator>

namespace {

constexpr size_t path_capacity = 256;
constexpr const char* port_text = "Port=";

// The value of the key into `field`; the place behind it, or null when the key isn't there.
const char* scan_value(const char* text, const char* key, WCHAR* field, size_t capacity) {
    const char* place = find_ansi(text, key);
    if (place == nullptr)
        return nullptr;
    place += ansi_length(key);
    Chunk value;
    size_t length = 0;
    for (; *place != 0 && *place != '\r' && *place != '\n' && length < chunk_bytes; ++place)
        value[length++] = *place;
    value[length] = 0;
    widen(field, capacity, value);
    return place;
}

// Reads the file that the search found into the record, which holds its folder and gets its name.
int read_found_file(const WCHAR* file_name, MonitorInfo* info) {
    WCHAR path[path_capacity];
    const int usable = format_text(path, std::size(path), TEXT("%s%s"), info->folder, file_name);
    copy_text(info->file, std::size(info->file), file_name);
    const HANDLE file = usable ? open_package_file(path) : INVALID_HANDLE_VALUE;
    if (file == INVALID_HANDLE_VALUE) {
        log_failure(TEXT("file open failed\r\n"));
        return 0;
    }
    Chunk text;
    read_chunk(file, text);
    scan_monitor_info(text, info);
    CloseHandle(file);
    return 1;
}

} // namespace

int read_monitor_inf(MonitorInfo* info, int use_monitor_folder) {
    log_line(TEXT("Finding monitor name....\r\n"));
    WCHAR current[path_capacity];
    WCHAR pattern[path_capacity];
    const WCHAR* subfolder = use_monitor_folder ? TEXT("monitor\\") : TEXT("");
    const WCHAR* wanted = use_monitor_folder ? TEXT("*.inf") : TEXT("monitor.inf");
    const int usable =
        get_current_folder(current, static_cast<DWORD>(std::size(current))) &&
        format_text(info->folder, std::size(info->folder), TEXT("%s\\%s"), current, subfolder) &&
        format_text(pattern, std::size(pattern), TEXT("%s%s"), info->folder, wanted);
    WIN32_FIND_DATAW entry = {};
    const HANDLE search = usable ? FindFirstFileW(pattern, &entry) : INVALID_HANDLE_VALUE;
    if (search == INVALID_HANDLE_VALUE) {
        log_failure(TEXT("FindFirstFile error!\r\n"));
        return 0;
    }
    const int opened = read_found_file(entry.cFileName, info);
    FindClose(search);
    return opened;
}

void scan_monitor_info(const char* text, MonitorInfo* info) {
    const char* place = scan_value(text, "name=", info->name, std::size(info->name));
    if (place == nullptr)
        return;
    log_text(info->name);
    place = scan_value(place, "prefix=", info->prefix, std::size(info->prefix));
    if (place != nullptr)
        place = scan_value(place, "DLL32=", info->DLL32, std::size(info->DLL32));
    if (place != nullptr)
        scan_value(place, "DLL64=", info->DLL64, std::size(info->DLL64));
}

int read_port_number(const WCHAR* path, int* port) {
    const HANDLE file = open_package_file(path);
    if (file == INVALID_HANDLE_VALUE) {
        log_failure(TEXT("file open failed\r\n"));
        return 0;
    }
    Chunk chunk;
    const char* place = find_in_chunks(file, port_text, chunk);
    if (place != nullptr)
        *port = scan_number(place + ansi_length(port_text));
    CloseHandle(file);
    return place != nullptr;
}
