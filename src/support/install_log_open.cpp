#include "support/install_log.h"

#include "state/app_state.h"
#include "support/text.h"

#include <algorithm>
#include <iterator>

// Where the log lies and what may be opened there; its writing is install_log.cpp.

namespace {

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
    value[std::min<DWORD>(bytes, environment_capacity * sizeof(WCHAR)) / sizeof(WCHAR)] = 0;
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

// The log's name is plain ASCII, so folding A to Z is enough for it.
int is_same_name(const WCHAR* first, const WCHAR* second) {
    for (; change_case(*first, 'A', 'a') == change_case(*second, 'A', 'a'); ++first, ++second) {
        if (*first == 0)
            return 1;
    }
    return 0;
}

// Whether the path, with every link followed, leads to that very file.
int leads_to_file(const WCHAR* path, const BY_HANDLE_FILE_INFORMATION& file) {
    const HANDLE handle = CreateFileW(path, 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return 0;
    BY_HANDLE_FILE_INFORMATION found = {};
    const BOOL known = GetFileInformationByHandle(handle, &found);
    CloseHandle(handle);
    return known && found.dwVolumeSerialNumber == file.dwVolumeSerialNumber &&
           found.nFileIndexHigh == file.nFileIndexHigh && found.nFileIndexLow == file.nFileIndexLow;
}

// Anyone may write to the temp folder, and a link planted there under the log's name would make this program,
// which runs as administrator, write into a file of the planter's choice. The file was opened without
// following such a link, so that it shows as one. Both paths are taken with every link followed, so that a
// temp folder which lies elsewhere itself is fine; a volume that has no paths to tell (some drivers' memory
// disks) has identities.
int is_ordinary_log(HANDLE file, const WCHAR* path, const WCHAR* folder, const WCHAR* file_name) {
    BY_HANDLE_FILE_INFORMATION information = {};
    if (!GetFileInformationByHandle(file, &information) || information.nNumberOfLinks != 1)
        return 0;
    if ((information.dwFileAttributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT)) != 0)
        return 0;
    WCHAR file_path[final_path_capacity] = {};
    WCHAR folder_path[final_path_capacity] = {};
    if (!final_path(file, file_path) || !final_folder_path(folder, folder_path))
        return leads_to_file(path, information);
    return starts_with(file_path, folder_path) &&
           is_same_name(file_path + text_length(folder_path), file_name);
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

    const HANDLE file =
        CreateFileW(path, FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS,
                    FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (file != INVALID_HANDLE_VALUE && !is_ordinary_log(file, path, folder, path + folder_length)) {
        CloseHandle(file);
        return INVALID_HANDLE_VALUE;
    }
    app.closed_log = INVALID_HANDLE_VALUE; // the platform gives a handle's value out again
    return file;
}
