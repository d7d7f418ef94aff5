#include "removal/installation.h"

#include <objbase.h>
#include <shellapi.h>
#include <winspool.h>

#include "support/install_log.h"
#include "support/known_folder.h"
#include "support/memory.h"
#include "support/system_text.h"
#include "support/text.h"

#include <failed_step.h>

#include <iterator>

namespace {

constexpr size_t path_line_capacity = 512;   // of the lines that name a folder
constexpr size_t search_line_capacity = 256; // of those of the searches and of the package's removal
constexpr WCHAR store_root[] = TEXT("C:\\Windows\\System32\\DriverStore\\FileRepository\\");

// The groups of one model in the Start menu.
struct MenuGroups {
    WCHAR maker[removal_path_capacity];
    WCHAR model[removal_path_capacity];
    int maker_fits;
    int model_fits;
};

// Whether the path is "C:\\" and plain names behind it, so that it names one folder and neither a drive nor
// several things. Takes the path apart.
int is_folder_path(WCHAR* path) {
    if (text_length(path) < 3 || change_case(path[0], 'a', 'A') < 'A' ||
        change_case(path[0], 'a', 'A') > 'Z' || path[1] != ':' || path[2] != '\\')
        return 0;
    WCHAR* name = path + 3;
    for (WCHAR* place = name; *place != 0; ++place) {
        if (*place != '\\')
            continue;
        *place = 0;
        if (!is_plain_name(name))
            return 0;
        name = place + 1;
    }
    return is_plain_name(name);
}

// A copy without one backslash at its end: 1, or 0 when it isn't the path of a folder or doesn't fit.
int take_folder(WCHAR* out, const WCHAR* folder) {
    if (!copy_text(out, removal_path_capacity, folder))
        return 0;
    const size_t length = text_length(out);
    if (length > 0 && out[length - 1] == '\\')
        out[length - 1] = 0;
    WCHAR parts[removal_path_capacity];
    copy_text(parts, std::size(parts), out);
    return is_folder_path(parts);
}

int find_menu_groups(MenuGroups* groups, const WCHAR* folder_name, const WCHAR* model) {
    WCHAR* programs = find_known_folder(FOLDERID_CommonPrograms, TEXT("CommonPrograms"));
    if (programs == nullptr)
        return 0;
    log_line_within(path_line_capacity, TEXT("CommonPrograms %s\r\n"), programs);
    groups->maker_fits =
        format_text(groups->maker, std::size(groups->maker), TEXT("%s\\%s"), programs, folder_name);
    groups->model_fits = format_text(groups->model, std::size(groups->model), TEXT("%s\\%s\\%s"), programs,
                                     folder_name, model);
    CoTaskMemFree(programs);
    return 1;
}

void remove_menu_groups(const MenuGroups* groups) {
    log_line_within(path_line_capacity, TEXT("del dir %s\r\n"), groups->model);
    if (groups->model_fits)
        delete_folder_tree(groups->model);
    log_line_within(path_line_capacity, TEXT("del dir %s\r\n"), groups->maker);
    if (groups->maker_fits)
        RemoveDirectoryW(groups->maker); // refuses while another model's group is in it
}

// The search begins anew after each package. A refused one would be found for ever, and so would one whose
// folder stays although the spooler agreed.
void remove_packages(const char* inf_name) {
    WCHAR removed[removal_path_capacity] = {};
    WCHAR inf_path[removal_path_capacity];
    while (get_store_inf_name(inf_name, inf_path)) {
        if (lstrcmpW(inf_path, removed) == 0 || !remove_driver_package(inf_path))
            return;
        copy_text(removed, std::size(removed), inf_path);
    }
}

// Of two texts that are alike but for case: whether their double-byte characters are the same. The second
// byte of such a character may have a letter's value and isn't one.
int same_double_bytes(const char* first, const char* second, DWORD length) {
    for (DWORD i = 0; i + 1 < length; ++i) {
        if (!IsDBCSLeadByte(static_cast<BYTE>(first[i])))
            continue;
        ++i;
        if (first[i] != second[i])
            return 0;
    }
    return 1;
}

// The first entry from `found` on whose name begins with the INF's: 1 with its path, or 0.
int match_store_folder(HANDLE search, WIN32_FIND_DATAW* found, const char* inf_name, WCHAR* inf_path) {
    const auto length = static_cast<DWORD>(ansi_length(inf_name));
    do {
        char folder[inf_name_capacity];
        if (!narrow_name(folder, std::size(folder), found->cFileName) ||
            compare_text_nocase(folder, inf_name, length) != 0 ||
            !same_double_bytes(folder, inf_name, length))
            continue;
        if (!format_text(inf_path, removal_path_capacity, TEXT("%s%s\\%S"), store_root, found->cFileName,
                         inf_name))
            return 0;
        log_line_within(search_line_capacity, TEXT("found %s\r\n%s\r\n"), found->cFileName, inf_path);
        return 1;
    } while (FindNextFileW(search, found));
    if (GetLastError() != ERROR_NO_MORE_FILES)
        step_failed(TEXT("listing the driver store"));
    return 0;
}

} // namespace

