#include "deploy/program_files.h"

#include <objbase.h>
#include <shellapi.h>

#include "deploy/model_folders.h"
#include "state/names.h"
#include "support/current_folder.h"
#include "support/install_log.h"
#include "support/known_folder.h"
#include "support/memory.h"
#include "support/text.h"

#include <failed_step.h>

#include <iterator>

namespace {

struct PackageFile {
    const WCHAR* name;
    int tools_only; // copied only with the tools
    int optional;   // may be missing
};

constexpr PackageFile program_rows[] = {
    {remover_program_64, 0, 0},   {remover_program, 0, 0},          {tools_program, 1, 0},
    {TEXT("portlynx.exe"), 1, 0}, {TEXT("portlynx.inf"), 1, 0},     {TEXT("media.inf"), 0, 0},
    {TEXT("settings.inf"), 0, 0}, {TEXT("profilenames.inf"), 0, 1},
};
constexpr PackageFile library_rows[] = {
    {TEXT("zelcore.dll"), 0, 0},
    {TEXT("zelmodel.dat"), 0, 0},
    {TEXT("zelmodel.dll"), 0, 0},
    {TEXT("iconv.dll"), 0, 0},
};
constexpr const WCHAR* profile_patterns[] = {TEXT("*.tkp"), TEXT("*.tkd"), TEXT("*.icm")};

// What the steps of one deployment share.
struct Deployment {
    const WCHAR* folder_name;
    WCHAR model[deploy_path_capacity]; // one that was cut has no room in any path
    int with_tools;
    WCHAR source_root[256]; // the current folder
    InstallFolder install_folder;
};

// A file from a write-protected medium brings its attribute along, and the platform refuses to write over it
// then.
BOOL copy_over(const WCHAR* source, const WCHAR* target) {
    if (CopyFileW(source, target, FALSE))
        return TRUE;
    const DWORD error = GetLastError();
    const DWORD attributes =
        error == ERROR_ACCESS_DENIED ? GetFileAttributesW(target) : INVALID_FILE_ATTRIBUTES;
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0 &&
        SetFileAttributesW(target, attributes & ~DWORD{FILE_ATTRIBUTE_READONLY}))
        return CopyFileW(source, target, FALSE);
    SetLastError(error);
    return FALSE;
}

// A file that may be missing and is has its line all the same; only that is no failed step.
int copy_file(const WCHAR* source_folder, const WCHAR* source_name, const WCHAR* target_folder,
              const WCHAR* target_name, int may_be_missing) {
    WCHAR target[deploy_path_capacity];
    WCHAR source[deploy_path_capacity];
    int fits = format_text(target, std::size(target), TEXT("%s%s"), target_folder, target_name);
    fits &= format_text(source, std::size(source), TEXT("%s%s"), source_folder, source_name);
    log_texts(TEXT("Copy "), source, TEXT(" to "), target);
    const BOOL result = fits ? copy_over(source, target) : FALSE;
    if (result)
        return 1;
    const DWORD error = fits ? GetLastError() : ERROR_FILENAME_EXCED_RANGE;
    log_line_within(deploy_line_capacity, TEXT("copy file failed %d %d %s\r\n"), result, error, source);
    if (!may_be_missing || error != ERROR_FILE_NOT_FOUND)
        line_failed();
    return 0;
}

int copy_rows(const Deployment* deployment, const WCHAR* source_folder, const PackageFile* rows,
              size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const PackageFile* row = &rows[i];
        if (row->tools_only && !deployment->with_tools)
            continue;
        if (!copy_file(source_folder, row->name, deployment->install_folder.path, row->name, row->optional) &&
            !row->optional)
            return 0;
    }
    return 1;
}

// The copy of the driver's INF by which a removal finds the package in the driver store.
int copy_driver_inf(const Deployment* deployment, const WCHAR* source_folder, const char* inf_file) {
    WCHAR name[deploy_path_capacity];
    WCHAR target[deploy_path_capacity];
    if (format_text(target, std::size(target), TEXT("%s%s"), deployment->install_folder.path, TEXT("inf")))
        CreateDirectoryW(target, nullptr);
    append_text(target, std::size(target), TEXT("\\"));
    widen(name, std::size(name), inf_file);
    return copy_file(source_folder, name, target, name, 0);
}

int copy_program_files(const Deployment* deployment, const char* inf_file) {
    WCHAR source[deploy_path_capacity];
    const WCHAR* root = deployment->source_root;
    format_text(source, std::size(source), TEXT("%s\\%s\\"), root, tools_folder);
    if (!copy_rows(deployment, source, program_rows, std::size(program_rows)))
        return 0;
    format_text(source, std::size(source), TEXT("%s\\%s\\32-bit\\"), root, driver_folder);
    if (!copy_rows(deployment, source, library_rows, std::size(library_rows)))
        return 0;
    format_text(source, std::size(source), TEXT("%s\\%s\\"), root, driver_folder);
    return copy_driver_inf(deployment, source, inf_file);
}

