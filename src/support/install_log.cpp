#include "support/install_log.h"

#include "state/app_state.h"
#include "support/text.h"

#include <failed_step.h>

#include <iterator>

namespace {

constexpr size_t chunk_characters = 256;
constexpr size_t chunk_bytes = chunk_characters * 4; // no code page needs more for a 16-bit unit
constexpr size_t final_path_capacity = 2 * MAX_PATH;
constexpr size_t environment_capacity = 256;

// The process's own variable, or nothing when it is missing or needs more than the buffer.
int read_own_variable(const WCHAR* name, WCHAR* buffer, DWORD size) {
    const DWORD length = GetEnvironmentVariableW(name, buffer, size);
    return length != 0 && length < size;
}

// The machine's variable, not expanded. The registry doesn't promise a terminator, so one is always set.
int read_machine_variable(HKEY key, const WCHAR* name, WCHAR (&value)[environment_capacity + 1]) {
    DWORD bytes = environment_capacity * sizeof(WCHAR);
    const LSTATUS status =
        RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(value), &bytes);
    if (status != ERROR_SUCCESS || bytes == 0)
        return 0;
    value[bytes / sizeof(WCHAR)] = 0;
    return 1;
}

int expand_machine_variables(HKEY key, WCHAR* buffer, DWORD size) {
    for (const WCHAR* name : {TEXT("TEMP"), TEXT("TMP")}) {
        WCHAR value[environment_capacity + 1];
        if (!read_machine_variable(key, name, value))
            continue;
        const DWORD needed = ExpandEnvironmentStringsW(value, buffer, size);
        if (needed != 0 && needed <= size)
            return 1;
        if (needed == 0)
            break;
    }
    return 0;
}

int read_machine_temp(WCHAR* buffer, DWORD size) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE,
                      TEXT("System\\CurrentControlSet\\Control\\Session Manager\\Environment"), 0, KEY_READ,
                      &key) != ERROR_SUCCESS)
        return 0;
    const int found = expand_machine_variables(key, buffer, size);
    RegCloseKey(key);
    return found;
}

// Appends a backslash unless the folder ends in one already or is empty, which means the current folder.
int close_folder(WCHAR* folder, DWORD size) {
    const size_t length = text_length(folder);
    if (length == 0 || folder[length - 1] == '\\')
        return 1;
    return append_text(folder, size, TEXT("\\"));
}

int final_path(HANDLE file, WCHAR (&path)[final_path_capacity]) {
    const DWORD length =
        GetFinalPathNameByHandleW(file, path, static_cast<DWORD>(std::size(path)), FILE_NAME_NORMALIZED);
    return length != 0 && length < std::size(path);
}

int final_folder_path(const WCHAR* folder, WCHAR (&path)[final_path_capacity]) {
    const HANDLE handle = CreateFileW(folder[0] != 0 ? folder : TEXT("."), 0,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                      OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return 0;
    const int found = final_path(handle, path);
    CloseHandle(handle);
    return found && close_folder(path, static_cast<DWORD>(std::size(path)));
}

WCHAR fold_letter(WCHAR letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<WCHAR>(letter - 'A' + 'a') : letter;
}

// The log's name is plain ASCII, so folding A to Z is enough for it.
int is_same_name(const WCHAR* first, const WCHAR* second) {
    for (; fold_letter(*first) == fold_letter(*second); ++first, ++second) {
        if (*first == 0)
            return 1;
    }
    return 0;
}

// Anyone may write to the temp folder, and a link planted there under the log's name would make this program,
// which runs as administrator, write into a file of the planter's choice. Both paths are taken with every
// link followed, so that a temp folder which lies elsewhere itself is fine.
int is_ordinary_log(HANDLE file, const WCHAR* folder, const WCHAR* file_name) {
    BY_HANDLE_FILE_INFORMATION information = {};
    if (!GetFileInformationByHandle(file, &information) || information.nNumberOfLinks != 1)
        return 0;
    if ((information.dwFileAttributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT)) != 0)
        return 0;
    WCHAR file_path[final_path_capacity] = {};
    WCHAR folder_path[final_path_capacity] = {};
    if (!final_path(file, file_path) || !final_folder_path(folder, folder_path))
        return 0;
    return starts_with(file_path, folder_path) &&
           is_same_name(file_path + text_length(folder_path), file_name);
}

size_t next_chunk(const WCHAR* text, size_t remaining) {
    if (remaining <= chunk_characters)
        return remaining;
    const WCHAR last = text[chunk_characters - 1];
    const int splits_pair = last >= 0xd800 && last <= 0xdbff;
    return splits_pair ? chunk_characters - 1 : chunk_characters;
}