int remove_installation(const WCHAR* install_folder, const WCHAR* folder_name, const char* model_name) {
    WCHAR folder[removal_path_capacity];
    WCHAR model[256];
    if (!take_folder(folder, install_folder) || !is_plain_name(folder_name) ||
        !widen(model, std::size(model), model_name) || !is_plain_name(model)) {
        log_failure(TEXT("nothing to remove\r\n"));
        return 0;
    }
    MenuGroups groups;
    if (!find_menu_groups(&groups, folder_name, model))
        return 0;
    remove_menu_groups(&groups);
    log_line_within(path_line_capacity, TEXT("del dir %s\r\n"), install_folder);
    // The INF's name is known from the folder alone, so the package goes first.
    char inf_name[inf_name_capacity];
    if (find_package_inf(folder, inf_name))
        remove_packages(inf_name);
    delete_folder_tree(folder);
    return 1;
}

int delete_folder_tree(const WCHAR* path) {
    const size_t length = text_length(path);
    if (length == 0)
        return ERROR_INVALID_NAME;
    // The shell takes a list of paths, which ends in one more NUL.
    const size_t capacity = length + 5;
    WCHAR* const list = allocate_characters(capacity);
    if (list == nullptr) {
        step_failed(path);
        return ERROR_NOT_ENOUGH_MEMORY;
    }
    copy_text(list, capacity, path);
    SHFILEOPSTRUCTW operation = {};
    operation.wFunc = FO_DELETE;
    operation.pFrom = list;
    operation.fFlags = FOF_SILENT | FOF_NOCONFIRMATION | FOF_NOERRORUI;
    operation.lpszProgressTitle = TEXT("");
    const int result = SHFileOperationW(&operation);
    if (result != 0 && result != ERROR_FILE_NOT_FOUND && result != ERROR_PATH_NOT_FOUND)
        step_failed(path);
    release_bytes(list);
    return result;
}

int find_package_inf(const WCHAR* install_folder, char* inf_name) {
    WCHAR pattern[removal_path_capacity];
    const int fits = format_text(pattern, std::size(pattern), TEXT("%s\\inf\\*.inf"), install_folder);
    log_line_within(search_line_capacity, TEXT("%s\r\n"), pattern);
    WIN32_FIND_DATAW found;
    HANDLE search = fits ? FindFirstFileW(pattern, &found) : INVALID_HANDLE_VALUE;
    if (search == INVALID_HANDLE_VALUE) {
        const DWORD error = fits ? GetLastError() : ERROR_FILENAME_EXCED_RANGE;
        log_failure_within(search_line_capacity, TEXT("FindFirstFile error %d\r\n"), error);
        return 0;
    }
    FindClose(search);
    // An empty name would match every package of the store.
    return narrow_name(inf_name, inf_name_capacity, found.cFileName) && inf_name[0] != 0;
}

int get_store_inf_name(const char* inf_name, WCHAR* inf_path) {
    WCHAR pattern[256];
    format_text(pattern, std::size(pattern), TEXT("%s*"), store_root);
    log_line_within(search_line_capacity, TEXT("get_store_inf_name %s\r\n"), pattern);
    if (inf_name[0] == 0)
        return 0;
    WIN32_FIND_DATAW found;
    HANDLE search = FindFirstFileW(pattern, &found);
    if (search == INVALID_HANDLE_VALUE) {
        log_failure(TEXT("FindFile error!\r\n"));
        return 0;
    }
    const int matches = match_store_folder(search, &found, inf_name, inf_path);
    FindClose(search);
    return matches;
}

int remove_driver_package(const WCHAR* inf_path) {
    log_line_within(search_line_capacity, TEXT("remove [%s]\r\n"), inf_path);
    const HRESULT result = DeletePrinterDriverPackageW(nullptr, inf_path, nullptr);
    if (result == 0)
        return 1;
    WCHAR* text = system_text(static_cast<DWORD>(result));
    if (text != nullptr)
        log_failure_within(search_line_capacity, TEXT("error %s\r\n"), text);
    else
        log_failure_within(search_line_capacity, TEXT("error %x\r\n"), result);
    LocalFree(text);
    return 0;
}

int compare_text_nocase(const char* first, const char* second, DWORD count) {
    for (DWORD i = 0; i < count; ++i) {
        const BYTE one = static_cast<BYTE>(first[i]);
        const BYTE other = static_cast<BYTE>(second[i]);
        const int difference = change_case(one, 'A', 'a') - change_case(other, 'A', 'a');
        if (difference != 0 || one == 0)
            return difference;
    }
    return 0;
}
