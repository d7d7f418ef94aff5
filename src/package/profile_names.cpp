#include "package/profile_names.h"

#include "package/package_file.h"
#include "state/names.h"
#include "support/install_log.h"
#include "support/text.h"

#include <iterator>

namespace {

constexpr size_t line_capacity = 254;
constexpr size_t key_capacity = 512;
constexpr size_t path_capacity = 258;
constexpr size_t log_capacity = 256;
constexpr LONG mark_bytes = 2;

// Ends the line at its line end and gives the characters that both took up.
DWORD cut_line_end(WCHAR* line, DWORD length) {
    for (DWORD i = 0; i < length; ++i) {
        if (line[i] != '\r' && line[i] != '\n')
            continue;
        const int is_pair = line[i] == '\r' && i + 1 < length && line[i + 1] == '\n';
        line[i] = 0;
        return is_pair ? i + 2 : i + 1;
    }
    line[length] = 0;
    return length;
}

DWORD find_field(HANDLE file, const WCHAR* section, const WCHAR* key, WCHAR* value, DWORD value_size) {
    WCHAR line[line_capacity];
    const size_t key_length = text_length(key);
    int entered = 0;
    DWORD result = 0;
    while (read_text_line_wide(file, line, static_cast<DWORD>(std::size(line))) != 0) {
        if (line[0] == '[') {
            if (entered)
                break;
            entered = starts_with(line, section);
            continue;
        }
        if (!entered || !starts_with(line, key))
            continue;
        const DWORD length = static_cast<DWORD>(text_length(line + key_length));
        result = length < value_size - 1 ? length : value_size - 1;
        if (length == 0)
            continue;
        copy_text(value, value_size, line + key_length);
        if (length < value_size - 1)
            break;
    }
    return result;
}

DWORD read_field(const WCHAR* section, const WCHAR* key, WCHAR* value, DWORD value_size) {
    const HANDLE file = open_below_current_folder(tools_folder, TEXT("profilenames.inf"), path_capacity);
    if (file == INVALID_HANDLE_VALUE)
        return 0;
    SetFilePointer(file, mark_bytes, nullptr, FILE_BEGIN);
    const DWORD length = find_field(file, section, key, value, value_size);
    CloseHandle(file);
    return length;
}

} // namespace

DWORD read_text_line_wide(HANDLE file, WCHAR* line, DWORD size) {
    for (DWORD i = 0; i < size; ++i)
        line[i] = 0;
    const DWORD start = SetFilePointer(file, 0, nullptr, FILE_CURRENT);
    DWORD got = 0;
    if (size < 2 || start == INVALID_SET_FILE_POINTER ||
        !ReadFile(file, line, (size - 1) * static_cast<DWORD>(sizeof(WCHAR)), &got, nullptr))
        return 0;
    // Half a character at the end of the file is its end.
    const DWORD bytes =
        cut_line_end(line, got / static_cast<DWORD>(sizeof(WCHAR))) * static_cast<DWORD>(sizeof(WCHAR));
    if (bytes == 0 || SetFilePointer(file, static_cast<LONG>(start + bytes), nullptr, FILE_BEGIN) ==
                          INVALID_SET_FILE_POINTER)
        return 0;
    return bytes;
}

DWORD VLI_GetProfileFieldW(const WCHAR* section, const WCHAR* key, WCHAR* value, DWORD value_size) {
    WCHAR search_key[key_capacity];
    const int usable = format_text(search_key, std::size(search_key), TEXT("%s="), key);
    DWORD length = 0;
    if (value_size != 0)
        value[0] = 0;
    log_line_within(log_capacity, TEXT("VLI_GetProfileFieldW %s %s\r\n"), section, search_key);
    if (usable && value_size != 0)
        length = read_field(section, search_key, value, value_size);
    log_line_within(log_capacity, TEXT("VLI_GetProfileFieldW [%s] %d\r\n"), value_size != 0 ? value : nullptr,
                    length);
    return length;
}