// Profiles are a matter of the medium: none, some or all of the patterns may have files.
void copy_profiles(const Deployment* deployment) {
    WCHAR target[deploy_path_capacity]; // has room: the names of the programs are longer
    format_text(target, std::size(target), TEXT("%s%s"), deployment->install_folder.path, TEXT("profiles"));
    CreateDirectoryW(target, nullptr);
    append_text(target, std::size(target), TEXT("\\"));
    for (const WCHAR* pattern : profile_patterns) {
        WCHAR source[deploy_path_capacity];
        if (format_text(source, std::size(source), TEXT("%s\\%s\\%s"), deployment->source_root,
                        TEXT("profiles"), pattern))
            copyDirFiles(source, target);
    }
}

int make_start_menu_group(const Deployment* deployment, const WCHAR* driver_name) {
    WCHAR* programs = find_known_folder(FOLDERID_CommonPrograms, TEXT("CommonPrograms"));
    if (programs == nullptr)
        return 0;
    log_line_within(deploy_line_capacity, TEXT("program folder: %s\r\n"), programs);
    WCHAR group[deploy_path_capacity];
    make_model_folder(group, programs, deployment->folder_name, deployment->model, {0, 0});
    CoTaskMemFree(programs);
    create_model_shortcuts(deployment->install_folder.path, driver_name, group, deployment->with_tools);
    return 1;
}

// Two NUL characters behind the text, as the shell's lists of paths want them; null when there is no memory.
WCHAR* copy_for_shell(const WCHAR* text) {
    const size_t capacity = text_length(text) + 2;
    WCHAR* const copy = allocate_characters(capacity);
    if (copy != nullptr)
        copy_text(copy, capacity, text);
    return copy;
}

} // namespace

int deploy_program_files(const WCHAR* folder_name, const WCHAR* driver_name, const char* inf_file,
                         const char* model_name, int with_tools) {
    Deployment deployment = {};
    deployment.folder_name = folder_name;
    deployment.with_tools = with_tools;
    widen(deployment.model, std::size(deployment.model), model_name);
    if (!make_install_folder(&deployment.install_folder, folder_name, deployment.model, 0) ||
        !deployment.install_folder.plain)
        return 0;
    if (!get_current_folder(deployment.source_root, static_cast<DWORD>(std::size(deployment.source_root)))) {
        log_failure(TEXT("current folder too long\r\n"));
        return 0;
    }
    if (!copy_program_files(&deployment, inf_file))
        return 0;
    copy_profiles(&deployment);
    return make_start_menu_group(&deployment, driver_name);
}

int copy_package_file(const WCHAR* source_folder, const WCHAR* source_name, const WCHAR* target_folder,
                      const WCHAR* target_name) {
    return copy_file(source_folder, source_name, target_folder, target_name, 0);
}

int copyDirFiles(const WCHAR* source, const WCHAR* target) {
    log_texts(TEXT("copyDirFiles "), source, TEXT(" to "), target);
    if (text_length(source) >= deploy_path_capacity || text_length(target) >= deploy_path_capacity) {
        step_failed(source);
        return ERROR_FILENAME_EXCED_RANGE;
    }
    WCHAR* from = copy_for_shell(source);
    WCHAR* to = copy_for_shell(target);
    int result = ERROR_NOT_ENOUGH_MEMORY;
    if (from != nullptr && to != nullptr) {
        SHFILEOPSTRUCTW operation = {};
        operation.wFunc = FO_COPY;
        operation.pFrom = from;
        operation.pTo = to;
        operation.fFlags = FOF_SILENT | FOF_NOCONFIRMATION | FOF_FILESONLY | FOF_NOERRORUI | FOF_NORECURSION;
        operation.lpszProgressTitle = TEXT("");
        result = SHFileOperationW(&operation);
    }
    // A pattern without files has nothing to copy, nor has a folder that a medium doesn't have.
    if (result != 0 && result != ERROR_FILE_NOT_FOUND && result != ERROR_PATH_NOT_FOUND)
        step_failed(source);
    release_bytes(from);
    release_bytes(to);
    return result;
}

int compare_os_version(DWORD major, DWORD minor, DWORD build) {
    OSVERSIONINFOEXW version = {};
    version.dwOSVersionInfoSize = sizeof version;
    if (!GetVersionExW(reinterpret_cast<OSVERSIONINFOW*>(&version)))
        version = {};
    const DWORD wanted[] = {major, minor, build};
    const DWORD running[] = {version.dwMajorVersion, version.dwMinorVersion, version.dwBuildNumber};
    for (size_t i = 0; i < std::size(wanted); ++i) {
        if (running[i] != wanted[i])
            return running[i] > wanted[i] ? 1 : -1;
    }
    return 0;
}

int is_os_newer_than() {
    return compare_os_version(6, 2, 0) == 1;
}