void write_chunk(HANDLE handle, const WCHAR* text, size_t length) {
    char bytes[chunk_bytes];
    BOOL used_default = FALSE;
    int count = WideCharToMultiByte(CP_ACP, 0, text, static_cast<int>(length), bytes, sizeof(bytes), nullptr,
                                    &used_default);
    if (count <= 0) // a UTF-8 code page refuses the flag
        count = WideCharToMultiByte(CP_ACP, 0, text, static_cast<int>(length), bytes, sizeof(bytes), nullptr,
                                    nullptr);
    if (count <= 0)
        return;
    DWORD written = 0;
    if (!WriteFile(handle, bytes, static_cast<DWORD>(count), &written, nullptr) ||
        written != static_cast<DWORD>(count))
        step_failed(TEXT("writing the log"));
}

void write_text(HANDLE handle, const WCHAR* text) {
    size_t remaining = text_length(text);
    while (remaining > 0) {
        const size_t length = next_chunk(text, remaining);
        write_chunk(handle, text, length);
        text += length;
        remaining -= length;
    }
    if (!FlushFileBuffers(handle))
        step_failed(TEXT("writing the log"));
}

// Puts the format's closing CR LF or LF back behind a text that was cut.
void restore_line_end(WCHAR* line, size_t capacity, const WCHAR* format) {
    const size_t format_length = text_length(format);
    if (format_length == 0 || format[format_length - 1] != '\n')
        return;
    const int has_return = format_length > 1 && format[format_length - 2] == '\r';
    const WCHAR* line_end = has_return ? TEXT("\r\n") : TEXT("\n");
    const size_t needed = text_length(line_end) + 1;
    if (capacity < needed)
        return;
    size_t place = text_length(line);
    if (place > capacity - needed)
        place = capacity - needed;
    copy_text(line + place, capacity - place, line_end);
}

void log_line_list(size_t capacity, const WCHAR* format, va_list arguments) {
    WCHAR line[log_line_capacity];
    if (capacity > std::size(line))
        capacity = std::size(line);
    if (!format_text_list(line, capacity, format, arguments))
        restore_line_end(line, capacity, format);
    line_logged(line);
    log_write(app.log_handle, line);
}

} // namespace

int find_temp_dir(WCHAR* buffer, DWORD size, int use_environment) {
    if (size == 0)
        return 0;
    buffer[0] = 0;
    if (use_environment &&
        (read_own_variable(TEXT("TEMP"), buffer, size) || read_own_variable(TEXT("TMP"), buffer, size)))
        return 1;
    buffer[0] = 0;
    if (read_machine_temp(buffer, size))
        return 1;
    const UINT length = GetWindowsDirectoryW(buffer, size);
    if (length != 0 && length < size)
        return 1;
    buffer[0] = 0;
    return 0;
}

HANDLE open_log(const WCHAR* name, const WCHAR* extension, WCHAR* path, DWORD size) {
    WCHAR folder[final_path_capacity] = {};
    if (!find_temp_dir(path, size, 0) || !copy_text(folder, std::size(folder), path))
        return INVALID_HANDLE_VALUE;
    if (!close_folder(path, size))
        return INVALID_HANDLE_VALUE;
    const size_t folder_length = text_length(path);
    if (!append_text(path, size, name) || !append_text(path, size, extension))
        return INVALID_HANDLE_VALUE;

    const HANDLE file = CreateFileW(path, FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file != INVALID_HANDLE_VALUE && !is_ordinary_log(file, folder, path + folder_length)) {
        CloseHandle(file);
        return INVALID_HANDLE_VALUE;
    }
    app.closed_log = INVALID_HANDLE_VALUE; // the platform gives a handle's value out again
    return file;
}

void close_log() {
    const HANDLE log = app.log_handle.exchange(INVALID_HANDLE_VALUE);
    if (log == INVALID_HANDLE_VALUE)
        return;
    const HANDLE mutex = app.log_mutex;
    if (mutex != nullptr)
        WaitForSingleObject(mutex, INFINITE);
    app.closed_log = log;
    CloseHandle(log);
    if (mutex != nullptr)
        ReleaseMutex(mutex);
}

void log_write(HANDLE handle, const WCHAR* text) {
    if (handle == INVALID_HANDLE_VALUE)
        return;
    // The run's first line is written before any other thread exists, so making the mutex needs no lock.
    if (app.log_mutex == nullptr)
        app.log_mutex = CreateMutexW(nullptr, FALSE, nullptr);
    const HANDLE mutex = app.log_mutex;
    if (mutex != nullptr) // without one the text is still written, only not as one piece
        WaitForSingleObject(mutex, INFINITE);
    if (handle != app.closed_log)
        write_text(handle, text);
    if (mutex != nullptr)
        ReleaseMutex(mutex);
}

void log_line(const WCHAR* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    log_line_list(log_line_capacity, format, arguments);
    va_end(arguments);
}

void log_line_within(size_t capacity, const WCHAR* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    log_line_list(capacity, format, arguments);
    va_end(arguments);
}
